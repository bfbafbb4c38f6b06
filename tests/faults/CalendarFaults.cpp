// Dates, zones and recurrence without memory: a text is whole or null, never a part of itself, and
// a conversion that returns success has made what it makes with memory.
#include <climits>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "QelUtility/BxRepeat.h"
#include "QelUtility/BxTimezones.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RptNext.h"
#include "faults/Exhaustion.h"
#include "recurrence/RRuleInternal.h"
#include "recurrence/unfold.h"

namespace qel::test {

namespace {

constexpr int kStart = 38516;  // 15 June 2005

// Success gives the whole text; refused memory gives 2001 and a null string.
void expectText(const VStr& out, const char* whole, int result, const Attempt& attempt) {
    if (result == 0) {
        EXPECT_STREQ(out, whole);
    } else {
        EXPECT_TRUE(attempt.starved());
        EXPECT_EQ(result, QEL_OUT_OF_MEMORY);
        EXPECT_EQ(out.Compare(nullptr), 0) << out;
    }
}

template <typename Convert>
void converted(Attempt& attempt, const char* whole, Convert convert) {
    VStr out("old");
    int result = -2;
    attempt.armed([&] { result = convert(out); });
    expectText(out, whole, result, attempt);
}

const Operation kZones[] = {
    {"LocalToUTC",
     [](Attempt& attempt) {
         converted(attempt, "20050615T123000Z",
                   [](VStr& out) { return BxTZ_LocalToUTC(11, "20050615T083000", out); });
     }},
    {"LocalToUTCOfUTC",
     [](Attempt& attempt) {
         converted(attempt, "20050615T083000Z",
                   [](VStr& out) { return BxTZ_LocalToUTC(11, "20050615T083000Z", out); });
     }},
    {"UTCToLocal",
     [](Attempt& attempt) {
         converted(attempt, "20050615T083000",
                   [](VStr& out) { return BxTZ_UTCToLocal(11, "20050615T123000Z", out); });
     }},
    {"LocalToUTCByOffset",
     [](Attempt& attempt) {
         converted(attempt, "20050615T110000Z", [](VStr& out) {
             return BxTZ_LocalToUTCByOffset(-2, -30, "20050615T083000", out);
         });
     }},
    {"ConvertZone",
     [](Attempt& attempt) {
         VStr text("20050615T083000");
         int result = -2;
         attempt.armed([&] { result = BxTZ_ConvertZone(text, 11, 22); });
         EXPECT_STREQ(text, result == 0 ? "20050615T123000" : "20050615T083000");
         EXPECT_EQ(result, attempt.starved() ? QEL_OUT_OF_MEMORY : 0);
     }},
    {"Names",
     [](Attempt& attempt) {
         VStr name;
         int zone = -2;
         int unknown = -2;
         attempt.armed([&] {
             BxTZ_GetZoneName(22, name);
             zone = BxTZ_GetZoneID("UTC");
             unknown = BxTZ_GetZoneID("a zone whose name is longer than a short string's");
         });
         EXPECT_EQ(zone, 22);
         EXPECT_EQ(unknown, -1);
     }},
    {"List",
     [](Attempt& attempt) {
         VStrArray names;
         std::vector<int> numbers;
         attempt.armed([&] { BxTZ_GetZoneList(names, numbers); });
         ASSERT_EQ(names.GetSize(), attempt.starved() ? 0 : 77);
         ASSERT_EQ(numbers.size(), attempt.starved() ? 0U : 77U);
     }},
    {"OwnZone",
     [](Attempt& attempt) {
         CBxTimeZoneUtility reference;
         reference.Initialize();
         const std::string whole = reference.LocalToUTC("20050615T083000");
         CBxTimeZoneUtility zone;
         std::string utc(20, ' ');
         attempt.armed([&] {
             zone.Initialize();
             utc = zone.LocalToUTC("20050615T083000");
             zone.UTCToLocal("20050615T083000Z");
         });
         EXPECT_FALSE(attempt.starved());
         EXPECT_EQ(utc, whole);
     }},
};
INSTANTIATE_TEST_SUITE_P(Zones, Exhaustion, testing::ValuesIn(kZones), operationName);

// --- Rules ---------------------------------------------------------------------------------------

using Reader = int (*)(const char* text, _rruleRepeat* rule, int* flags);

// A reader needs no memory, or reads the same without.
void read(Attempt& attempt, Reader reader, const char* text, int expected = 0) {
    _rruleRepeat whole;
    int wholeFlags = 0;
    ASSERT_EQ(reader(text, &whole, &wholeFlags), expected);
    _rruleRepeat rule;
    int flags = -1;
    int result = -2;
    attempt.armed([&] { result = reader(text, &rule, &flags); });
    EXPECT_EQ(result, expected);
    EXPECT_EQ(flags, wholeFlags);
    EXPECT_EQ(std::memcmp(&rule, &whole, sizeof rule), 0);
}

constexpr char kPositional[] = "MONTHLY;20301231T235959Z;;2;;;;MO,-1FR;1,-1;;;1,6;;MO;";

_rruleRepeat wideRule() {
    _rruleRepeat rule;
    BxUtil_PositionaltoRRULE(kPositional, &rule, nullptr);
    for (int day = 1; day <= 28; ++day) rule.byMonthDay |= 1U << day;
    return rule;
}

template <typename Write>
void wrote(Attempt& attempt, Write write) {
    _rruleRepeat rule = wideRule();
    VStr reference;
    const std::string whole = write(rule, reference);
    VStr out("old");
    const char* result = nullptr;
    attempt.armed([&] { result = write(rule, out); });
    if (attempt.starved()) {
        EXPECT_EQ(result, nullptr);
        EXPECT_EQ(out.Compare(nullptr), 0) << out;
    } else {
        EXPECT_STREQ(result, whole.c_str());
    }
}

const Operation kRules[] = {
    {"ReadPositional",
     [](Attempt& attempt) { read(attempt, BxUtil_PositionaltoRRULE, kPositional); }},
    {"ReadICalendar",
     [](Attempt& attempt) {
         read(attempt, BxUtil_PositionalV20toRRULE,
              "FREQ=WEEKLY;UNTIL=20301231T235959Z;INTERVAL=2;BYDAY=MO,WE,FR");
     }},
    {"ReadVCalendar",
     [](Attempt& attempt) {
         read(attempt, BxUtil_PositionalV10toRRULE, "MP1 1+ MO 2- FR 20301231T235959Z");
     }},
    {"ReadUnknown",
     [](Attempt& attempt) {
         read(attempt, BxUtil_PositionalV10toRRULE,
              "a frequency that nobody knows and that is long to tell", QEL_FAILED);
     }},
    {"WriteICalendar",
     [](Attempt& attempt) {
         wrote(attempt,
               [](_rruleRepeat& rule, VStr& out) { return BxUtil_RRULEtoIETF(&rule, out, false); });
     }},
    {"WriteVCalendar",
     [](Attempt& attempt) {
         wrote(attempt, [](_rruleRepeat& rule, VStr& out) {
             return BxUtil_RRULEtoV10IETF(&rule, out, true);
         });
     }},
    {"WritePositional",
     [](Attempt& attempt) {
         wrote(attempt,
               [](_rruleRepeat& rule, VStr& out) { return RRule_ToPositional(rule, out, true); });
     }},
};
INSTANTIATE_TEST_SUITE_P(Rules, Exhaustion, testing::ValuesIn(kRules), operationName);

// --- Repeats -------------------------------------------------------------------------------------

ZQTR_REPEAT daily(int end) {
    ZQTR_REPEAT repeat;
    std::memset(&repeat, 0, sizeof repeat);
    repeat.type = REPEAT_DAILY;
    repeat.startDate = kStart;
    repeat.endDate = end;
    repeat.interval = 2;
    repeat.unitCount = 1;
    return repeat;
}

const Operation kRepeats[] = {
    {"RuleToRepeat",
     [](Attempt& attempt) {
         _rruleRepeat rule;
         BxUtil_PositionalV20toRRULE("FREQ=WEEKLY;COUNT=10;BYDAY=MO", &rule, nullptr);
         ZQTR_REPEAT repeat;
         int result = -2;
         int flags = 0;
         attempt.armed([&] {
             result = BxUtil_RRuleToBxRepeat(&rule, "20050620,20050627", "20050613", nullptr,
                                             &repeat, &flags);
         });
         EXPECT_EQ(result == 0, repeat.exclusionCount == 2);
         EXPECT_TRUE(result == 0 || (attempt.starved() && result == QEL_OUT_OF_MEMORY));
         std::free(repeat.exclusions);
     }},
    {"RepeatToRule",
     [](Attempt& attempt) {
         int dates[10];
         std::string list;
         for (int i = 0; i < 10; ++i) {
             dates[i] = kStart + i;
             list += std::string(i > 0 ? "," : "") + "200506" + std::to_string(15 + i);
         }
         ZQTR_REPEAT repeat = daily(kStart + 10);
         repeat.exclusions = dates;
         repeat.exclusionCount = 10;
         _rruleRepeat rule;
         VStr exclusions;
         VStr start;
         int result = -2;
         attempt.armed([&] {
             result = BxUtil_BxRepeatToRRule(&repeat, &rule, exclusions, start, 0, nullptr);
         });
         expectText(exclusions, list.c_str(), result, attempt);
         if (result == 0) {
             EXPECT_STREQ(start, "20050615");
             EXPECT_EQ(rule.count, 6);
         }
     }},
    {"NextDate",
     [](Attempt& attempt) {
         ZQTR_REPEAT repeat = daily(-1);
         int next = -1;
         int previous = -1;
         int failure = 0;
         attempt.armed([&] {
             ZQRepeatNextDate(&repeat, &next, &previous);
             repeat.interval = 0;
             failure = ZQRepeatNextDate(&repeat, &next, &previous);
         });
         EXPECT_EQ(next, kStart);
         EXPECT_EQ(failure, QEL_REPEAT_ENGINE);
     }},
    {"Unfold",
     [](Attempt& attempt) {
         ZQTR_REPEAT repeat = daily(-1);
         DateBlock list{};
         DateBlock_Init(&list, 0, kDateBlockStep, kDateBlockMaximum);
         int valid = -1;
         int total = -1;
         int result = -2;
         int has = -2;
         attempt.armed([&] {
             result = Unfold_Repeat(&repeat, 5, kStart, 0, 0, &list, &valid, &total);
             has = Unfold_HasOccurrence(kStart, kStart + 5, kStart, &repeat);
         });
         EXPECT_TRUE(result == 0 || (attempt.starved() && result == QEL_OUT_OF_MEMORY));
         EXPECT_EQ(valid, result == 0 ? 5 : 0);
         EXPECT_TRUE(has == 1 || (attempt.starved() && has == QEL_OUT_OF_MEMORY));
         DateBlock_Free(&list);
     }},
};
INSTANTIATE_TEST_SUITE_P(Repeats, Exhaustion, testing::ValuesIn(kRepeats), operationName);

}  // namespace

}  // namespace qel::test
