// Repeat record to rule and back: tables of records and rule texts, warnings, reports, hostile
// input.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "QelUtility/BxRepeat.h"
#include "QelUtility/VStr.h"
#include "recurrence/RepeatRecord.h"
#include "support/Tables.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::cases;
using qel::test::describe;
using qel::test::list;
using qel::test::number;
using qel::test::Record;
using qel::test::Row;
using qel::test::TraceCapture;

// The errors since the mark, one behind the other.
std::string reported(const TraceCapture& trace) {
    std::string text;
    for (const std::string& error : trace.errors()) text += (text.empty() ? "" : "; ") + error;
    return text;
}

TEST(RepeatToRule, WritesEveryType) {
    for (Row& row : cases("recurrence/repeat-to-rule.txt")) {
        SCOPED_TRACE(row["case"]);
        ZQTR_REPEAT record = Record(row["record"]).repeat;
        _rruleRepeat rule;
        VStr exclusions("stale");
        VStr start("stale");
        int flags = -1;
        testing::internal::CaptureStdout();  // a failing engine is named there
        ASSERT_EQ(BxUtil_BxRepeatToRRule(&record, &rule, exclusions, start, 0, &flags), 0);
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(describe(rule), row["rule"]);
        EXPECT_EQ(flags, number(row, "flags"));
        EXPECT_EQ(rule.wkst, RRULE_DAY_SU);
        EXPECT_STREQ(start, std::to_string(qel::test::date(record.startDate)).c_str());
        EXPECT_TRUE(exclusions.IsEmpty());
        EXPECT_EQ(BxUtil_BxRepeatToRRule(&record, &rule, exclusions, start, 1, nullptr), 0);
        EXPECT_EQ(+rule.count, -1);
        EXPECT_EQ(+rule.until, ConvertZQTRDateTimeToRRule(record.endDate));
    }
}

TEST(RepeatToRule, RefusesWhatNoRuleHolds) {
    for (Row& row : list("recurrence/repeat-refused.txt")) {
        SCOPED_TRACE(row["record"]);
        ZQTR_REPEAT record = Record(row["record"]).repeat;
        const TraceCapture trace;
        _rruleRepeat rule;
        VStr exclusions;
        VStr start;
        EXPECT_EQ(BxUtil_BxRepeatToRRule(&record, &rule, exclusions, start, 0, nullptr), -1);
        EXPECT_EQ(reported(trace), row["report"]);
    }
}

TEST(RepeatToRule, WritesExclusionsAndNamesTheEnginesFailure) {
    const Record excluding("1 from 20050615 to 20050701 every 0 except 20050617,20050620,-3");
    ZQTR_REPEAT record = excluding.repeat;
    _rruleRepeat rule;
    VStr exclusions;
    VStr start;
    int flags = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(BxUtil_BxRepeatToRRule(&record, &rule, exclusions, start, 0, &flags), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ZQRepeatNextDate return code 4008\n");
    EXPECT_STREQ(exclusions, "20050617,20050620,00000000");
    EXPECT_EQ(flags, BXREPEAT_COUNT_UNKNOWN);
    record.exclusions = nullptr;
    EXPECT_EQ(BxUtil_BxRepeatToRRule(&record, &rule, exclusions, start, 1, nullptr), 0);
    EXPECT_TRUE(exclusions.IsEmpty());
}

struct FreeExclusions {
    void operator()(ZQTR_REPEAT* record) const {
        std::free(record->exclusions);
        delete record;
    }
};

struct FromRule {
    int result = 0;
    int flags = -1;
    int endFromRule = -1;
    std::unique_ptr<ZQTR_REPEAT, FreeExclusions> record{new ZQTR_REPEAT{}};
};

FromRule fromRule(_rruleRepeat rule, const char* start, const char* exclusions = nullptr) {
    FromRule made;
    made.result = BxUtil_RRuleToBxRepeat(&rule, exclusions, start, &made.endFromRule,
                                         made.record.get(), &made.flags);
    return made;
}

// Positional text, which reads every part of a rule.
FromRule fromText(const char* positional, const char* start, const char* exclusions = nullptr) {
    _rruleRepeat rule;
    BxUtil_PositionaltoRRULE(positional, &rule, nullptr);
    return fromRule(rule, start, exclusions);
}

TEST(RuleToRepeat, MakesEveryType) {
    for (Row& row : cases("recurrence/rule-to-repeat.txt")) {
        SCOPED_TRACE(row["case"]);
        const std::string start = row["start"].empty() ? "20050615" : row["start"];
        const FromRule made = fromText(row["rule"].c_str(), start.c_str());
        ASSERT_EQ(made.result, 0);
        EXPECT_EQ(describe(*made.record), row["record"]);
        EXPECT_EQ(made.flags, number(row, "flags"));
        EXPECT_EQ(made.endFromRule, (made.flags & BXREPEAT_END_FROM_COUNT) != 0 ? 0 : 1);
    }
}

TEST(RuleToRepeat, RefusesWhatARecordCannotHold) {
    for (Row& row : list("recurrence/rule-refused.txt")) {
        SCOPED_TRACE(row["rule"]);
        _rruleRepeat rule;
        if (BxUtil_PositionaltoRRULE(row["rule"].c_str(), &rule, nullptr) != 0) rule.freq = 0;
        const TraceCapture trace;
        const char* const start = row["start"].empty() ? nullptr : row["start"].c_str();
        EXPECT_EQ(fromRule(rule, start).result, number(row, "result"));
        EXPECT_EQ(reported(trace), row["report"]);
    }
}

// Records that no reader makes.
TEST(RuleToRepeat, SurvivesOddRecords) {
    _rruleRepeat rule;
    BxUtil_InitializeRRULE(&rule);
    rule.freq = RRULE_FREQ_WEEKLY;
    rule.type = RRULE_TYPE_BYDAY;
    rule.byDay = 1;
    const TraceCapture trace;
    EXPECT_EQ(fromRule(rule, "20050615").result, 2105);
    EXPECT_EQ(reported(trace),
              "Error Invalid RRUle struct: no day bits set.2105 at BxRepeat line 587");

    // A daily rule looks at the set of days, not at its type bit.
    rule.freq = RRULE_FREQ_DAILY;
    rule.type = 0;
    rule.byDay = RRULE_DAY_MO;
    EXPECT_EQ(describe(*fromRule(rule, "20050615").record), "12 from 20050615");

    // Of several frequencies the shortest counts; a negative end other than -1 is divided.
    rule.freq = 0xF0;
    rule.byDay = 0;
    rule.until = -172800;
    rule.count = 5;
    EXPECT_EQ(describe(*fromRule(rule, "20050615").record), "1 from 20050615 to -2");
    rule.until = LLONG_MAX;
    EXPECT_EQ(+fromRule(rule, "20050615").record->endDate, INT_MAX);

    // A set outside its months and days, and the greatest count of a series that stands still.
    rule.freq = RRULE_FREQ_MONTHLY;
    rule.until = -1;
    rule.count = SHRT_MAX;
    rule.type = RRULE_TYPE_BYMONTH | RRULE_TYPE_BYMONTHDAY | RRULE_TYPE_BYSETPOS;
    rule.byMonth = 0xE001;
    rule.byMonthDay = 1;
    rule.byMonthDayNeg = 1;
    EXPECT_EQ(describe(*fromRule(rule, "20050615").record), "4 from 20050615 to 20050625");

    EXPECT_EQ(BxUtil_RRuleToBxRepeat(nullptr, nullptr, "20050615", nullptr, nullptr, nullptr), -1);
    VStr text;
    EXPECT_EQ(BxUtil_BxRepeatToRRule(nullptr, nullptr, text, text, 0, nullptr), -1);
}

TEST(RuleToRepeat, ReadsExclusions) {
    for (Row& row : list("recurrence/exclusions.txt")) {
        SCOPED_TRACE(row["text"]);
        const FromRule made = fromText("DAILY;", "20050615", row["text"].c_str());
        EXPECT_EQ(describe(*made.record),
                  "1 from 20050615" + (row["except"].empty() ? "" : " except " + row["except"]));
        EXPECT_EQ(made.flags, number(row, "flags"));
    }
    // They stay with the record, whose owner frees them, also when the rule fails afterwards.
    EXPECT_EQ(+fromText("WEEKLY;", "20050615", "20050101").record->exclusionCount, 1);

    const TraceCapture trace;
    const FromRule many = fromText("DAILY;", "20050615", std::string(40000, ',').c_str());
    EXPECT_EQ(many.result, 0);
    EXPECT_EQ(+many.record->exclusionCount, SHRT_MAX);
    EXPECT_EQ(trace.errors().size(), 1U);
}

TEST(RepeatDates, ConvertBetweenTheRecords) {
    EXPECT_EQ(ConvertZQTRDateTimeToRRule(-1), -1);
    EXPECT_EQ(ConvertZQTRDateTimeToRRule(38516), 38516LL * 86400);
    for (const auto& [date, seconds] :
         {std::pair{-1, -1}, {25568, 86400}, {25566, -86400}, {219145, INT_MAX}})
        EXPECT_EQ(ZQTRDateTimeToRRule(date), seconds);
    for (const auto& [seconds, date] : {std::pair{-1LL, -1},
                                        {38516LL * 86400 + 86399, 38516},
                                        {-86399LL, 0},
                                        {LLONG_MIN, INT_MIN}})
        EXPECT_EQ(RRuleToZQTRDateTime(seconds), date);
    VStr text("stale");
    EXPECT_EQ(ZQTRDateTimeToUTCDate(38516, text), 0);
    EXPECT_STREQ(text, "20050615");
    for (const auto& [date, code] : {std::pair{"20050615", 38516},
                                     {"20050615T083000Z", 38516},
                                     {"200506150", 38516},
                                     {"", 0},
                                     {"2005", 0},
                                     {"20050230", 0},
                                     {"x", 0}}) {
        int found = -7;
        EXPECT_EQ(UTCDateToZQTRDateTime(date, &found), 0);
        EXPECT_EQ(found, code) << date;
    }
}

}  // namespace
