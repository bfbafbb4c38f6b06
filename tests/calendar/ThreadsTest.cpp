// One file that several threads work on: it is converted as by one.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "calendar/Conversions.h"
#include "support/TempDir.h"

namespace qel::test {
namespace {

namespace fs = std::filesystem;
using namespace qel::calendar;

// It ends lines, entries and batches anywhere.
constexpr std::size_t kPiece = 20011;

// Entries that depend on those before them: unknown zones and positions, which are reported once;
// single dates of series; zones that are described between entries, some anew; entries without a
// UID that come again, or with another's; lines that are wrong.
std::string entangled(int number) {
    const std::string id = std::to_string(number);
    const std::string zone = number % 5 == 0 ? "Nowhere" + id : "America/New_York";
    std::string text = "BEGIN:VEVENT\r\nUID:s" + id + "\r\nDTSTART;TZID=" + zone +
                       ":20050615T083000\r\nRRULE:FREQ=DAILY;COUNT=5\r\nGEO:12.5;" + id +
                       "\r\nEND:VEVENT\r\nBEGIN:VEVENT\r\nUID:s" + std::to_string(number - 1) +
                       "\r\nRECURRENCE-ID:20050616\r\nDTSTART:20050616T093000Z\r\nEND:VEVENT\r\n"
                       "BEGIN:VEVENT\r\nSUMMARY:" +
                       std::to_string(number % 3) +
                       "\r\nDTSTART:20050617\r\nno property\r\nEND:VEVENT\r\n";
    if (number % 7 == 0)
        text +=
            "BEGIN:VTIMEZONE\r\nTZID:Own\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
            "TZOFFSETFROM:+0" +
            std::to_string(number % 9) + "00\r\nTZOFFSETTO:+0" + std::to_string(number % 9) +
            "00\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
    text += "BEGIN:VTODO\r\nUID:t" + std::to_string(number % 40) + "\r\nDUE;TZID=Own:20050615T0" +
            std::to_string(number % 9) + "3000\r\nTZ:+0" + std::to_string(number % 4) +
            "\r\nEND:VTODO\r\nBEGIN:VFREEBUSY\r\nEND:VFREEBUSY\r\nBEGIN:VJOURNAL\r\nSUMMARY:j" +
            id + "\r\nEND:VJOURNAL\r\n";
    return text;
}

// All golden files, and many entries that are entangled, in one file.
std::string mixed() {
    std::vector<fs::path> files;
    for (const auto& each :
         fs::directory_iterator(fs::path(QEL_TEST_SOURCE_DIR) / "tests/calendar/golden"))
        files.push_back(each.path());
    std::sort(files.begin(), files.end());
    std::string text;
    int number = 0;
    for (int round = 0; round < 2; ++round)
        for (const fs::path& each : files) {
            text += readFile(each.string());
            text += "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
            for (int i = 0; i < 12; ++i) text += entangled(++number);
            text += "END:VCALENDAR\r\n";
        }
    return text;
}

TEST(Threads, SayWhatOneSays) {
    const std::string text = mixed();
    EXPECT_GT(text.size(), 300000u);
    Choices chosen;
    chosen.zone = "Europe/Berlin";
    chosen.distinctUids = true;
    chosen.only.todos = false;
    EXPECT_EQ(differenceByThreads(text, CalendarFormat::ICalendar, kPiece, chosen), "");
    EXPECT_EQ(differenceByThreads(text, CalendarFormat::VCalendar10, kPiece), "");
}

TEST(Threads, SayWhatOneSaysOfDamagedFiles) {
    const std::string whole = mixed();
    std::mt19937 random(20050601);
    for (int round = 0; round < 20; ++round) {
        std::string text = whole.substr(random() % whole.size());
        text.resize(std::min<std::size_t>(text.size(), 60000));
        for (std::size_t damages = random() % 200; damages > 0; --damages) {
            const std::size_t at = random() % text.size();
            const std::size_t removed = random() % 40;
            if (random() % 2 == 0)
                text.erase(at, removed);
            else
                text[at] = static_cast<char>(random());
        }
        const auto to = round % 2 == 0 ? CalendarFormat::ICalendar : CalendarFormat::VCalendar10;
        EXPECT_EQ(differenceByThreads(text, to, kPiece), "") << "round " << round;
    }
}

// What is large, or reports much, does not wait for its turn in memory.
TEST(Threads, SayWhatOneSaysOfLargeEntries) {
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:1.0\r\n";
    for (int round = 0; round < 3; ++round) {
        text += entangled(round) + "BEGIN:VEVENT\r\nUID:n" + std::to_string(round) + "\r\n";
        for (int i = 0; i < 3000; ++i) text += "no property\r\n";
        text += "END:VEVENT\r\nBEGIN:VEVENT\r\nUID:l" + std::to_string(round) +
                "\r\nDESCRIPTION:" + std::string(600000, 'x') + "\r\nEND:VEVENT\r\n";
        for (int i = 0; i < 150; ++i)
            text += "BEGIN:VTIMEZONE\r\nTZID:" + std::to_string(i) +
                    "\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\nTZOFFSETFROM:+0100\r\n"
                    "TZOFFSETTO:+0100\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n" +
                    entangled(i);
    }
    EXPECT_EQ(differenceByThreads(text, CalendarFormat::ICalendar, kPiece), "");
}

// Within a span of one thread the file becomes another one than what the next spans were read as.
TEST(Threads, SayWhatOneSaysOfFilesThatChange) {
    const std::string begin = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    std::string entries;
    for (int i = 0; i < 60; ++i)
        entries +=
            "BEGIN:VEVENT\r\nUID:u" + std::to_string(i) +
            "\r\nDTSTART:20240101T090000\r\nDESCRIPTION:one two\r\n   three\r\nEND:VEVENT\r\n";
    const std::string indented = "BEGIN:VEVENT\r\n UID:a\r\n DTSTART:20240101\r\nEND:VEVENT\r\n";
    const std::string wrapped =
        "BEGIN:VEVENT\r\nUID:w\r\nDTSTART:20240101T000000\r\nDESCRIPTION:Please bring the large "
        "documents and the presentation for\r\n yesterday with everybody whom you know from "
        "departments\r\n elsewherepublicationsarelong to the large meeting room that\r\n "
        "somethinglongerthanthatislonger here\r\nEND:VEVENT\r\n";
    std::string utf16 = "\xFF\xFE";
    for (const char c : begin + "END:VCALENDAR\r\n") utf16 += {c, '\0'};
    const std::string later = "END:VCALENDAR\r\n" + begin + "X-WR-CALNAME:Two\r\n" + wrapped;
    for (const std::string& each :
         {begin + entries + indented + entries,
          "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nX-WR-CALNAME:One\r\n" + entries + later + entries,
          utf16 + begin + entries})
        EXPECT_EQ(differenceByThreads(each, CalendarFormat::VCalendar10, kPiece), "");
}

// Who receives something, and refuses it, is called by one thread alone, and ends the conversion at
// the same place.
TEST(Threads, StopWhereOneStops) {
    const std::string text = mixed();
    const auto notesUntil = [&](std::size_t threads, std::size_t most) {
        const std::thread::id own = std::this_thread::get_id();
        std::string notes;
        std::size_t count = 0;
        std::ostringstream out;
        Converter converter(out, CalendarFormat::ICalendar, [&](const Note& note) {
            EXPECT_EQ(std::this_thread::get_id(), own);
            notes += std::to_string(note.line) + note.text();
            if (++count == most) throw std::length_error("enough");
        });
        converter.useThreads(threads, 1);
        converter.beginFile("");
        EXPECT_THROW(converter.write(text), std::length_error);
        return notes + out.str();
    };
    for (const std::size_t most : {1u, 30u, 700u})
        EXPECT_EQ(notesUntil(3, most), notesUntil(1, most));
}

}  // namespace
}  // namespace qel::test
