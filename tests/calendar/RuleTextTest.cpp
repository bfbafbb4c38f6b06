// Rule texts as phones write them, the iCalendar texts they become, and the texts they come back
// as: one table, one driver.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "calendar/base/Days.h"
#include "calendar/base/Moment.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/rules/RuleRecords.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/rules/RuleWriteVCalendar.h"
#include "support/Tables.h"

namespace qel::calendar {
namespace {

using test::cases;
using test::Row;

// The start of an entry, "20050615" or "20050615T0900"; nothing for an empty text.
std::optional<RuleStart> startOf(const std::string& text) {
    const auto moment = parseMoment(text);
    if (!moment) return std::nullopt;
    const Civil date = civilOf(moment->day);
    return RuleStart{date.year,      date.month, date.day,     moment->second,
                     moment->isDate, 0,          moment->clock};
}

template <class Each>
std::string joined(const std::vector<Rule>& rules, Each each) {
    std::string text;
    for (const Rule& rule : rules) text += (text.empty() ? "" : " | ") + each(rule);
    return text;
}

TEST(RuleText, PhoneRules) {
    for (Row& row : cases("calendar/phone-rules.txt")) {
        SCOPED_TRACE(row["case"]);
        const auto start = startOf(row["start"]);
        const RuleReading reading =
            readRules(row["vcalendar"], RuleForm::VCalendar10, start,
                      row["count"] == "periods" ? CountMeans::Periods : CountMeans::Dates);
        EXPECT_EQ(joined(reading.rules, iCalendarText), row["icalendar"]);
        if (row.count("note") != 0)
            EXPECT_EQ(reading.notes.empty() ? "" : reading.notes.front().text(), row["note"]);
        EXPECT_EQ(joined(reading.rules,
                         [&](const Rule& rule) {
                             const VCalendarRule back = vCalendarTexts(rule, start);
                             return back.texts.empty() ? std::string() : back.texts.front();
                         }),
                  row[row.count("back") != 0 ? "back" : "vcalendar"]);
        // Whatever is not understood is said.
        EXPECT_FALSE(reading.rules.empty() && reading.notes.empty());
    }
}

TEST(RuleText, ICalendarRules) {
    for (Row& row : cases("calendar/icalendar-rules.txt")) {
        SCOPED_TRACE(row["case"]);
        const auto start = startOf(row["start"]);
        const RuleReading reading = readRules(row["icalendar"], RuleForm::ICalendar, start);
        EXPECT_EQ(joined(reading.rules, iCalendarText), row["again"]);
        std::string vcalendar;
        for (const Rule& rule : reading.rules) {
            const VCalendarRule texts = vCalendarTexts(rule, start);
            EXPECT_NE(texts.texts.empty(), texts.reason.empty());
            for (const std::string& text : texts.texts)
                vcalendar += (vcalendar.empty() ? "" : " | ") + text;
        }
        EXPECT_EQ(vcalendar, row["vcalendar"]);
    }
}

TEST(RuleText, PositionalFormIsReadAsItIsWritten) {
    for (const char* text :
         {"WEEKLY;;10;2;;;;MO,WE;;;;;;;", "MONTHLY;20051231;;1;;;;;15,-1;;;;;MO;",
          "YEARLY;;;1;;;;FR;;;;3;1,-1;;", "YEARLY;;;1;;;;;;100,-1;;;;;"}) {
        const RuleReading reading = readRules(text, RuleForm::Positional, std::nullopt);
        ASSERT_EQ(reading.rules.size(), 1u) << text;
        EXPECT_EQ(positionalTexts(reading.rules[0]), std::vector<std::string>{text});
    }
}

TEST(RuleText, PiecesAreRecordsOfOneMeaningEach) {
    const auto start = startOf("20050601");
    const RuleReading reading = readRules("MP2 1+ MO 2- TU #9", RuleForm::VCalendar10, start);
    ASSERT_EQ(reading.rules.size(), 1u);
    std::vector<Note> notes;
    const std::vector<RulePiece> pieces = rulePieces(reading.rules[0], &notes);
    ASSERT_EQ(pieces.size(), 2u);
    EXPECT_EQ(pieces[0].record.byDay, RRULE_DAY_MO);
    EXPECT_EQ(int{pieces[0].record.setPos[0]}, 1);
    EXPECT_EQ(pieces[1].record.byDay, RRULE_DAY_TU);
    EXPECT_EQ(int{pieces[1].record.setPos[0]}, -2);
    EXPECT_TRUE(pieces[1].positionsAreOrdinals);
    EXPECT_EQ(notes.size(), 1u);
}

TEST(RuleText, NotesSayWhatBecameOfTheRule) {
    const struct {
        const char* text;
        const char* note;
        Fate fate;
        const char* sentence;
    } rows[] = {
        {"W1 MO XX #5", "rule-item-unknown", Fate::Lost,
         "an unknown item of the rule is ignored: \"XX\""},
        {"MD1 0 15 39 #5", "rule-value-outside", Fate::Lost,
         "a value that does not exist in any calendar is ignored: \"0\" and 1 more"},
        {"FREQ=DAILY;BYEASTER=0", "rule-part-unknown", Fate::Lost,
         "an unknown part of the rule is ignored: \"BYEASTER\""},
        {"D1 20051332", "rule-end-invalid", Fate::Kept,
         "the rule is not read: its end \"20051332\" is not a date"},
        {"D1 20051332 W1 MO #5", "rule-of-several-invalid", Fate::Lost,
         "one of several rules is missing: the rule is not read: its end \"20051332\" is not a "
         "date"},
        {"D1", "rule-without-end", Fate::Unchanged,
         "the entry occurs twice: the rule has no end mark, which means that in vCalendar 1.0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const RuleReading reading = readRules(row.text, guessRuleForm(row.text), std::nullopt);
        ASSERT_FALSE(reading.notes.empty());
        const Note& note = reading.notes.front();
        EXPECT_EQ(noteKind(note.code).name, row.note);
        EXPECT_EQ(note.fate(), row.fate);
        EXPECT_EQ(note.text(), row.sentence);
    }
}

TEST(RuleText, AMillionTokensAreReadAtOnce) {
    std::string days = "MD1";
    std::string rules;
    std::string strays = "W1";
    std::string list = "FREQ=YEARLY;BYYEARDAY=1";
    for (int each = 0; each < 1000000; ++each) {
        days += " " + std::to_string(each % 40);
        rules += "D1 ";
        strays += " ??";
        list += "," + std::to_string(each % 400);
    }
    const auto start = startOf("20050601");
    RuleReading reading = readRules(days, RuleForm::VCalendar10, start);
    ASSERT_EQ(reading.rules.size(), 1u);
    EXPECT_EQ(reading.rules[0].monthDays.size(), 31u);
    EXPECT_LT(reading.notes.size(), 5u);
    reading = readRules(rules, RuleForm::VCalendar10, start);
    EXPECT_FALSE(reading.complete);
    EXPECT_LE(reading.rules.size(), 50u);
    reading = readRules(strays, RuleForm::VCalendar10, start);
    EXPECT_LT(reading.notes.size(), 5u);
    reading = readRules(list, RuleForm::ICalendar, start);
    ASSERT_EQ(reading.rules.size(), 1u);
    EXPECT_EQ(reading.rules[0].yearDays.size(), 366u);
}

}  // namespace
}  // namespace qel::calendar
