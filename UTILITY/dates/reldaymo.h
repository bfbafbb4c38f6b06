// The relative day of a month: "the last Sunday of October". Without state; callable from any
// thread.
#ifndef QEL_DATES_RELDAYMO_H
#define QEL_DATES_RELDAYMO_H

namespace qel::dates {

// The code date of the `week`-th (1 to 4, 5 = the last) `weekday` (0 = Sunday to 6 = Saturday) of a
// month: 2005, 10, 5, 0 is 30 October 2005, code 38653. Returns -1, and logs it, for an argument
// out of range and for a month that has no code dates.
[[nodiscard]] int relativeDayOfMonth(int year, int month, int week, int weekday);

}  // namespace qel::dates

#endif
