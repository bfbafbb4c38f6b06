// Zone rule texts, and the class in zones that the TZ variable names.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "QelUtility/BxTimezones.h"
#include "platform/Process.h"
#include "platform/posix/PosixZoneRule.h"
#include "support/Tables.h"
#include "support/TempDir.h"

namespace {

using qel::platform::parsePosixZoneRule;
using qel::platform::TimeZoneDescription;
using qel::platform::ZoneChangeMoment;
using qel::test::number;
using qel::test::Row;

std::string show(const ZoneChangeMoment& m) {
    const std::string day = m.year != 0 ? std::to_string(m.year) + "-" + std::to_string(m.month) +
                                              "-" + std::to_string(m.day)
                                        : std::to_string(m.month) + "." + std::to_string(m.day) +
                                              "." + std::to_string(m.dayOfWeek);
    return day + "/" + std::to_string(m.hour) + ":" + std::to_string(m.minute) + ":" +
           std::to_string(m.second) + (m.millisecond == 999 ? "+" : "");
}

TEST(PosixZoneRule, BecomesADescription) {
    for (Row& row : qel::test::list("dates/posix-zones.txt")) {
        SCOPED_TRACE(row["rule"]);
        TimeZoneDescription zone;
        ASSERT_TRUE(parsePosixZoneRule(row["rule"].c_str(), 2029, zone));
        EXPECT_EQ(zone.bias, number(row, "bias"));
        EXPECT_EQ(zone.daylightBias, number(row, "daylight bias"));
        EXPECT_EQ(show(zone.daylightDate), row["daylight"]);
        EXPECT_EQ(show(zone.standardDate), row["standard"]);
    }
    TimeZoneDescription leap;
    ASSERT_TRUE(parsePosixZoneRule("XXX3YYY,J60/0,59/0", 2028, leap));
    EXPECT_EQ(show(leap.daylightDate), "2028-3-1/0:0:0");
    EXPECT_EQ(show(leap.standardDate), "2028-2-29/0:0:0");
    ASSERT_TRUE(parsePosixZoneRule("XXX3YYY,J59/0,J365/0", 2028, leap));
    EXPECT_EQ(show(leap.daylightDate), "2028-2-28/0:0:0");
}

TEST(PosixZoneRule, RefusesWhatIsNoWholeRule) {
    std::vector<Row> rows = qel::test::list("dates/posix-no-zones.txt");
    rows.emplace_back();  // the empty text
    for (Row& row : rows) {
        TimeZoneDescription zone;
        zone.bias = 7;
        EXPECT_FALSE(parsePosixZoneRule(row["rule"].c_str(), 2029, zone)) << row["rule"];
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
        if (old_.empty())
            ::unsetenv("TZ");
        else
            ::setenv("TZ", old_.c_str(), 1);
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
        EXPECT_EQ(utcOf("20050615T086000"), "20050614T220000Z");
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

// However the environment is changed, the next call knows.
TEST(CurrentZone, NoticesEveryChangeOfTheEnvironment) {
    const ZoneVariable variable("NPT-5:45");
    ::unsetenv("TZDIR");
    const auto here = [] { return utcOf("20050301T120000"); };
    EXPECT_EQ(here(), "20050301T061500Z");
    ::unsetenv("TZ");
    ::setenv("QEL_FIRST", "1", 1);
    ::setenv("QEL_LAST", "1", 1);
    const std::string system = here();
    ::unsetenv("QEL_FIRST");  // as many variables as before, TZ in the place of the last
    ::setenv("TZ", "EST5", 1);
    EXPECT_EQ(here(), "20050301T170000Z");
    qel::platform::sleepMilliseconds(20);  // the clock ticks on, the zone stays
    EXPECT_EQ(here(), "20050301T170000Z");
    // One year after the other in a zone that has both halves.
    ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    CBxTimeZoneUtility zone;
    zone.Initialize();
    for (const auto& [local, utc] : {std::pair{"20050615T083000", "20050615T063000Z"},
                                     {"20051215T083000", "20051215T073000Z"},
                                     {"20060615T083000", "20060615T063000Z"},
                                     {"20050615T083000", "20050615T063000Z"}})
        EXPECT_EQ(zone.LocalToUTC(local), std::string(utc));
    ::setenv("TZ", "EST5", 1);
    EXPECT_EQ(here(), "20050301T170000Z");
    ::setenv("TZ", ("<" + std::string(60, 'E') + ">5").c_str(), 1);
    EXPECT_EQ(here(), "20050301T170000Z");
    ::setenv("TZ", "EST4", 1);
    EXPECT_EQ(here(), "20050301T160000Z");
    char own[] = "TZ=EST3";
    ::putenv(own);
    EXPECT_EQ(here(), "20050301T150000Z");
    own[6] = '2';
    EXPECT_EQ(here(), "20050301T140000Z");
    ::unsetenv("QEL_LAST");
    EXPECT_EQ(here(), "20050301T140000Z");
    char other[] = "TZ=EST1";
    char* others[] = {other, nullptr, nullptr};
    char** const before = std::exchange(environ, others);
    EXPECT_EQ(here(), "20050301T130000Z");
    others[0] = nullptr;
    for (int i = 0; i < 3; ++i) EXPECT_EQ(here(), system);
    char last[] = "QEL_LAST=1";
    others[0] = last;
    EXPECT_EQ(here(), system);
    others[1] = own;
    EXPECT_EQ(here(), "20050301T140000Z") << "behind the last one";
    environ = nullptr;
    for (int i = 0; i < 3; ++i) EXPECT_EQ(here(), system);
    environ = before;
    ::unsetenv("TZ");
    EXPECT_EQ(here(), system);
}

TEST(CurrentZone, ReadsTheLastLineOfAZoneFile) {
    const std::string head("TZif2\0\0\0\n\0\0binary\n", 18);
    ZoneVariable variable("Here/There");
    variable.writeZoneFile("Here/There", head + "\nNPT-5:45\n");
    EXPECT_EQ(utcOf("20050301T001000"), "20050228T182500Z");
    // Files that hold no rule, or are none: the C library's own idea of the offset, here UTC.
    for (const std::string& content :
         {head + "\n\n", std::string("TZif\0binary\nNPT-5:45\n", 21), std::string("TZif2"),
          std::string("TZif2\n\nNPT-5:45"), std::string("TZif2NPT-5:45\n"),
          std::string("no zone\nNPT-5:45\n"), std::string()}) {
        variable.writeZoneFile("Here/There", content);
        EXPECT_EQ(utcOf("20050301T001000"), "20050301T001000Z");
    }
    // A file that is replaced, and one without a rule, count after a tick of the clock.
    ::unsetenv("TZDIR");
    const qel::test::TempDir dir;
    ::setenv("TZ", dir.file("z").c_str(), 1);
    for (const auto& [rule, utc] : {std::pair{"NPT-5:45", "20050228T182500Z"},
                                    {"EST5", "20050301T051000Z"},
                                    {"", "20050301T001000Z"},
                                    {"", "20050301T001000Z"}}) {
        qel::test::writeFile(dir.file("z"), head + "\n" + rule + "\n");
        qel::platform::sleepMilliseconds(20);
        EXPECT_EQ(utcOf("20050301T001000"), utc);
    }
    for (const std::string& name : {std::string(":/"), ":" + std::string(5000, 'n')}) {
        const ZoneVariable none(name);
        EXPECT_EQ(utcOf("20050301T001000"), "20050301T001000Z");
    }
}

}  // namespace
