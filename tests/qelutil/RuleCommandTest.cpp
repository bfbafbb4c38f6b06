// qelutil rule and qelutil expand as processes.
#include "Qelutil.h"

namespace {

using qel::test::contains;
using qel::test::ProcessResult;
using qel::test::QelutilTest;
using Json = nlohmann::ordered_json;

class RuleCommandTest : public QelutilTest {};

TEST_F(RuleCommandTest, ExplainsARuleInEveryForm) {
    const ProcessResult result = run({"rule", "W2 MO WE FR #10", "--start", "20050615"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out,
              "every 2 weeks on Monday, Wednesday and Friday, 10 times\n"
              "\n"
              "  vCalendar 1.0  W2 MO WE FR #10\n"
              "  iCalendar      FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR\n"
              "  positional     WEEKLY;;10;2;;;;MO,WE,FR;;;;;;;\n"
              "  repeat record  type 12, weekly on the selected weekdays\n"
              "                 every 2 weeks, on MO WE FR, from 2005-06-15 to 2005-07-27\n"
              "  as a rule      FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR\n"
              "  warning        the record has no count: its end date was computed from it\n"
              "\n"
              "  2005-06-15  Wednesday\n"
              "  2005-06-17  Friday\n"
              "  2005-06-27  Monday\n"
              "  2005-06-29  Wednesday\n"
              "  2005-07-01  Friday\n"
              "  2005-07-11  Monday\n"
              "  2005-07-13  Wednesday\n"
              "  2005-07-15  Friday\n"
              "  2005-07-25  Monday\n"
              "  2005-07-27  Wednesday\n");
}

// What the library's readers and its repeat record lose is kept in the program's answer, and said.
TEST_F(RuleCommandTest, KeepsWhatTheRecordLoses) {
    const Json june = runJson({"rule", "FREQ=YEARLY;BYMONTH=6;BYMONTHDAY=15", "--start", "20050615",
                               "--count", "2", "--json"})["rules"][0];
    EXPECT_EQ(june["sentence"], "every year on 15 June, without end");
    EXPECT_EQ(june["positional"][0], "YEARLY;;;1;;;;;15;;;6;;;");
    EXPECT_EQ(june["dates"], Json::parse(R"(["2005-06-15","2006-06-15"])"));
    EXPECT_EQ(june["more"], true);
    EXPECT_EQ(june["repeats"][0]["type"], 5);
    EXPECT_EQ(june["warnings"], Json::array());

    const Json last = runJson({"rule", "MD1 1- #3", "--start", "20050131", "--json"})["rules"][0];
    EXPECT_EQ(last["dates"], Json::parse(R"(["2005-01-31","2005-02-28","2005-03-31"])"));

    const Json rare = runJson({"rule", "MD1 31 #0", "--start", "20050131", "--json"})["rules"][0];
    EXPECT_EQ(rare["dates"][1], "2005-03-31");
    EXPECT_NE(rare["warnings"].dump().find("in a month without day 31 the record takes the last "
                                           "day (2005-02-28)"),
              std::string::npos)
        << rare["warnings"];

    const Json off = runJson({"rule", "W1 MO #0", "--start", "20050615", "--json"})["rules"][0];
    EXPECT_EQ(off["dates"][0], "2005-06-15");
    EXPECT_EQ(off["dates"][1], "2005-06-20");
    EXPECT_TRUE(contains(off["warnings"].dump(), "the start is no day of the rule"));

    const Json two = runJson({"rule", "MD1 10 20 #4", "--start", "20050110", "--json"})["rules"][0];
    EXPECT_EQ(two["dates"],
              Json::parse(R"(["2005-01-10","2005-01-20","2005-02-10","2005-02-20"])"));
    EXPECT_TRUE(contains(two["warnings"].dump(), "several days of the month"));
    EXPECT_NE(two["warnings"].dump().find("2005-02-10 where the rule has 2005-01-20"),
              std::string::npos)
        << two["warnings"];

    const Json end = runJson({"rule", "D1 20050616T080000", "--start", "20050615T0930", "--json"});
    EXPECT_EQ(end["rules"][0]["dates"], Json::parse(R"(["2005-06-15"])"));
    EXPECT_TRUE(contains(end["rules"][0]["warnings"].dump(), "it goes on with 2005-06-16")) << end;

    const Json never = runJson({"rule", "W1 WE 99991231", "--start", "20050615", "--json"});
    EXPECT_EQ(never["rules"][0]["repeats"][0]["end"], "2499-12-31");
    EXPECT_EQ(never["rules"][0]["ical"], "FREQ=WEEKLY;UNTIL=99991231;INTERVAL=1;BYDAY=WE");
}

// Parts of a yearly rule that name days together choose the days that all of them name.
TEST_F(RuleCommandTest, JoinsThePartsOfAYearlyRule) {
    const std::pair<const char*, const char*> kCases[] = {
        {"BYWEEKNO=20;BYMONTHDAY=17", R"(["2005-05-17","2006-05-17","2007-05-17"])"},
        {"BYYEARDAY=137,138;BYMONTHDAY=17", R"(["2005-05-17","2006-05-17","2007-05-17"])"},
        {"BYWEEKNO=20;BYYEARDAY=137", R"(["2005-05-17","2006-05-17","2007-05-17"])"},
        {"BYWEEKNO=20", R"(["2005-05-17","2006-05-16","2007-05-15"])"},
    };
    for (const auto& [parts, dates] : kCases) {
        const Json json = runJson({"expand", std::string("FREQ=YEARLY;") + parts, "--start",
                                   "20050517", "--through", "20071231", "--json"});
        EXPECT_EQ(json["dates"], Json::parse(dates)) << parts;
    }
}

TEST_F(RuleCommandTest, PrintsOneFormAlone) {
    const struct {
        const char* text;
        const char* to;
        const char* out;
    } kCases[] = {
        {"W2 MO WE FR #10", "ical", "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR\n"},
        {"FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR", "v10", "W2 MO WE FR #10\n"},
        {"WEEKLY;;10;2;;;;MO,WE,FR;;;;;;;", "ical",
         "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR\n"},
        {"RRULE:FREQ=DAILY;COUNT=3", "positional", "DAILY;;3;1;;;;;;;;;;;\n"},
    };
    for (const auto& each : kCases) {
        const ProcessResult result =
            run({"rule", each.text, "--start", "20050615", "--to", each.to});
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, each.out) << each.text;
    }
}

TEST_F(RuleCommandTest, MarksTheDatesInMonthGrids) {
    const ProcessResult result = run({"rule", "W1 WE #2", "--start", "2005-06-15", "--calendar"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(contains(result.out, "June 2005"));
    EXPECT_TRUE(contains(result.out, "[15]"));
    EXPECT_TRUE(contains(result.out, "[22]"));
    EXPECT_FALSE(contains(result.out, "[29]"));
}

TEST_F(RuleCommandTest, RefusesWhatIsNoRuleOrNoDate) {
    const struct {
        std::vector<std::string> words;
        int code;
        const char* says;
    } kCases[] = {
        {{"rule", "X1 #0", "--start", "20050615"}, 1, "X1 #0"},
        {{"rule", "", "--start", "20050615"}, 1, "qelutil: "},
        {{"rule", "D1 #1", "--start", "20050231"}, 2, "--start: \"20050231\" is no date"},
        {{"rule", "D1 #1"}, 2, "--start is required"},
        {{"rule", "D1 #1", "--start", "20050615", "--to", "v20"}, 2, "--to"},
        {{"rule", "D1 #1", "--start", "20050615", "--count", "0"}, 2, "--count"},
        {{"expand", "D1 #1", "--start", "20050615", "--through", "20050614"},
         2,
         "the range ends before it begins"},
        {{"expand", "D1 #1", "--start", "20050615", "--exclude", "20050615,tomorrow"},
         2,
         "--exclude: \"tomorrow\" is no date"},
    };
    for (const auto& each : kCases) {
        EXPECT_EQ(fails(each.code, each.words, each.says).out, "") << each.says;
    }
}

TEST_F(RuleCommandTest, ExpandsARangeWithItsExclusions) {
    const ProcessResult result =
        run({"expand", "W1 MO TH #0", "--start", "20050606", "--since", "20050613", "--through",
             "20050623", "--exclude", "20050616,20050620T083000", "--exclude", "20050615"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out,
              "  2005-06-13  Monday\n"
              " (2005-06-16  Thursday)\n"
              " (2005-06-20  Monday)\n"
              "  2005-06-23  Thursday\n");
    EXPECT_TRUE(contains(result.err, "the rule has no date on 2005-06-15"));

    const Json json = runJson({"expand", "D1 #10", "--start", "20050615", "--exclude", "20050616",
                               "--count", "3", "--json"});
    EXPECT_EQ(json["dates"], Json::parse(R"(["2005-06-15","2005-06-17","2005-06-18"])"));
    EXPECT_EQ(json["excluded"], Json::parse(R"(["2005-06-16"])"));
    EXPECT_EQ(json["through"], "2006-06-14");

    // The engine's own dates: its record of several month days keeps one.
    const Json record = runJson({"expand", "MD1 10 20 #0", "--start", "20050110", "--through",
                                 "20050228", "--record", "--json"});
    EXPECT_EQ(record["dates"], Json::parse(R"(["2005-01-10","2005-02-10"])"));
}

}  // namespace
