// Rules in plain English: one row a rule, read as the program reads it.
#include "RuleSentence.h"

#include <gtest/gtest.h>

#include "RuleArguments.h"

namespace {

using namespace qel;

struct Row {
    const char* text;
    const char* start;
    const char* sentence;
};

constexpr Row kRows[] = {
    {"W2 MO WE FR #10", "20050615", "every 2 weeks on Monday, Wednesday and Friday, 10 times"},
    {"D1 #1", "20050615", "every day, once"},
    {"FREQ=DAILY;BYDAY=MO,FR;BYMONTH=6;COUNT=2", "20050617",
     "every day, only on Monday and Friday, only in June, twice"},
    {"FREQ=WEEKLY", "20050615", "every week on Wednesday, without end"},
    {"FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR;UNTIL=20051231", "20050615",
     "every week on Monday to Friday, until 31 December 2005"},
    {"FREQ=WEEKLY;INTERVAL=2;BYDAY=SU,TU;WKST=SU", "19970805",
     "every 2 weeks on Sunday and Tuesday, weeks counted from Sunday, without end"},
    {"MD1 15 1- #0", "20050615", "every month on the 15th and the last day, without end"},
    {"MP2 1+ SU 1- SU #10", "20050605",
     "every 2 months on the first Sunday and the last Sunday, 10 times"},
    {"FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-2", "20050629",
     "every month on the second to last workday, without end"},
    {"FREQ=MONTHLY;BYDAY=TU,TH;BYSETPOS=1,-1", "20050602",
     "every month on every Tuesday and every Thursday, only the first and last of these in each "
     "month, without end"},
    {"FREQ=MONTHLY;BYDAY=FR;BYMONTHDAY=13", "20050513",
     "every month on every Friday that is the 13th, without end"},
    {"YM1 6 #0", "20050615", "every year on 15 June, without end"},
    {"FREQ=YEARLY;BYMONTH=3,9;BYMONTHDAY=-1", "20050331",
     "every year on the last day of March and September, without end"},
    {"FREQ=YEARLY;BYMONTH=9,3;BYMONTHDAY=-1,20,-2,5", "20050305",
     "every year on the 5th, the 20th, the 2nd to last day and the last day of March and "
     "September, without end"},
    {"FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU", "20051030",
     "every year on the last Sunday of October, without end"},
    {"FREQ=YEARLY;BYDAY=20MO", "20050516",
     "every year on the 20th Monday of the year, without end"},
    {"FREQ=YEARLY;BYWEEKNO=20;BYDAY=MO", "20050516",
     "every year on Monday of the 20th week of the year, without end"},
    {"YD1 1 100 200 #3", "20050101",
     "every year on the 1st, 100th and 200th day of the year, 3 times"},
    {"FREQ=DAILY;BYDAY=SU,MO,TU,WE,TH,FR,SA", "20050615", "every day, without end"},
    {"FREQ=YEARLY;BYMONTH=11;BYDAY=TU;BYMONTHDAY=2,3,4", "20051102",
     "every year on every Tuesday that is the 2nd, the 3rd or the 4th of November, without end"},
    {"FREQ=YEARLY;BYWEEKNO=20;BYMONTHDAY=17", "20050517",
     "every year on a day of the 20th week of the year, only on the 17th, without end"},
    {"FREQ=WEEKLY;BYMONTHDAY=17", "20050517", "every week, only on the 17th, without end"},
    {"FREQ=MONTHLY;BYYEARDAY=137,-1", "20050517",
     "every month, only on the 137th and last day of the year, without end"},
    {"FREQ=DAILY;BYHOUR=9", "20050615T083000", "every day at 09:30, without end"},
    {"FREQ=DAILY;BYHOUR=10,9;BYMINUTE=0,30", "20050615T083000",
     "every day at 09:00, 09:30, 10:00 and 10:30, without end"},
    {"FREQ=DAILY;UNTIL=20051224T000000Z", "20050615T090000",
     "every day, until 24 December 2005, 00:00:00 UTC"},
};

TEST(RuleSentence, SaysWhatTheRuleMeans) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.text);
        const convert::RuleStart start = cli::dateArgument("--start", row.start);
        const auto reading = convert::readRules(row.text, convert::guessRuleForm(row.text), start);
        ASSERT_EQ(reading.rules.size(), 1U);
        EXPECT_EQ(cli::ruleSentence(reading.rules[0], start), row.sentence);
    }
}

TEST(RuleArguments, DatesAreTakenInTheirUsualSpellingsAndNoOthers) {
    const convert::RuleStart start = cli::dateArgument("--start", "2005-06-15T08:30:01Z");
    EXPECT_EQ(cli::codeDateOf(start), 38516);
    EXPECT_EQ(start.secondOfDay, 30601);
    EXPECT_FALSE(start.isDate);
    EXPECT_TRUE(cli::dateArgument("--start", "19000101").isDate);
    EXPECT_EQ(cli::codeDateOf(cli::dateArgument("--start", "2499-12-31")), cli::kLastDay);
    EXPECT_GT(cli::codeDateOf(cli::dateArgument("--start", "today")), 38516);
    for (const char* bad : {"", "2005", "20050229", "20051301", "18991231", "25000101", "20050615x",
                            "20050615T", "20050615T2460", "20050615T0830007", "15.6.2005"}) {
        EXPECT_THROW(static_cast<void>(cli::dateArgument("--start", bad)), cli::UsageError) << bad;
    }
}

}  // namespace
