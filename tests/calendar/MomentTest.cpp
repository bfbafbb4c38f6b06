// What a person is told about a date or a duration that cannot be read.
#include "calendar/base/Moment.h"

#include <gtest/gtest.h>

namespace qel::calendar {
namespace {

TEST(Moment, ProblemsNameWhatIsWrong) {
    const struct {
        const char* text;
        const char* problem;
    } rows[] = {
        {"0000-01-01", "there is no year 0"},
        {"2005-6-15", "the month must have 2 digits; write 20050615 or 20050615T083000Z"},
        {"20051301", "there is no month 13"},
        {"20050631", "June 2005 has no day 31"},
        {"20050615x", "a \"T\" must come between the date and the time"},
        {"20050615T2360", "there is no minute 60"},
        {"20050615T240001", "there is no hour 24"},
        {"20050615T0830:5", "the second must have 2 digits; write 20050615 or 20050615T083000Z"},
        {"20050615T0830 UTC", "only a \"Z\" or an offset such as +0200 may follow the time"},
        {"99991231T235900-0100", "it is outside the years 1 to 9999"},
    };
    for (const auto& row : rows) {
        std::string problem;
        EXPECT_FALSE(parseMoment(row.text, &problem)) << row.text;
        EXPECT_EQ(problem, row.problem) << row.text;
    }
    EXPECT_TRUE(parseMoment("2005-06-15T08:30+02"));
}

TEST(Moment, ProblemsOfDurationsNameThePart) {
    const struct {
        const char* text;
        const char* problem;
    } rows[] = {
        {"15M", "a duration begins with \"P\", as in P1DT2H"},
        {"-P", "a number with a unit is missing after \"P\""},
        {"P1DTH", "a number is missing before \"H\""},
        {"PT15", "a unit is missing after \"15\""},
        {"PT1D", "\"D\" is not a unit of time; they are H, M and S"},
        {"P999999999W", "it is longer than 400 years"},
    };
    for (const auto& row : rows) {
        std::string problem;
        EXPECT_FALSE(parseDuration(row.text, &problem)) << row.text;
        EXPECT_EQ(problem, row.problem) << row.text;
    }
}

}  // namespace
}  // namespace qel::calendar
