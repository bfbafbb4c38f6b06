// The next occurrence of a series, the first one after a date, and the count of a rule from and to
// an end date; beside libical's iterator. Both sides first list the same dates.
#include <libical/ical.h>

#include <memory>
#include <string>
#include <vector>

#include "Comparison.h"
#include "QelUtility/BxRepeat.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RptNext.h"
#include "QelUtility/ZQDate.h"

namespace qel::bench {

namespace {

struct Series {
    const char* name;
    double goal;
    const char* positional;  // the library's own rule form
    const char* iCalendar;
    const char* start;
};

const Series kSeries[] = {
    {"daily", 10, "DAILY;;;1;", "FREQ=DAILY", "20050615"},
    {"weekly by days", 12, "WEEKLY;;;2;;;;MO,WE,FR;",
     "FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE,FR;WKST=SU", "20050615"},
    {"monthly by day", 15, "MONTHLY;;;1;;;;;15;", "FREQ=MONTHLY;BYMONTHDAY=15", "20050615"},
    {"monthly by position", 20, "MONTHLY;;;1;;;;TU;;;;;2;", "FREQ=MONTHLY;BYDAY=TU;BYSETPOS=2",
     "20050614"},
    {"yearly", 15, "YEARLY;;;1;;;;;15;;;6;", "FREQ=YEARLY;BYMONTH=6;BYMONTHDAY=15", "20050615"},
};

// Occurrences compared before the clock starts: until 2035, since libical ends in 2037 where a time
// has 32 bits.
constexpr int kAgreed = 30;

ZQTR_REPEAT repeatOf(const Series& series) {
    _rruleRepeat rule;
    ZQTR_REPEAT repeat;
    int endFromRule = 0;
    int flags = 0;
    ClearZQTR(&repeat);
    if (BxUtil_PositionaltoRRULE(series.positional, &rule, nullptr) != 0 ||
        BxUtil_RRuleToBxRepeat(&rule, "", series.start, &endFromRule, &repeat, &flags) != 0)
        ClearZQTR(&repeat);
    return repeat;
}

using Iterator = std::unique_ptr<icalrecur_iterator, void (*)(icalrecur_iterator*)>;

Iterator iteratorOf(const Series& series) {
    return {icalrecur_iterator_new(icalrecurrencetype_from_string(series.iCalendar),
                                   icaltime_from_string(series.start)),
            icalrecur_iterator_free};
}

int codeOf(const icaltimetype& time) {
    unsigned code = 0;
    ZQ_DateEncode(time.month, time.day, time.year, &code);
    return static_cast<int>(code);
}

bool sameDates(const Series& series) {
    ZQTR_REPEAT repeat = repeatOf(series);
    const Iterator peer = iteratorOf(series);
    int next = -1;
    int previous = -1;
    for (int i = 0; i < kAgreed; ++i)
        if (ZQRepeatNextDate(&repeat, &next, &previous) != 0 ||
            codeOf(icalrecur_iterator_next(peer.get())) != next)
            return false;
    return true;
}

// Steps through the first kAgreed occurrences, again and again.
auto stepping(ZQTR_REPEAT repeat) {
    return [repeat, next = -1, previous = -1, steps = 0]() mutable {
        benchmark::DoNotOptimize(ZQRepeatNextDate(&repeat, &next, &previous));
        if (++steps == kAgreed) {
            steps = 0;
            previous = -1;
        }
    };
}

void addSteps() {
    for (const Series& series : kSeries) {
        auto peer = std::make_shared<Iterator>(iteratorOf(series));
        Comparison({std::string("next occurrence, ") + series.name, series.goal,
                    "a record of 148 bytes read, no allocation"},
                   [&series] { return sameDates(series); })
            .ours(stepping(repeatOf(series)))
            .peer("libical", [&series, peer, steps = 0]() mutable {
                benchmark::DoNotOptimize(icalrecur_iterator_next(peer->get()));
                if (++steps == kAgreed) {
                    steps = 0;
                    *peer = iteratorOf(series);
                }
            });
    }
}

// --- The first occurrence ten years on -----------------------------------------------------------

constexpr int kTenYears = 3652;  // days
constexpr int kDates = 32;       // that are asked for, day after day, so that all cases come

int firstFrom(const ZQTR_REPEAT& repeat, int date) {
    int found = -1;
    return ZQRepeatJump(&repeat, date, &found) == 0 ? found : -1;
}

// The peer goes on from where it is set.
int firstFrom(const Iterator& peer, const icaltimetype& date) {
    icalrecur_iterator_set_start(peer.get(), date);
    return codeOf(icalrecur_iterator_next(peer.get()));
}

icaltimetype timeOf(int code) {
    char text[9];
    return icaltime_from_string(ZQ_CodeDateToAlpha(code, text));
}

// Set into the middle of a week, the peer's weekly iterator leaves out days of it.
bool hasPeer(const Series& series) {
    return std::string(series.name) != "weekly by days";
}

bool sameJumps(const Series& series) {
    ZQTR_REPEAT repeat = repeatOf(series);
    const Iterator peer = iteratorOf(series);
    int next = -1;
    int previous = -1;
    for (int date = repeat.startDate + kTenYears; date < repeat.startDate + kTenYears + kDates;
         ++date) {
        while (next < date)
            if (ZQRepeatNextDate(&repeat, &next, &previous) != 0) return false;
        if (firstFrom(repeat, date) != next) return false;
        if (hasPeer(series) && firstFrom(peer, timeOf(date)) != next) return false;
    }
    return true;
}

void addJumps() {
    for (const Series& series : kSeries) {
        const ZQTR_REPEAT repeat = repeatOf(series);
        std::vector<icaltimetype> times;
        for (int i = 0; i < kDates; ++i) times.push_back(timeOf(repeat.startDate + kTenYears + i));
        Comparison row(
            {std::string("first occurrence ten years on, ") + series.name, 30,
             "a record of 148 bytes read, no allocation"},
            [&series] { return sameJumps(series); });
        row.ours([repeat, i = 0]() mutable {
            benchmark::DoNotOptimize(
                firstFrom(repeat, repeat.startDate + kTenYears + i++ % kDates));
        });
        if (!hasPeer(series)) continue;
        row.peer("libical", [peer = std::make_shared<Iterator>(iteratorOf(series)), times,
                             i = std::size_t{0}]() mutable {
            benchmark::DoNotOptimize(firstFrom(*peer, times[i++ % kDates]));
        });
    }
}

// The types that no rule text of one line stands for.
void addOwnTypes() {
    ZQTR_REPEAT repeat;
    ClearZQTR(&repeat);
    repeat.startDate = 38516;  // 15 June 2005
    repeat.endDate = -1;
    repeat.interval = 1;
    repeat.unitCount = 1;
    for (int i = 1; i < 12; i += 3) repeat.months[i] = 1;
    repeat.weeks[1] = repeat.weeks[4] = 1;
    repeat.days[2] = 1;
    repeat.dayOfWeek = 3;
    repeat.weekOfMonth = 5;
    repeat.dayOfMonth = 40;
    for (const short type : {REPEAT_WEEKS_OF_MONTHS, REPEAT_QUARTERLY_DAY, REPEAT_QUARTERLY_WEEKDAY,
                             REPEAT_WEEKS_MONTHLY}) {
        repeat.type = type;
        Comparison({"next occurrence, type " + std::to_string(type), 30,
                    "a record of 148 bytes read, no allocation"},
                   [repeat]() mutable {
                       int next = -1;
                       int previous = -1;
                       for (int i = 0; i < kAgreed; ++i) {
                           const int before = next;
                           if (ZQRepeatNextDate(&repeat, &next, &previous) != 0 || next <= before)
                               return false;
                       }
                       return true;
                   })
            .ours(stepping(repeat));
    }
}

// A daily rule of 100 occurrences. The conversions step it themselves, so that beside them stand
// the steps alone.
void addCounts() {
    static constexpr int kSteps = 100;
    static const Series kDaily{"", 0, "DAILY;;100;1;", "", "20050615"};
    static _rruleRepeat rule;
    BxUtil_PositionaltoRRULE(kDaily.positional, &rule, nullptr);
    static ZQTR_REPEAT repeat = repeatOf(kDaily);
    const auto steps = [] {
        int next = -1;
        int previous = -1;
        for (int i = 0; i < kSteps; ++i) ZQRepeatNextDate(&repeat, &next, &previous);
        benchmark::DoNotOptimize(next);
    };
    const auto same = [] {
        _rruleRepeat back;
        VStr exclusions;
        VStr start;
        int flags = 0;
        return repeat.endDate == repeat.startDate + kSteps - 1 &&
               BxUtil_BxRepeatToRRule(&repeat, &back, exclusions, start, 0, &flags) >= 0;
    };
    Comparison({"rule to repeat record, the end of 100 steps", 0, "100 steps"}, same)
        .ours([] {
            ZQTR_REPEAT made;
            int endFromRule = 0;
            int flags = 0;
            BxUtil_RRuleToBxRepeat(&rule, "", kDaily.start, &endFromRule, &made, &flags);
            benchmark::DoNotOptimize(made.endDate);
        })
        .peer("the steps alone", steps);
    Comparison({"repeat record to rule, the count of 99 steps", 0, "99 steps"}, same)
        .ours([counted = repeat, exclusions = VStr(), start = VStr()]() mutable {
            counted.endDate = counted.startDate + 98;
            _rruleRepeat made;
            int flags = 0;
            BxUtil_BxRepeatToRRule(&counted, &made, exclusions, start, 0, &flags);
            benchmark::DoNotOptimize(made.count);
        })
        .peer("the steps alone", steps);
}

}  // namespace

void addRecurrence() {
    addSteps();
    addJumps();
    addOwnTypes();
    addCounts();
}

}  // namespace qel::bench
