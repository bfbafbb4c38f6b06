// Rules in plain English: one row a rule, read as the program reads it.
#include "calendar/rules/RuleSentence.h"

#include <gtest/gtest.h>

#include "base/RuleArguments.h"
#include "support/Tables.h"

namespace {

using namespace qel;

TEST(RuleSentence, SaysWhatTheRuleMeans) {
    for (test::Row& row : test::list("qelutil/sentences.txt")) {
        const std::string& rule = row["rule"];
        SCOPED_TRACE(rule);
        const calendar::RuleStart start = cli::dateArgument("--start", row["start"]);
        const auto reading = calendar::readRules(rule, calendar::guessRuleForm(rule), start);
        ASSERT_EQ(reading.rules.size(), 1U);
        EXPECT_EQ(calendar::ruleSentence(reading.rules[0], start), row["sentence"]);
    }
}

TEST(RuleArguments, DatesAreTakenInTheirUsualSpellingsAndNoOthers) {
    const calendar::RuleStart start = cli::dateArgument("--start", "2005-06-15T08:30:01Z");
    EXPECT_EQ(cli::codeDateOf(start), 38516);
    EXPECT_EQ(start.secondOfDay, 30601);
    EXPECT_FALSE(start.isDate);
    EXPECT_TRUE(cli::dateArgument("--start", "19000101").isDate);
    EXPECT_EQ(cli::codeDateOf(cli::dateArgument("--start", "2499-12-31")), cli::kLastDay);
    EXPECT_GT(cli::codeDateOf(cli::dateArgument("--start", "today")), 38516);
    for (const char* bad : {"", "2005", "20050229", "20051301", "18991231", "25000101", "20050615x",
                            "20050615T", "20050615T2460", "20050615T0830007", "15.6.2005"})
        EXPECT_THROW(static_cast<void>(cli::dateArgument("--start", bad)), cli::UsageError) << bad;
}

}  // namespace
