// Dates, rules and repeats through the shared library alone.
#include <gtest/gtest.h>

#include "QelUtility/QelUtility.h"

namespace {

TEST(InterfaceCalendar, DatesAndTheirTexts) {
    unsigned code = 0;
    ASSERT_EQ(ZQ_DateEncode(6, 15, 2005, &code), 0);
    EXPECT_EQ(code, 38516U);
    EXPECT_EQ(ZQ_AlphaToCodeDate("20050615"), 38516);
    EXPECT_EQ(ZQ_AlphaToCodeTime("0930"), 34200);
    int month = 0;
    int day = 0;
    int year = 0;
    ZQ_AlphaToDate("20050615", &month, &day, &year);
    EXPECT_EQ(month * 100 + day, 615);
    char date[9];
    char time[7];
    EXPECT_STREQ(ZQ_CodeDateToAlpha(38516, date), "20050615");
    EXPECT_STREQ(ZQ_CodeTimeToAlpha(34200, time), "093000");
    EXPECT_GT(ZQ_GetCurrentDate(), 45000);
}

TEST(InterfaceCalendar, RulesFromAndToTheirTexts) {
    _rruleRepeat rule;
    EXPECT_EQ(BxUtil_InitializeRRULE(&rule), 0);
    int flags = 0;
    VStr out;
    ASSERT_EQ(BxUtil_PositionalV10toRRULE("W2 MO WE FR #10", &rule, &flags), 0);
    EXPECT_STREQ(BxUtil_RRULEtoIETF(&rule, out, false),
                 "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR");
    ASSERT_EQ(BxUtil_PositionalV20toRRULE(out, &rule, &flags), 0);
    EXPECT_STREQ(BxUtil_RRULEtoV10IETF(&rule, out, false), "W2 MO WE FR #10");
    ASSERT_EQ(BxUtil_PositionaltoRRULE("WEEKLY;;10;2;;;;MO,WE,FR;;;;;;;", &rule, &flags), 0);
    EXPECT_EQ(rule.byDay, RRULE_DAY_MO | RRULE_DAY_WE | RRULE_DAY_FR);
    EXPECT_STREQ(BxUtil_RRULEtoPositional(&rule, out, false), "WEEKLY;;10;2;;;;MO,WE,FR;;;;;;;");
    EXPECT_EQ(BxUtil_RRULEtoPositional(nullptr, out, false), nullptr);
}

TEST(InterfaceCalendar, Zones) {
    VStrArray names;
    std::vector<int> numbers;
    BxTZ_GetZoneList(names, numbers);
    ASSERT_GT(names.GetSize(), 70);
    VStr name;
    EXPECT_EQ(BxTZ_GetZoneName(numbers[0], name), numbers[0]);
    EXPECT_EQ(BxTZ_GetZoneID(name), numbers[0]);
    VStr out;
    EXPECT_EQ(BxTZ_LocalToUTCByOffset(2, 0, "20050615T120000", out), 0);
    EXPECT_STREQ(out, "20050615T100000Z");
    EXPECT_EQ(BxTZ_LocalToUTC(numbers[0], "20050615T120000", out), 0);
    VStr back;
    EXPECT_EQ(BxTZ_UTCToLocal(numbers[0], out, back), 0);
    EXPECT_STREQ(back, "20050615T120000");
    EXPECT_EQ(BxTZ_ConvertZone(back, numbers[0], numbers[0]), 0);
    CBxTimeZoneUtility zone;
    EXPECT_EQ(zone.Initialize(), 0);
    const std::string utc = zone.LocalToUTC("20050615T120000");
    EXPECT_STREQ(zone.UTCToLocal(utc.c_str()), "20050615T120000");
}

}  // namespace
