// The repeat engine: a table of records with the dates they give, and one of its failures.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "QelUtility/RptNext.h"
#include "recurrence/RepeatRecord.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::code;
using qel::test::Record;

constexpr int kFirst = -1;
constexpr int kLatest = INT_MAX;

struct Series {
    const char* sentence;
    const char* record;
    const char* dates;
    int previous = kFirst;  // or eight digits, or -2
};

const Series kSeries[] = {
    {"every third day from day 1000", "1 from 19020928 every 3", "19020928 19021001 19021004"},
    {"type 1 takes -2 for a date", "1 from 20050101 every 3", "19000102", -2},
    {"weekly on Monday from a Wednesday", "2 from 20050615 weekday 2 every 2",
     "20050620 20050704 20050718"},
    {"weekly from a day that is one", "2 from 20050615 weekday 4", "20050615 20050622"},
    {"every other week on Monday, Wednesday and Friday", "12 from 20050615 days 2,4,6 every 2",
     "20050615 20050617 20050627 20050629 20050701 20050711"},
    {"the first occurrence is at most a week away, whatever the interval",
     "12 from 20050618 days 2 every 2", "20050620 20050704"},
    {"weeks run from Sunday to Saturday", "12 from 20050618 days 1,7 every 2",
     "20050618 20050626 20050702 20050710"},
    {"weekdays from the first day there is", "12 from 19000101 days 1,2",
     "19000101 19000107 19000108"},
    {"type 12 takes -2 for a date", "12 from 19000101 days 2", "19000101", -2},
    {"and a date far before 1900, whose weekday is a remainder below 1", "12 from 19000110 days 5",
     "19000104", -5},
    {"the 31st is a short month's last day", "3 from 20050131 day 31",
     "20050131 20050228 20050331 20050430"},
    {"monthly from after its day", "3 from 20050115 day 10 every 5",
     "20050210 20050710 20051210 20060510"},
    {"-2 steps from the start", "3 from 20050131 day 31 every 13", "20060228", -2},
    {"the last Wednesday of months with five and four", "4 from 20050601 weekday 4 week 5",
     "20050629 20050727 20050831"},
    {"the fourth of five", "4 from 20050601 weekday 4 week 4", "20050622 20050727 20050824"},
    {"the second Tuesday, past at the start", "4 from 20050615 weekday 3 week 2 every 2",
     "20050712 20050913"},
    {"-2 steps from the start's month", "4 from 20050615 weekday 3 week 2", "20050712", -2},
    {"a week 0 gives the same date again", "4 from 20050601 weekday 4 week 0", "20050629 20050629"},
    {"Thanksgiving every other year", "6 from 20051201 month 11 weekday 5 week 4 every 2",
     "20061123 20081127"},
    {"the last Sunday of March", "6 from 20050101 month 3 weekday 1 week 5",
     "20050327 20060326 20070325"},
    {"29 February", "5 from 20040229 month 2 day 29",
     "20040229 20050228 20060228 20070228 20080229"},
    {"a date that is past in its first year", "5 from 20050615 month 3 day 10 every 3",
     "20060310 20090310"},
    {"a moved occurrence keeps its month", "5 from 20040229 month 2 day 29", "20060329 20070329",
     20050310},
    {"the 31st of selected months", "7 from 20050201 day 31 months 1,4,12",
     "20050430 20051231 20060131 20060430"},
    {"-2 steps from the start's month", "7 from 20050430 day 30 months 4", "20060430", -2},
    {"no month is selected: every month from 2080 on", "7 from 20050201 day 31",
     "20800131 20800229"},
    {"Mondays of the first and the last week of January and March",
     "8 from 20050101 days 2 weeks 1,5 months 1,3",
     "20050103 20050131 20050307 20050328 20060102 20060130 20060306 20060327"},
    {"a last-week flag of 2 selects days 29 to 31 alone",
     "8 from 20050101 days 2 weeks 5:2 months 1,3", "20050131 20060130 20070129"},
    {"the fourth and the last week", "8 from 20050101 days 2 weeks 4,5 months 1,3",
     "20050124 20050131 20050328 20060123"},
    {"the last of each weekday in February", "8 from 20080201 days 1,2,3,4,5,6,7 weeks 5 months 2",
     "20080223 20080224 20080225 20080226 20080227 20080228 20080229 20090222"},
    {"a selection of nothing ends in 2081", "8 from 20050101 weeks 1 months 1",
     "20810101 20810102"},
    {"a date beyond every date counts as past 2080", "8 from 20050101 days 2", "219146 219147",
     24991231},
    {"and one before", "15 from 20050101 days 2", "-1", -2},
    {"the second Tuesday every other month", "15 from 20051101 days 3 weeks 2 every 2",
     "20051108 20060110 20060314"},
    {"from December to January of the year after next", "15 from 20051201 days 3 weeks 2",
     "20051213 20070109 20070213"},
    {"several days of a month, then the next", "15 from 20050110 days 2,4 weeks 2,3 every 3",
     "20050110 20050112 20050117 20050119 20050411"},
    {"a jump past 2080 to a selected day", "15 from 20801101 days 4 weeks 1,2 every 2", "20810101",
     20801113},
    {"and to one that is not", "15 from 20801101 days 3 weeks 2 every 2", "20801112 20810102"},
    {"a jump beyond the calendar", "15 from 20050101 days 3 weeks 2 every 32767",
     "20050111 219146"},
    {"the first workday of a month that begins on Saturday", "10 from 20051001 day 1 weekday 9",
     "20051003 20051101 20051201 20060102"},
    {"the last workday", "10 from 20050630 day 5 weekday 9 every 3", "20050630 20050930 20051230"},
    {"the fourth weekend day", "10 from 20051001 day 4 weekday 10", "20051009 20051113 20051211"},
    {"the third day, past at the start", "10 from 20050604 day 3 weekday 8", "20050703 20050803"},
    {"-2 steps from the start's month", "10 from 20050601 day 3 weekday 8", "20050703", -2},
    {"the last day of February", "11 from 20040301 day 5 weekday 8 month 2", "20050228 20060228"},
    {"the second workday of October", "11 from 20050101 day 2 weekday 9 month 10 every 2",
     "20051004 20071002"},
    {"day 92 is a quarter's last day", "13 from 20050110 day 92",
     "20050331 20050630 20050930 20051231 20060331"},
    {"day 46, past at the start; the interval counts for nothing",
     "13 from 20050216 day 46 every 4", "20050516 20050815 20051115 20060215 20060516"},
    {"a day of the next year is inside the same months", "13 from 20050110 day 366", "20060101"},
    {"the first Monday of a quarter, past at the start", "14 from 20050110 weekday 2 week 1",
     "20050404 20050704 20051003 20060102"},
    {"the last Friday, which may precede the start", "14 from 20050330 weekday 6 week 14",
     "20050325 20050624 20050930 20051230 20060331"},
    {"the thirteenth Friday may lie in the next quarter, which is then passed over",
     "14 from 20050103 weekday 6 week 13", "20050401 20050923"},
};

TEST(RepeatEngine, GivesTheDates) {
    for (const Series& row : kSeries) {
        SCOPED_TRACE(row.sentence);
        const std::vector<int> expected = qel::test::codes(row.dates);
        const ZQTR_REPEAT record = Record(row.record).repeat;
        const std::vector<int> found =
            qel::test::occurrences(record, code(row.previous), expected.size());
        EXPECT_EQ(qel::test::dates(found), row.dates);
        // From the middle: every occurrence follows from the one before it alone.
        for (std::size_t i = 1; i < found.size(); ++i) {
            EXPECT_EQ(qel::test::occurrences(record, found[i - 1], 1), std::vector<int>{found[i]});
        }
    }
}

struct Failure {
    const char* sentence;
    const char* record;
    const char* detail;
    int line;  // 0: any
    int previous = kFirst;
};

const Failure kFailures[] = {
    {"interval 0", "1 from 20050101 every 0", "1", 100},
    {"the record is tested before the type", "9 from -5", "9", 100},
    {"an end below -1", "3 from 20050101 to -2", "3", 100},
    {"no unit count", "3 from 20050101 units 0", "3", 100},
    {"type 9", "9 from 20050101", "9", 131},
    {"a type above 15", "16 from 20050101", "16", 131},
    {"a negative type", "-3 from 20050101", "-3", 131},
    {"weekly without weekdays", "12 from 20050101", "4008", 219},
    {"monthly from no date", "3 from 219146 day 1", "-1", 266},
    {"monthly on day 0", "3 from 20050101", "-1", 278},
    {"monthly past the last year", "3 from 20050101 day 1", "-1", 293, 24991201},
    {"n-th weekday from no date", "4 from 20050101 weekday 1 week 1", "-1", 323, -3},
    {"n-th weekday past the last year", "4 from 20050101 weekday 1 week 1", "-1", 357, 24991206},
    {"month 13", "6 from 20050101 month 13 weekday 1 week 1", "-1", 357},
    {"a weekday that never reaches the start", "6 from 24100101 month 1 weekday -32768 week 1",
     "-1", 357},
    {"yearly from no date", "5 from 219146 day 1 month 1", "-1", 402},
    {"yearly in month 0", "5 from 20050101 day 1", "-1", 414},
    {"type 5 takes -2 for a date", "5 from 20050101 day 1 month 1", "-1", 423, -2},
    {"yearly past the last year", "5 from 20050101 day 1 month 1", "-1", 429, 24990101},
    {"selected months from no date", "7 from 219146 day 1", "-1", 459},
    {"selected months on day 0", "7 from 20050101", "-1", 491},
    {"position 0, before the kind and the date", "10 from 219146 weekday 7", "0", 653},
    {"position 6", "11 from 20050101 day 6 month 1 weekday 8", "6", 653},
    {"kind 7, before the date", "10 from 219146 day 1 weekday 7", "7", 659},
    {"a quarter's day 0 falls back a year", "13 from 20050110", "Quarterly", 798, 20050630},
    {"a quarter's day from no date", "13 from 219146 day 1", "Quarterly", 798},
    {"a quarter's day past the last year", "13 from 24991001 day 93", "Quarterly", 798},
    {"a quarter's day far below 1", "13 from 19500110 day -32768", "Quarterly", 798},
    {"type 14 takes -2 for a date", "14 from 20050101 weekday 2 week 1", "-1", 822, -2},
    {"the first last weekday is sought three years on", "14 from 24970101 weekday 2 week 14", "-1",
     841},
    {"the last weekday before the end of the last year", "14 from 20050101 weekday 2 week 14", "-1",
     882, 24990915},
    {"a weekday of the quarter past the last year", "14 from 20050101 weekday 2 week 1", "-1", 894,
     24991005},
    // Without a line that is promised: no search may go on for ever, no date may wrap.
    {"n-th workday of month 0", "11 from 20050101 day 1 weekday 9", nullptr, 0},
    {"n-th workday of month 13", "11 from 20050101 day 1 weekday 9 month 13", nullptr, 0},
    {"n-th workday past the last year", "10 from 20050101 day 5 weekday 9", nullptr, 0, 24991231},
    {"n-th workday from no date", "10 from 219146 day 5 weekday 9", nullptr, 0},
    {"daily beyond 32 bits", "1 from 20050101", nullptr, 0, kLatest},
    {"weekly beyond 32 bits", "2 from 20050101 weekday 1 every 32767", nullptr, 0, kLatest},
    {"weekdays beyond 32 bits", "12 from 20050101 days 1", nullptr, 0, kLatest},
    {"weeks beyond 32 bits", "8 from 20050101", nullptr, 0, kLatest},
};

TEST(RepeatEngine, FailuresAreReported) {
    for (const Failure& row : kFailures) {
        SCOPED_TRACE(row.sentence);
        const qel::test::TraceCapture trace;
        ZQTR_REPEAT record = Record(row.record).repeat;
        int previous = row.previous == kLatest ? kLatest : code(row.previous);
        int next = 7;
        EXPECT_EQ(ZQRepeatNextDate(&record, &next, &previous), 4008);
        const std::vector<std::string> errors = trace.errors();
        ASSERT_EQ(errors.size(), 1U);
        if (row.line == 0) continue;
        EXPECT_EQ(errors[0], "Error " + std::string(row.detail) + ".4008 at RptNext line " +
                                 std::to_string(row.line));
    }
    EXPECT_EQ(ZQRepeatNextDate(nullptr, nullptr, nullptr), 4008);
}

TEST(RepeatEngine, WhatACallWrites) {
    // Type 0 hands the caller's date through, tested for nothing.
    ZQTR_REPEAT none = Record("0 from -5 every 0").repeat;
    int next = 777;
    int previous = -1;
    EXPECT_EQ(ZQRepeatNextDate(&none, &next, &previous), 0);
    EXPECT_EQ(next, 777);
    EXPECT_EQ(previous, 777);

    // The quarterly failure comes after the date was handed out, the others before.
    ZQTR_REPEAT quarterly = Record("13 from 20050110").repeat;
    previous = code(20050630);
    EXPECT_EQ(ZQRepeatNextDate(&quarterly, &next, &previous), 4008);
    EXPECT_EQ(previous, code(20040930));
    ZQTR_REPEAT monthly = Record("3 from 20050110").repeat;
    next = 777;
    EXPECT_EQ(ZQRepeatNextDate(&monthly, &next, &previous), 4008);
    EXPECT_EQ(next, 777);
    EXPECT_EQ(previous, code(20040930));
}

TEST(RepeatEngine, ClearEmptiesTheRecord) {
    ZQTR_REPEAT record;
    std::memset(&record, 0x55, sizeof(record));
    EXPECT_EQ(ClearZQTR(&record), 0);
    ZQTR_REPEAT expected{};
    std::memset(expected.text1 + 1, 0x55, sizeof(expected.text1) - 1);
    std::memset(expected.text2 + 1, 0x55, sizeof(expected.text2) - 1);
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof(record)), 0);
    EXPECT_EQ(ClearZQTR(nullptr), 0);
}

}  // namespace
