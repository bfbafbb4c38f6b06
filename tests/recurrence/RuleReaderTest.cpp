// The readers under strain: refusals and their reports, long texts.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "QelUtility/BxParseValues.h"
#include "QelUtility/RRule.h"
#include "QelUtility/VStr.h"
#include "recurrence/RRuleInternal.h"
#include "recurrence/RuleRecordText.h"
#include "support/Tables.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::describe;

using Reader = int (*)(const char*, _rruleRepeat*, int*);

TEST(RuleReader, ItemsAreThoseOfTheValueParser) {
    std::minstd_rand random(4);
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        for (auto length = random() % 12; length > 0; --length) text += "a,;\\= "[random() % 6];
        const bool keep = round % 2 != 0;
        CBxParseValues parser;
        parser.SetSeparators(",");
        parser.SetAddEmptyItems(keep);
        parser.BuildSymbolArray(text.c_str());
        qel::RRuleItems items(text, ',',
                              keep ? qel::RRuleItems::Empty::kKeep : qel::RRuleItems::Empty::kDrop);
        std::string_view item;
        int count = 0;
        for (; items.next(item); ++count) {
            ASSERT_LT(count, parser.GetSize()) << text;
            EXPECT_EQ(item, static_cast<const char*>(parser[count])) << text;
            if (keep) EXPECT_EQ(items.atEnd(), count + 1 == parser.GetSize()) << text;
        }
        EXPECT_EQ(count, parser.GetSize()) << text;
    }
}

// An unknown frequency is refused, reported with the text that was taken for it, and leaves the
// defaults; nothing else is refused.
TEST(RuleReader, RefusesAnUnknownFrequencyAlone) {
    const std::map<std::string, Reader> readers = {{"v10", BxUtil_PositionalV10toRRULE},
                                                   {"icalendar", BxUtil_PositionalV20toRRULE},
                                                   {"positional", BxUtil_PositionaltoRRULE}};
    for (qel::test::Row& row : qel::test::list("recurrence/unknown-frequencies.txt")) {
        SCOPED_TRACE(row["report"]);
        const qel::test::TraceCapture trace;
        _rruleRepeat rule;
        int flags = 7;
        const Reader read = readers.at(row["form"]);
        EXPECT_EQ(read(row["text"].empty() ? nullptr : row["text"].c_str(), &rule, &flags), -1);
        EXPECT_TRUE(trace.hasError(row["report"], "RRule"));
        EXPECT_EQ(describe(rule), "");
        EXPECT_EQ(flags, 0);
    }
}

// A million items take time in proportion to their number in every list of every form.
TEST(RuleReader, ReadsAMillionTokens) {
    const auto repeated = [](std::string text, const char* item) {
        for (int i = 0; i < 1'000'000; ++i) text += item;
        return text;
    };
    const struct {
        Reader read;
        std::string text;
        const char* record;
    } rows[] = {
        {BxUtil_PositionalV10toRRULE, repeated("W1", " MO"), "WEEKLY parts=BYDAY days=2"},
        {BxUtil_PositionalV10toRRULE, repeated("D1", " ") + "#4", "DAILY count=4"},
        {BxUtil_PositionalV20toRRULE, repeated("FREQ=MONTHLY;BYDAY=", "1MO,"),
         "MONTHLY parts=BYDAY,BYSETPOS days=2 positions=1,1,1,1"},
        {BxUtil_PositionalV20toRRULE, repeated("", "X=1;") + "FREQ=DAILY", "DAILY"},
        {BxUtil_PositionaltoRRULE, repeated("YEARLY;;;;;;;;;;;6", ",6"),
         "YEARLY parts=BYMONTH months=6"},
        {BxUtil_PositionaltoRRULE, repeated("DAILY", ";1"),
         "DAILY until=0+0 parts=BYDAY,BYMONTHDAY,BYYEARDAY,BYWEEKNO,BYMONTH,BYSETPOS monthdays=1 "
         "yeardays=1 weeks=1 months=1 positions=1,0,0,0"},
    };
    _rruleRepeat rule;
    for (const auto& row : rows) {
        EXPECT_EQ(row.read(row.text.c_str(), &rule, nullptr), 0);
        EXPECT_EQ(describe(rule), row.record);
    }
    EXPECT_EQ(BxUtil_PositionalV10toRRULE(repeated("", "X").c_str(), &rule, nullptr), -1);
}

}  // namespace
