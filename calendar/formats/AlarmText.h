// Alarms of an entry in the words of the two formats. Pure; any thread.
#ifndef QEL_CALENDAR_FORMATS_ALARMTEXT_H
#define QEL_CALENDAR_FORMATS_ALARMTEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "calendar/entries/Entry.h"

namespace qel::calendar {

// What an alarm shows that has no text, in an entry without a summary.
inline constexpr std::string_view kReminder = "Reminder";

// The parameter of an alarm of vCalendar 1.0 that keeps the subject of its mail.
inline constexpr std::string_view kMailSummary = "X-ICAL-SUMMARY";

// When an alarm rings in iCalendar: at a moment in UTC, or seconds after the entry's start or end.
struct AlarmTrigger {
    std::optional<Moment> at;
    std::int64_t offset = 0;
    bool fromEnd = false;
};

// Nothing when the alarm's moment cannot be compared with the entry's.
[[nodiscard]] std::optional<AlarmTrigger> iCalendarTrigger(const Entry& entry, const Alarm& alarm);

// Adds the alarm's VALARM. `summary` is shown where the alarm has no text.
// REQUIRES: iCalendarTrigger() gives one.
void addICalendarAlarm(std::string& out, const Entry& entry, const Alarm& alarm,
                       std::string_view summary);

// The alarm as an X-VCAL- property, its value already escaped for iCalendar.
[[nodiscard]] EntryProperty keptAlarm(const Alarm& alarm);

// When the alarm rings first, on the entry's clock; nothing when it is relative to a moment that
// the entry lacks.
[[nodiscard]] std::optional<Moment> vCalendarAlarmTime(const Entry& entry, const Alarm& alarm);

// Adds the alarm's line of vCalendar 1.0, ended.
// REQUIRES: vCalendarAlarmTime() gives one.
void addVCalendarAlarm(std::string& out, const Entry& entry, const Alarm& alarm);

}  // namespace qel::calendar

#endif
