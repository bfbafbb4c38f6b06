// Rule texts: each row is read into the record, and the record written in all three forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

#include "QelUtility/RRule.h"
#include "QelUtility/VStr.h"
#include "recurrence/RRuleInternal.h"
#include "recurrence/RuleRecordText.h"
#include "support/Tables.h"

namespace {

using qel::test::describe;

using Reader = int (*)(const char*, _rruleRepeat*, int*);

std::string withoutEmptyTail(const std::string& positional) {
    return positional.substr(0, positional.find_last_not_of(';') + 1);
}

TEST(RuleText, IsReadIntoTheRecordAndWrittenInEveryForm) {
    const std::pair<const char*, Reader> readers[] = {{"v10", BxUtil_PositionalV10toRRULE},
                                                      {"icalendar", BxUtil_PositionalV20toRRULE},
                                                      {"positional", BxUtil_PositionaltoRRULE}};
    for (qel::test::Row& row : qel::test::cases("recurrence/rules.txt")) {
        SCOPED_TRACE(row["case"]);
        _rruleRepeat rule;
        int flags = 0x7777;
        for (const auto& [form, read] : readers) {
            if (row.count(form) == 0) continue;
            ASSERT_EQ(read(row[form].c_str(), &rule, &flags), 0);
        }
        EXPECT_EQ(flags & ~RRULE_UNTIL_HAS_TIME, 0);
        EXPECT_EQ(describe(rule) + (flags != 0 ? " time" : ""), row["record"]);
        VStr out("what was there");
        EXPECT_EQ(BxUtil_RRULEtoIETF(&rule, out, true), row["to icalendar"]);
        EXPECT_EQ(BxUtil_RRULEtoV10IETF(&rule, out, true), row["to v10"]);
        const char* positional = qel::RRule_ToPositional(rule, out, true);
        ASSERT_NE(positional, nullptr);
        EXPECT_EQ(withoutEmptyTail(positional), row["to positional"]);
        EXPECT_EQ(std::count(positional, positional + out.GetLength(), ';'), 14);
    }
}

// Without the time the end keeps its eight digits, in every form.
TEST(RuleText, LeavesOutTheTimeOfTheEndOnRequest) {
    _rruleRepeat rule;
    ASSERT_EQ(BxUtil_PositionalV10toRRULE("W2 MO WE FR 20051231T120000Z", &rule, nullptr), 0);
    rule.count = 3;  // UNTIL wins
    VStr out;
    EXPECT_STREQ(BxUtil_RRULEtoIETF(&rule, out, false),
                 "FREQ=WEEKLY;UNTIL=20051231;INTERVAL=2;BYDAY=MO,WE,FR");
    EXPECT_STREQ(BxUtil_RRULEtoV10IETF(&rule, out, false), "W2 MO WE FR 20051231");
    EXPECT_STREQ(qel::RRule_ToPositional(rule, out, false),
                 "WEEKLY;20051231;;2;;;;MO,WE,FR;;;;;;;");
}

// Records that no reader makes: no frequency, several, values below 1, a time past what dates hold.
TEST(RuleText, WritersTakeAnyRecord) {
    _rruleRepeat rule;
    EXPECT_EQ(BxUtil_InitializeRRULE(&rule), 0);
    EXPECT_EQ(describe(rule), "");
    VStr out("x");
    EXPECT_EQ(BxUtil_RRULEtoIETF(&rule, out, true), nullptr);
    EXPECT_STREQ(out, "FREQ=");
    EXPECT_EQ(BxUtil_RRULEtoV10IETF(&rule, out, true), nullptr);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(qel::RRule_ToPositional(rule, out, true), nullptr);

    rule.freq = RRULE_FREQ_DAILY | RRULE_FREQ_MONTHLY;
    rule.interval = -3;
    rule.until = -2;
    rule.type = RRULE_TYPE_BYDAY;
    EXPECT_STREQ(BxUtil_RRULEtoIETF(&rule, out, true), "FREQ=MONTHLY;BYDAY=");
    EXPECT_STREQ(BxUtil_RRULEtoV10IETF(&rule, out, true), "MP1 #0");

    rule.until = 0x7fffffffffffffff;
    EXPECT_NE(BxUtil_RRULEtoIETF(&rule, out, false), nullptr);
    EXPECT_NE(BxUtil_RRULEtoV10IETF(&rule, out, false), nullptr);

    EXPECT_EQ(BxUtil_InitializeRRULE(nullptr), 0);
    EXPECT_EQ(BxUtil_RRULEtoIETF(nullptr, out, true), nullptr);
    EXPECT_EQ(BxUtil_RRULEtoV10IETF(nullptr, out, true), nullptr);
    EXPECT_EQ(BxUtil_PositionalV20toRRULE("FREQ=DAILY", nullptr, nullptr), -1);
}

// A packed record may lie at any address.
TEST(RuleText, TakesARecordAtAnOddAddress) {
    alignas(8) char storage[sizeof(_rruleRepeat) + 1];
    auto* rule = reinterpret_cast<_rruleRepeat*>(storage + 1);
    VStr out;
    ASSERT_EQ(BxUtil_PositionaltoRRULE("YEARLY;20051231T120000;;2;;;;MO;1,-1;1,-1;1,-1;6;2,-1;MO;",
                                       rule, nullptr),
              0);
    EXPECT_STREQ(BxUtil_RRULEtoIETF(rule, out, true),
                 "FREQ=YEARLY;UNTIL=20051231T120000Z;INTERVAL=2;BYDAY=MO;BYMONTHDAY=1,-1;"
                 "BYYEARDAY=1,-1;BYWEEKNO=1,-1;BYMONTH=6;BYSETPOS=2,-1");
    EXPECT_STREQ(qel::RRule_ToPositional(*rule, out, true),
                 "YEARLY;20051231T120000Z;;2;;;;MO;1,-1;1,-1;1,-1;6;2,-1;MO;");
    ASSERT_EQ(BxUtil_PositionalV10toRRULE("YD1 1 -1 #3", rule, nullptr), 0);
    EXPECT_STREQ(BxUtil_RRULEtoV10IETF(rule, out, true), "YD1 BYYEARDAY=1 #3");
}

}  // namespace
