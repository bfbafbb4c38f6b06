// The table of zones and its conversions: every family of rules at its changes, texts of every
// shape, and the table against the public record of what clocks did.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "QelUtility/BxTimezones.h"
#include "dates/BxTimezoneTable.h"
#include "dates/ZQDateInternal.h"
#include "dates/ZoneLookup.h"
#include "support/Tables.h"
#include "support/TraceCapture.h"

namespace {

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
    const struct {
        int zone;
        const char* local;  // the change in 2005
        int before, after;  // minutes
    } rows[] = {
        {11, "20050403T020000", -300, -240}, {11, "20051030T020000", -240, -300},
        {15, "20050403T020000", -150, -90},  {15, "20051030T020000", -90, -150},
        {16, "20051016T020000", -180, -120}, {16, "20050213T020000", -120, -180},
        {18, "20050327T020000", -120, -60},  {18, "20050925T020000", -60, -120},
        {23, "20050327T020000", 60, 120},    {23, "20051030T030000", 120, 60},
        {28, "20050327T000000", 120, 180},   {28, "20050925T010000", 180, 120},
        {29, "20050506T020000", 120, 180},   {29, "20050928T020000", 180, 120},
        {31, "20050327T030000", 120, 180},   {31, "20051030T040000", 180, 120},
        {36, "20050306T020000", 210, 270},   {36, "20050927T020000", 270, 210},
        {50, "20051030T020000", 570, 630},   {50, "20050327T020000", 630, 570},
        {57, "20051002T020000", 720, 780},   {57, "20050320T020000", 780, 720},
        {60, "20051008T000000", -240, -180}, {60, "20050312T000000", -180, -240},
        {65, "20050403T030000", 180, 240},   {65, "20051002T040000", 240, 180},
        {74, "20051002T020000", 600, 660},   {74, "20050327T020000", 660, 600},
        {76, "20050828T020000", 600, 660},   {76, "20050327T020000", 660, 600},
        {75, "20050327T020000", 600, 660},   {77, "20050327T020000", 780, 780},
        {1, "20051030T020000", -720, -720},
    };
    for (const auto& row : rows) {
        const std::int64_t change = ZQ_DateTimeToSeconds(row.local);
        EXPECT_EQ(offsetMinutes(row.zone, change - 60), row.before) << row.zone << " " << row.local;
        EXPECT_EQ(offsetMinutes(row.zone, change), row.after) << row.zone << " " << row.local;
    }
    // Summer with an offset of no hours leaves the text as it is: London is the other way round.
    EXPECT_EQ(toUtc(20, "20050701T120000"), "20050701T110000Z");
    EXPECT_EQ(toUtc(20, "20050101T120000"), "20050101T120000Z");
    EXPECT_EQ(toUtc(19, "20050701T120000"), "20050701T120000Z");
}

TEST(ZoneTable, IsInOrderAndTurnsBackOnItself) {
    for (int zone = 1; zone <= qel::kZoneCount; ++zone) {
        const auto changes = qel::zoneChanges(zone);
        ASSERT_TRUE(changes.size() == 1 || changes.size() == 42) << zone;
        const auto key = [](const qel::ZoneTime& t) {
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
    const auto single = qel::zoneChanges(66)[0];
    EXPECT_TRUE(single.local.date == 19900107 && single.local.hour == 0);
    EXPECT_TRUE(single.utc.date == 19900106 && single.utc.hour == 18 && single.utc.minute == 15);
}

TEST(ZoneTable, ConvertsAcrossDaysAndLeavesWhatItCannotRead) {
    const struct {
        int zone;
        const char* local;
        const char* utc;
    } rows[] = {
        {11, "20050615T083000", "20050615T123000Z"},
        {11, "20050115T083000", "20050115T133000Z"},
        {11, "19800115T083000", "19800115T123000Z"},  // the first entry begins a summer
        {11, "20300615T083000", "20300615T133000Z"},  // the last one ends one
        {66, "20050301T001000", "20050228T182500Z"},
        {66, "20040301T001000", "20040229T182500Z"},
        {2, "20051231T235959", "20060101T105959Z"},
        {15, "20050115T214500", "20050116T001500Z"},
        {77, "20050101T000000", "20041231T110000Z"},
        {77, "19000101T000000", "19000101T110000Z"},  // no day before the first
        {2, "24991231T230000", "24991231T100000Z"},   // nor after the last
        {22, "20050615T083000", "20050615T083000Z"},
        {11, "20050615T0830", "20050615T1230Z"},
        {11, "20050615T08301", "20050615T12301Z"},
        {11, "20050615T", "20050615T0400Z"},
        {11, "T", "       0T0400Z"},
        {11, "2005T083000", "    2005T0400Z"},
        {11, "99999999T999999", "99999999T813999Z"},  // an hour too many is not set right
        {11, "20050615", "20050615"},
        {11, "20050615T083000Z", "20050615T083000Z"},
        {999, "20050615", "20050615"},
        {11, "", ""},
        {11, nullptr, ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(toUtc(row.zone, row.local), row.utc) << row.zone;
    }
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
    qel::ZoneTime time{20050615, 8, 30};
    EXPECT_EQ(BxTZ_GetZoneID("Atlantis"), -1);
    EXPECT_EQ(BxTZ_GetZoneName(0, out), 0);
    EXPECT_EQ(BxTZ_LocalToUTCByOffset(5, 0, "20050615T083000Z", out), 0);
    EXPECT_EQ(BxTZ_LocalToUTC(78, "20050615T083000", out), 2016);
    EXPECT_EQ(BxTZ_LocalToUTC(11, "20050615T083000Z", out), 0);
    EXPECT_EQ(BxTZ_UTCToLocal(-1, "20050615T083000", out), 2016);
    EXPECT_EQ(BxTZ_LocalToUTCByOffset(-2, 30, "20050615T083000", out), 0);
    EXPECT_EQ(BxTZ_LocalToUTCByOffset(2, -30, "20050615T083000", out), 0);
    EXPECT_EQ(qel::zoneOffsetAt(78, qel::ZoneColumn::Utc, time), 2016);
    EXPECT_EQ(qel::offsetAt({}, qel::ZoneColumn::Local, time), -1);
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

// The public record of two zones. The table agrees with it on every local moment of change but
// Berlin's ends of summer up to 1995, which it moves from September to October. Its UTC column is
// by its own rule an hour off at every change: it takes away the offset that begins, not the one
// that ends.
TEST(ZoneTable, AgreesWithThePublicRecord) {
    auto rows = qel::test::table("tz_transitions.tsv");
    if (rows.empty()) GTEST_SKIP() << "no public data";
    int same = 0;
    int later = 0;
    std::size_t next = 0;
    for (auto& row : rows) {
        const std::int64_t utc = ZQ_DateTimeToSeconds(row["utc"].c_str());
        const int after = std::stoi(row["offset_after_s"]);
        if (row["zone"] == "Asia/Kathmandu") {
            EXPECT_EQ(after / 60, offsetMinutes(66, utc));
        }
        if (row["zone"] != "Europe/Berlin" || row["kind"] != "transition") continue;
        VStr local;
        ZQ_SecondsToDateTime(utc + std::stoi(row["offset_before_s"]), local, true);
        const qel::ZoneChange& change = qel::zoneChanges(23)[next++];
        EXPECT_EQ(change.local.offsetHours, after / 3600);
        const std::string known(local);
        char table[32];
        std::snprintf(table, sizeof table, "%08dT%02d%02d00", change.local.date, change.local.hour,
                      change.local.minute);
        if (known == table) {
            ++same;
        } else {
            ++later;
            EXPECT_LT(known, "1996");
            EXPECT_EQ(known.substr(4, 2) + std::string(table).substr(4, 2), "0910");
        }
        VStr shown;
        ZQ_SecondsToDateTime(ZQ_DateTimeToSeconds(table) - change.local.offsetHours * 3600, shown,
                             true);
        std::snprintf(table, sizeof table, "%08dT%02d%02d00", change.utc.date, change.utc.hour,
                      change.utc.minute);
        EXPECT_STREQ(shown, table);
    }
    EXPECT_EQ(same, 36);
    EXPECT_EQ(later, 6);
}

}  // namespace
