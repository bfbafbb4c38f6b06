// qelutil date and qelutil zone: what every form of a value reads as, what is refused and why, and
// clocks around their changes.
#include <sstream>

#include "Qelutil.h"

namespace {

using qel::test::contains;
using qel::test::ProcessResult;
using qel::test::QelutilTest;
using Words = std::vector<std::string>;

class DateCommand : public QelutilTest {};
class ZoneCommand : public QelutilTest {};

TEST_F(DateCommand, ShowsAMomentInAllItsForms) {
    const ProcessResult result = run({"date", "20050615T083000Z"});
    EXPECT_EQ(result.out,
              "20050615T083000Z\n"
              "  Wednesday, 15 June 2005, 08:30:00 UTC\n"
              "  day number          38516\n"
              "  second of the day   30600\n"
              "  weekday             4 (1 = Sunday)\n"
              "  seconds since 1900  3327813000\n"
              "  Unix time           1118824200\n");
    EXPECT_EQ(run({"date"}).exitCode, 0);
    EXPECT_EQ(run({"date", "today"}).exitCode, 0);
}

TEST_F(DateCommand, ReadsEveryForm) {
    const struct {
        Words words;
        const char* text;  // or duration
    } rows[] = {
        {{"38516"}, "20050615"},
        {{"0"}, "19000101"},
        {{"219145"}, "24991231"},
        {{"20040229"}, "20040229"},
        {{"2005-06-15"}, "20050615"},
        {{"2005-06-15T08:30"}, "20050615T083000"},
        {{"2005-06-15 08:30:07"}, "20050615T083007"},
        {{"20050615T0830Z"}, "20050615T083000Z"},
        {{"@1118824200"}, "20050615T083000Z"},
        {{"@-1"}, "19691231T235959Z"},
        {{"--from", "unix", "0"}, "19700101T000000Z"},
        {{"--from", "seconds", "3327813000"}, "20050615T083000"},
        {{"--from", "day", "19000101"}, nullptr},
        {{"P1DT2H"}, "+P1DT2H"},
        {{"PT26H"}, "+P1DT2H"},
        {{"93600s"}, "+P1DT2H"},
        {{"--from", "length", "93600"}, "+P1DT2H"},
        {{"--", "-PT15M"}, "-PT15M"},
        {{"PT0S"}, "PT0S"},
        {{"20050131", "--add", "P1W"}, "20050207"},
        {{"20041231T233000", "--add", "PT45M"}, "20050101T001500"},
        {{"20050615", "--add", "PT1H"}, "20050615T010000"},
        {{"20050615T083000Z", "--add=-PT9H"}, "20050614T233000Z"},
        {{"P1D", "--add", "PT2H"}, "+P1DT2H"},
        {{"20050615", "--until", "20051231"}, "+P28W3D"},
        {{"20050615T120000Z", "--until", "20050615T113000Z"}, "-PT30M"},
    };
    for (const auto& row : rows) {
        Words words = {"date", "--json"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        if (row.text == nullptr) {
            EXPECT_EQ(run(words).exitCode, 1);
            continue;
        }
        const auto facts = runJson(words);
        ASSERT_EQ(facts.size(), 1U) << row.text;
        EXPECT_EQ(facts[0].value("text", facts[0].value("duration", "")), row.text);
    }
}

TEST_F(DateCommand, NamesWhatIsWrongAndDoesTheRest) {
    const struct {
        const char* value;
        const char* says;
    } rows[] = {
        {"20050230", "February 2005 has no day 30"},
        {"19000229", "February 1900 has no day 29"},
        {"20050600", "June 2005 has no day 0"},
        {"20051315", "there is no month 13"},
        {"18991231", "the year must be from 1900 to 2499"},
        {"20050615T2400", "there is no hour 24"},
        {"20050615T0860", "there is no minute 60"},
        {"20050615T08306", "the second must have 2 digits"},
        {"20050615T083000+01", "only a \"Z\" may follow the time"},
        {"2005-0615", "a \"-\" is missing"},
        {"20050615x", "a \"T\" must follow the date"},
        {"219146", "the days 0 to 219145"},
        {"12345678901", "--from unix"},
        {"@999999999999999999", "is too large"},
        {"@9999999999999", "outside the years"},
        {"tomorrow", "write 20050615"},
        {"P1H", "\"H\" is not a unit that may come there"},
        {"P1D1W", "\"W\" is not a unit"},
        {"P", "a number with a unit is missing"},
        {"P1DT", "a number with a unit is missing"},
        {"PD", "a number is missing before \"D\""},
        {"P5", "a unit is missing after \"5\""},
        {"P99999999999999999999W", "is too long"},
        {"", "the year must have 4 digits"},
    };
    Words words = {"date"};
    for (const auto& row : rows) words.emplace_back(row.value);
    words.emplace_back("38516");
    const ProcessResult result = run(words);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out.find("20050615\n"), 0U) << result.out;
    std::istringstream messages(result.err);
    for (const auto& row : rows) {
        std::string message;
        std::getline(messages, message);
        EXPECT_EQ(message.find("qelutil: \"" + std::string(row.value) + "\": "), 0U) << message;
        EXPECT_TRUE(contains(message, row.says));
    }
    EXPECT_EQ(run({"date", "--from", "unix", ""}).exitCode, 1);
    EXPECT_EQ(run({"date", "--from", "length", ""}).exitCode, 1);
    const ProcessResult past = run({"date", "24991231", "--add", "P1D"});
    EXPECT_EQ(past.exitCode, 1);
    EXPECT_EQ(past.err.find("qelutil: \"24991231\": "), 0U) << past.err;
    EXPECT_EQ(run({"date", "20050615T120000", "--until", "20050615T120000Z"}).exitCode, 1);
    EXPECT_EQ(run({"date", "20050615", "--add", "1D"}).exitCode, 2);
    EXPECT_EQ(run({"date", "20050615", "--until", "x"}).exitCode, 2);
    EXPECT_EQ(run({"date", "20050615", "--from", "year"}).exitCode, 2);
}

TEST_F(ZoneCommand, MovesTimesAsTheClocksOnTheWallDo) {
    const struct {
        Words words;
        const char* output;
        const char* note;
    } rows[] = {
        {{"20050615T083000", "--from", "eastern"}, "20050615T123000Z", ""},
        {{"20050615T083000", "--from", "11", "--to", "BERLIN"}, "20050615T143000", ""},
        {{"20050301T001000", "--from", "Kathmandu"}, "20050228T182500Z", ""},
        // Through the changes of 2005, in both directions.
        {{"20050403T015959", "--from", "11"}, "20050403T065959Z", ""},
        {{"20050403T023000", "--from", "11"}, "20050403T073000Z", "skip this time"},
        {{"20050403T030000", "--from", "11"}, "20050403T070000Z", ""},
        {{"20051030T013000", "--from", "11"}, "20051030T053000Z", "twice"},
        {{"20051030T020000", "--from", "11"}, "20051030T070000Z", ""},
        {{"20050403T065959Z", "--to", "11"}, "20050403T015959", ""},
        {{"20050403T070000Z", "--to", "11"}, "20050403T030000", ""},
        {{"20051030T055959Z", "--to", "11"}, "20051030T015959", ""},
        {{"20051030T060000Z", "--to", "11"}, "20051030T010000", ""},
        {{"20050326T145959Z", "--to", "74"}, "20050327T015959", ""},
        {{"20050326T150000Z", "--to", "74"}, "20050327T010000", ""},
        {{"20300615T083000", "--from", "11"}, "20300615T133000Z", "1990 to 2010"},
    };
    for (const auto& row : rows) {
        Words words = {"zone", "convert", "--json"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        const ProcessResult result = run(words);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_TRUE(contains(result.out, "\"output\": \"" + std::string(row.output) + "\""));
        EXPECT_TRUE(contains(result.err, row.note));
        EXPECT_EQ(result.err.empty(), *row.note == '\0') << result.err;
    }
    const auto utc = runJson({"zone", "convert", "20050115T120000", "20050715T120000", "--json"});
    ASSERT_EQ(utc.size(), 2U);
    for (const auto& there : utc) {
        const auto back = runJson({"zone", "convert", there["output"], "--json"});
        EXPECT_EQ(back[0]["output"], there["input"]);
    }
}

TEST_F(ZoneCommand, ListsZonesAndTheChangesOfAYear) {
    const auto zones = runJson({"zone", "list", "--json"});
    ASSERT_EQ(zones.size(), 77U);
    EXPECT_EQ(zones[14].dump(),
              R"({"number":15,"name":"Newfoundland","standard":"-02:30","summer":"-01:30"})");
    EXPECT_TRUE(zones[0]["summer"].is_null());
    EXPECT_EQ(zones[73]["standard"], "+10:00");
    EXPECT_EQ(
        run({"zone", "changes", "berlin", "--year", "2005"}).out,
        "Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna, 2005:\n"
        "  20050327T020000  +01:00 to +02:00  20050327T010000Z  Sunday, 27 March 2005, 02:00:00\n"
        "  20051030T030000  +02:00 to +01:00  20051030T010000Z  Sunday, 30 October 2005, "
        "03:00:00\n");
    const auto santiago = runJson({"zone", "changes", "60", "--year", "1991", "--json"});
    ASSERT_EQ(santiago.size(), 2U);
    EXPECT_EQ(santiago[0]["local"], "19910309T000000");
    EXPECT_EQ(santiago[1]["utc"], "19911012T040000Z");
    EXPECT_EQ(run({"zone", "changes", "hawaii", "--year", "2005"}).out,
              "Hawaii, 2005: no change of offset\n");
}

TEST_F(ZoneCommand, NamesWhatIsWrong) {
    const struct {
        Words words;
        int code;
        const char* says;
    } rows[] = {
        {{"changes", "canberra"}, 2, "fits several zones: 53 Canberra"},
        {{"changes", "Atlantis"}, 2, "there is no zone \"Atlantis\""},
        {{"changes", ""}, 2, "there is no zone"},
        {{"changes", "0"}, 2, "the numbers are 1 to 77"},
        {{"changes", "99999999999999999999"}, 2, "the numbers are 1 to 77"},
        {{"changes", "11", "--year", "20x5"}, 2, "the year \"20x5\""},
        {{"changes"}, 2, "ZONE"},
        {{"convert"}, 2, "TIME"},
        {{}, 2, "subcommand"},
        {{"convert", "20050615", "--from", "11"}, 1, "a date without a time"},
        {{"convert", "20050615T083000Z", "--from", "11"}, 1, "the Z says that it is UTC"},
        {{"convert", "19000101T000000", "--from", "berlin"}, 1, "outside the years"},
    };
    for (const auto& row : rows) {
        Words words = {"zone"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        fails(row.code, words, row.says);
    }
}

}  // namespace
