// Golden pairs, and one by one the things that converters of phone files get wrong.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "calendar/Conversions.h"
#include "calendar/rules/Occurrences.h"
#include "support/Tables.h"
#include "support/TempDir.h"

namespace qel::test {
namespace {

using namespace qel::calendar;
namespace fs = std::filesystem;

bool holds(const std::string& text, const std::string& line) {
    const std::vector<std::string> lines = unfolded(text);
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

// NAME.vcs becomes NAME.ics byte for byte, and that comes back with everything.
TEST(Convert, GoldenPairs) {
    std::size_t pairs = 0;
    for (const auto& each :
         fs::directory_iterator(fs::path(QEL_TEST_SOURCE_DIR) / "tests/calendar/golden")) {
        if (each.path().extension() != ".vcs") continue;
        SCOPED_TRACE(each.path().filename().string());
        fs::path expected = each.path();
        expected.replace_extension(".ics");
        const std::string vcalendar = readFile(each.path().string());
        const std::string icalendar = readFile(expected.string());
        EXPECT_EQ(toICalendar(vcalendar).out, icalendar);
        EXPECT_EQ(faultOf(icalendar), "");
        EXPECT_EQ(differenceInPieces(vcalendar), "");
        EXPECT_EQ(differenceInPieces(icalendar), "");
        const std::string back = toVCalendar(icalendar).out;
        EXPECT_EQ(entryDifferences(vcalendar, back), "");
        // From here on nothing changes any more.
        EXPECT_EQ(toVCalendar(toICalendar(back).out).out, back);
        ++pairs;
    }
    EXPECT_GE(pairs, 12u);
}

TEST(Convert, TheExampleIsFine) {
    const std::string example =
        readFile((fs::path(QEL_TEST_SOURCE_DIR) / "examples/phone.vcs").string());
    const Conversion there = toICalendar(example);
    EXPECT_EQ(faultOf(there.out), "");
    EXPECT_TRUE(there.texts(Severity::Warning).empty());
    EXPECT_TRUE(there.texts(Severity::Error).empty());
    EXPECT_EQ(there.counts.entries, 7u);
    EXPECT_EQ(entryDifferences(example, toVCalendar(there.out).out), "");
    EXPECT_EQ(differenceInPieces(example), "");
}

// The first reading passes over entries that it does not need, and must not miss a zone after them.
TEST(Convert, FindsZonesAfterEntriesOfAnySort) {
    const std::string zone =
        "BEGIN:VTIMEZONE\r\nTZID:Own\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
        "TZOFFSETFROM:+0545\r\nTZOFFSETTO:+0545\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
    const std::string alarm = "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT5M\r\n";
    const std::string begin = "BEGIN:VEVENT\r\nDTSTART;TZID=Own:20050615T093000\r\nUID:";
    const std::string end = "END:VEVENT\r\n";
    for (const std::string& entries :
         {begin + "1\r\n" + end + begin + "2\r\n" + end,
          begin + "1\r\n" + alarm + "END:VALARM\r\n" + end + begin + "2\r\n" + end,
          begin + "1\r\n" + alarm + end + begin + "2\r\n" + alarm,
          begin + "1\r\n" + alarm + "X-A;ENCODING=BASE64:\r\n YQ==\r\nEND:VALARM\r\n" + end,
          begin + "1\r\n" + end + "BEGIN:VTODO\r\nUID:2\r\nEND:VTODO\r\n",
          begin + "1\r\n" + end + begin + "2\r\n" + alarm + alarm + "END:VALARM\r\n"}) {
        SCOPED_TRACE(entries);
        const auto calendar = [](const std::string& content) {
            return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + content + "END:VCALENDAR\r\n";
        };
        const std::string expected = toVCalendar(calendar(zone + entries)).out;
        EXPECT_NE(expected.find("\nTZ:+05"), std::string::npos);
        for (std::size_t piece = 1; piece < 64; ++piece)
            EXPECT_EQ(convertText(calendar(entries + zone), CalendarFormat::VCalendar10, piece).out,
                      expected)
                << piece;
    }
}

TEST(Convert, CharacterSets) {
    for (Row& row : list("calendar/character-sets.txt")) {
        SCOPED_TRACE(row["parameters"] + ":" + row["bytes"]);
        const Conversion result = toICalendar(vcalendarWith(
            "UID:1\nDTSTART:20050601\nSUMMARY;" + row["parameters"] + ":" + row["bytes"] + "\n"));
        EXPECT_TRUE(holds(result.out, "SUMMARY:" + row["text"])) << result.out;
        EXPECT_EQ(!result.messages.empty(), !row["told"].empty());
        EXPECT_TRUE(row["told"].empty() || row["told"] == "yes" || result.tells(row["told"]));
        EXPECT_EQ(faultOf(result.out), "");
    }
}

TEST(Convert, TextsThatNameNoCharacterSet) {
    for (Row& row : list("calendar/unlabelled-texts.txt")) {
        SCOPED_TRACE(row["text"]);
        Choices choices;
        choices.characterSet = row["chosen"];
        const std::string calendar =
            vcalendarWith("UID:1\nDTSTART:20050601\nSUMMARY:" + row["bytes"] + "\n");
        const Conversion result =
            convertText(calendar, CalendarFormat::ICalendar, 4096, nullptr, choices);
        EXPECT_TRUE(holds(result.out, "SUMMARY:" + row["text"])) << result.out;
        const auto isGuess = [](const Note& note) {
            return note.code == NoteCode::CharacterSetGuessed;
        };
        const auto guessOf = [&](const Conversion& each) {
            const auto guess = std::find_if(each.messages.begin(), each.messages.end(), isGuess);
            return guess == each.messages.end() ? "" : guess->values.at(0);
        };
        EXPECT_EQ(guessOf(result), row["guessed"]);
        // The rest of a text may come on a line that nothing folds.
        const std::string bare =
            vcalendarWith("DTSTART:20050601\nDESCRIPTION:Where\nNow " + row["bytes"] + "\n");
        EXPECT_EQ(guessOf(convertText(bare, CalendarFormat::ICalendar, 4096, nullptr, choices)),
                  row["guessed"]);
        EXPECT_EQ(result.messages.empty(), !row["chosen"].empty());
        // The file may end there.
        const std::string cut = calendar.substr(0, calendar.find("\r\nEND:"));
        EXPECT_TRUE(holds(convertText(cut, CalendarFormat::ICalendar, 4096, nullptr, choices).out,
                          "SUMMARY:" + row["text"]));
    }
}

TEST(Convert, LinesAreFoldedBetweenCharacters) {
    std::string text;
    for (int each = 0; each < 200; ++each) text += each % 3 == 0 ? "=C3=A9" : "=E2=82=AC";
    for (const char* head : {"", "a", "ab", "abc"}) {
        const Conversion result = toICalendar(vcalendarWith(
            "UID:1\nDTSTART:20050601\nSUMMARY;ENCODING=QUOTED-PRINTABLE:" + std::string(head) +
            text + "\n"));
        EXPECT_EQ(faultOf(result.out), "");
        const std::string back = toVCalendar(result.out).out;
        EXPECT_EQ(toICalendar(back).out, result.out);
        // No line of the phone's file is long either.
        for (std::size_t at = 0; at < back.size();) {
            const std::size_t end = back.find("\r\n", at);
            EXPECT_LE(end - at, 76u);
            at = end + 2;
        }
    }
}

TEST(Convert, WallClockTimesStayRightAcrossAChange) {
    const std::string zone = "TZ:+01\nDAYLIGHT:TRUE;+02;20050327T020000;20051030T030000;CET;CEST\n";
    // Local, and the same in UTC: the series is at nine in summer and in winter.
    for (const char* start : {"DTSTART:20051024T090000\n", "DTSTART:20051024T070000Z\n"}) {
        const Conversion result =
            toICalendar(vcalendarWith(std::string("UID:1\n") + start + "RRULE:W1 MO #3\n", zone));
        const std::vector<Entry> entries = entriesOf(result.out);
        ASSERT_EQ(entries.size(), 1u);
        const Entry& entry = entries[0];
        ASSERT_TRUE(entry.zone);
        const std::vector<int> days =
            expandRule(entry.rules.at(0).rules.at(0), entry.ruleStart(), {});
        ASSERT_EQ(days.size(), 3u);
        Moment second = *entry.start;
        second.day = days[1];
        EXPECT_EQ(formatMoment(entry.zone->toUtc(*entry.start)), "20051024T070000Z");
        EXPECT_EQ(formatMoment(entry.zone->toUtc(second)), "20051031T080000Z");
        EXPECT_TRUE(holds(result.out, "BEGIN:VTIMEZONE"));
    }
    // Without a zone nothing is invented.
    EXPECT_TRUE(holds(toICalendar(vcalendarWith("UID:1\nDTSTART:20051024T090000\n")).out,
                      "DTSTART:20051024T090000"));
}

TEST(Convert, ZonesOfICalendarBecomeTzAndDaylight) {
    const std::string icalendar =
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\n"
        "BEGIN:VEVENT\r\nUID:1\r\nDTSTAMP:20050101T000000Z\r\nDTSTART;TZID=Here:20050601T090000\r\n"
        "RRULE:FREQ=DAILY;UNTIL=20050603T070000Z\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:2\r\nDTSTAMP:20050101T000000Z\r\nDTSTART:20050601T090000Z\r\n"
        "RRULE:FREQ=DAILY;COUNT=2\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:3\r\nDTSTAMP:20050101T000000Z\r\nDTSTART;TZID=Gone:20050601T090000\r\n"
        "DTEND;TZID=Gone:20050601T100000\r\nEND:VEVENT\r\n"
        // Behind the entries that use it.
        "BEGIN:VTIMEZONE\r\nTZID:Here\r\n"
        "BEGIN:STANDARD\r\nDTSTART:16010101T030000\r\nTZOFFSETFROM:+0200\r\nTZOFFSETTO:+0100\r\n"
        "RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\r\nEND:STANDARD\r\n"
        "BEGIN:DAYLIGHT\r\nDTSTART:16010101T020000\r\nTZOFFSETFROM:+0100\r\nTZOFFSETTO:+0200\r\n"
        "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU\r\nEND:DAYLIGHT\r\nEND:VTIMEZONE\r\n"
        "END:VCALENDAR\r\n";
    const Conversion result = toVCalendar(icalendar);
    EXPECT_TRUE(holds(result.out, "TZ:+01"));
    EXPECT_TRUE(holds(result.out, "DAYLIGHT:TRUE;+02;20050327T010000Z;20051030T010000Z;;"));
    EXPECT_TRUE(holds(result.out, "RRULE:D1 20050603T090000"));
    EXPECT_TRUE(result.tells("describe the zone \"Gone\""));
    EXPECT_EQ(result.texts(Severity::Warning).size(), 1u);
    // The series in UTC stands in a calendar without a zone, or it would move to that zone's clock.
    EXPECT_EQ(entryDifferences(icalendar, result.out), "");
}

TEST(Convert, RulesThatVCalendarLacks) {
    const auto convert = [](const std::string& rule) {
        return toVCalendar(
            "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:1\r\n"
            "DTSTART:20050131T090000\r\n" +
            rule + "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
    };
    // With an end it is a list of dates.
    const Conversion listed =
        convert("RRULE:FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1;COUNT=3");
    EXPECT_TRUE(holds(listed.out, "RDATE:20050228T090000;20050331T090000"));
    // Without one it waits behind its name, and comes back.
    for (const char* rule :
         {"FREQ=MONTHLY;INTERVAL=1;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1", "FREQ=HOURLY;INTERVAL=4"}) {
        const Conversion kept = convert(std::string("RRULE:") + rule);
        EXPECT_FALSE(kept.texts(Severity::Warning).empty()) << rule;
        EXPECT_TRUE(holds(toICalendar(kept.out).out, std::string("RRULE:") + rule)) << kept.out;
    }
}

TEST(Convert, NothingIsLostInSilence) {
    for (Row& row : cases("calendar/kept.txt")) {
        SCOPED_TRACE(row["case"]);
        const Conversion result =
            toICalendar(vcalendarWith("DTSTART:20050601T090000\n" + row["case"] + "\n"));
        for (const std::string& kept : split(row["kept"], '\n'))
            EXPECT_TRUE(holds(result.out, kept)) << kept << " in\n" << result.out;
        EXPECT_TRUE(row["message"].empty() || result.tells(row["message"]));
        EXPECT_EQ(faultOf(result.out), "");
    }
}

TEST(Convert, WhatVCalendarLacksIsKeptOrNamed) {
    for (Row& row : cases("calendar/kept-vcalendar.txt")) {
        SCOPED_TRACE(row["case"]);
        const Conversion result =
            toVCalendar("BEGIN:VCALENDAR\nVERSION:2.0\nBEGIN:VEVENT\nDTSTART:20050601T090000\n" +
                        row["text"] + "\nEND:VEVENT\nEND:VCALENDAR\n");
        for (const std::string& kept : split(row["kept"], '\n'))
            EXPECT_TRUE(holds(result.out, kept)) << kept << " in\n" << result.out;
        EXPECT_TRUE(row["message"].empty() || result.tells(row["message"]));
        const std::string back = toICalendar(result.out).out;
        for (const std::string& kept : split(row["back"], '\n'))
            EXPECT_TRUE(holds(back, kept)) << kept << " in\n" << back;
        EXPECT_EQ(faultOf(back), "");
    }
}

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(Convert, FilesBecomeOneCalendarAndEachEntryIsInItOnce) {
    const auto file = [](const std::string& name, const std::string& entries) {
        return "BEGIN:VCALENDAR\nVERSION:2.0\nX-WR-CALNAME:" + name + "\n" + entries +
               "END:VCALENDAR\n";
    };
    const auto entry = [](const std::string& lines) {
        return "BEGIN:VEVENT\nUID:1\nDTSTART:20050601T090000Z\n" + lines + "END:VEVENT\n";
    };
    const std::string moved = entry("RECURRENCE-ID:20050602T090000Z\nSUMMARY:moved\n");
    const std::string files[] = {
        file("one", entry("DTSTAMP:20050101T000000Z\nRRULE:FREQ=DAILY\n") + moved),
        file("two", entry("DTSTAMP:20060101T000000Z\nRRULE:FREQ=DAILY\n") +
                        entry("RRULE:FREQ=WEEKLY\n") + entry("RECURRENCE-ID:20050603T090000Z\n"))};
    for (const CalendarFormat to : {CalendarFormat::ICalendar, CalendarFormat::VCalendar10}) {
        for (const bool distinct : {false, true}) {
            std::ostringstream out;
            Conversion result;
            Converter converter(out, to,
                                [&](const Note& note) { result.messages.push_back(note); });
            Choices choices;
            choices.distinctUids = distinct;
            converter.choose(choices);
            for (const std::string& each : files) {
                converter.beginFile("test");
                converter.write(each);
                converter.endFile();
            }
            converter.finish();
            EXPECT_EQ(countOf(out.str(), "BEGIN:VCALENDAR"), 1u) << out.str();
            EXPECT_EQ(countOf(out.str(), "BEGIN:VEVENT"), 4u) << out.str();
            EXPECT_EQ(countOf(out.str(), "UID:1\r\n"), distinct ? 2u : 4u) << out.str();
            EXPECT_EQ(countOf(out.str(), "UID:1-"), distinct ? 2u : 0u) << out.str();
            EXPECT_TRUE(result.tells("4: the entry is written once"));
            EXPECT_TRUE(result.tells("3: X-WR-CALNAME of this calendar is left out"));
            EXPECT_TRUE(result.tells(distinct ? "gets the UID" : "has the UID"));
        }
    }
}

// A copy of a file is written once; the same lines in another zone are another entry.
TEST(Convert, EntriesWithoutUidAreKnownAgain) {
    const std::string lines = "SUMMARY:a\nDTSTART:20050601T090000\n";
    const std::string file = vcalendarWith(lines);
    const std::string zoned = vcalendarWith(lines, "TZ:+01\n");
    for (const CalendarFormat to : {CalendarFormat::ICalendar, CalendarFormat::VCalendar10}) {
        std::ostringstream out;
        Converter converter(out, to, [](const Note&) {});
        for (const std::string& each : {file, zoned, file, toICalendar(file).out}) {
            converter.beginFile("test");
            converter.write(each);
            converter.endFile();
        }
        converter.finish();
        EXPECT_EQ(countOf(out.str(), "BEGIN:VEVENT"), 2u) << out.str();
        const std::size_t uid = out.str().find("UID:");
        if (to == CalendarFormat::ICalendar)
            EXPECT_EQ(
                countOf(out.str(), out.str().substr(uid, out.str().find("\r\n", uid) + 2 - uid)),
                1u)
                << out.str();
    }
}

TEST(Convert, CalendarsAreReadAsWhatTheyAre) {
    const std::string entry =
        "BEGIN:VEVENT\nUID:1\nDTSTAMP:20050101T000000Z\nDTSTART:20050601T090000Z\n"
        "DESCRIPTION:two\\nlines\nEND:VEVENT\n";
    // Only its VERSION is missing, so a backslash and an "n" are a line break.
    const Conversion unsaid =
        toICalendar("BEGIN:VCALENDAR\nMETHOD:REQUEST\n" + entry + "X-LATE:1\nEND:VCALENDAR\n");
    EXPECT_TRUE(holds(unsaid.out, "DESCRIPTION:two\\nlines")) << unsaid.out;
    EXPECT_TRUE(unsaid.tells("3: the calendar is read as iCalendar"));
    // An invitation that nobody made, and what comes too late.
    EXPECT_FALSE(holds(unsaid.out, "METHOD:REQUEST"));
    EXPECT_TRUE(unsaid.tells("2: METHOD:REQUEST is left out"));
    EXPECT_TRUE(unsaid.tells("9: X-LATE of the calendar is left out"));
    EXPECT_TRUE(holds(toICalendar("BEGIN:VCALENDAR\nVERSION:1.0\n" + entry + "END:VCALENDAR\n").out,
                      "DESCRIPTION:two\\\\nlines"));
    // Wrapped as on a typewriter, and parameters of a value that is not encoded any more.
    const Conversion wrapped = toICalendar(
        "BEGIN:VCALENDAR\nVERSION:2.0\nBEGIN:VEVENT\nUID:1\nDTSTART:20050601T000000\n"
        "DTEND:20050602T000000\n"
        "SUMMARY:the words of this text are not divided by the\n"
        " program that wrapped its lines just as a typewriter would\\,\n"
        " and every fold of it is the blank between two of them\n"
        "BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:a\nTRIGGER:-PT5M\n"
        "X-A;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:=E9\nEND:VALARM\n"
        "END:VEVENT\nEND:VCALENDAR\n");
    EXPECT_TRUE(holds(
        wrapped.out,
        "SUMMARY:the words of this text are not divided by the program that wrapped its lines just "
        "as a typewriter would\\, and every fold of it is the blank between two of them"))
        << wrapped.out;
    EXPECT_TRUE(wrapped.tells("7: the text of SUMMARY gets a blank"));
    EXPECT_TRUE(holds(wrapped.out, "X-A:\xC3\xA9"));
    // Times that a phone would take for a whole day stay times.
    EXPECT_TRUE(holds(toICalendar(toVCalendar(wrapped.out).out).out, "DTSTART:20050601T000000"));
}

}  // namespace
}  // namespace qel::test
