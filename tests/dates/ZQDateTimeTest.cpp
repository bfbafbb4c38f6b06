// Date-time texts and durations: what untidy texts read as, and what values are written as.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdio>
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

// What scanf itself makes of the text.
std::int64_t scannedSeconds(const char* text) {
    int f[6] = {};
    // NOLINTNEXTLINE(cert-err34-c): its very treatment of odd texts is wanted.
    static_cast<void>(
        std::sscanf(text, "%4d%2d%2dT%2d%2d%2d", &f[0], &f[1], &f[2], &f[3], &f[4], &f[5]));
    unsigned code = 0;
    ZQ_DateEncode(f[1], f[2], f[0], &code);
    return code * kDay + f[3] * 3600 + f[4] * 60 + f[5];
}

TEST(DateTimeText, ReadsTidyAndUntidyTexts) {
    for (Row& row : list("dates/date-times.txt")) {
        const char* const text = row["text"].c_str();
        EXPECT_EQ(std::to_string(ZQ_DateTimeToSeconds(text)), row["seconds"]) << text;
        EXPECT_EQ(ZQ_DateTimeToSeconds(text), scannedSeconds(text)) << text;
    }
    EXPECT_EQ(ZQ_DateTimeToSeconds(VStr()), 0);
}

// Short texts over the characters that decide anything, against scanf. An alphabet in mixed radix
// walks through all combinations at the critical places.
TEST(DateTimeText, ReadsAsScanfDoes) {
    const char alphabet[] = {'2', ' ', '-', 'T', '0', 'x'};
    constexpr int kLetters = sizeof alphabet;
    const char* const heads[] = {"", "200", "2005061", "20050615", "20050615T0", "20050615T0830"};
    for (const char* const head : heads) {
        for (int n = 0; n < kLetters * kLetters * kLetters * kLetters; ++n) {
            std::string text = head;
            for (int rest = n, i = 0; i < 4; ++i, rest /= kLetters)
                text += alphabet[rest % kLetters];
            ASSERT_EQ(ZQ_DateTimeToSeconds(text.c_str()), scannedSeconds(text.c_str())) << text;
        }
    }
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

    int seconds = 0;
    EXPECT_EQ(ZQ_DateTimeDifference("20050615T083000Z", "20050614T083001", &seconds), 0);
    EXPECT_EQ(seconds, -86399);
    EXPECT_EQ(ZQ_DateTimeDifference("19000101T000000", "20360207T062816Z", &seconds), 0);
    EXPECT_EQ(seconds, 0);  // 2^32 seconds
    EXPECT_EQ(ZQ_DurationBetween("20050615T083000Z", "20050616T103000Z", text), 0);
    EXPECT_STREQ(text, "+P1DT2H");
    EXPECT_EQ(ZQ_DurationBetween("20050615T083000Z", "20050615T083000", text), -1);
    EXPECT_EQ(ZQ_NormalizeDuration("PT26H", text), 0);
    EXPECT_STREQ(text, "+P1DT2H");
    EXPECT_EQ(ZQ_NormalizeDuration("PT0S", text), -1);
    EXPECT_EQ(ZQ_NormalizeDuration("26H", text), -1);
}

}  // namespace
