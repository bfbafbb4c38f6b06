// The zones of the IANA database, and how they are written.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "calendar/Conversions.h"
#include "calendar/base/Choices.h"
#include "calendar/base/Days.h"
#include "calendar/lines/CalendarReader.h"
#include "calendar/zones/WorldZones.h"
#include "calendar/zones/ZoneFromVTimezone.h"
#include "calendar/zones/ZoneText.h"
#include "support/Tables.h"

namespace qel::test {
namespace {

using namespace qel::calendar;

// The zone of a VTIMEZONE's lines.
ZonePtr readBack(const std::vector<std::string>& lines) {
    const NoteSink silent = [](const Note&) {};
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    for (const std::string& line : lines) text += line + "\r\n";
    CalendarReader reader(silent);
    text += "END:VCALENDAR\r\n";
    reader.write(text);
    reader.end();
    for (CalendarReader::Item item{}; item != CalendarReader::Item::Entry; item = reader.next())
        if (item == CalendarReader::Item::End) return nullptr;
    return zoneFromVTimezone(reader.component(), silent);
}

TEST(WorldZones, AreAsTheirDescriptionsSay) {
    ASSERT_GT(worldZoneCount(), 400u);
    for (std::size_t i = 0; i < worldZoneCount(); ++i) {
        SCOPED_TRACE(std::string(worldZoneName(i)));
        EXPECT_EQ(findWorldZone(worldZoneName(i)), i);
        const ZonePtr zone = makeWorldZone(i);
        const std::int64_t now = yearBegin(2020);
        EXPECT_EQ(worldZoneOffset(i, now), zone->offsetAtUtc(now));
        for (const int year : {1900, 1970}) {
            const ZonePtr read = readBack(vTimezoneLines(*zone, year));
            ASSERT_TRUE(read);
            EXPECT_TRUE(agree(*zone, *read, yearBegin(year) + kDaySeconds, yearBegin(2100)));
        }
    }
}

// An event, by default one of 1 June 2005, in a file of either format.
std::string fileOf(Row& row) {
    const bool phone = row["version"] != "2.0";
    return "BEGIN:VCALENDAR\r\nVERSION:" + std::string(phone ? "1.0" : "2.0") + "\r\n" +
           row["zone"] + "BEGIN:VEVENT\r\nUID:1\r\n" + row["event"] +
           "END:VEVENT\r\nEND:VCALENDAR\r\n";
}

TEST(Zones, OfEntries) {
    for (Row& row : cases("calendar/zones.txt")) {
        SCOPED_TRACE(row["case"]);
        for (const char* field : {"zone", "event"}) {
            std::string lines;
            for (const std::string& line : split(row[field], '\n'))
                if (!line.empty()) lines += line + "\r\n";
            row[field] = lines;
        }
        Choices choices;
        choices.zone = row["chosen"];
        const auto to =
            row["to"] == "vcs" ? CalendarFormat::VCalendar10 : CalendarFormat::ICalendar;
        const Conversion result = convertText(fileOf(row), to, 4096, nullptr, choices);
        const std::vector<std::string> lines = unfolded(result.out);
        for (const std::string& line : split(row["result"], '\n'))
            EXPECT_NE(std::find(lines.begin(), lines.end(), line), lines.end()) << line << " in\n"
                                                                                << result.out;
        for (const std::string& line : split(row["without"], '\n'))
            EXPECT_TRUE(line.empty() || std::find(lines.begin(), lines.end(), line) == lines.end())
                << line;
        for (const std::string& message : split(row["message"], '\n'))
            EXPECT_TRUE(result.tells(message)) << message;
        if (row["message"].empty())
            for (const Note& note : result.messages) ADD_FAILURE() << note.text();
    }
}

// A name that says the offset alone is that of a phone's lines, which say it too.
TEST(Zones, NamesOfTheirOwnGoToAPhone) {
    for (const auto& [name, own] : {std::pair("TZ+0100", false),
                                    {"TZ-0530", false},
                                    {"TZ-0530-0123abcd", false},
                                    {"TZ-Home", true},
                                    {"TZ+0100 Home", true},
                                    {"UT+0100", true},
                                    {"TZ10100", true},
                                    {"TZ+010", true}}) {
        const std::string id(name);
        const Conversion result = toVCalendar(
            "BEGIN:VCALENDAR\nVERSION:2.0\nBEGIN:VTIMEZONE\nTZID:" + id +
            "\nBEGIN:STANDARD\nDTSTART:19700101T000000\nTZOFFSETFROM:-0530\nTZOFFSETTO:-0530\n"
            "END:STANDARD\nEND:VTIMEZONE\nBEGIN:VEVENT\nDTSTART;TZID=" +
            id + ":20050601T090000\nEND:VEVENT\nEND:VCALENDAR\n");
        EXPECT_NE(result.out.find("TZ:-05:30\r\n"), std::string::npos) << result.out;
        EXPECT_EQ(result.out.find("X-ICAL-TZID:" + id + "\r\n") != std::string::npos, own)
            << result.out;
    }
}

}  // namespace
}  // namespace qel::test
