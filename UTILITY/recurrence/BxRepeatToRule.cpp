// Repeat record to rule record.
#include <cstdio>

#include "QelUtility/VStr.h"
#include "recurrence/BxRepeatInternal.h"

namespace qel::recurrence {

namespace {

constexpr int kMaxCountSteps = 100;  // occurrences that are counted before UNTIL is kept
constexpr int kWeeks = 5;            // flags of _repeat::weeks, the fifth the last week
constexpr int kPositions = 4;        // slots of _rruleRepeat::setPos
constexpr short kLastPosition = -1;
constexpr unsigned kEveryDay = 0xFE;
constexpr unsigned kWorkdays =
    RRULE_DAY_MO | RRULE_DAY_TU | RRULE_DAY_WE | RRULE_DAY_TH | RRULE_DAY_FR;
constexpr unsigned kWeekend = RRULE_DAY_SU | RRULE_DAY_SA;

// A part is present once its type bit is set, even when the record selects nothing in it.
void setPart(_rruleRepeat& rule, int part) {
    rule.type = static_cast<short>(rule.type | part);
}

void setByDay(_rruleRepeat& rule, unsigned days) {
    setPart(rule, RRULE_TYPE_BYDAY);
    rule.byDay = static_cast<unsigned char>(days);
}

void setWeekday(_rruleRepeat& rule, int weekday) {
    setByDay(rule, weekday >= 1 && weekday <= 7 ? 1U << weekday : 0U);
}

void setSelectedWeekdays(_rruleRepeat& rule, const ZQTR_REPEAT& repeat) {
    unsigned days = 0;
    for (int i = 0; i < 7; ++i)
        if (repeat.days[i] != 0) days |= 2U << i;
    setByDay(rule, days);
}

void setKindOfDay(_rruleRepeat& rule, int kind) {
    setByDay(rule, kind == REPEAT_ANY_DAY       ? kEveryDay
                   : kind == REPEAT_WORKDAY     ? kWorkdays
                   : kind == REPEAT_WEEKEND_DAY ? kWeekend
                                                : 0U);
}

// A day of the quarter beyond 31 has no bit.
void setMonthDay(_rruleRepeat& rule, int day) {
    setPart(rule, RRULE_TYPE_BYMONTHDAY);
    if (day >= 1 && day <= 31) rule.byMonthDay = 1U << day;
}

void setMonth(_rruleRepeat& rule, int month) {
    setPart(rule, RRULE_TYPE_BYMONTH);
    if (month >= 1 && month <= 12) rule.byMonth = static_cast<unsigned short>(1U << month);
}

void setSelectedMonths(_rruleRepeat& rule, const ZQTR_REPEAT& repeat) {
    setPart(rule, RRULE_TYPE_BYMONTH);
    unsigned months = 0;
    for (int i = 0; i < 12; ++i)
        if (repeat.months[i] != 0) months |= 2U << i;
    rule.byMonth = static_cast<unsigned short>(months);
}

// Position 5 of the repeat record is the last one.
void setPosition(_rruleRepeat& rule, short position) {
    setPart(rule, RRULE_TYPE_BYSETPOS);
    rule.setPos[0] = position == kWeeks ? kLastPosition : position;
}

// One position for each selected week. A rule holds four, so all five weeks are too many.
int setSelectedWeeks(_rruleRepeat& rule, const ZQTR_REPEAT& repeat, int line) {
    setPart(rule, RRULE_TYPE_BYSETPOS);
    int used = 0;
    for (int i = 0; i < kWeeks; ++i) {
        if (repeat.weeks[i] == 0) continue;
        if (used == kPositions) return fail(line, "Exceed max nSetPos array size", QEL_FAILED);
        rule.setPos[used++] = i + 1 == kWeeks ? kLastPosition : static_cast<short>(i + 1);
    }
    return QEL_OK;
}

// 0 for a type that no rule expresses.
unsigned frequencyOf(int type) {
    switch (type) {
        case REPEAT_DAILY:
        case REPEAT_WEEKLY_DAYS:
            return RRULE_FREQ_DAILY;
        case REPEAT_WEEKLY:
            return RRULE_FREQ_WEEKLY;
        case REPEAT_MONTHLY_DAY:
        case REPEAT_MONTHLY_WEEKDAY:
        case REPEAT_MONTHLY_KIND:
        case REPEAT_QUARTERLY_DAY:
        case REPEAT_QUARTERLY_WEEKDAY:
        case REPEAT_WEEKS_MONTHLY:
            return RRULE_FREQ_MONTHLY;
        case REPEAT_YEARLY_DATE:
        case REPEAT_YEARLY_WEEKDAY:
        case REPEAT_DAY_OF_MONTHS:
        case REPEAT_WEEKS_OF_MONTHS:
        case REPEAT_YEARLY_KIND:
            return RRULE_FREQ_YEARLY;
        default:
            return 0;
    }
}

int setSelectedWeeksAndDays(_rruleRepeat& rule, const ZQTR_REPEAT& repeat, int line) {
    const int result = setSelectedWeeks(rule, repeat, line);
    if (result == QEL_OK) setSelectedWeekdays(rule, repeat);
    return result;
}

// Quarters are three months; the product is kept to 16 bits, as the rule stores it.
void setQuarterInterval(_rruleRepeat& rule, const ZQTR_REPEAT& repeat) {
    rule.interval = static_cast<short>(repeat.interval * 3);
}

int setParts(_rruleRepeat& rule, const ZQTR_REPEAT& repeat) {
    switch (repeat.type) {
        case REPEAT_WEEKLY:
            setWeekday(rule, repeat.dayOfWeek);
            break;
        case REPEAT_MONTHLY_DAY:
            setMonthDay(rule, repeat.dayOfMonth);
            break;
        case REPEAT_YEARLY_WEEKDAY:
            setMonth(rule, repeat.month);
            [[fallthrough]];
        case REPEAT_MONTHLY_WEEKDAY:
            setWeekday(rule, repeat.dayOfWeek);
            setPosition(rule, repeat.weekOfMonth);
            break;
        case REPEAT_YEARLY_DATE:
            setMonth(rule, repeat.month);
            setMonthDay(rule, repeat.dayOfMonth);
            break;
        case REPEAT_DAY_OF_MONTHS:
            setSelectedMonths(rule, repeat);
            setMonthDay(rule, repeat.dayOfMonth);
            break;
        case REPEAT_WEEKS_OF_MONTHS:
            setSelectedMonths(rule, repeat);
            return setSelectedWeeksAndDays(rule, repeat, kLineTooManyWeeks);
        case REPEAT_YEARLY_KIND:
            setMonth(rule, repeat.month);
            [[fallthrough]];
        case REPEAT_MONTHLY_KIND:
            setKindOfDay(rule, repeat.dayOfWeek);
            setPosition(rule, repeat.dayOfMonth);
            break;
        case REPEAT_WEEKLY_DAYS:
            // Both bits: a reader of the record sees days selected, the writers write WEEKLY.
            rule.freq = static_cast<unsigned char>(rule.freq | RRULE_FREQ_WEEKLY);
            setSelectedWeekdays(rule, repeat);
            break;
        case REPEAT_QUARTERLY_DAY:
            setQuarterInterval(rule, repeat);
            setMonthDay(rule, repeat.dayOfMonth);
            break;
        case REPEAT_QUARTERLY_WEEKDAY:
            // The host fills the selection beside the fields that the engine reads.
            setQuarterInterval(rule, repeat);
            return setSelectedWeeksAndDays(rule, repeat, kLineTooManyQuarterWeeks);
        case REPEAT_WEEKS_MONTHLY:
            return setSelectedWeeksAndDays(rule, repeat, kLineTooManyMonthlyWeeks);
        default:
            break;
    }
    return QEL_OK;
}

int writeExclusions(const ZQTR_REPEAT& repeat, VStr& out) {
    out.Empty();
    if (repeat.exclusions == nullptr) return QEL_OK;
    VStr date;
    for (int i = 0; i < repeat.exclusionCount; ++i) {
        if (ZQTRDateTimeToUTCDate(repeat.exclusions[i], date) != QEL_OK) {
            return fail(kLineExclusionDate, "Failed date conversion in BxUtil_BxExclusionToExDate",
                        QEL_FAILED);
        }
        if (i > 0) out += ',';
        out += date;
    }
    constexpr int kItemLength = 9;  // eight digits and a comma, which the last one lacks
    if (const int count = repeat.exclusionCount;
        count > 0 && out.GetLength() != count * kItemLength - 1) {
        out.Empty();
        return fail(__LINE__, "No memory for exclusions", QEL_OUT_OF_MEMORY);
    }
    return QEL_OK;
}

// Replaces UNTIL by the number of occurrences up to the end date, when there are few enough.
void deriveCount(ZQTR_REPEAT& repeat, _rruleRepeat& rule, int* flags) {
    int next = -1;
    int previous = -1;
    int steps = 0;
    bool goesOn = true;
    while (goesOn && steps < kMaxCountSteps && next <= repeat.endDate) {
        const int before = next;
        const int result = ZQRepeatNextDate(&repeat, &next, &previous);
        ++steps;
        if (result != QEL_OK) std::printf("ZQRepeatNextDate return code %d\n", result);
        goesOn = result == QEL_OK && next > before;
    }
    if (next > repeat.endDate && steps > 1) {
        rule.count = static_cast<short>(steps - 1);
        rule.until = -1;
    } else {
        warn(flags, BXREPEAT_COUNT_UNKNOWN);
    }
}

}  // namespace

}  // namespace qel::recurrence

int QELUTILITY_CALL BxUtil_BxRepeatToRRule(ZQTR_REPEAT* repeat, _rruleRepeat* rule,
                                           VStr& exclusions, VStr& startText, int noCount,
                                           int* flags) {
    using namespace qel::recurrence;
    if (flags != nullptr) *flags = 0;
    if (repeat == nullptr || rule == nullptr) return fail(__LINE__, "Null record", QEL_FAILED);
    BxUtil_InitializeRRULE(rule);
    rule->wkst = RRULE_DAY_SU;
    ZQTRDateTimeToUTCDate(repeat->startDate, startText);
    if (startText.IsEmpty()) return fail(__LINE__, "No memory for start date", QEL_OUT_OF_MEMORY);
    rule->freq = static_cast<unsigned char>(frequencyOf(repeat->type));
    if (rule->freq == 0) return QEL_FAILED;
    rule->until = ConvertZQTRDateTimeToRRule(repeat->endDate);
    rule->interval = repeat->interval;
    if (const int result = setParts(*rule, *repeat); result != QEL_OK) return result;
    if (const int result = writeExclusions(*repeat, exclusions); result != QEL_OK) return result;
    if (noCount == 0 && repeat->endDate != -1) deriveCount(*repeat, *rule, flags);
    return QEL_OK;
}
