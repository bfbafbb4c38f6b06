// Rule texts as phones write them, the iCalendar texts they become, and the texts they come back
// as: one table, one driver.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "convert/Days.h"
#include "convert/RuleText.h"

namespace qel::convert {
namespace {

// A date with the time of day of the entry, "20050615" or "20050615T0900".
std::optional<RuleStart> startOf(const std::string& text) {
    if (text.empty()) return std::nullopt;
    RuleStart start;
    start.year = std::stoi(text.substr(0, 4));
    start.month = std::stoi(text.substr(4, 2));
    start.day = std::stoi(text.substr(6, 2));
    start.isDate = text.size() == 8;
    if (!start.isDate)
        start.secondOfDay =
            std::stoi(text.substr(9, 2)) * 3600 + std::stoi(text.substr(11, 2)) * 60;
    return start;
}

template <class Each>
std::string joined(const std::vector<Rule>& rules, Each each) {
    std::string text;
    for (const Rule& rule : rules) text += (text.empty() ? "" : " | ") + each(rule);
    return text;
}

struct Row {
    const char* sentence;
    const char* start;
    const char* vcalendar;
    const char* icalendar;  // "" where no rule is left
    const char* back;       // the vCalendar text of it; null: the same as `vcalendar`
};

const Row kPhoneRules[] = {
    {"every other week", "20050615T0900", "W2 MO WE FR #10",
     "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR", nullptr},
    {"without interval digits", "20090803T1400", "W MO TU 20090807T141500Z",
     "FREQ=WEEKLY;UNTIL=20090807T141500Z;INTERVAL=1;BYDAY=MO,TU", "W1 MO TU 20090807T141500Z"},
    {"blanks everywhere, lower case", "20050615T0900", "  w1  mo\t fr   #3  ",
     "FREQ=WEEKLY;COUNT=3;INTERVAL=1;BYDAY=MO,FR", "W1 MO FR #3"},
    {"no weekday: the start's", "20000111T1800", "W2 #0", "FREQ=WEEKLY;INTERVAL=2;BYDAY=TU",
     "W2 TU #0"},
    {"weeks begin on Sunday where that counts", "19991114T1000", "W2 SU TU #4",
     "FREQ=WEEKLY;COUNT=4;INTERVAL=2;BYDAY=SU,TU;WKST=SU", nullptr},
    {"no end mark means twice", "19960901", "D4", "FREQ=DAILY;COUNT=2;INTERVAL=4", "D4 #2"},
    {"an end date and a count, the date first", "19960901", "D1 #10 19960905T000000Z",
     "FREQ=DAILY;UNTIL=19960905T000000Z;INTERVAL=1", "D1 19960905T000000"},
    {"an end date and a count, the count first", "19960901", "D1 #3 19960905",
     "FREQ=DAILY;COUNT=3;INTERVAL=1", "D1 #3"},
    {"an end at midnight is a whole day", "20050601T1000", "W1 MO 20050630T000000",
     "FREQ=WEEKLY;UNTIL=20050630T235959;INTERVAL=1;BYDAY=MO", "W1 MO 20050630T235959"},
    {"an end at midnight of a series at midnight is that moment", "20060213T0000",
     "D1 20060619T000000Z", "FREQ=DAILY;UNTIL=20060619T000000Z;INTERVAL=1", nullptr},
    {"a daily rule with weekdays and strays", "20050613T0900", "D1 MO xx WE #4",
     "FREQ=DAILY;COUNT=4;INTERVAL=1;BYDAY=MO,WE", "W1 MO WE #4"},
    {"several positions in one rule", "19960901", "MP2 1+ SU 1- SU #10",
     "FREQ=MONTHLY;COUNT=10;INTERVAL=2;BYDAY=1SU,-1SU", nullptr},
    {"a list of positions before a list of days", "19960906", "MP2 1+ 1- FR #3",
     "FREQ=MONTHLY;COUNT=3;INTERVAL=2;BYDAY=1FR,-1FR", "MP2 1+ FR 1- FR #3"},
    {"each weekday has the position", "20050606", "MP1 1+ MO TU 2- FR #0",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=1MO,1TU,-2FR", nullptr},
    {"weekdays written out", "20050605", "MP1 1+ SUN 3+ monday #5",
     "FREQ=MONTHLY;COUNT=5;INTERVAL=1;BYDAY=1SU,3MO", "MP1 1+ SU 3+ MO #5"},
    {"neither position nor weekday: the start's", "19940720", "MP1 #3",
     "FREQ=MONTHLY;COUNT=3;INTERVAL=1;BYDAY=3WE", "MP1 3+ WE #3"},
    {"no position: every such day", "19970905", "MP FR #0", "FREQ=MONTHLY;INTERVAL=1;BYDAY=FR",
     "W1 FR #0"},
    {"the last day", "20060630T1000", "MD1 1- 20080630T100000",
     "FREQ=MONTHLY;UNTIL=20080630T100000;INTERVAL=1;BYMONTHDAY=-1", nullptr},
    {"LD and -3 too", "19960901", "MD1 1 LD -3 #10",
     "FREQ=MONTHLY;COUNT=10;INTERVAL=1;BYMONTHDAY=1,-1,-3", "MD1 1 1- 3- #10"},
    {"signs at days of the month", "20030211", "MD2 11+ 16+ #10",
     "FREQ=MONTHLY;COUNT=10;INTERVAL=2;BYMONTHDAY=11,16", "MD2 11 16 #10"},
    {"a day that no month has", "20050616", "MD1 16 17 39 #10",
     "FREQ=MONTHLY;COUNT=10;INTERVAL=1;BYMONTHDAY=16,17", "MD1 16 17 #10"},
    {"M alone is monthly by date", "19990131", "M1 #0", "FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=31",
     "MD1 31 #0"},
    {"yearly without a month", "19811227T2300", "YM1 #0", "FREQ=YEARLY;INTERVAL=1;BYMONTH=12",
     "YM1 12 #0"},
    {"months", "19960610", "YM1 6 7 #8", "FREQ=YEARLY;COUNT=8;INTERVAL=1;BYMONTH=6,7", nullptr},
    {"a month that no year has", "20050115", "YM1 15 #10", "", ""},
    {"year days", "20050101", "YD3 1 100 #10", "FREQ=YEARLY;COUNT=10;INTERVAL=3;BYYEARDAY=1,100",
     nullptr},
    {"year days from the end, and as the library names them", "20051231", "YD1 BYYEARDAY=100 1- #4",
     "FREQ=YEARLY;COUNT=4;INTERVAL=1;BYYEARDAY=100,-1", "YD1 100 1- #4"},
    {"an iCalendar rule in a vCalendar", "20041031T0200", "FREQ=YEARLY;BYDAY=-1SU;BYMONTH=10",
     "FREQ=YEARLY;INTERVAL=1;BYDAY=-1SU;BYMONTH=10", "MP12 1- SU #0"},
    {"several rules in one text", "20000101", "MD1 1 #1 D2  20000101T000000Z  M3",
     "FREQ=MONTHLY;COUNT=1;INTERVAL=1;BYMONTHDAY=1 | FREQ=DAILY;UNTIL=20000101T000000Z;INTERVAL=2 "
     "| "
     "FREQ=MONTHLY;COUNT=2;INTERVAL=3;BYMONTHDAY=1",
     "MD1 1 #1 | D2 20000101T000000 | MD3 1 #2"},
    {"a time of day that is the start's", "20050601T1200", "D2 1200 #4",
     "FREQ=DAILY;COUNT=4;INTERVAL=2", "D2 #4"},
    {"times of day", "20050601T0600", "D2 0600 1200 #4",
     "FREQ=DAILY;COUNT=4;INTERVAL=2;BYHOUR=6,12;BYMINUTE=0", ""},
    {"numbers past a record", "20050601", "D40000 #0", "FREQ=DAILY;INTERVAL=40000", nullptr},
    {"more times than a record counts", "20050601", "D1 #40000",
     "FREQ=DAILY;INTERVAL=1;COUNT=40000", nullptr},
    {"no rule at all", "20050601", "MAILTO:someone@example.com#17", "", ""},
    {"empty", "20050601", "   ", "", ""},
    {"an end that is no date", "20050601", "D1 20051331T000000", "", ""},
};

TEST(RuleText, PhoneRules) {
    for (const Row& row : kPhoneRules) {
        SCOPED_TRACE(std::string(row.sentence) + ": " + row.vcalendar);
        const auto start = startOf(row.start);
        const RuleReading reading = readRules(row.vcalendar, RuleForm::VCalendar10, start);
        EXPECT_EQ(joined(reading.rules, iCalendarText), row.icalendar);
        EXPECT_EQ(joined(reading.rules,
                         [&](const Rule& rule) {
                             const VCalendarRule back = vCalendarTexts(rule, start);
                             return back.texts.empty() ? std::string() : back.texts.front();
                         }),
                  row.back == nullptr ? row.vcalendar : row.back);
        // Whatever is not understood is said.
        EXPECT_FALSE(reading.rules.empty() && reading.notes.empty());
    }
}

struct ICalendarRow {
    const char* sentence;
    const char* start;
    const char* rule;
    const char* again;      // as iCalendar text
    const char* vcalendar;  // "" where the format has none
};

const ICalendarRow kICalendarRules[] = {
    {"month days are not lost", "20050115", "FREQ=MONTHLY;BYMONTHDAY=15,-1",
     "FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=15,-1", "MD1 15 1- #0"},
    {"nor the week start", "20050613T0900", "FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,SU;WKST=SU",
     "FREQ=WEEKLY;INTERVAL=2;BYDAY=SU,MO;WKST=SU", "W2 SU MO #0"},
    {"weeks that begin on Monday have no vCalendar form", "20050613T0900",
     "FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,SU", "FREQ=WEEKLY;INTERVAL=2;BYDAY=SU,MO", ""},
    {"a month and its day, as the start has them", "20050615",
     "FREQ=YEARLY;BYMONTH=6;BYMONTHDAY=15", "FREQ=YEARLY;INTERVAL=1;BYMONTHDAY=15;BYMONTH=6",
     "YM1 6 #0"},
    {"a month and a day that the start has not", "20050615",
     "FREQ=YEARLY;BYMONTH=6;BYMONTHDAY=15,20", "FREQ=YEARLY;INTERVAL=1;BYMONTHDAY=15,20;BYMONTH=6",
     "MD12 15 20 #0"},
    {"the last Sunday of March and September", "20050327", "FREQ=YEARLY;BYMONTH=3,9;BYDAY=-1SU",
     "FREQ=YEARLY;INTERVAL=1;BYDAY=-1SU;BYMONTH=3,9", "MP6 1- SU #0"},
    {"a position by BYSETPOS", "20050610", "FREQ=MONTHLY;BYDAY=FR;BYSETPOS=2,-1;COUNT=6",
     "FREQ=MONTHLY;COUNT=6;INTERVAL=1;BYDAY=FR;BYSETPOS=2,-1", "MP1 2+ FR 1- FR #6"},
    {"the last day as a choice from all", "20050131",
     "FREQ=MONTHLY;BYDAY=SU,MO,TU,WE,TH,FR,SA;BYSETPOS=-1",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=SU,MO,TU,WE,TH,FR,SA;BYSETPOS=-1", "MD1 1- #0"},
    {"the last workday", "20050131", "FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1", ""},
    {"more positions than a record has", "20050103", "FREQ=MONTHLY;BYDAY=MO;BYSETPOS=1,2,3,4,-1",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=MO;BYSETPOS=1,2,3,4,-1",
     "MP1 1+ MO 2+ MO 3+ MO 4+ MO 1- MO #0"},
    {"every Friday of every second month", "20050107", "FREQ=MONTHLY;INTERVAL=2;BYDAY=FR",
     "FREQ=MONTHLY;INTERVAL=2;BYDAY=FR", "MP2 1+ FR 2+ FR 3+ FR 4+ FR 5+ FR #0"},
    {"Friday the 13th", "20050513", "FREQ=MONTHLY;BYDAY=FR;BYMONTHDAY=13",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=FR;BYMONTHDAY=13", ""},
    {"a weekday among seven days of the month", "20050614",
     "FREQ=MONTHLY;BYDAY=TU;BYMONTHDAY=14,8,9,10,11,12,13", "FREQ=MONTHLY;INTERVAL=1;BYDAY=2TU",
     "MP1 2+ TU #0"},
    {"among the last seven, in one month", "20050529",
     "FREQ=YEARLY;BYMONTH=5;BYDAY=SU;BYMONTHDAY=-1,-2,-3,-4,-5,-6,-7",
     "FREQ=YEARLY;INTERVAL=1;BYDAY=-1SU;BYMONTH=5", "MP12 1- SU #0"},
    {"among seven others", "20051101", "FREQ=MONTHLY;BYDAY=TU;BYMONTHDAY=2,3,4,5,6,7,8",
     "FREQ=MONTHLY;INTERVAL=1;BYDAY=TU;BYMONTHDAY=2,3,4,5,6,7,8", ""},
    {"plain", "20050131", "FREQ=MONTHLY", "FREQ=MONTHLY;INTERVAL=1", "MD1 31 #0"},
    {"leap days", "20040229", "FREQ=YEARLY", "FREQ=YEARLY;INTERVAL=1", "YM1 2 #0"},
    {"the twentieth Monday", "20050516", "FREQ=YEARLY;BYDAY=20MO",
     "FREQ=YEARLY;INTERVAL=1;BYDAY=20MO", ""},
    {"week numbers", "20050103", "FREQ=YEARLY;BYWEEKNO=1,-1;BYDAY=MO",
     "FREQ=YEARLY;INTERVAL=1;BYDAY=MO;BYWEEKNO=1,-1", ""},
    {"an end date is tolerant", "20050601T1000", "freq=daily; until=20050603 ;interval=1",
     "FREQ=DAILY;UNTIL=20050603T235959;INTERVAL=1", "D1 20050603T235959"},
    {"the time of day that the start has anyway", "20050601T1000",
     "FREQ=DAILY;BYHOUR=10;BYMINUTE=0;BYSECOND=0",
     "FREQ=DAILY;INTERVAL=1;BYHOUR=10;BYMINUTE=0;BYSECOND=0", "D1 #0"},
    {"within the day", "20050601T1000", "FREQ=HOURLY;INTERVAL=4", "", ""},
    {"no frequency", "20050601T1000", "INTERVAL=4", "", ""},
    {"two rules in one text", "20050601", "FREQ=DAILY;COUNT=2\nFREQ=YEARLY;COUNT=2",
     "FREQ=DAILY;COUNT=2;INTERVAL=1 | FREQ=YEARLY;COUNT=2;INTERVAL=1", "D1 #2 | YM1 6 #2"},
    {"a vCalendar rule in iCalendar", "20050615T0900", "W2 MO WE #10",
     "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE", "W2 MO WE #10"},
};

TEST(RuleText, ICalendarRules) {
    for (const ICalendarRow& row : kICalendarRules) {
        SCOPED_TRACE(std::string(row.sentence) + ": " + row.rule);
        const auto start = startOf(row.start);
        const RuleReading reading = readRules(row.rule, RuleForm::ICalendar, start);
        EXPECT_EQ(joined(reading.rules, iCalendarText), row.again);
        std::string vcalendar;
        for (const Rule& rule : reading.rules) {
            const VCalendarRule texts = vCalendarTexts(rule, start);
            EXPECT_NE(texts.texts.empty(), texts.reason.empty());
            for (const std::string& text : texts.texts)
                vcalendar += (vcalendar.empty() ? "" : " | ") + text;
        }
        EXPECT_EQ(vcalendar, row.vcalendar);
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
    std::vector<RuleNote> notes;
    const std::vector<RulePiece> pieces = rulePieces(reading.rules[0], &notes);
    ASSERT_EQ(pieces.size(), 2u);
    EXPECT_EQ(pieces[0].record.byDay, RRULE_DAY_MO);
    EXPECT_EQ(int{pieces[0].record.setPos[0]}, 1);
    EXPECT_EQ(pieces[1].record.byDay, RRULE_DAY_TU);
    EXPECT_EQ(int{pieces[1].record.setPos[0]}, -2);
    EXPECT_TRUE(pieces[1].positionsAreOrdinals);
    EXPECT_EQ(notes.size(), 1u);
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
}  // namespace qel::convert
