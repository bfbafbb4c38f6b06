// Code dates and code times: the whole calendar, the field readers on untidy
// texts, and the clamping writers.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "dates/ZQDateInternal.h"
#include "support/Tables.h"

namespace {

using qel::test::list;
using qel::test::number;
using qel::test::Row;

// Days counted one after the other: the second opinion on the closed formulas.
TEST(CodeDate, EncodesAndDecodesEveryDay) {
    int expected = 0;
    for (int year = 1900; year <= 2499; ++year) {
        const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        const int lengths[] = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        for (int month = 1; month <= 12; ++month) {
            const int length = lengths[month - 1];
            for (int day = 1; day <= 31; ++day) {
                unsigned code = 0;
                ASSERT_EQ(ZQ_DateEncode(month, day, year, &code), 0);
                ASSERT_EQ(static_cast<int>(code), expected + day - 1);
                if (day > length) continue;  // counts on into the next month
                int m = 0;
                int d = 0;
                int y = 0;
                ASSERT_EQ(ZQ_DateDecode(static_cast<int>(code), &m, &d, &y), 0);
                ASSERT_TRUE(m == month && d == day && y == year) << code;
                ASSERT_EQ(ZQ_DayOfWeek(static_cast<int>(code)),
                          (static_cast<int>(code) + 1) % 7 + 1);
            }
            expected += length;
        }
    }
    EXPECT_EQ(expected, 219146);
}

TEST(CodeDate, RefusesWhatLiesOutsideAndLeavesTheResultAlone) {
    const int bad[][3] = {{1, 1, 1899}, {1, 1, 2500},  {0, 1, 2005},       {13, 1, 2005},
                          {1, 0, 2005}, {1, 32, 2005}, {INT_MIN, 1, 2005}, {1, INT_MAX, INT_MIN}};
    for (const auto& date : bad) {
        unsigned code = 77;
        EXPECT_EQ(ZQ_DateEncode(date[0], date[1], date[2], &code), -1);
        EXPECT_EQ(code, 77U);
    }
    for (const int code : {-1, 219146, INT_MIN, INT_MAX}) {
        int month = 5;
        int day = 6;
        int year = 7;
        EXPECT_EQ(ZQ_DateDecode(code, &month, &day, &year), -1);
        EXPECT_TRUE(month == 5 && day == 6 && year == 7);
        char text[9];
        EXPECT_STREQ(ZQ_CodeDateToAlpha(code, text), "00000000");
    }
    EXPECT_EQ(ZQ_DateEncode(1, 1, 2005, nullptr), 0);
    for (const int code : {INT_MIN, -8, -7, -1, INT_MAX}) {
        EXPECT_GE(ZQ_DayOfWeek(code), 1);
        EXPECT_LE(ZQ_DayOfWeek(code), 7);
    }
}

TEST(AlphaDate, ReadsItsFieldsAndKnowsTheCalendar) {
    for (Row& row : list("dates/dates.txt")) {
        SCOPED_TRACE(row["text"]);
        // A block of exactly the text's size: a read past its end is caught by the sanitizer.
        const std::string exact(row["text"]);
        int month = -1;
        int day = -1;
        int year = -1;
        ZQ_AlphaToDate(exact.c_str(), &month, &day, &year);
        EXPECT_EQ(year, number(row, "year"));
        EXPECT_EQ(month, number(row, "month"));
        EXPECT_EQ(day, number(row, "day"));
        EXPECT_EQ(ZQ_AlphaToCodeDate(exact.c_str()), number(row, "code"));
    }
    EXPECT_TRUE(qel::dates::ZQ_IsValidAlphaDate("25000101"));
    EXPECT_FALSE(qel::dates::ZQ_IsValidAlphaDate("18991231"));
    int month = -1;
    int day = -1;
    int year = -1;
    ZQ_AlphaToDate(nullptr, &month, &day, &year);
    EXPECT_TRUE(year == 0 && month == 0 && day == 0);
    EXPECT_EQ(ZQ_AlphaToCodeDate(nullptr), 0);
}

TEST(AlphaTime, TakesFourDigitsAndWritesSix) {
    const struct {
        const char* text;
        int code;
    } rows[] = {{"0930", 34200}, {"2359", 86340}, {"0000", 0}, {"093000", 0}, {"235959", 0},
                {"2400", 0},     {"0960", 0},     {"930", 0},  {"-130", 0},   {" 9 5", 32700},
                {"ab30", 1800},  {"09-1", 0},     {"", 0},     {nullptr, 0}};
    for (const auto& row : rows)
        EXPECT_EQ(ZQ_AlphaToCodeTime(row.text), row.code) << (row.text ? row.text : "null");
    int hour = -1;
    int minute = -1;
    int second = 42;
    qel::dates::ZQ_AlphaToTime("", &hour, &minute, &second);
    EXPECT_TRUE(hour == 0 && minute == 0 && second == 42);
    qel::dates::ZQ_AlphaToTime(nullptr, &hour, &minute, &second);
    EXPECT_TRUE(hour == 0 && minute == 0 && second == 42);
    for (const int bad : {-1, 60}) EXPECT_EQ(qel::dates::ZQ_TimeEncode(1, 1, bad, &hour), -1);
    EXPECT_EQ(hour, 0);
    qel::dates::ZQ_AlphaToTime("123456", &hour, &minute, &second);
    EXPECT_TRUE(hour == 12 && minute == 34 && second == 56);

    char text[7];
    EXPECT_STREQ(ZQ_CodeTimeToAlpha(86340, text), "235900");
    EXPECT_STREQ(ZQ_CodeTimeToAlpha(-1, text), "000099");
    EXPECT_STREQ(ZQ_CodeTimeToAlpha(INT_MAX, text), "991407");
    EXPECT_STREQ(ZQ_CodeTimeToAlpha(INT_MIN, text), "999999");
    char date[9];
    EXPECT_STREQ(qel::dates::ZQ_DateToAlpha(-1, 100, 10000, date), "99999999");
    EXPECT_STREQ(qel::dates::ZQ_DateToAlpha(1, 2, 3, date), "00030102");
    EXPECT_STREQ(qel::dates::ZQ_DateToAlpha(1, 2, -3, date), "99990102");
}

TEST(Clock, ReadsAPresentDay) {
    const int today = ZQ_GetCurrentDate();
    EXPECT_GT(today, 45000);  // 2023
    EXPECT_LE(today, 219145);
    const int now = ZQ_GetCurrentTime();
    EXPECT_GE(now, 0);
    EXPECT_LT(now, 86400);
}

}  // namespace
