// One entry on its way into a vCalendar 1.0 file; for VCalWriter alone. Its times and lists are put
// in the format's order before they become lines. One thread.
#ifndef QEL_CALENDAR_FORMATS_VCALENTRY_H
#define QEL_CALENDAR_FORMATS_VCALENTRY_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "calendar/formats/EntryWriter.h"
#include "calendar/rules/Occurrences.h"

namespace qel::calendar {

// Parameters on their way back: those carried here from vCalendar 1.0 get their own names, those
// that only iCalendar knows go behind X-ICAL-.
[[nodiscard]] std::vector<Parameter> parametersToVCalendar(
    const std::vector<Parameter>& parameters);

class VCalEntry {
  public:
    VCalEntry(VCalWriter& writer, Entry& entry)
        : writer_(writer),
          entry_(entry),
          allDay_(entry.saysAllDay()),
          ownTransparency_(entry.find("X-VCAL-TRANSP") != nullptr) {}

    void write();

  private:
    void tell(Severity severity, const std::string& message, std::size_t at = 0);
    void line(std::string_view name, const std::vector<Parameter>& parameters,
              std::string_view value);
    [[nodiscard]] bool uses(Clock clock) const;
    // Local times need a calendar of their zone; floating ones, and series in UTC, one without any.
    void openCalendar();
    // The years in which the zone's changes matter to this entry.
    [[nodiscard]] std::pair<int, int> years() const;
    [[nodiscard]] int lastYear(const Rule& rule, const RuleLimits& limits) const;
    // Where a property says that the entry is all-day, its writer expects midnights.
    [[nodiscard]] std::string dateText(const Moment& moment) const;
    // `moment` after `duration`: the days on the wall clock, the rest as time goes by.
    [[nodiscard]] Moment after(const Moment& moment, const Duration& duration) const;
    [[nodiscard]] Moment later(const Moment& moment, std::int64_t seconds) const;
    void addDates();
    // DTSTAMP, unless iCalendar would get the same one again from the other dates.
    void addStamp();
    // The rule's end on the start's clock.
    [[nodiscard]] std::string untilText(const std::string& until) const;
    void addRecurrence();
    // A list of dates where it has an end, or the rule as it stands for whoever reads it back.
    void addInexpressible(const EntryRule& owner, const Rule& rule, const RuleStart& start,
                          const std::string& reason);
    void addDateList(std::string_view name, const std::vector<Moment>& dates);
    void addProperty(const EntryProperty& property);
    void addList(const EntryProperty& property);
    void addStatus(const EntryProperty& property);
    void addPosition(const EntryProperty& property);
    void addAttendee(const EntryProperty& property);
    static void addWord(std::string_view name, std::string_view word, const Parameter& parameter,
                        std::vector<Parameter>& parameters);
    void addAttachment(const EntryProperty& property);
    // When the alarm rings first, on the clock of the entry.
    [[nodiscard]] std::optional<Moment> alarmMoment(const Alarm& alarm) const;
    void addAlarm(const Alarm& alarm);
    // A journal is a note of the phone: its text, and what else has a place there.
    void writeNote();

    VCalWriter& writer_;
    Entry& entry_;
    bool allDay_;
    bool ownTransparency_;
};

}  // namespace qel::calendar

#endif
