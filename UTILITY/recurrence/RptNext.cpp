// The repeat record and the engine's entry: validity, and the choice of the type's search.
#include "QelUtility/RptNext.h"

#include "recurrence/RptNextJump.h"
#include "recurrence/RptNextKind.h"
#include "recurrence/RptNextMonthDay.h"
#include "recurrence/RptNextQuarter.h"
#include "recurrence/RptNextSteps.h"
#include "recurrence/RptNextWeekday.h"
#include "recurrence/RptNextWeekly.h"
#include "recurrence/RptNextWeeks.h"

namespace recurrence = qel::recurrence;

int QELUTILITY_CALL ClearZQTR(ZQTR_REPEAT* repeat) {
    if (repeat == nullptr) return QEL_OK;
    repeat->type = REPEAT_NONE;
    repeat->startDate = 0;
    repeat->endDate = 0;
    repeat->interval = 0;
    repeat->unitCount = 0;
    repeat->text1[0] = '\0';
    repeat->text2[0] = '\0';
    repeat->dayOfMonth = 0;
    repeat->month = 0;
    repeat->dayOfWeek = 0;
    repeat->weekOfMonth = 0;
    for (int i = 0; i < 7; ++i) repeat->days[i] = 0;
    for (int i = 0; i < 12; ++i) repeat->months[i] = 0;
    for (int i = 0; i < 5; ++i) repeat->weeks[i] = 0;
    repeat->exclusionCount = 0;
    repeat->exclusionFlags = 0;
    repeat->exclusions = nullptr;
    repeat->exclusionExtra = 0;
    return QEL_OK;
}

namespace qel::recurrence {

namespace {

int nextOfType(const ZQTR_REPEAT& repeat, int previous, int& date) {
    switch (repeat.type) {
        case REPEAT_DAILY:
            return nextDaily(repeat, previous, date);
        case REPEAT_WEEKLY:
            return nextWeekly(repeat, previous, date);
        case REPEAT_MONTHLY_DAY:
            return nextMonthDay(repeat, previous, date);
        case REPEAT_MONTHLY_WEEKDAY:
        case REPEAT_YEARLY_WEEKDAY:
            return nextWeekdayOfMonth(repeat, previous, date);
        case REPEAT_YEARLY_DATE:
            return nextYearDate(repeat, previous, date);
        case REPEAT_DAY_OF_MONTHS:
            return nextDayOfMonths(repeat, previous, date);
        case REPEAT_WEEKS_OF_MONTHS:
        case REPEAT_WEEKS_MONTHLY:
            return nextInWeeks(repeat, previous, date);
        case REPEAT_MONTHLY_KIND:
        case REPEAT_YEARLY_KIND:
            return nextKindOfDay(repeat, previous, date);
        case REPEAT_WEEKLY_DAYS:
            return nextWeeklyDays(repeat, previous, date);
        case REPEAT_QUARTERLY_DAY:
            return nextDayOfQuarter(repeat, previous, date);
        case REPEAT_QUARTERLY_WEEKDAY:
            return nextWeekdayOfQuarter(repeat, previous, date);
        default:
            return fail(kLineUnknownType, repeat.type);
    }
}

}  // namespace

}  // namespace qel::recurrence

int QELUTILITY_CALL ZQRepeatNextDate(ZQTR_REPEAT* repeat, int* next, int* previous) {
    if (repeat == nullptr || next == nullptr || previous == nullptr)
        return BxTrace_Error_S(recurrence::kEngineSourceName, __LINE__, "Null argument",
                               QEL_REPEAT_ENGINE);
    if (repeat->type == REPEAT_NONE) {
        *previous = *next;
        return QEL_OK;
    }
    if (!recurrence::isValid(*repeat))
        return recurrence::fail(recurrence::kLineBadRecord, repeat->type);
    const int before = *previous;
    int date = 0;
    if (const int result = recurrence::nextOfType(*repeat, before, date); result != QEL_OK)
        return result;
    *next = date;
    *previous = date;
    // A day of the quarter below 1 falls before its quarter and would be found again and again.
    if (repeat->type == REPEAT_QUARTERLY_DAY && date <= before) {
        return BxTrace_Error_S(recurrence::kEngineSourceName, recurrence::kLineQuarterDay,
                               "Quarterly", QEL_REPEAT_ENGINE);
    }
    return QEL_OK;
}

int QELUTILITY_CALL ZQRepeatJump(const ZQTR_REPEAT* repeat, int date, int* found) {
    int occurrence = 0;
    if (repeat == nullptr || found == nullptr) return QEL_FAILED;
    if (!recurrence::jump(*repeat, date, occurrence)) return QEL_FAILED;
    *found = occurrence;
    return QEL_OK;
}
