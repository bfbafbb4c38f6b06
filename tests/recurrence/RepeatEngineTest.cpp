// The repeat engine: a table of records with the dates they give, and one of its failures.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "QelUtility/RptNext.h"
#include "recurrence/RepeatRecord.h"
#include "support/Tables.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::cases;
using qel::test::code;
using qel::test::number;
using qel::test::Record;
using qel::test::Row;

TEST(RepeatEngine, GivesTheDates) {
    for (Row& row : cases("recurrence/engine.txt")) {
        SCOPED_TRACE(row["case"]);
        const std::size_t count = qel::test::codes(row["dates"]).size();
        const ZQTR_REPEAT record = Record(row["record"]).repeat;
        const std::vector<int> found =
            qel::test::occurrences(record, code(number(row, "after", -1)), count);
        EXPECT_EQ(qel::test::dates(found), row["dates"]);
        // From the middle: every occurrence follows from the one before it alone.
        for (std::size_t i = 1; i < found.size(); ++i)
            EXPECT_EQ(qel::test::occurrences(record, found[i - 1], 1), std::vector<int>{found[i]});
    }
}

TEST(RepeatEngine, FailuresAreReported) {
    for (Row& row : cases("recurrence/engine-failures.txt")) {
        SCOPED_TRACE(row["case"]);
        const qel::test::TraceCapture trace;
        ZQTR_REPEAT record = Record(row["record"]).repeat;
        const int after = number(row, "after", -1);
        int previous = after == INT_MAX ? after : code(after);
        int next = 7;
        EXPECT_EQ(ZQRepeatNextDate(&record, &next, &previous), 4008);
        const std::vector<std::string> errors = trace.errors();
        ASSERT_EQ(errors.size(), 1U);
        EXPECT_TRUE(row["error"].empty() || errors[0] == "Error " + row["error"]) << errors[0];
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
