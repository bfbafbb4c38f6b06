// The next occurrence of a series, beside libical's iterator. Both sides first list the same dates.
#include <benchmark/benchmark.h>
#include <libical/ical.h>

#include <cstdio>
#include <string>
#include <vector>

#include "QelUtility/BxRepeat.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RptNext.h"
#include "QelUtility/ZQDate.h"

namespace {

struct Series {
    const char* name;
    const char* positional;  // the library's own rule form
    const char* iCalendar;
    const char* start;
};

const Series kSeries[] = {
    {"daily", "DAILY;;;1;", "FREQ=DAILY", "20050615"},
    {"weekly by days", "WEEKLY;;;2;;;;MO,WE,FR;", "FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE,FR;WKST=SU",
     "20050615"},
    {"monthly by day", "MONTHLY;;;1;;;;;15;", "FREQ=MONTHLY;BYMONTHDAY=15", "20050615"},
    {"monthly by position", "MONTHLY;;;1;;;;TU;;;;;2;", "FREQ=MONTHLY;BYDAY=TU;BYSETPOS=2",
     "20050614"},
    {"yearly", "YEARLY;;;1;;;;;15;;;6;", "FREQ=YEARLY;BYMONTH=6;BYMONTHDAY=15", "20050615"},
};

constexpr int kAgreed = 100;  // occurrences compared before the clock starts

bool makeRepeat(const Series& series, ZQTR_REPEAT* repeat) {
    _rruleRepeat rule;
    int endFromRule = 0, flags = 0;
    return BxUtil_PositionaltoRRULE(series.positional, &rule, nullptr) == 0 &&
           BxUtil_RRuleToBxRepeat(&rule, "", series.start, &endFromRule, repeat, &flags) == 0;
}

bool sameDates(const Series& series) {
    ZQTR_REPEAT repeat;
    if (!makeRepeat(series, &repeat)) return false;
    icalrecur_iterator* peer = icalrecur_iterator_new(
        icalrecurrencetype_from_string(series.iCalendar), icaltime_from_string(series.start));
    int next = -1, previous = -1;
    bool same = true;
    for (int i = 0; i < kAgreed && same; ++i) {
        const icaltimetype theirs = icalrecur_iterator_next(peer);
        unsigned code = 0;
        same = ZQRepeatNextDate(&repeat, &next, &previous) == 0 &&
               ZQ_DateEncode(theirs.month, theirs.day, theirs.year, &code) == 0 &&
               static_cast<int>(code) == next;
    }
    icalrecur_iterator_free(peer);
    return same;
}

void nextOurs(benchmark::State& state) {
    const Series& series = kSeries[state.range(0)];
    ZQTR_REPEAT repeat;
    if (!makeRepeat(series, &repeat) || !sameDates(series))
        return state.SkipWithError("the two sides differ");
    int next = -1, previous = -1, steps = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ZQRepeatNextDate(&repeat, &next, &previous));
        if (++steps == kAgreed) {
            steps = 0;
            previous = -1;
        }
    }
    state.SetLabel(series.name);
}
BENCHMARK(nextOurs)->Name("next occurrence/ours")->DenseRange(0, 4);

void nextLibical(benchmark::State& state) {
    const Series& series = kSeries[state.range(0)];
    const icalrecurrencetype rule = icalrecurrencetype_from_string(series.iCalendar);
    const icaltimetype start = icaltime_from_string(series.start);
    icalrecur_iterator* peer = icalrecur_iterator_new(rule, start);
    int steps = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(icalrecur_iterator_next(peer));
        if (++steps == kAgreed) {
            steps = 0;
            icalrecur_iterator_free(peer);
            peer = icalrecur_iterator_new(rule, start);
        }
    }
    icalrecur_iterator_free(peer);
    state.SetLabel(series.name);
}
BENCHMARK(nextLibical)->Name("next occurrence/libical")->DenseRange(0, 4);

}  // namespace
