// The lines of one entry in an iCalendar file. One thread.
#ifndef QEL_CALENDAR_FORMATS_ICALENTRY_H
#define QEL_CALENDAR_FORMATS_ICALENTRY_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/formats/SettledEntry.h"

namespace qel::calendar {

// True for a text without anything but blanks. Line breaks alone are somebody's text.
[[nodiscard]] bool saysNothing(std::string_view text);

// The value of a property as it is written after the colon, escaped where its type asks for that.
[[nodiscard]] std::string valueText(const EntryProperty& property);

class ICalEntry {
  public:
    // The entry's lines and its alarms' are added to `lines` and `alarmLines`, which begin empty.
    ICalEntry(const SettledEntry& settled, std::string& lines, std::string& alarmLines)
        : settled_(settled), entry_(settled.entry()), lines_(lines), alarmLines_(alarmLines) {}

    void addLines();
    // True when a line names the entry's zone.
    [[nodiscard]] bool usesZone() const { return !zoneName_.empty(); }

  private:
    // VALUE or TZID, as a date or a time on that clock needs it.
    [[nodiscard]] const std::vector<Parameter>& parametersOf(bool isDate, Clock clock);
    void addMoment(PropertyName name, const Moment& moment);
    void addRecurrenceId();
    // Properties that iCalendar has in UTC only.
    void addUtc(PropertyName name, const std::optional<Moment>& moment);
    void addDates();
    void addDuration();
    void addRecurrence();
    // The dates of one value type and clock, each once, separated by commas.
    [[nodiscard]] std::string itemsOf(const std::vector<Moment>& dates, bool inUtc, bool isDate,
                                      Clock clock) const;
    // One line for the dates that share a clock.
    void addDateList(std::string_view name, const std::vector<Moment>& dates);
    void addProperty(const EntryProperty& property);

    const SettledEntry& settled_;
    const Entry& entry_;
    std::string& lines_;
    std::string& alarmLines_;
    std::vector<Parameter> zoneName_;  // empty until a line names the zone
};

}  // namespace qel::calendar

#endif
