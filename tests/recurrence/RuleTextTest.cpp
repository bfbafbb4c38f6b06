// Rule texts: what each is read into, what is written of it in all three forms, refusals, long
// texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "QelUtility/RRule.h"
#include "QelUtility/VStr.h"
#include "recurrence/RepeatRecord.h"
#include "support/Tables.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::describe;
using qel::test::Row;

const std::map<std::string, int (*)(const char*, _rruleRepeat*, int*)> kReaders = {
    {"v10", BxUtil_PositionalV10toRRULE},
    {"icalendar", BxUtil_PositionalV20toRRULE},
    {"positional", BxUtil_PositionaltoRRULE}};

TEST(RuleText, IsReadIntoTheRecordAndWrittenInEveryForm) {
    for (Row& row : qel::test::cases("recurrence/rules.txt")) {
        SCOPED_TRACE(row["case"]);
        _rruleRepeat rule;
        int flags = 0x7777;
        for (const auto& [form, read] : kReaders) {
            if (row.count(form) == 0) continue;
            ASSERT_EQ(read(row[form].c_str(), &rule, &flags), 0);
        }
        EXPECT_EQ(flags & ~RRULE_UNTIL_HAS_TIME, 0);
        EXPECT_EQ(describe(rule) + (flags != 0 ? " time" : ""), row["record"]);
        VStr out("what was there");
        EXPECT_EQ(BxUtil_RRULEtoIETF(&rule, out, true), row["to icalendar"]);
        EXPECT_EQ(BxUtil_RRULEtoV10IETF(&rule, out, true), row["to v10"]);
        const char* positional = BxUtil_RRULEtoPositional(&rule, out, true);
        ASSERT_NE(positional, nullptr);
        const std::string text = positional;
        EXPECT_EQ(text.substr(0, text.find_last_not_of(';') + 1), row["to positional"]);
        EXPECT_EQ(std::count(text.begin(), text.end(), ';'), 14);
    }
}

// Records that no reader makes: no frequency, several, values below 1, a time past what dates hold.
TEST(RuleText, WritersTakeAnyRecord) {
    _rruleRepeat rule;
    EXPECT_EQ(BxUtil_InitializeRRULE(&rule), 0);
    VStr out("x");
    EXPECT_EQ(BxUtil_RRULEtoIETF(&rule, out, true), nullptr);
    EXPECT_STREQ(out, "FREQ=");
    EXPECT_EQ(BxUtil_RRULEtoV10IETF(&rule, out, true), nullptr);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(BxUtil_RRULEtoPositional(&rule, out, true), nullptr);

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

// A packed record may lie at any address. Without its time an end keeps its eight digits; it wins
// over a count.
TEST(RuleText, TakesARecordAtAnOddAddressAndLeavesOutATime) {
    alignas(8) char storage[sizeof(_rruleRepeat) + 1];
    auto* rule = reinterpret_cast<_rruleRepeat*>(storage + 1);
    VStr out;
    const char text[] = "YEARLY;20051231T120000Z;;2;;;;MO;1,-1;1,-1;1,-1;6;2,-1;MO;";
    ASSERT_EQ(BxUtil_PositionaltoRRULE(text, rule, nullptr), 0);
    rule->count = 3;
    EXPECT_STREQ(BxUtil_RRULEtoIETF(rule, out, false),
                 "FREQ=YEARLY;UNTIL=20051231;INTERVAL=2;BYDAY=MO;BYMONTHDAY=1,-1;"
                 "BYYEARDAY=1,-1;BYWEEKNO=1,-1;BYMONTH=6;BYSETPOS=2,-1");
    EXPECT_STREQ(BxUtil_RRULEtoPositional(rule, out, true), text);
    EXPECT_STREQ(BxUtil_RRULEtoPositional(rule, out, false),
                 "YEARLY;20051231;;2;;;;MO;1,-1;1,-1;1,-1;6;2,-1;MO;");
    ASSERT_EQ(BxUtil_PositionalV10toRRULE("YD1 1 -1 20051231T120000Z", rule, nullptr), 0);
    EXPECT_STREQ(BxUtil_RRULEtoV10IETF(rule, out, false), "YD1 BYYEARDAY=1 20051231");
}

// An unknown frequency is refused, reported with the text that was taken for it, and leaves the
// defaults; nothing else is refused.
TEST(RuleReader, RefusesAnUnknownFrequencyAlone) {
    for (Row& row : qel::test::list("recurrence/unknown-frequencies.txt")) {
        SCOPED_TRACE(row["report"]);
        const qel::test::TraceCapture trace;
        _rruleRepeat rule;
        int flags = 7;
        const char* const text = row["text"].empty() ? nullptr : row["text"].c_str();
        EXPECT_EQ(kReaders.at(row["form"])(text, &rule, &flags), -1);
        EXPECT_TRUE(trace.hasError(row["report"], "RRule"));
        EXPECT_EQ(describe(rule), "");
        EXPECT_EQ(flags, 0);
    }
}

// A million items take time in proportion to their number in every list of every form.
TEST(RuleReader, ReadsAMillionTokens) {
    for (Row& row : qel::test::list("recurrence/long-rules.txt")) {
        std::string text = row["start"];
        for (int i = 0; i < 1'000'000; ++i) text += row["item"];
        _rruleRepeat rule;
        const int result = kReaders.at(row["form"])((text + row["end"]).c_str(), &rule, nullptr);
        EXPECT_EQ(result, row["record"].empty() ? -1 : 0) << row["start"];
        EXPECT_EQ(describe(rule), row["record"]);
    }
}

}  // namespace
