// The readers under strain: refusals and their reports, round trips, long texts, real texts.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <random>
#include <string>

#include "QelUtility/BxParseValues.h"
#include "QelUtility/RRule.h"
#include "QelUtility/VStr.h"
#include "recurrence/RRuleInternal.h"
#include "recurrence/RuleRecordText.h"
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
            if (keep) {
                EXPECT_EQ(items.atEnd(), count + 1 == parser.GetSize()) << text;
            }
        }
        EXPECT_EQ(count, parser.GetSize()) << text;
    }
}

// An unknown frequency is refused, reported with the text that was taken for it, and leaves the
// defaults; nothing else is refused.
TEST(RuleReader, RefusesAnUnknownFrequencyAlone) {
    const struct {
        Reader read;
        const char* text;
        const char* report;
    } kCases[] = {
        {BxUtil_PositionalV10toRRULE, "X1 #0", "Bad FREQX1.0.-1"},
        {BxUtil_PositionalV10toRRULE, "w1 MO", "Bad FREQw1.0.-1"},
        {BxUtil_PositionalV10toRRULE, " D1 #0", "Bad FREQ.0.-1"},
        {BxUtil_PositionalV10toRRULE, "", "Bad FREQ.0.-1"},
        {BxUtil_PositionalV10toRRULE, nullptr, "Bad FREQ.0.-1"},
        {BxUtil_PositionalV20toRRULE, "FREQ=HOURLY;COUNT=3;UNTIL=20051231T000000",
         "Bad FREQHOURLY.0.-1"},
        {BxUtil_PositionalV20toRRULE, "freq=DAILY", "Bad FREQ.0.-1"},
        {BxUtil_PositionalV20toRRULE, nullptr, "Bad FREQ.0.-1"},
        {BxUtil_PositionaltoRRULE, "FORTNIGHTLY;;2", "Bad FREQFORTNIGHTLY.0.-1"},
        {BxUtil_PositionaltoRRULE, ";;;1", "Bad FREQ.0.-1"},
        {BxUtil_PositionaltoRRULE, nullptr, "Bad FREQ.0.-1"},
    };
    for (const auto& each : kCases) {
        const qel::test::TraceCapture trace;
        _rruleRepeat rule;
        int flags = 7;
        EXPECT_EQ(each.read(each.text, &rule, &flags), -1) << each.report;
        EXPECT_TRUE(trace.hasError(each.report, "RRule")) << each.report;
        EXPECT_EQ(describe(rule), "");
        EXPECT_EQ(flags, 0);
    }
}

// Every record whose present parts hold values in range comes back from the positional form as it
// went, its end with the time.
TEST(RuleReader, PositionalFormRoundTrips) {
    std::mt19937_64 random(1);
    const auto number = [&](long long low, long long high) {
        return low +
               static_cast<long long>(random() % static_cast<unsigned long long>(high - low + 1));
    };
    for (int round = 0; round < 500; ++round) {
        _rruleRepeat rule;
        BxUtil_InitializeRRULE(&rule);
        rule.freq = static_cast<unsigned char>(0x10 << number(0, 3));
        rule.interval = static_cast<short>(number(1, 32767));
        if (number(0, 1) != 0) {
            rule.count = static_cast<short>(number(-32768, 32767));
        } else {
            rule.until = number(0, 219145LL * 86400 + 86399);
        }
        rule.type = static_cast<short>(number(0, 63) << 2);
        if ((rule.type & RRULE_TYPE_BYDAY) != 0) {
            rule.byDay = static_cast<unsigned char>(number(1, 127) << 1);
        }
        if ((rule.type & RRULE_TYPE_BYMONTHDAY) != 0) {
            rule.byMonthDay = static_cast<unsigned>(number(1, 0x7fffffff) << 1);
            rule.byMonthDayNeg = static_cast<unsigned>(number(0, 0x7fffffff) << 1);
        }
        if ((rule.type & RRULE_TYPE_BYYEARDAY) != 0) {
            rule.byYearDay[5] = 1ULL << number(0, 46);  // 320 .. 366
            rule.byYearDayNeg[0] = random() & ~1ULL;
            rule.byYearDayNeg[4] = random();
        }
        if ((rule.type & RRULE_TYPE_BYWEEKNO) != 0) {
            rule.byWeekNo = static_cast<unsigned long long>(number(1, (1LL << 53) - 1)) << 1;
            rule.byWeekNoNeg = static_cast<unsigned long long>(number(0, (1LL << 53) - 1)) << 1;
        }
        if ((rule.type & RRULE_TYPE_BYMONTH) != 0) {
            rule.byMonth = static_cast<unsigned short>(number(1, 0xfff) << 1);
        }
        if ((rule.type & RRULE_TYPE_BYSETPOS) != 0) {
            for (int slot = static_cast<int>(number(0, 3)); slot >= 0; --slot) {
                rule.setPos[slot] = static_cast<short>(number(-366, -1));
            }
        }
        if (number(0, 1) != 0) rule.wkst |= static_cast<unsigned char>(1 << number(2, 7));
        VStr text;
        ASSERT_NE(qel::RRule_ToPositional(rule, text, true), nullptr);
        _rruleRepeat back;
        ASSERT_EQ(BxUtil_PositionaltoRRULE(text, &back, nullptr), 0);
        ASSERT_EQ(std::memcmp(&rule, &back, sizeof rule), 0) << text << "\n"
                                                             << describe(rule) << "\n"
                                                             << describe(back);
    }
}

// A million items take time in proportion to their number in every list of every form.
TEST(RuleReader, ReadsAMillionTokens) {
    const auto repeated = [](std::string text, const char* item) {
        for (int i = 0; i < 1'000'000; ++i) text += item;
        return text;
    };
    _rruleRepeat rule;
    int flags = 0;
    EXPECT_EQ(BxUtil_PositionalV10toRRULE(repeated("W1", " MO").c_str(), &rule, &flags), 0);
    EXPECT_EQ(describe(rule), "WEEKLY parts=BYDAY days=2");
    EXPECT_EQ(BxUtil_PositionalV10toRRULE((repeated("D1", " ") + "#4").c_str(), &rule, &flags), 0);
    EXPECT_EQ(describe(rule), "DAILY count=4");
    EXPECT_EQ(
        BxUtil_PositionalV20toRRULE(repeated("FREQ=MONTHLY;BYDAY=", "1MO,").c_str(), &rule, &flags),
        0);
    EXPECT_EQ(describe(rule), "MONTHLY parts=BYDAY,BYSETPOS days=2 positions=1,1,1,1");
    EXPECT_EQ(
        BxUtil_PositionalV20toRRULE((repeated("", "X=1;") + "FREQ=DAILY").c_str(), &rule, &flags),
        0);
    EXPECT_EQ(describe(rule), "DAILY");
    EXPECT_EQ(BxUtil_PositionaltoRRULE(repeated("YEARLY;;;;;;;;;;;6", ",6").c_str(), &rule, &flags),
              0);
    EXPECT_EQ(describe(rule), "YEARLY parts=BYMONTH months=6");
    EXPECT_EQ(BxUtil_PositionaltoRRULE(repeated("DAILY", ";1").c_str(), &rule, nullptr), 0);
    EXPECT_EQ(BxUtil_PositionalV10toRRULE(repeated("", "X").c_str(), &rule, nullptr), -1);
}

// Every rule text of real files is taken by every reader, and what a reader takes can be written
// and read again.
TEST(RuleReader, SurvivesTheTextsOfRealFiles) {
    std::ifstream table(QEL_TEST_SHARED_DATA "/tables/vcal10_rule_spellings.tsv");
    if (!table) GTEST_SKIP() << "no table of rule spellings";
    std::string line;
    std::getline(table, line);
    int rows = 0;
    int read = 0;
    while (std::getline(table, line)) {
        const std::size_t start = line.find('[') + 1;
        const std::string text = line.substr(start, line.rfind(']') - start);
        ++rows;
        for (auto reader :
             {BxUtil_PositionalV10toRRULE, BxUtil_PositionalV20toRRULE, BxUtil_PositionaltoRRULE}) {
            _rruleRepeat rule;
            if (reader(text.c_str(), &rule, nullptr) != 0) continue;
            ++read;
            VStr out;
            EXPECT_NE(BxUtil_RRULEtoIETF(&rule, out, true), nullptr) << text;
            EXPECT_EQ(BxUtil_PositionalV20toRRULE(out, &rule, nullptr), 0) << text;
            EXPECT_NE(BxUtil_RRULEtoV10IETF(&rule, out, true), nullptr) << text;
            EXPECT_EQ(BxUtil_PositionalV10toRRULE(out, &rule, nullptr), 0) << text;
        }
    }
    EXPECT_GT(rows, 0);
    EXPECT_GT(read, rows / 2);
}

}  // namespace
