// Rules in plain English: one row a rule, read as the program reads it; and the dates of options.
#include <gtest/gtest.h>

#include "base/RuleArguments.h"
#include "support/Tables.h"

namespace {

using namespace qel;

TEST(RuleSentence, SaysWhatTheRuleMeans) {
    for (test::Row& row : test::list("qelutil/sentences.txt")) {
        SCOPED_TRACE(row["rule"]);
        const auto read = cli::readRuleArguments({row["rule"], row["start"], ""});
        ASSERT_EQ(read.rules.count(), 1U);
        EXPECT_EQ(read.rules.words(), row["sentence"]);
    }
}

TEST(RuleArguments, DatesAreTakenInTheirUsualSpellingsAndNoOthers) {
    const cli::Time start = cli::readMomentOf("--start", "2005-06-15T08:30:01Z");
    EXPECT_EQ(cli::codeDateOf(start), 38516);
    EXPECT_EQ(start.text(), "20050615T083001Z");
    EXPECT_EQ(cli::readMomentOf("--start", "19000101").is_date, 1);
    EXPECT_EQ(cli::codeDateOf(cli::readMomentOf("--start", "2499-12-31")), cli::kLastDay);
    EXPECT_GT(cli::codeDateOf(cli::readMomentOf("--start", "today")), 38516);
    // The last one is a time of the year 2500 in UTC.
    for (const char* bad :
         {"", "2005", "20050229", "20051301", "18991231", "25000101", "20050615x", "20050615T",
          "20050615T2460", "20050615T0830007", "15.6.2005", "24991231T233000-0100"})
        EXPECT_THROW(static_cast<void>(cli::readMomentOf("--start", bad)), cli::UsageError) << bad;
}

}  // namespace
