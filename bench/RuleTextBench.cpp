// Rule texts to records and back, beside libical.
#include <libical/ical.h>

#include <cstring>
#include <string>

#include "Comparison.h"
#include "QelUtility/RRule.h"
#include "QelUtility/VStr.h"

namespace qel::bench {

namespace {

constexpr char kICalendar[] = "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR";
constexpr char kVCalendar[] = "W2 MO WE FR #10";

_rruleRepeat recordOf(const char* text) {
    _rruleRepeat rule;
    BxUtil_PositionalV20toRRULE(text, &rule, nullptr);
    return rule;
}

bool sameRule() {
    _rruleRepeat rule = recordOf(kICalendar);
    _rruleRepeat fromV10;
    BxUtil_PositionalV10toRRULE(kVCalendar, &fromV10, nullptr);
    const icalrecurrencetype peer = icalrecurrencetype_from_string(kICalendar);
    unsigned peerDays = 0;
    for (int i = 0; peer.by_day[i] != ICAL_RECURRENCE_ARRAY_MAX; ++i)
        peerDays |= 1U << peer.by_day[i];
    VStr text;
    VStr v10;
    return peer.freq == ICAL_WEEKLY_RECURRENCE && rule.freq == RRULE_FREQ_WEEKLY &&
           peer.count == rule.count && peer.interval == rule.interval && peerDays == rule.byDay &&
           std::memcmp(&rule, &fromV10, sizeof rule) == 0 &&
           std::strcmp(BxUtil_RRULEtoIETF(&rule, text, true), kICalendar) == 0 &&
           std::strcmp(BxUtil_RRULEtoV10IETF(&rule, v10, true), kVCalendar) == 0;
}

}  // namespace

void addRuleTexts() {
    Comparison({"iCalendar rule text to record", 80, "46 bytes read, 148 written, no allocation", 0,
                "libical", 303},
               sameRule)
        .ours([] {
            _rruleRepeat rule;
            benchmark::DoNotOptimize(BxUtil_PositionalV20toRRULE(kICalendar, &rule, nullptr));
            benchmark::DoNotOptimize(rule);
        })
        .peer(
            "libical",
            [] { benchmark::DoNotOptimize(icalrecurrencetype_from_string(kICalendar)); });
    Comparison(
        {"record to iCalendar rule text", 45, "46 bytes written into one block", 0, "libical", 142},
        sameRule)
        .ours([rule = recordOf(kICalendar), out = VStr()]() mutable {
            benchmark::DoNotOptimize(BxUtil_RRULEtoIETF(&rule, out, true));
        })
        .peer("libical", [rule = icalrecurrencetype_from_string(kICalendar)]() mutable {
            char* text = icalrecurrencetype_as_string_r(&rule);
            benchmark::DoNotOptimize(text);
            icalmemory_free_buffer(text);
        });
    Comparison({"vCalendar rule text to record", 80, "15 bytes read, 148 written, no allocation"},
               sameRule)
        .ours([] {
            _rruleRepeat rule;
            benchmark::DoNotOptimize(BxUtil_PositionalV10toRRULE(kVCalendar, &rule, nullptr));
            benchmark::DoNotOptimize(rule);
        });
    Comparison({"record to vCalendar rule text", 45, "15 bytes written into one block"}, sameRule)
        .ours([rule = recordOf(kICalendar), out = VStr()]() mutable {
            benchmark::DoNotOptimize(BxUtil_RRULEtoV10IETF(&rule, out, true));
        });
}

}  // namespace qel::bench
