// The expansion of a series into a list of dates.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "recurrence/RepeatRecord.h"
#include "recurrence/RptExpandRange.h"
#include "support/Tables.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::cases;
using qel::test::code;
using qel::test::number;
using qel::test::Record;
using qel::test::Row;
using qel::test::TraceCapture;

// A list of its own for each call.
struct List {
    DateBlock block{};
    int valid = -7;
    int total = -7;

    List() { DateBlock_Init(&block, 0, DATEBLOCK_STEP, DATEBLOCK_MAXIMUM); }
    List(const List&) = delete;
    List& operator=(const List&) = delete;
    ~List() { DateBlock_Free(&block); }

    // "20050301 -20050302": excluded dates with their sign.
    [[nodiscard]] std::string text() const {
        std::string text;
        for (int i = 0; i < total; ++i) {
            const int entry = block.data[i];
            const int shown = entry < 0 ? -qel::test::date(-entry) : qel::test::date(entry);
            text += (text.empty() ? "" : " ") + std::to_string(shown);
        }
        return text;
    }
};

TEST(Unfold, ListsAroundTheAnchor) {
    for (Row& row : cases("recurrence/unfold.txt")) {
        SCOPED_TRACE(row["case"]);
        const Record parsed(row["record"]);
        ZQTR_REPEAT record = parsed.repeat;
        List list;
        ASSERT_EQ(Unfold_Repeat(&record, number(row, "wanted"), code(number(row, "anchor")),
                                code(number(row, "from")), code(number(row, "to")), &list.block,
                                &list.valid, &list.total),
                  0);
        EXPECT_EQ(list.text(), row["list"]);
        EXPECT_EQ(list.valid, number(row, "valid"));
    }
}

TEST(Unfold, EstimatesDays) {
    for (Row& row : qel::test::list("recurrence/estimates.txt")) {
        SCOPED_TRACE(row["record"]);
        const Record parsed(row["record"]);
        std::int64_t days = -1;
        EXPECT_EQ(qel::recurrence::Unfold_EstimateDays(&parsed.repeat, number(row, "count"), &days),
                  0);
        EXPECT_EQ(std::to_string(days), row["days"]);
    }
}

// Each row fails by its code, and every step on the way up reports it.
TEST(Unfold, FailuresAreReported) {
    for (Row& row : cases("recurrence/unfold-failures.txt")) {
        SCOPED_TRACE(row["case"]);
        const TraceCapture trace;
        const Record parsed(row["record"]);
        ZQTR_REPEAT record = parsed.repeat;
        List list;
        EXPECT_EQ(Unfold_Repeat(&record, number(row, "wanted"), record.startDate, 0, 0, &list.block,
                                &list.valid, &list.total),
                  number(row, "code"));
        EXPECT_TRUE(trace.hasError(row["error"], "unfold"));
        EXPECT_EQ(list.valid, 0);
        EXPECT_EQ(list.total, 0);
        // Asking for one passes every code on.
        if (row["wanted"] != "1") continue;
        EXPECT_EQ(Unfold_HasOccurrence(0, 0, record.startDate, &record), number(row, "code"));
    }
}

TEST(Unfold, HasOccurrenceCountsWhatIsNotExcluded) {
    const Record excluding("3 from 20050301 day 1 except 20050301");
    ZQTR_REPEAT record = excluding.repeat;
    EXPECT_EQ(Unfold_HasOccurrence(code(20050301), code(20050331), code(20050301), &record), 0);
    EXPECT_EQ(Unfold_HasOccurrence(code(20050301), code(20050401), code(20050301), &record), 1);
    EXPECT_EQ(Unfold_HasOccurrence(0, 0, 0, nullptr), 2024);
    EXPECT_EQ(WeekOfMonth(-1), 1);
    EXPECT_EQ(WeekOfMonth(code(20050307)), 1);
    EXPECT_EQ(WeekOfMonth(code(20050308)), 2);
}

// With no limit the list holds one entry more than there are exclusions; records that would be
// stepped without end stop at the calendar's.
TEST(Unfold, ListsAreBounded) {
    const Record excluding("1 from 20050301 except 20050301,20050302");
    ZQTR_REPEAT record = excluding.repeat;
    List list;
    EXPECT_EQ(Unfold_ListDates(&record, -1, code(20050301), code(20050331), &list.block,
                               &list.valid, &list.total),
              0);
    EXPECT_EQ(list.text(), "-20050301 -20050302 20050303");
    EXPECT_EQ(list.valid, 1);

    const char* const endless[] = {
        "1 from 0",  "2 from 0 weekday 2",           "8 from 0",
        "15 from 0", "12 from 0 days 1,2,3,4,5,6,7", "1 from 0 units 32767"};
    for (const char* each : endless) {
        ZQTR_REPEAT series = Record(each).repeat;
        EXPECT_EQ(Unfold_ListDates(&series, 5, INT_MAX - 9, INT_MAX, &list.block, &list.valid,
                                   &list.total),
                  0);
        EXPECT_EQ(list.total, 0);
    }
    ZQTR_REPEAT last = Record("1 from 24991230").repeat;
    EXPECT_EQ(Unfold_ListDates(&last, 5, 0, INT_MAX, &list.block, &list.valid, &list.total), 0);
    EXPECT_EQ(list.text(), "24991230 24991231");
    for (const int limit : {INT_MIN, -1000, INT_MAX}) {
        ZQTR_REPEAT series = Record("1 from 20050301").repeat;
        const int result =
            Unfold_ListDates(&series, limit, 0, INT_MAX, &list.block, &list.valid, &list.total);
        EXPECT_EQ(result, limit < 0 ? 0 : 2001);
        EXPECT_EQ(list.total, 0);
    }
}

TEST(Unfold, TrimRunsOutOfEntries) {
    std::vector<int> entries{-5, 6, -7};
    DateBlock block{entries.data(), 12, 12, 12};
    const TraceCapture trace;
    int valid = 4;  // more than there are
    int total = 3;
    EXPECT_EQ(qel::recurrence::Unfold_TrimToCount(1, 0, &block, &valid, &total), 2013);
    EXPECT_TRUE(trace.hasError("-1.2013", "unfold"));
    valid = 4;
    EXPECT_EQ(qel::recurrence::Unfold_TrimToCount(2, 100, &block, &valid, &total), 2013);
    EXPECT_TRUE(trace.hasError("3.2013", "unfold"));
}

TEST(Unfold, BlockGrowsBySteps) {
    DateBlock block{};
    EXPECT_EQ(DateBlock_Init(&block, 0, 513, 512), DATEBLOCK_BAD_STEP);
    EXPECT_EQ(DateBlock_Init(nullptr, 0, 1, 1), QEL_NOT_INITIALIZED);
    EXPECT_EQ(DateBlock_Reserve(nullptr, 1), QEL_NOT_INITIALIZED);
    DateBlock_Free(nullptr);
    ASSERT_EQ(DateBlock_Init(&block, 0, 512, 2000), 0);
    EXPECT_EQ(block.data, nullptr);
    EXPECT_EQ(DateBlock_Reserve(&block, 0), 0);
    EXPECT_EQ(block.capacity, 0);
    for (const auto& [bytes, capacity] :
         {std::pair{4, 512}, {513, 1024}, {1600, 1600}, {1601, 2000}}) {
        EXPECT_EQ(DateBlock_Reserve(&block, bytes), 0);
        EXPECT_EQ(block.capacity, capacity) << bytes;
    }
    EXPECT_EQ(DateBlock_Reserve(&block, 2001), DATEBLOCK_FULL);
    EXPECT_EQ(block.capacity, 2000);
    DateBlock_Free(&block);
    EXPECT_EQ(block.capacity, 0);
    ASSERT_EQ(DateBlock_Init(&block, 600, 512, 2000), 0);
    EXPECT_EQ(block.capacity, 600);
    DateBlock_Free(&block);
    EXPECT_EQ(DateBlock_Init(&block, 9999, 512, 2000), DATEBLOCK_FULL);
    EXPECT_EQ(block.capacity, 2000);
    DateBlock_Free(&block);
}

}  // namespace
