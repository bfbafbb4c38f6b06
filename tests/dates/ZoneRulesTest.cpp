// The rules of the computer's zone: relative days, the halves of the year north and south, dates
// instead of rules, and the class over them.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>

#include "QelUtility/BxTimezones.h"
#include "QelUtility/ZQDate.h"
#include "QelUtility/ZQDateTime.h"
#include "dates/ZoneRules.h"
#include "dates/reldaymo.h"
#include "support/Tables.h"
#include "support/TraceCapture.h"

namespace {

using qel::platform::TimeZoneDescription;
using qel::platform::ZoneChangeMoment;
using qel::test::list;
using qel::test::Row;

constexpr std::int64_t kHour = 3600 * qel::dates::kFileTimePerSecond;

std::int64_t fileTime(const char* text) {
    return ZQ_DateTimeToSeconds(text) * qel::dates::kFileTimePerSecond +
           qel::dates::kFileTimeOf1900;
}

ZoneChangeMoment rule(int month, int week, int weekday, int hour) {
    return {0, month, weekday, week, hour, 0, 0, 0};
}

const TimeZoneDescription kBerlin{-60, 0, -60, rule(10, 5, 0, 3), rule(3, 5, 0, 2)};
const TimeZoneDescription kSydney{-600, 0, -60, rule(4, 1, 0, 3), rule(10, 1, 0, 2)};

TEST(RelativeDay, FindsTheWeekdayOfTheMonth) {
    const struct {
        int year, month, week, weekday;
        const char* date;
    } rows[] = {
        {2005, 10, 5, 0, "20051030"}, {2005, 10, 1, 6, "20051001"}, {2005, 10, 5, 6, "20051029"},
        {2005, 5, 5, 0, "20050529"},  {2015, 2, 5, 0, "20150222"},  {2004, 2, 5, 0, "20040229"},
        {1900, 1, 1, 1, "19000101"},  {2499, 12, 5, 4, "24991231"}, {2005, 9, 4, 2, "20050927"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(qel::dates::relativeDayOfMonth(row.year, row.month, row.week, row.weekday),
                  ZQ_AlphaToCodeDate(row.date))
            << row.date;
    }
    const int bad[][4] = {{-1, 1, 1, 0},    {2005, 0, 1, 0}, {2005, 13, 1, 0},
                          {2005, 1, 0, 0},  {2005, 1, 6, 0}, {2005, 1, 1, 7},
                          {2005, 1, 1, -1}, {2500, 1, 1, 0}, {1899, 1, 1, 0}};
    const qel::test::TraceCapture trace;
    for (const auto& b : bad) EXPECT_EQ(qel::dates::relativeDayOfMonth(b[0], b[1], b[2], b[3]), -1);
    EXPECT_EQ(trace.errors().size(), std::size(bad));
    EXPECT_TRUE(trace.hasError("-1.-1", "reldaymo", 25));
    EXPECT_TRUE(trace.hasError("13.-1", "reldaymo", 28));
    EXPECT_TRUE(trace.hasError("6.-1", "reldaymo", 31));
    EXPECT_TRUE(trace.hasError("7.-1", "reldaymo", 34));
    EXPECT_TRUE(trace.hasError("2500.-1", "reldaymo", 44));
}

TEST(ZoneRules, SplitTheYearAtItsChanges) {
    for (Row& row : list("dates/halves.txt")) {
        SCOPED_TRACE(row["moment"]);
        const std::int64_t time = fileTime(row["moment"].c_str());
        EXPECT_EQ(qel::dates::isDaylightTime(time, kBerlin, 2 * kHour), row["berlin"] == "summer");
        EXPECT_EQ(qel::dates::isDaylightTime(time, kSydney, 11 * kHour), row["sydney"] == "summer");
    }
    // A year in StandardDate makes dates of both, in the year of the time.
    TimeZoneDescription dated = kBerlin;
    dated.standardDate = {1999, 10, 0, 31, 23, 59, 59, 999};
    dated.daylightDate = {0, 2, 0, 29, 0, 0, 0, 0};
    EXPECT_FALSE(qel::dates::isDaylightTime(fileTime("20040228T235959"), dated, 0));
    EXPECT_TRUE(qel::dates::isDaylightTime(fileTime("20040229T000000"), dated, 0));
    EXPECT_TRUE(qel::dates::isDaylightTime(fileTime("20041031T235959"), dated, 0));
    EXPECT_FALSE(qel::dates::isDaylightTime(fileTime("20041101T000000"), dated, 0));
    EXPECT_FALSE(
        qel::dates::isDaylightTime(fileTime("20050601T000000"), dated, 0));  // no 29 February
}

TEST(ZoneRules, SurviveWhatNamesNoDate) {
    const std::int64_t june = fileTime("20050615T000000");
    for (const ZoneChangeMoment& bad :
         {rule(0, 1, 0, 2), rule(13, 1, 0, 2), rule(3, 0, 0, 2), rule(3, 6, 0, 2), rule(3, 1, 7, 2),
          rule(3, 1, 0, 24), rule(3, 1, 0, -1), ZoneChangeMoment{0, 3, 0, 1, 0, 60, 0, 0},
          ZoneChangeMoment{0, 3, 0, 1, 0, -1, 0, 0}, ZoneChangeMoment{0, 3, 0, 1, 0, 0, 60, 0},
          ZoneChangeMoment{0, 3, 0, 1, 0, 0, -1, 0}, ZoneChangeMoment{0, 3, 0, 1, 0, 0, 0, 1000},
          ZoneChangeMoment{0, 3, 0, 1, 0, 0, 0, -1}, ZoneChangeMoment{2005, 0, 0, 1, 0, 0, 0, 0},
          ZoneChangeMoment{2005, 13, 0, 1, 0, 0, 0, 0},
          ZoneChangeMoment{2005, 3, 0, 0, 0, 0, 0, 0}}) {
        TimeZoneDescription zone = kBerlin;
        zone.daylightDate = bad;
        EXPECT_FALSE(qel::dates::isDaylightTime(june, zone, 0));
        zone = kBerlin;
        zone.standardDate = bad;
        EXPECT_FALSE(qel::dates::isDaylightTime(june, zone, 0));
    }
    for (const std::int64_t time : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{INT64_MIN},
                                    std::int64_t{1}, std::int64_t{INT64_MAX}})
        EXPECT_FALSE(qel::dates::isDaylightTime(time, kBerlin, 2 * kHour));
    EXPECT_EQ(qel::dates::splitFileTime(INT64_MAX).year, 30828);
}

TEST(ZoneRules, GiveTheOffsetsOfADescription) {
    EXPECT_EQ(qel::dates::zoneOffsets(kBerlin, true).standard, kHour);
    EXPECT_EQ(qel::dates::zoneOffsets(kBerlin, true).daylight, 2 * kHour);
    EXPECT_EQ(qel::dates::zoneOffsets(kBerlin, false).daylight, kHour);
    EXPECT_FALSE(qel::dates::zoneOffsets(kBerlin, false).daylightEnabled);
    TimeZoneDescription odd{300, 15, -60, {}, {}};
    EXPECT_FALSE(qel::dates::zoneOffsets(odd, true).daylightEnabled);
    EXPECT_EQ(qel::dates::zoneOffsets(odd, true).daylight, -315 * kHour / 60);
    odd.standardDate = rule(10, 5, 0, 2);
    EXPECT_EQ(qel::dates::zoneOffsets(odd, true).daylight, -255 * kHour / 60);
    const TimeZoneDescription extreme{INT_MIN, INT_MIN, INT_MIN, rule(10, 5, 0, 3), {}};
    EXPECT_EQ(qel::dates::zoneOffsets(extreme, true).standard, 0);  // -2^32 minutes kept to 16 bits
}

TEST(TimeZoneUtility, LeavesOtherTextsAlone) {
    CBxTimeZoneUtility zone;
    EXPECT_EQ(zone.Initialize(), 0);
    for (const char* text : {"20050615T08300", "20050615T083000Z", "20050615 083000", "", "T"})
        EXPECT_EQ(zone.LocalToUTC(text), text);
    for (const char* text : {"20050615T083000", "20050615T083000z", "20050615T0830000Z", "Z"})
        EXPECT_EQ(zone.UTCToLocal(text), text);
    EXPECT_EQ(zone.LocalToUTC(nullptr), nullptr);
    EXPECT_EQ(zone.UTCToLocal(nullptr), nullptr);
}

// Whatever zone this machine is in: away from the changes the two directions undo each other, and
// odd texts are survived.
TEST(TimeZoneUtility, TurnsBackOnItself) {
    CBxTimeZoneUtility zone;
    EXPECT_EQ(zone.LocalToUTC("20050615T083000"), std::string("20050615T083000Z"));  // not loaded
    zone.Initialize();
    CBxTimeZoneUtility copy;
    copy = zone;
    for (const char* text : {"20050115T083059", "20050715T235959", "20040229T000000"}) {
        const std::string utc = zone.LocalToUTC(text);
        EXPECT_EQ(utc.size(), 16U);
        EXPECT_EQ(copy.UTCToLocal(utc.c_str()), std::string(text));
        // The text may lie in the object's own buffer.
        EXPECT_EQ(zone.UTCToLocal(zone.LocalToUTC(text)), std::string(text));
    }
    for (const char* text : {"20050230T083000", "20050615T996000", "2005061xT08x0-1",
                             "99991231T235999", "24991231T235999", "19000101T000000",
                             "\xff\xff\xff\xff\xff\xff\xff\xffT\xff\xff\xff\xff\xff\xff"})
        EXPECT_EQ(std::string(zone.LocalToUTC(text)).size(), 16U) << text;
}

}  // namespace
