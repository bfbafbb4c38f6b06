// The table of zones and its conversions: every family of rules at its changes, texts of every
// shape.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "QelUtility/BxTimezones.h"
#include "QelUtility/ZQDateTime.h"
#include "dates/BxTimezoneTable.h"
#include "dates/ZoneLookup.h"
#include "support/Tables.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::list;
using qel::test::number;
using qel::test::Row;
using qel::test::TraceCapture;

std::string toUtc(int zone, const char* text) {
    VStr out("old");
    EXPECT_EQ(BxTZ_LocalToUTC(zone, text, out), 0) << text;
    return std::string(out);
}

std::string toLocal(int zone, const char* text) {
    VStr out("old");
    EXPECT_EQ(BxTZ_UTCToLocal(zone, text, out), 0) << text;
    return std::string(out);
}

int offsetMinutes(int zone, std::int64_t localSeconds) {
    VStr local;
    ZQ_SecondsToDateTime(localSeconds, local, true);
    const std::int64_t utc = ZQ_DateTimeToSeconds(toUtc(zone, local).c_str());
    return static_cast<int>((localSeconds - utc) / 60);
}

TEST(ZoneTable, ChangesWhereEachFamilyOfRulesSays) {
    for (Row& row : list("dates/zone-changes.txt")) {
        const int zone = number(row, "zone");
        const std::int64_t change = ZQ_DateTimeToSeconds(row["local"].c_str());
        EXPECT_EQ(offsetMinutes(zone, change - 60), number(row, "before")) << row["local"];
        EXPECT_EQ(offsetMinutes(zone, change), number(row, "after")) << row["local"];
    }
    // Summer with an offset of no hours leaves the text as it is: London is the other way round.
    EXPECT_EQ(toUtc(20, "20050701T120000"), "20050701T110000Z");
    EXPECT_EQ(toUtc(20, "20050101T120000"), "20050101T120000Z");
    EXPECT_EQ(toUtc(19, "20050701T120000"), "20050701T120000Z");
}

TEST(ZoneTable, IsInOrderAndTurnsBackOnItself) {
    for (int zone = 1; zone <= qel::dates::kZoneCount; ++zone) {
        const auto changes = qel::dates::zoneChanges(zone);
        ASSERT_TRUE(changes.size() == 1 || changes.size() == 42) << zone;
        const auto key = [](const qel::dates::ZoneTime& t) {
            return std::tuple(t.date, t.hour, t.minute);
        };
        for (std::size_t i = 0; i + 1 < changes.size(); ++i) {
            EXPECT_LT(key(changes[i].local), key(changes[i + 1].local)) << zone;
            EXPECT_LT(key(changes[i].utc), key(changes[i + 1].utc)) << zone;
        }
        for (int year = 1985; year <= 2015; ++year) {
            for (const char* const rest : {"0110T001059", "0701T235900"}) {
                const std::string local = std::to_string(year) + rest;
                EXPECT_EQ(toLocal(zone, toUtc(zone, local.c_str()).c_str()), local) << zone;
            }
        }
    }
    const auto single = qel::dates::zoneChanges(66)[0];
    EXPECT_TRUE(single.local.date == 19900107 && single.local.hour == 0);
    EXPECT_TRUE(single.utc.date == 19900106 && single.utc.hour == 18 && single.utc.minute == 15);
}

TEST(ZoneTable, ConvertsAcrossDaysAndLeavesWhatItCannotRead) {
    for (Row& row : list("dates/zone-times.txt"))
        EXPECT_EQ(toUtc(number(row, "zone"), row["local"].c_str()), row["utc"]) << row["zone"];
    EXPECT_EQ(toUtc(11, nullptr), "");
    EXPECT_EQ(toLocal(11, "20050615T123000Z"), "20050615T083000");
    EXPECT_EQ(toLocal(11, "20050615T1230Z"), "20050615T0830");
    EXPECT_EQ(toLocal(66, "20050228T182500Z"), "20050301T001000");
    EXPECT_EQ(toLocal(66, "20050228"), "20050228");
    EXPECT_EQ(toLocal(15, "20050116T0015007Z"), "20050115T214500");

    VStr out("old");
    EXPECT_EQ(BxTZ_UTCToLocal(11, "20050615T123000", out), 2098);
    EXPECT_STREQ(out, "20050615T123000");
    for (const int zone : {0, 78, -1}) {
        out = "old";
        EXPECT_EQ(BxTZ_LocalToUTC(zone, "20050615T083000", out), 2016);
        EXPECT_TRUE(out.IsEmpty());
        out = "old";
        EXPECT_EQ(BxTZ_UTCToLocal(zone, "20050615T083000Z", out), 2016);
        EXPECT_TRUE(out.IsEmpty());
    }
    // The result may go where the text came from.
    VStr same("20050615T083000");
    EXPECT_EQ(BxTZ_LocalToUTC(11, same, same), 0);
    EXPECT_STREQ(same, "20050615T123000Z");
    EXPECT_EQ(BxTZ_UTCToLocal(11, same, same), 0);
    EXPECT_STREQ(same, "20050615T083000");
}

TEST(ZoneTable, ConvertsByAGivenOffset) {
    const struct {
        int hours, minutes;
        const char* utc;
    } rows[] = {{5, 30, "20050614T194000Z"},  {-2, -30, "20050615T034000Z"},
                {-2, 30, "20050615T034000Z"},  // minutes of the wrong sign are turned
                {5, -30, "20050614T194000Z"}, {0, 45, "20050615T011000Z"},
                {-23, 0, "20050616T001000Z"}};
    for (const auto& row : rows) {
        VStr out;
        EXPECT_EQ(BxTZ_LocalToUTCByOffset(row.hours, row.minutes, "20050615T011000", out), 0);
        EXPECT_STREQ(out, row.utc) << row.hours << ":" << row.minutes;
    }
    VStr out;
    EXPECT_EQ(BxTZ_LocalToUTCByOffset(2147483647, -2147483647 - 1, "20050615T011000", out), 0);
    EXPECT_EQ(BxTZ_LocalToUTCByOffset(5, 0, "20050615T011000Z", out), 0);
    EXPECT_STREQ(out, "20050615T011000Z");
}

TEST(ZoneTable, MovesTextsBetweenZones) {
    VStr text("20050615T083000");
    EXPECT_EQ(BxTZ_ConvertZone(text, 11, 11), 0);
    EXPECT_EQ(BxTZ_ConvertZone(text, 11, 23), 0);
    EXPECT_STREQ(text, "20050615T143000");
    EXPECT_EQ(BxTZ_ConvertZone(text, 0, 23), 0);
    EXPECT_EQ(BxTZ_ConvertZone(text, 23, 0), 2016);
    EXPECT_STREQ(text, "20050615T143000");
    text = "20050615";
    EXPECT_EQ(BxTZ_ConvertZone(text, 11, 23), 0);
    EXPECT_STREQ(text, "20050615");
    text = "20050615T083000Z";
    EXPECT_EQ(BxTZ_ConvertZone(text, 11, 23), 0);
    EXPECT_STREQ(text, "20050615T103000");
}

TEST(ZoneTable, KnowsItsNames) {
    EXPECT_EQ(BxTZ_GetZoneID("utc"), 22);
    EXPECT_EQ(BxTZ_GetZoneID("PACIFIC TIME (us and canada); tijuana"), 5);
    EXPECT_EQ(BxTZ_GetZoneID("UT"), -1);
    EXPECT_EQ(BxTZ_GetZoneID("UTCx"), -1);
    EXPECT_EQ(BxTZ_GetZoneID(nullptr), -1);
    EXPECT_EQ(BxTZ_GetZoneID(std::string(100000, 'x').c_str()), -1);
    VStr name("zone: ");
    EXPECT_EQ(BxTZ_GetZoneName(77, name), 77);
    EXPECT_STREQ(name, "zone: Nuku alofa");
    EXPECT_EQ(BxTZ_GetZoneName(78, name), 0);
    EXPECT_STREQ(name, "zone: Nuku alofa");

    VStrArray names;
    names.Add("old");
    std::vector<int> numbers{1, 2, 3};
    BxTZ_GetZoneList(names, numbers);
    ASSERT_EQ(names.GetSize(), 77);
    ASSERT_EQ(numbers.size(), 77U);
    EXPECT_STREQ(names.GetAt(0), "Abu Dhabi, Muscat");
    EXPECT_STREQ(names.GetAt(76), "Yakutsk");
    for (int i = 0; i < 77; ++i) {
        EXPECT_EQ(BxTZ_GetZoneID(names.GetAt(i)), numbers[static_cast<std::size_t>(i)]);
        EXPECT_LT(std::strcmp(i > 0 ? names.GetAt(i - 1) : VStr(), names.GetAt(i)), 0);
    }
}

TEST(ZoneTable, ReportsWhatIsWrongWhereItIsWrong) {
    const TraceCapture trace;
    VStr out;
    qel::dates::ZoneTime time{20050615, 8, 30};
    EXPECT_EQ(BxTZ_GetZoneID("Atlantis"), -1);
    EXPECT_EQ(BxTZ_GetZoneName(0, out), 0);
    EXPECT_EQ(BxTZ_LocalToUTCByOffset(5, 0, "20050615T083000Z", out), 0);
    EXPECT_EQ(BxTZ_LocalToUTC(78, "20050615T083000", out), 2016);
    EXPECT_EQ(BxTZ_LocalToUTC(11, "20050615T083000Z", out), 0);
    EXPECT_EQ(BxTZ_UTCToLocal(-1, "20050615T083000", out), 2016);
    EXPECT_EQ(BxTZ_LocalToUTCByOffset(-2, 30, "20050615T083000", out), 0);
    EXPECT_EQ(BxTZ_LocalToUTCByOffset(2, -30, "20050615T083000", out), 0);
    EXPECT_EQ(qel::dates::zoneOffsetAt(78, qel::dates::ZoneColumn::Utc, time), 2016);
    EXPECT_EQ(qel::dates::offsetAt({}, qel::dates::ZoneColumn::Local, time), -1);
    const std::vector<std::string> expected = {
        "Error Bad Timezone: Atlantis.2015.2015 at BxTimezones line 120",
        "Error invalid timezoneID.0.2016 at BxTimezones line 139",
        "Error invalid timezoneID.78.2016 at BxTimezones line 327",
        "Error invalid timezoneID.-1.2016 at BxTimezones line 380",
        "Error bad timezone offset (minutes).30.2015 at BxTimezones line 475",
        "Error bad timezone offset (minutes).-30.2015 at BxTimezones line 510",
        "Error invalid timezoneID.78.2016 at BxTimezones line 563",
        "Error no offsets array.-1 at BxTimezones line 582",
    };
    EXPECT_EQ(trace.errors(), expected);
    std::string traced;
    for (const std::string& line : trace.lines()) traced += line + "\n";
    for (const char* const line : {"280", "334"}) {
        EXPECT_NE(
            traced.find("local time is actually in UTC! at BxTimezones line " + std::string(line)),
            std::string::npos);
    }
}

}  // namespace
