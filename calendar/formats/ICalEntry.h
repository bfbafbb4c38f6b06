// One entry on its way into an iCalendar file; for ICalWriter alone. Its times are put in order,
// then its lines are made. One thread.
#ifndef QEL_CALENDAR_FORMATS_ICALENTRY_H
#define QEL_CALENDAR_FORMATS_ICALENTRY_H

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/formats/EntryWriter.h"

namespace qel::calendar {

// The value of a property as it stands behind the colon, escaped where its type asks for that.
[[nodiscard]] std::string valueText(const EntryProperty& property);

class ICalEntry {
  public:
    // The entry's lines and its alarms' are added to `lines` and `alarmLines`.
    ICalEntry(ICalWriter& writer, Entry& entry, std::string& lines, std::string& alarmLines)
        : writer_(writer), entry_(entry), lines_(lines), alarmLines_(alarmLines) {}

    void write();

  private:
    // The same entry gives the same name, whenever it is converted.
    [[nodiscard]] std::string uid() const;
    void tell(Severity severity, const std::string& message, std::size_t at = 0);
    // A property's line, its value escaped where its type asks for that.
    void addLine(const EntryProperty& property, std::string_view name,
                 const std::vector<Parameter>& parameters);
    // A date of vCalendar 1.0 that iCalendar does not allow there.
    void keep(std::string_view name, const Moment& moment);
    void settleStart();
    // `moment` with the value type and clock of the start, which it must share.
    [[nodiscard]] Moment likeStart(const Moment& moment) const;
    // Below 0, 0, above 0 for before, at, after the start; both on the start's clock.
    [[nodiscard]] std::int64_t afterStart(const Moment& moment) const;
    void settleEnd();
    void settleDue();
    void addMoment(std::string_view name, const Moment& moment,
                   std::vector<Parameter> parameters = {});
    // Properties that iCalendar has in UTC only.
    void addUtc(std::string_view name, const std::optional<Moment>& moment);
    void addDates();
    void addDuration();
    // UNTIL is of the start's value type: a date, a local time, or UTC (RFC 5545 section 3.3.10).
    [[nodiscard]] std::string untilText(const std::string& until) const;
    // Readers disagree about a start that its rule does not yield, and about its place in a count:
    // it becomes a date of its own, and the count an end date, so that all find the same series.
    void settleOddStart();
    void addRecurrence();
    // One line for the dates that share a clock.
    void addDateList(std::string_view name, const std::vector<Moment>& dates);
    // A rule that recurs within the day: no record holds it, but it is a rule of iCalendar.
    static bool isFineRule(const EntryProperty& property);
    void addProperty(const EntryProperty& property);
    // TRIGGER of an alarm; nothing when its moment cannot be told from the start's.
    [[nodiscard]] std::optional<std::string> trigger(const Alarm& alarm) const;
    void keepAlarm(const Alarm& alarm);
    [[nodiscard]] static std::vector<Parameter> carriedParameters(
        const std::vector<Parameter>& parameters);
    void addAlarm(const Alarm& alarm);
    void addAction(const Alarm& alarm, Alarm& told, std::string& lines) const;
    void addSound(const Alarm& alarm, Alarm& told, std::string& lines) const;

    ICalWriter& writer_;
    Entry& entry_;
    bool usesZone_ = false;
    std::string_view summary_ = "Reminder";  // what an alarm shows that has no text
    std::string& lines_;
    std::string& alarmLines_;
    std::bitset<static_cast<std::size_t>(kLastPropertyName) + 1> writtenOnce_;
};

}  // namespace qel::calendar

#endif
