// Zone rule texts, and the class in zones that the TZ variable names.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "QelUtility/BxTimezones.h"
#include "platform/posix/PosixZoneRule.h"
#include "support/TempDir.h"

namespace {

using qel::platform::parsePosixZoneRule;
using qel::platform::TimeZoneDescription;
using qel::platform::ZoneChangeMoment;

std::string show(const ZoneChangeMoment& m) {
    const std::string day = m.year != 0 ? std::to_string(m.year) + "-" + std::to_string(m.month) +
                                              "-" + std::to_string(m.day)
                                        : std::to_string(m.month) + "." + std::to_string(m.day) +
                                              "." + std::to_string(m.dayOfWeek);
    return day + "/" + std::to_string(m.hour) + ":" + std::to_string(m.minute) + ":" +
           std::to_string(m.second) + (m.millisecond == 999 ? "+" : "");
}

TEST(PosixZoneRule, BecomesADescription) {
    const struct {
        const char* text;
        int bias, daylightBias;
        const char* daylight;
        const char* standard;
    } rows[] = {
        {"UTC0", 0, 0, "0.0.0/0:0:0", "0.0.0/0:0:0"},
        {"<+0545>-5:45", -345, 0, "0.0.0/0:0:0", "0.0.0/0:0:0"},
        {"CET-1CEST,M3.5.0,M10.5.0/3", -60, -60, "3.5.0/2:0:0", "10.5.0/3:0:0"},
        {"EST5EDT,M3.2.0,M11.1.0", 300, -60, "3.2.0/2:0:0", "11.1.0/2:0:0"},
        {"EST5EDT", 300, -60, "3.2.0/2:0:0", "11.1.0/2:0:0"},
        {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", -630, -30, "10.1.0/2:0:0", "4.1.0/2:0:0"},
        // Standard time is the summer's: turned around.
        {"IST-1GMT0,M10.5.0,M3.5.0/1", 0, -60, "3.5.0/1:0:0", "10.5.0/2:0:0"},
        // The end of a day has no name of its own.
        {"EET-2EEST,M4.5.5/0,M10.5.4/24", -120, -60, "4.5.5/0:0:0", "10.5.4/23:59:59+"},
        // What no weekday rule says becomes the dates of 2029: the Friday after the fourth
        // Thursday, the Saturday before the last Sunday.
        {"IST-2IDT,M3.4.4/26,M10.5.0", -120, -60, "2029-3-23/2:0:0", "2029-10-28/2:0:0"},
        {"<-02>2<-01>,M3.5.0/-1,M10.5.0/0", 120, -60, "2029-3-24/23:0:0", "2029-10-28/0:0:0"},
        {"XXX3YYY,J60/0,300/1:30:15", 180, -60, "2029-3-1/0:0:0", "2029-10-28/1:30:15"},
        {"EST5EDT,0/0,J365/25", 300, -60, "2029-1-1/0:0:0", "2029-12-31/23:59:59+"},
        {"EST5EDT,0/-5,J365/2", 300, -60, "2029-1-1/0:0:0", "2029-12-31/2:0:0"},
    };
    for (const auto& row : rows) {
        TimeZoneDescription zone;
        ASSERT_TRUE(parsePosixZoneRule(row.text, 2029, zone)) << row.text;
        EXPECT_EQ(zone.bias, row.bias) << row.text;
        EXPECT_EQ(zone.daylightBias, row.daylightBias) << row.text;
        EXPECT_EQ(show(zone.daylightDate), row.daylight) << row.text;
        EXPECT_EQ(show(zone.standardDate), row.standard) << row.text;
    }
    TimeZoneDescription leap;
    ASSERT_TRUE(parsePosixZoneRule("XXX3YYY,J60/0,59/0", 2028, leap));
    EXPECT_EQ(show(leap.daylightDate), "2028-3-1/0:0:0");
    EXPECT_EQ(show(leap.standardDate), "2028-2-29/0:0:0");
}

TEST(PosixZoneRule, RefusesWhatIsNoWholeRule) {
    for (const char* text : {"",
                             "C",
                             "CE-1",
                             "CET",
                             "<CET-1",
                             "CET-1:60",
                             "CET-168",
                             "CET-99999999999",
                             "CET-1CE",
                             "CET-1CEST,",
                             "CET-1CEST,M3.5.0",
                             "CET-1CEST,M3.5.0,",
                             "CET-1CEST,M3.5.0,M10.5.0/3x",
                             "CET-1CEST,M13.5.0,M10.5.0",
                             "CET-1CEST,M3.6.0,M10.5.0",
                             "CET-1CEST,M3.5.7,M10.5.0",
                             "CET-1CEST,J0,M10.5.0",
                             "CET-1CEST,366,M10.5.0",
                             "CET-1CEST,M3.5,M10.5.0",
                             "Europe/Berlin",
                             "../../etc/passwd"}) {
        TimeZoneDescription zone;
        zone.bias = 7;
        EXPECT_FALSE(parsePosixZoneRule(text, 2029, zone)) << text;
        EXPECT_EQ(zone.bias, 7);
    }
}

// Sets the TZ variable for as long as it lives. TZDIR names a folder of its own.
class ZoneVariable {
  public:
    explicit ZoneVariable(const std::string& value) {
        if (const char* old = std::getenv("TZ")) old_ = old;
        ::setenv("TZ", value.c_str(), 1);
        ::setenv("TZDIR", dir_.path().string().c_str(), 1);
    }
    ~ZoneVariable() {
        ::unsetenv("TZDIR");
        if (old_.empty()) {
            ::unsetenv("TZ");
        } else {
            ::setenv("TZ", old_.c_str(), 1);
        }
    }
    ZoneVariable(const ZoneVariable&) = delete;
    ZoneVariable& operator=(const ZoneVariable&) = delete;

    void writeZoneFile(const std::string& name, const std::string& content) {
        const std::filesystem::path path = dir_.path() / name;
        std::filesystem::create_directories(path.parent_path());
        qel::test::writeFile(path.string(), content);
    }

  private:
    qel::test::TempDir dir_;
    std::string old_;
};

std::string utcOf(const char* local) {
    CBxTimeZoneUtility zone;
    zone.Initialize();
    return zone.LocalToUTC(local);
}

std::string localOf(const char* utc) {
    CBxTimeZoneUtility zone;
    zone.Initialize();
    return zone.UTCToLocal(utc);
}

TEST(CurrentZone, FollowsTheVariable) {
    {
        const ZoneVariable berlin("CET-1CEST,M3.5.0,M10.5.0/3");
        EXPECT_EQ(utcOf("20050115T083000"), "20050115T073000Z");
        EXPECT_EQ(utcOf("20050615T003000"), "20050614T223000Z");
        // The change counts two hours before its local time, on the value as it comes.
        EXPECT_EQ(utcOf("20050326T235959"), "20050326T225959Z");
        EXPECT_EQ(utcOf("20050327T000000"), "20050326T220000Z");
        EXPECT_EQ(localOf("20051030T005959Z"), "20051030T025959");
        EXPECT_EQ(localOf("20051030T010000Z"), "20051030T020000");
        EXPECT_EQ(utcOf("20050615T998000"), "20050614T220000Z");  // no such minute: midnight
        EXPECT_EQ(utcOf("20050615T083099"), "20050615T063139Z");
    }
    {
        const ZoneVariable jerusalem("IST-2IDT,M3.4.4/26,M10.5.0");
        EXPECT_EQ(utcOf("20290322T120000"), "20290322T100000Z");
        EXPECT_EQ(utcOf("20290323T120000"), "20290323T090000Z");
        EXPECT_EQ(utcOf("20240328T120000"), "20240328T100000Z");  // that year the fifth Friday
        EXPECT_EQ(utcOf("20240329T120000"), "20240329T090000Z");
    }
    {
        const ZoneVariable utc("");
        EXPECT_EQ(utcOf("20050615T083000"), "20050615T083000Z");
    }
}

TEST(CurrentZone, ReadsTheLastLineOfAZoneFile) {
    const std::string head("TZif2\0\0\0\n\0\0binary\n", 18);
    ZoneVariable variable("Here/There");
    variable.writeZoneFile("Here/There", head + "\nNPT-5:45\n");
    EXPECT_EQ(utcOf("20050301T001000"), "20050228T182500Z");
    // Files that hold no rule, or are none: the C library's own idea of the offset, here UTC.
    for (const std::string& content :
         {head + "\n\n", std::string("TZif\0binary\nNPT-5:45\n", 21), std::string("TZif2"),
          std::string("TZif2\n\nNPT-5:45"), std::string("no zone\nNPT-5:45\n"), std::string()}) {
        variable.writeZoneFile("Here/There", content);
        EXPECT_EQ(utcOf("20050301T001000"), "20050301T001000Z");
    }
    const ZoneVariable folder(":/");
    EXPECT_EQ(utcOf("20050301T001000"), "20050301T001000Z");
}

}  // namespace
