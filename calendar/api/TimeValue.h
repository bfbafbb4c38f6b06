// Times of the interface and of the library. Any thread.
#ifndef QEL_CALENDAR_API_TIMEVALUE_H
#define QEL_CALENDAR_API_TIMEVALUE_H

#include <optional>

#include "QelCalendar/qelcalendar.h"
#include "calendar/base/Moment.h"
#include "calendar/rules/Rule.h"

namespace qel::calendar::api {

[[nodiscard]] qelcal_time timeOf(const Moment& moment);
// Nothing when a field is out of its range.
[[nodiscard]] std::optional<Moment> momentOf(const qelcal_time& time);
// REQUIRES: a moment of the years 1 to 9999.
[[nodiscard]] RuleStart ruleStartOf(const Moment& moment);

}  // namespace qel::calendar::api

#endif
