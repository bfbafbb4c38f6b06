// The estimate of the days that so many occurrences take, and the range cut down to it. All of it
// in 64 bits.
#include "recurrence/RptExpandRange.h"

#include <algorithm>
#include <limits>

#include "QelUtility/BxTrace.h"
#include "dates/CivilDate.h"

namespace qel::recurrence {

namespace {

constexpr int kDefaultFrom = dates::encodeCivilDate({1950, 1, 1});
constexpr int kDefaultTo = dates::encodeCivilDate({2049, 12, 31});

// Occurrences beyond the wanted ones that the estimate leaves room for.
constexpr int kReserve = 10;

// The arrays of the packed record are read by index: a pointer into it may not be aligned.
std::int64_t countDays(const ZQTR_REPEAT& repeat) {
    int set = 0;
    for (int i = 0; i < 7; ++i) set += repeat.days[i] != 0;
    return set;
}

std::int64_t countMonths(const ZQTR_REPEAT& repeat) {
    int set = 0;
    for (int i = 0; i < 12; ++i) set += repeat.months[i] != 0;
    return set;
}

// The fourth and the last week count once together: in most months they share days.
std::int64_t countWeeks(const ZQTR_REPEAT& repeat) {
    int set = 0;
    for (int i = 0; i < 3; ++i) set += repeat.weeks[i] != 0;
    return set + (repeat.weeks[3] != 0 || repeat.weeks[4] != 0);
}

// days = occurrences * factor * unit / (per * perYear), at least `minimum`.
struct Density {
    std::int64_t unit;
    std::int64_t per;
    std::int64_t perYear;
    std::int64_t factor;
    std::int64_t minimum;
};

// False for a type without a density.
bool densityOf(const ZQTR_REPEAT& repeat, Density& density) {
    const std::int64_t units = repeat.unitCount;
    const std::int64_t interval = repeat.interval;
    switch (repeat.type) {
        case REPEAT_DAILY:
            density = {1, units, 1, interval, 0};
            return true;
        case REPEAT_WEEKLY:
            density = {7, units, 1, interval, 0};
            return true;
        case REPEAT_MONTHLY_DAY:
        case REPEAT_MONTHLY_WEEKDAY:
        case REPEAT_MONTHLY_KIND:
            density = {31, units, 1, interval, 0};
            return true;
        case REPEAT_YEARLY_DATE:
        case REPEAT_YEARLY_WEEKDAY:
        case REPEAT_YEARLY_KIND:
            density = {366, units, 1, interval, 0};
            return true;
        case REPEAT_DAY_OF_MONTHS:
            density = {366, 1, countMonths(repeat), 1, 366};
            return true;
        case REPEAT_WEEKS_OF_MONTHS:
            density = {366, countDays(repeat) * countWeeks(repeat), countMonths(repeat), 1, 366};
            return true;
        case REPEAT_WEEKS_MONTHLY:
            density = {366, countDays(repeat) * countWeeks(repeat),
                       interval == 0 ? 0 : 12 / interval, 1, 366};
            return true;
        case REPEAT_WEEKLY_DAYS:
            density = {7, countDays(repeat), 1, interval, 0};
            return true;
        case REPEAT_QUARTERLY_DAY:
        case REPEAT_QUARTERLY_WEEKDAY:
            density = {92, units, 1, interval, 0};
            return true;
        default:
            return false;
    }
}

int saturate(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

int failTrim(int line, int index) {
    return BxTrace_Error(kExpandSourceName, line, index, QEL_STORAGE_NOT_OWNED);
}

}  // namespace

int Unfold_EstimateDays(const ZQTR_REPEAT* repeat, std::int64_t count, std::int64_t* days) {
    Density density{};
    if (!densityOf(*repeat, density))
        return BxTrace_Error(kExpandSourceName, __LINE__, repeat->type, QEL_STORAGE_NOT_OWNED);
    const std::int64_t divisor = density.per * density.perYear;
    if (divisor == 0)
        return BxTrace_Error(kExpandSourceName, __LINE__, repeat->type, QEL_REPEAT_ENGINE);
    *days = std::max(count * density.factor * density.unit / divisor, density.minimum);
    return QEL_OK;
}

int Unfold_ClampRange(const ZQTR_REPEAT* repeat, int wanted, int anchor, int* from, int* to) {
    *from = std::max(*from, +repeat->startDate);  // a copy: the field may not be aligned
    const bool endsInRange = *to != 0 && *to <= repeat->endDate;
    if (repeat->endDate != -1 && !endsInRange) *to = repeat->endDate;
    if (repeat->type == REPEAT_NONE) return QEL_OK;
    if (*from == 0) *from = kDefaultFrom;
    if (*to == 0) *to = kDefaultTo;

    const std::int64_t exclusions = std::max<int>(repeat->exclusionCount, 0);
    std::int64_t span = 0;
    if (const int result = Unfold_EstimateDays(repeat, wanted + exclusions + kReserve, &span);
        result != QEL_OK)
        return result;
    const std::int64_t first = *from;
    const std::int64_t last = *to;
    if (last - first + 1 <= span) return QEL_OK;
    if (first >= anchor) {
        *to = saturate(first + span - 1);
        return QEL_OK;
    }
    if (last <= anchor) {
        *from = saturate(last - (span - 1));
        return QEL_OK;
    }
    const std::int64_t missing = span - (last - anchor + 1);  // days that lie before the anchor
    *from = saturate(missing > 0 ? std::max(first, anchor - missing) : anchor);
    *to = saturate(*from + span - 1);
    return QEL_OK;
}

int Unfold_TrimToCount(int wanted, int anchor, DateBlock* list, int* valid, int* total) {
    int* const entries = list->data;
    const int excess = *valid - wanted;
    int before = 0;  // occurrences before the anchor that can go
    int kept = 0;    // index of the first entry after them
    for (int i = 0; i < *total && entries[i] < anchor && before < excess; ++i) {
        if (entries[i] <= 0) continue;
        ++before;
        kept = i + 1;
    }
    if (before == 0) {
        int index = *total;
        for (int found = 0; found < excess;) {
            if (--index < 0) return failTrim(__LINE__, index);
            if (entries[index] > 0) ++found;
        }
        *total = index;
    } else {
        int moved = 0;
        for (int found = 0; found < wanted; ++kept) {
            if (kept >= *total) return failTrim(__LINE__, kept);
            if (entries[kept] > 0) ++found;
            entries[moved++] = entries[kept];
        }
        *total = moved;
    }
    *valid = wanted;
    return QEL_OK;
}

}  // namespace qel::recurrence
