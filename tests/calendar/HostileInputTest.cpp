// Input that no program wrote in good faith: cut off, binary, endless lines, wrong nesting. It is
// read quickly and within bounds, and messages name what is wrong.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>

#include "calendar/Conversions.h"
#include "calendar/base/ByteSearch.h"
#include "calendar/lines/LineMarks.h"
#include "calendar/lines/LineReader.h"
#include "support/Tables.h"
#include "support/TempDir.h"

namespace qel::test {
namespace {

using namespace qel::calendar;

const char kEvent[] = "BEGIN:VEVENT\r\nUID:1\r\nDTSTART:20050601T090000\r\nEND:VEVENT\r\n";

std::string calendar(const std::string& inside) {
    return "BEGIN:VCALENDAR\r\nVERSION:1.0\r\n" + inside + "END:VCALENDAR\r\n";
}

std::vector<std::string> linesOf(const std::string& text, std::size_t piece) {
    LineReader reader;
    std::vector<std::string> lines;
    for (std::size_t at = 0;; at += piece) {
        if (at < text.size())
            reader.write(std::string_view(text).substr(at, piece));
        else
            reader.end();
        LineReader::Result result = reader.next();
        for (; result == LineReader::Result::Line; result = reader.next())
            lines.push_back(std::to_string(reader.line().number) + " " +
                            std::string(reader.line().text.view()));
        if (result == LineReader::Result::End) return lines;
    }
}

TEST(HostileInput, LineEndsMarksAndFolds) {
    // CR CR LF is one end of a line, two carriage returns are two.
    const std::vector<std::string> expected = {"1 A:1", "2 B:2 3", "5 C;B=;QUOTED-PRINTABLE:xyz",
                                               "8 D;ENCODING=BASE64:QUJDRUZH", "14 E:1"};
    const std::string text =
        "A:1\nB:2\r\n 3\r\r\n\rC;B=;QUOTED-PRINTABLE:x=\ry=\r\nz\nD;ENCODING=BASE64:\n  "
        "QUJD\nRUZH\n\n\r\r\r\nE:1\r\r";
    for (const std::size_t piece : {std::size_t{1}, std::size_t{3}, std::size_t{65536}}) {
        EXPECT_EQ(linesOf(text, piece), expected);
        EXPECT_EQ(linesOf("\xEF\xBB\xBF"
                          "A:\xC3\xA9\n",
                          piece),
                  std::vector<std::string>{"1 A:\xC3\xA9"});
        // UTF-16 in both orders, with a character beyond 16 bits.
        EXPECT_EQ(linesOf(std::string("\xFF\xFE"
                                      "A\0:\0\x3D\xD8\x01\xDE\n\0",
                                      12),
                          piece),
                  std::vector<std::string>{"1 A:\xF0\x9F\x98\x81"});
        EXPECT_EQ(linesOf(std::string("B\0:\0\xE9\0\n\0", 8), piece),
                  std::vector<std::string>{"1 B:\xC3\xA9"});
        EXPECT_EQ(linesOf(std::string("\xFE\xFF\0A\0:\0\xE9", 8), piece),
                  std::vector<std::string>{"1 A:\xC3\xA9"});
    }
    // Where lines are indented, what names no property goes on with the line before it.
    EXPECT_EQ(linesOf("BEGIN:VEVENT\n  SUMMARY:a\n  b\nEND:VEVENT\n", 7),
              (std::vector<std::string>{"1 BEGIN:VEVENT", "2 SUMMARY:a b", "4 END:VEVENT"}));
}

// Sixteen bytes at a time and one by one.
TEST(HostileInput, MarksAreFoundAsOneByOne) {
    std::mt19937 random(7);
    const std::string special = ":;\"\r\n\xC3";
    for (int round = 0; round < 3000; ++round) {
        std::string text(random() % 70, 'x');
        for (char& c : text)
            if (random() % 12 == 0) c = special[random() % special.size()];
        const std::size_t at = random() % (text.size() + 1);
        EXPECT_EQ((findAny<':', ';', '\n'>(text, at)),
                  std::min(text.find_first_of(":;\n", at), text.size()))
            << text;
        const std::string_view line = std::string_view(text).substr(0, text.find_first_of("\r\n"));
        const LineMarks marks = marksOf(text);
        EXPECT_EQ(marks.end, line.size()) << text;
        EXPECT_EQ(marks.colon, findColon(line)) << text;
        EXPECT_EQ(marks.nameEnd, line.find_first_of(":;")) << text;
    }
}

TEST(HostileInput, WrongNestingIsMendedAndTold) {
    for (Row& row : cases("calendar/nesting.txt")) {
        SCOPED_TRACE(row["case"]);
        const Conversion result = toICalendar(row["text"]);
        EXPECT_EQ(static_cast<int>(result.counts.entries), number(row, "entries"));
        EXPECT_TRUE(result.tells(row["message"]));
        EXPECT_EQ(faultOf(result.out), "");
        EXPECT_EQ(differenceInPieces(row["text"]), "");
    }
}

TEST(HostileInput, EverythingThatIsLongIsReadAtOnce) {
    const std::string megabytes(4 << 20, 'x');
    std::string nested;
    for (int each = 0; each < 100000; ++each) nested += "BEGIN:VALARM\r\n";
    std::string folds = "DESCRIPTION:";
    for (int each = 0; each < 1000000; ++each) folds += "\r\n x";
    std::string dates = "EXDATE:20050601";
    for (int each = 0; each < 20000; ++each)
        dates += ";20050601T09" + std::to_string(1000 + each % 4000);
    std::string tokens = "RRULE:MD1";
    for (int each = 0; each < 1000000; ++each) tokens += " 1";
    std::string parameters = "SUMMARY";
    for (int each = 0; each < 200000; ++each) parameters += ";a=\"b";
    std::string blanks = "SUMMARY;ENCODING=QUOTED-PRINTABLE:a";
    for (int each = 0; each < 1000000; ++each) blanks += "\r\n ";
    std::string bare = "DESCRIPTION:a";
    for (int each = 0; each < 1000000; ++each) bare += "\r\n\r\nb c";
    std::string zones;
    for (int each = 0; each < 20000; ++each)
        zones += "DAYLIGHT:TRUE;+02;20050327T010000Z;20051030T010000Z\r\n";
    std::string lines;
    for (int each = 0; each < 900000; ++each) lines += "X-A:1\r\n";
    const std::string inEntry[] = {"SUMMARY:" + megabytes,
                                   megabytes,
                                   lines + "LOCATION:past all bounds",
                                   nested,
                                   folds,
                                   blanks,
                                   bare,
                                   dates,
                                   tokens,
                                   parameters + ":x",
                                   "SUMMARY;ENCODING=QUOTED-PRINTABLE:" + std::string(2 << 20, '='),
                                   "ATTACH;ENCODING=BASE64:" + std::string(2 << 20, 'A'),
                                   "CATEGORIES:" + std::string(1 << 20, ';'),
                                   "AALARM:20050601T080000;" + std::string(1 << 20, ';')};
    const auto begin = std::chrono::steady_clock::now();
    for (const std::string& line : inEntry) {
        SCOPED_TRACE(line.substr(0, 40));
        const Conversion result = toICalendar(calendar(
            "BEGIN:VEVENT\r\nUID:1\r\nDTSTART:20050601T090000\r\n" + line + "\r\nEND:VEVENT\r\n"));
        EXPECT_EQ(result.counts.entries, 1u);
        EXPECT_EQ(faultOf(result.out), "");
        EXPECT_LT(result.messages.size(), 20u);
        EXPECT_EQ(result.out.find("past all bounds"), std::string::npos);
    }
    EXPECT_EQ(toICalendar(calendar("TZ:+01\r\n" + zones + kEvent)).counts.entries, 1u);
    EXPECT_EQ(toICalendar(calendar(std::string(1 << 20, '\0') + "\r\n" + kEvent)).counts.entries,
              1u);
    // Generous: sanitizers and a busy machine are slow, a square is slower.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
}

TEST(HostileInput, DamagedFilesNeverHarm) {
    const std::string example = readFile(std::string(QEL_TEST_SOURCE_DIR) + "/examples/phone.vcs");
    const std::string icalendar = toICalendar(example).out;
    std::mt19937 random(20050601);
    for (int round = 0; round < 300; ++round) {
        std::string text = round % 2 == 0 ? example : icalendar;
        for (unsigned damages = 1 + random() % 8; damages > 0; --damages) {
            const std::size_t at = random() % text.size();
            // In this order: a compiler may evaluate arguments in any.
            const std::size_t removed = random() % 40;
            const std::size_t added = random() % 100;
            text[at] = static_cast<char>(random());
            if (random() % 2 == 0) text.replace(at, removed, text.substr(0, added));
        }
        text.resize(text.size() - random() % 100 % text.size());
        const Conversion there = toICalendar(text);
        EXPECT_EQ(faultOf(there.out), "") << "round " << round;
        // A second pass finds nothing to mend.
        const std::string back = toVCalendar(there.out).out;
        EXPECT_EQ(faultOf(toICalendar(back).out), "") << "round " << round;
        if (HasFailure()) break;
    }
}

}  // namespace
}  // namespace qel::test
