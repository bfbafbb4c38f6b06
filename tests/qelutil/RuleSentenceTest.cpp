// Rules in plain English: one row a rule, read as the program reads it.
#include <gtest/gtest.h>

#include "base/RuleArguments.h"
#include "support/Tables.h"

namespace {

using namespace qel;

TEST(RuleSentence, SaysWhatTheRuleMeans) {
    for (test::Row& row : test::list("qelutil/sentences.txt")) {
        SCOPED_TRACE(row["rule"]);
        const auto read = cli::readRuleArguments({row["rule"], row["start"], "", ""});
        ASSERT_EQ(read.rules.count(), 1U);
        EXPECT_EQ(read.rules.words(), row["sentence"]);
    }
}

}  // namespace
