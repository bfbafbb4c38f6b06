// Rule record to repeat record.
#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "QelUtility/ZQDate.h"
#include "recurrence/BxRepeatInternal.h"

namespace qel::recurrence {

namespace {

constexpr unsigned kMonthBits = 0x1FFE;         // 1 .. 12
constexpr unsigned kMonthDayBits = 0xFFFFFFFE;  // 1 .. 31
constexpr int kMaxExclusions = std::numeric_limits<short>::max();
constexpr std::size_t kDateLength = 8;

bool hasPart(const _rruleRepeat& rule, int part) {
    return (rule.type & part) != 0;
}

// 0 for no known frequency.
short typeOfFrequency(const _rruleRepeat& rule) {
    if ((rule.freq & RRULE_FREQ_DAILY) != 0) return REPEAT_DAILY;
    if ((rule.freq & RRULE_FREQ_WEEKLY) != 0) return REPEAT_WEEKLY_DAYS;
    if ((rule.freq & RRULE_FREQ_MONTHLY) != 0) return REPEAT_MONTHLY_DAY;
    if ((rule.freq & RRULE_FREQ_YEARLY) != 0) return REPEAT_YEARLY_DATE;
    return REPEAT_NONE;
}

void readMonths(const _rruleRepeat& rule, ZQTR_REPEAT& repeat, int* flags) {
    const unsigned months = rule.byMonth & kMonthBits;
    if (months != 0) repeat.month = static_cast<short>(std::countr_zero(months));
    if (std::popcount(months) >= 2) warn(flags, BXREPEAT_SEVERAL_MONTHS);
}

int readMonthDays(const _rruleRepeat& rule, ZQTR_REPEAT& repeat, int* flags) {
    const unsigned days = rule.byMonthDay & kMonthDayBits;
    const unsigned negativeDays = rule.byMonthDayNeg & kMonthDayBits;
    if (days != 0) repeat.dayOfMonth = static_cast<short>(std::countr_zero(days));
    if (std::popcount(days) + std::popcount(negativeDays) >= 2)
        warn(flags, BXREPEAT_SEVERAL_MONTH_DAYS);
    if (std::popcount(negativeDays) < 2) return QEL_OK;
    warn(flags, BXREPEAT_SEVERAL_NEGATIVE_DAYS);
    if (days != 0) return QEL_OK;
    return BxTrace_Error(kConversionSourceName, kLineNegativeDaysOnly,
                         static_cast<int>(rule.byMonthDayNeg), QEL_RULE_INEXPRESSIBLE);
}

int readWeekdays(const _rruleRepeat& rule, ZQTR_REPEAT& repeat) {
    if (rule.byDay == 0) {
        return fail(kLineEmptyByDay, "Invalid RRUle struct: no day bits set",
                    QEL_RULE_INEXPRESSIBLE);
    }
    // The weekend first: of a mixed selection the last workday stays in dayOfWeek.
    constexpr short kOrder[] = {1, 7, 2, 3, 4, 5, 6};
    int weekend = 0;
    int workdays = 0;
    for (const short day : kOrder) {
        if ((rule.byDay >> day & 1) == 0) continue;
        repeat.days[day - 1] = 1;
        repeat.dayOfWeek = day;
        ++(day == 1 || day == 7 ? weekend : workdays);
    }
    if (workdays == 5 && weekend == 0) repeat.dayOfWeek = REPEAT_WORKDAY;
    if (workdays == 5 && weekend == 2) repeat.dayOfWeek = REPEAT_ANY_DAY;
    if (workdays == 0 && weekend == 2) repeat.dayOfWeek = REPEAT_WEEKEND_DAY;
    return QEL_OK;
}

void readPositions(const _rruleRepeat& rule, ZQTR_REPEAT& repeat, int* flags) {
    for (int i = 0; i < 7; ++i) repeat.days[i] = 0;
    const short position = rule.setPos[0];
    if (position < -1) warn(flags, BXREPEAT_POSITION_BEFORE_LAST);
    if (position >= 6) warn(flags, BXREPEAT_POSITION_TOO_HIGH);
    if (rule.setPos[1] != 0) warn(flags, BXREPEAT_SECOND_POSITION);

    const bool isMonthly = (rule.freq & RRULE_FREQ_MONTHLY) != 0;
    if (!isMonthly && (rule.freq & RRULE_FREQ_YEARLY) == 0) return;
    const short kept = position < 0 ? short{5} : position <= 5 ? position : short{0};
    if (repeat.dayOfWeek >= REPEAT_ANY_DAY) {
        repeat.type = isMonthly ? REPEAT_MONTHLY_KIND : REPEAT_YEARLY_KIND;
        if (kept != 0) repeat.dayOfMonth = kept;
        for (int i = 0; i < 12; ++i) repeat.months[i] = 0;
    } else {
        repeat.type = isMonthly ? REPEAT_MONTHLY_WEEKDAY : REPEAT_YEARLY_WEEKDAY;
        if (kept != 0) repeat.weekOfMonth = kept;
    }
}

// Splits at commas; empty items count and are excluded dates of 0.
int readExclusions(const char* text, ZQTR_REPEAT& repeat, int* flags) {
    if (text == nullptr || *text == '\0') return QEL_OK;
    const auto items =
        static_cast<std::size_t>(1 + std::count(text, text + std::strlen(text), ','));
    const std::size_t kept = std::min<std::size_t>(items, kMaxExclusions);
    if (kept < items)
        BxTrace_Error_S(kConversionSourceName, __LINE__, "Too many exclusions",
                        QEL_RULE_INEXPRESSIBLE);
    int* const dates = static_cast<int*>(std::malloc(kept * sizeof(int)));
    if (dates == nullptr) return fail(__LINE__, "No memory for exclusions", QEL_OUT_OF_MEMORY);
    const char* item = text;
    for (std::size_t i = 0; i < kept; ++i) {
        const std::size_t length = std::strcspn(item, ",");
        char date[kDateLength + 1] = {};
        std::memcpy(date, item, std::min(length, kDateLength));
        UTCDateToZQTRDateTime(date, &dates[i]);
        if (length > kDateLength) warn(flags, BXREPEAT_EXCLUSION_HAS_TIME);
        item += length + 1;
    }
    repeat.exclusions = dates;
    repeat.exclusionCount = static_cast<short>(kept);
    return QEL_OK;
}

// What the rule leaves open is taken from the start date.
int completeType(const _rruleRepeat& rule, const char* startText, ZQTR_REPEAT& repeat, int* flags) {
    int year = 0;
    int month = 0;
    int day = 0;
    ZQ_AlphaToDate(startText, &month, &day, &year);
    switch (repeat.type) {
        case REPEAT_DAILY:
            if (rule.byDay != 0) {
                repeat.type = REPEAT_WEEKLY_DAYS;
                repeat.dayOfWeek = 0;
            }
            return QEL_OK;
        case REPEAT_YEARLY_DATE:
            if (repeat.month == 0) repeat.month = static_cast<short>(month);
            [[fallthrough]];
        case REPEAT_MONTHLY_DAY:
        case REPEAT_MONTHLY_KIND:
            if (repeat.dayOfMonth == 0) repeat.dayOfMonth = static_cast<short>(day);
            return QEL_OK;
        case REPEAT_WEEKLY_DAYS:
            if (!hasPart(rule, RRULE_TYPE_BYDAY)) {
                return fail(kLineByDayMissing,
                            "Invalid RRULE struct, TYPE_BYDAY not set as expected",
                            QEL_RULE_INEXPRESSIBLE);
            }
            if (repeat.dayOfWeek == 0) {
                return fail(kLineNoDayBits, "Invalid RRUle struct: no day bits set",
                            QEL_RULE_INEXPRESSIBLE);
            }
            if (repeat.dayOfWeek == REPEAT_WORKDAY) warn(flags, BXREPEAT_WORKDAYS);
            repeat.dayOfWeek = 0;
            return QEL_OK;
        case REPEAT_MONTHLY_WEEKDAY:
        case REPEAT_YEARLY_WEEKDAY:
        case REPEAT_YEARLY_KIND:
            return QEL_OK;
        default:
            return fail(kLineUnexpectedType,
                        "Unexpected ZQTR Repeat type in BxUtil_RRuleToBxRepeat", QEL_FAILED);
    }
}

// The end date of a rule that has a count instead.
int deriveEnd(const _rruleRepeat& rule, ZQTR_REPEAT& repeat, int* endFromRule, int* flags) {
    int next = -1;
    int previous = -1;
    for (int i = 0; i < rule.count; ++i) {
        const int before = next;
        if (const int result = ZQRepeatNextDate(&repeat, &next, &previous); result != QEL_OK)
            return BxTrace_Error(kConversionSourceName, kLineCountFailed, 0, result);
        if (next <= before) break;
    }
    repeat.endDate = next;
    if (endFromRule != nullptr) *endFromRule = 0;
    warn(flags, BXREPEAT_END_FROM_COUNT);
    return QEL_OK;
}

int readParts(const _rruleRepeat& rule, ZQTR_REPEAT& repeat, int* flags) {
    if (hasPart(rule, RRULE_TYPE_BYMONTH)) readMonths(rule, repeat, flags);
    if (hasPart(rule, RRULE_TYPE_BYWEEKNO))
        return fail(kLineWeekNumbers, "Can not handle ByWeekNo", QEL_RULE_UNSUPPORTED);
    int result = QEL_OK;
    if (hasPart(rule, RRULE_TYPE_BYMONTHDAY)) result = readMonthDays(rule, repeat, flags);
    if (result == QEL_OK && hasPart(rule, RRULE_TYPE_BYDAY)) result = readWeekdays(rule, repeat);
    if (result == QEL_OK && hasPart(rule, RRULE_TYPE_BYSETPOS)) readPositions(rule, repeat, flags);
    return result;
}

}  // namespace

}  // namespace qel::recurrence

int QELUTILITY_CALL BxUtil_RRuleToBxRepeat(_rruleRepeat* rule, const char* exclusions,
                                           const char* startText, int* endFromRule,
                                           ZQTR_REPEAT* repeat, int* flags) {
    using namespace qel::recurrence;
    if (startText == nullptr) return fail(kLineNoStartText, "Invalid Start Date ptr", QEL_FAILED);
    if (rule == nullptr || repeat == nullptr) return fail(__LINE__, "Null record", QEL_FAILED);
    if (flags != nullptr) *flags = 0;
    if (endFromRule != nullptr) *endFromRule = 1;
    ClearZQTR(repeat);
    repeat->type = typeOfFrequency(*rule);
    if (repeat->type == REPEAT_NONE) {
        return fail(kLineUnknownFrequency, "Unknown RRULE frequency in BxUtil_RRuleToBxRepeat",
                    QEL_RULE_UNSUPPORTED);
    }
    int start = 0;
    UTCDateToZQTRDateTime(startText, &start);
    repeat->startDate = start;
    repeat->endDate = RRuleToZQTRDateTime(rule->until);
    repeat->unitCount = 1;
    repeat->interval = rule->interval;
    int result = readParts(*rule, *repeat, flags);
    if (result == QEL_OK) result = readExclusions(exclusions, *repeat, flags);
    if (result == QEL_OK) result = completeType(*rule, startText, *repeat, flags);
    if (result == QEL_OK && rule->until == -1 && rule->count > 0)
        result = deriveEnd(*rule, *repeat, endFromRule, flags);
    return result;
}
