#include "dates/reldaymo.h"

#include "QelUtility/BxTrace.h"
#include "QelUtility/ZQDate.h"
#include "dates/CivilDate.h"

namespace qel::dates {

namespace {

constexpr char kSourceName[] = "reldaymo";
constexpr int kLineBadYear = 25;
constexpr int kLineBadMonth = 28;
constexpr int kLineBadWeek = 31;
constexpr int kLineBadWeekday = 34;
constexpr int kLineNoSuchDay = 44;

int fail(int line, int detail) {
    return BxTrace_Error(kSourceName, line, detail, QEL_FAILED);
}

}  // namespace

int relativeDayOfMonth(int year, int month, int week, int weekday) {
    if (year < 0) return fail(kLineBadYear, year);
    if (month < 1 || month > 12) return fail(kLineBadMonth, month);
    if (week < 1 || week > 5) return fail(kLineBadWeek, week);
    if (weekday < 0 || weekday > 6) return fail(kLineBadWeekday, weekday);

    unsigned first = 0;
    if (ZQ_DateEncode(month, 1, year, &first) != 0) return fail(kLineNoSuchDay, year);
    const int firstWeekday = ZQ_DayOfWeek(static_cast<int>(first)) - 1;
    int day = 1 + (weekday - firstWeekday + 7) % 7 + 7 * (week - 1);
    if (day > daysInMonth(year, month)) day -= 7;  // the fifth means the last
    return static_cast<int>(first) + day - 1;
}

}  // namespace qel::dates
