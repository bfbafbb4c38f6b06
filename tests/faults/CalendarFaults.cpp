// Dates, zones and recurrence without memory: a text is whole or null, never a part of itself, and
// a conversion that returns success has made what it makes with memory.
#include <cstdlib>
#include <cstring>

#include "QelUtility/BxRepeat.h"
#include "QelUtility/BxTimezones.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RptExpand.h"
#include "QelUtility/RptNext.h"
#include "faults/Exhaustion.h"

namespace qel::test {

namespace {

constexpr int kStart = 38516;  // 15 June 2005

// A conversion that succeeds gives its whole texts; refused memory is a code and null texts.
struct Converted {
    VStr text{"20050615T083000"};
    VStr other;
    VStrArray list;
    std::vector<int> numbers;
    int result = 0;
    int flags = 0;

    Outcome left(const Attempt&) {
        return seen(together(result, text, other, list.GetSize(), numbers.size()), flags);
    }
};

constexpr char kPositional[] = "MONTHLY;20301231T235959Z;;2;;;;MO,-1FR;1,-1;;;1,6;;MO;";

// A reader needs no memory, or reads the same without; the writers have a rule whose text is long.
struct Rule : Converted {
    _rruleRepeat rule;

    Rule() {
        text.Empty();
        BxUtil_PositionaltoRRULE(kPositional, &rule, nullptr);
        for (int day = 1; day <= 28; ++day) rule.byMonthDay |= 1U << day;
    }
    Outcome left(const Attempt& attempt) {
        Outcome outcome = Converted::left(attempt);
        outcome.emplace_back(reinterpret_cast<const char*>(&rule), sizeof rule);
        return outcome;
    }
};

// A repeat of every other day, with exclusions; a rule made of it, or it of a rule.
struct Repeat : Converted {
    int dates[10];
    ZQTR_REPEAT repeat{};
    ZQTR_REPEAT madeRepeat{};
    _rruleRepeat rule;
    DateBlock days{};
    int valid = 0;

    Repeat() {
        text.Empty();
        for (int i = 0; i < 10; ++i) dates[i] = kStart + i;
        repeat.type = REPEAT_DAILY;
        repeat.startDate = kStart;
        repeat.endDate = kStart + 10;
        repeat.interval = 2;
        repeat.unitCount = 1;
        repeat.exclusions = dates;
        repeat.exclusionCount = 10;
        BxUtil_PositionalV20toRRULE("FREQ=WEEKLY;COUNT=10;BYDAY=MO", &rule, nullptr);
        DateBlock_Init(&days, 0, DATEBLOCK_STEP, DATEBLOCK_MAXIMUM);
    }
    Outcome left(const Attempt&) {
        const int exclusions = result == 0 ? madeRepeat.exclusionCount : 0;
        std::free(madeRepeat.exclusions);
        DateBlock_Free(&days);
        return seen(together(result, text, result == 0 ? other : VStr(), exclusions, valid), flags);
    }
};

// A call that gives a text, or 2001 and a null string.
Operation givesText(const char* name, int (*call)(VStr& text)) {
    return {name,
            {"2001 (null)"},
            [call](Attempt& attempt) {
                VStr text;
                int result = 0;
                attempt.armed([&] { result = call(text); });
                return seen(together(result, text));
            }};
}

Operation reads(const char* name, int (*reader)(const char*, _rruleRepeat*, int*),
                const char* text) {
    return {name,
            {},
            [reader, text](Attempt& attempt) {
                Rule made;
                attempt.armed([&] { made.result = reader(text, &made.rule, &made.flags); });
                return made.left(attempt);
            }};
}

Operation writes(const char* name, const char* (*writer)(_rruleRepeat*, VStr&, bool)) {
    return {
        name,
        {"1 (null) (null) 0 0"},
        [writer](Attempt& attempt) {
            Rule made;
            attempt.armed([&] { made.result = writer(&made.rule, made.text, true) == nullptr; });
            return made.left(attempt);
        }};
}

const Operation kCalendar[] = {
    givesText("LocalToUTC",
              [](VStr& text) { return BxTZ_LocalToUTC(11, "20050615T083000", text); }),
    givesText("OfUTC", [](VStr& text) { return BxTZ_LocalToUTC(11, "20050615T083000Z", text); }),
    givesText("UTCToLocal",
              [](VStr& text) { return BxTZ_UTCToLocal(11, "20050615T123000Z", text); }),
    givesText("ByOffset",
              [](VStr& text) { return BxTZ_LocalToUTCByOffset(-2, -30, "20050615T083000", text); }),
    on<Converted>("ConvertZone", {"2001 20050615T083000 (null) 0 0"},
                  [](auto& made) { made.result = BxTZ_ConvertZone(made.text, 11, 22); }),
    on<Converted>("ZoneName", {"0 (null) (null) 0 0"},
                  [](auto& made) { BxTZ_GetZoneName(22, made.text); }),
    on<Converted>("ZoneIDs", {},
                  [](auto& made) {
                      made.result = BxTZ_GetZoneID("a zone whose name is longer than a string's");
                      made.flags = BxTZ_GetZoneID("UTC");
                  }),
    on<Converted>("ZoneList", {"0 20050615T083000 (null) 0 0"},
                  [](auto& made) { BxTZ_GetZoneList(made.list, made.numbers); }),
    on<Converted>("OwnZone", {},
                  [](auto& made) {
                      CBxTimeZoneUtility zone;
                      zone.Initialize();
                      made.flags = std::atoi(zone.LocalToUTC("20050615T083000") + 9);
                      zone.UTCToLocal("20050615T083000Z");
                  }),
    reads("ReadPositional", BxUtil_PositionaltoRRULE, kPositional),
    reads("ReadICalendar", BxUtil_PositionalV20toRRULE,
          "FREQ=WEEKLY;UNTIL=20301231T235959Z;INTERVAL=2;BYDAY=MO,WE,FR"),
    reads("ReadVCalendar", BxUtil_PositionalV10toRRULE, "MP1 1+ MO 2- FR 20301231T235959Z"),
    reads("ReadUnknown", BxUtil_PositionalV10toRRULE,
          "a frequency that nobody knows and that is long to tell"),
    writes("WriteICalendar", BxUtil_RRULEtoIETF),
    writes("WriteVCalendar", BxUtil_RRULEtoV10IETF),
    writes("WritePositional", BxUtil_RRULEtoPositional),
    on<Repeat>("RuleToRepeat", {"2001 (null) (null) 0 0", "0"},
               [](auto& made) {
                   made.result = BxUtil_RRuleToBxRepeat(&made.rule, "20050620,20050627", "20050613",
                                                        nullptr, &made.madeRepeat, &made.flags);
               }),
    on<Repeat>("RepeatToRule", {"2001 (null) (null) 0 0"},
               [](auto& made) {
                   made.result = BxUtil_BxRepeatToRRule(&made.repeat, &made.rule, made.text,
                                                        made.other, 0, nullptr);
               }),
    on<Repeat>("NextDate", {},
               [](auto& made) {
                   made.flags = ZQRepeatNextDate(&made.repeat, &made.valid, &made.result);
                   made.repeat.interval = 0;  // a failure, which is reported
                   made.flags += ZQRepeatNextDate(&made.repeat, &made.valid, &made.result);
               }),
    on<Repeat>("Unfold", {"2001 (null) (null) 0 0"},
               [](auto& made) {
                   int total = 0;
                   made.result = Unfold_Repeat(&made.repeat, 5, kStart, 0, 0, &made.days,
                                               &made.valid, &total);
               }),
    on<Repeat>("HasOccurrence", {"2001"},
               [](auto& made) {
                   made.flags = Unfold_HasOccurrence(kStart, kStart + 5, kStart, &made.repeat);
               }),
};
INSTANTIATE_TEST_SUITE_P(Calendar, Exhaustion, testing::ValuesIn(kCalendar), operationName);

}  // namespace

}  // namespace qel::test
