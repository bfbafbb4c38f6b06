// Date-time texts and durations: what untidy texts read as, and what values are written as.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>

#include "QelUtility/ZQDate.h"
#include "QelUtility/ZQDateTime.h"
#include "QelUtility/ZQDuration.h"
#include "support/Tables.h"

namespace {

using qel::test::list;
using qel::test::number;
using qel::test::Row;

constexpr std::int64_t kDay = 86400;

TEST(DateTimeText, ReadsTidyAndUntidyTexts) {
    for (Row& row : list("dates/date-times.txt")) {
        const char* const text = row["text"].c_str();
        EXPECT_EQ(std::to_string(ZQ_DateTimeToSeconds(text)), row["seconds"]) << text;
    }
    EXPECT_EQ(ZQ_DateTimeToSeconds(VStr()), 0);
}

TEST(DateTimeText, WritesAndAppends) {
    const std::pair<std::int64_t, const char*> rows[] = {
        {38516 * kDay + 30600, "20050615T083000"},
        {0, "19000101T000000"},
        {-1, "19000101T000099"},
        {-kDay, "00000000T000000"},
        {219145 * kDay + kDay - 1, "24991231T235959"},
        {219146 * kDay, "00000000T000000"},
        {(std::int64_t{1} << 32) * kDay + 7, "00000000T000007"},  // day 0 again if cut to 32 bits
        {INT64_MIN, "00000000T999999"},
    };
    for (const auto& [seconds, text] : rows) {
        VStr utc("UNTIL=");
        ZQ_SecondsToDateTime(seconds, utc, false);
        EXPECT_EQ(std::string(utc), "UNTIL=" + std::string(text) + "Z");
        VStr local;
        ZQ_SecondsToDateTime(seconds, local, true);
        EXPECT_STREQ(local, text);
    }
}

TEST(DateTimeText, ConvertsUnixTimeWithinItsBounds) {
    EXPECT_EQ(ZQ_DateTimeToUnixTime("20050615T083000Z"), (38516 - 25567) * 86400 + 30600);
    EXPECT_EQ(ZQ_DateTimeToUnixTime("19700101T000000Z"), 0);
    EXPECT_EQ(ZQ_DateTimeToUnixTime("19691231T235959Z"), 0);
    EXPECT_EQ(ZQ_DateTimeToUnixTime("20380119T031407Z"), INT_MAX);
    EXPECT_EQ(ZQ_DateTimeToUnixTime("24991231T000000Z"), INT_MAX);
    VStr text;
    EXPECT_STREQ(ZQ_UnixTimeToDateTime(INT_MAX, text, false), "20380119T031407Z");
    EXPECT_STREQ(ZQ_UnixTimeToDateTime(0, text, true), "20380119T031407Z19700101T000000");
    text.Empty();
    EXPECT_STREQ(ZQ_UnixTimeToDateTime(INT_MIN, text, true), "19011214T999999");
}

TEST(Duration, IsReadAndWritten) {
    for (Row& row : list("dates/durations.txt")) {
        int seconds = 7;
        EXPECT_EQ(ZQ_DurationToSeconds(row["text"].c_str(), &seconds), 0) << row["text"];
        EXPECT_EQ(seconds, number(row, "seconds")) << row["text"];
        if (row["canonical"] != "yes") continue;
        VStr text("old");
        EXPECT_EQ(ZQ_SecondsToDuration(seconds, text), 0);
        EXPECT_STREQ(text, row["text"].c_str());
    }
    VStr untouched("old");
    EXPECT_EQ(ZQ_SecondsToDuration(0, untouched), -1);
    EXPECT_STREQ(untouched, "old");
    for (const char* text : {"X1D", "", "-", "+-P1D", "1D", "p1D", " P1D"}) {
        int seconds = 7;
        EXPECT_EQ(ZQ_DurationToSeconds(text, &seconds), -1) << text;
        EXPECT_EQ(seconds, 7);
    }
    std::string units = "P";
    for (int i = 0; i < 1000000; ++i) units += "1W";
    int seconds = 0;
    EXPECT_EQ(ZQ_DurationToSeconds(units.c_str(), &seconds), 0);
    EXPECT_EQ(seconds, INT_MAX);
}

TEST(Duration, MovesAndComparesDateTimes) {
    VStr text;
    EXPECT_EQ(ZQ_AddSeconds("20050615T083000Z", 3600, text), 0);
    EXPECT_STREQ(text, "20050615T093000Z");
    text.Empty();
    EXPECT_EQ(ZQ_AddSeconds("20050615T083000", 3600, text), 0);
    EXPECT_STREQ(text, "20050615T093000");
    EXPECT_EQ(ZQ_AddDuration("20051231T233000Z", "PT45M", text), 0);
    EXPECT_STREQ(text, "20050615T09300020060101T001500Z");  // the writers append
    EXPECT_EQ(ZQ_AddDuration("20051231T233000Z", "45M", text), -1);

    EXPECT_EQ(ZQ_AddSeconds(nullptr, 60, text), 0);

    int seconds = 0;
    EXPECT_EQ(ZQ_DateTimeDifference("20050615T083000Z", "20050614T083001", &seconds), 0);
    EXPECT_EQ(seconds, -86399);
    EXPECT_EQ(ZQ_DateTimeDifference("19000101T000000", "20360207T062816Z", &seconds), 0);
    EXPECT_EQ(seconds, 0);  // 2^32 seconds
    EXPECT_EQ(ZQ_DurationBetween("20050615T083000Z", "20050616T103000Z", text), 0);
    EXPECT_STREQ(text, "+P1DT2H");
    EXPECT_EQ(ZQ_DateTimeDifference("20050615T083000", nullptr, nullptr), 0);
    EXPECT_EQ(ZQ_DurationToSeconds(nullptr, &seconds), -1);
    EXPECT_EQ(ZQ_DurationBetween("20050615T083000Z", "20050615T083000", text), -1);
    EXPECT_EQ(ZQ_NormalizeDuration("PT26H", text), 0);
    EXPECT_STREQ(text, "+P1DT2H");
    EXPECT_EQ(ZQ_NormalizeDuration("PT0S", text), -1);
    EXPECT_EQ(ZQ_NormalizeDuration("26H", text), -1);
}

}  // namespace
