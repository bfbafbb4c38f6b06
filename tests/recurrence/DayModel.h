// The contract of repeat records, day by day: what each type says of a day, with no arithmetic of
// its own beyond counting. Slow, and easy to hold against RptNext.h.
#ifndef QEL_TESTS_DAYMODEL_H
#define QEL_TESTS_DAYMODEL_H

#include "QelUtility/RptNext.h"

namespace qel::test {

// What is known of one day.
struct ModelDay {
    int year;
    int month;                  // 1 to 12
    int day;                    // 1 to 31
    int weekday;                // 1 Sunday to 7 Saturday
    int nth;                    // which of its weekday in the month: 1 to 5
    bool last;                  // the last of its weekday in the month
    bool lastOfMonth;           // the month's last day
    int kindNth[3];             // which any day, workday or weekend day of the month; 0 = none
    bool kindLast[3];           // the last of these
    int monthIndex;             // counts months
    int week;                   // counts weeks from Sunday to Saturday
    int quarter;                // counts quarters
    int quarterDay;             // counts the quarter's days, from 1
    bool lastOfQuarter;         // the quarter's last day
    bool lastWeekdayOfQuarter;  // the last of its weekday in the quarter
};

// The occurrence of `repeat` after `previous`, as ZQRepeatNextDate takes it: -1 for the first one,
// -2 where a type reads it. For series whose fields are in their ranges, up to 2085; -1 beyond.
int modelNext(const ZQTR_REPEAT& repeat, int previous);

// The day of a code date up to 2085.
const ModelDay& modelDay(int code);

}  // namespace qel::test

#endif
