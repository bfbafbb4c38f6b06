// The lines of one entry in a vCalendar 1.0 file. One thread.
#ifndef QEL_CALENDAR_FORMATS_VCALENTRY_H
#define QEL_CALENDAR_FORMATS_VCALENTRY_H

#include <string>
#include <string_view>
#include <vector>

#include "calendar/formats/SettledEntry.h"
#include "calendar/text/ContentText.h"

namespace qel::calendar {

// Parameters on their way back: those carried here from vCalendar 1.0 get their own names, those
// that only iCalendar knows get the prefix X-ICAL-.
[[nodiscard]] std::vector<Parameter> parametersToVCalendar(
    const std::vector<Parameter>& parameters);

class VCalEntry {
  public:
    // The lines are added to `lines`.
    VCalEntry(const SettledEntry& settled, std::string& lines)
        : settled_(settled),
          entry_(settled.entry()),
          lines_(lines),
          allDay_(entry_.kind == EntryKind::Event && entry_.start && entry_.start->isDate &&
                  (entry_.saysAllDay() ||
                   (entry_.end && entry_.wholeDaysSaid().what == Entry::WholeDays::Unsaid))),
          ownTransparency_(entry_.find("X-VCAL-TRANSP") != nullptr) {}

    // Of an event or a to-do.
    void addLines();
    // Of a phone's note, which a journal becomes: its text, and what else has a place there.
    void addNoteLines();

  private:
    void line(LineName name, const std::vector<Parameter>& parameters, std::string_view value);
    // Neither folded nor encoded.
    void plainLine(std::string_view name, std::string_view value);
    void addUid();
    // The dates of an all-day event are midnights, as phones write them.
    [[nodiscard]] std::string dateText(const Moment& moment) const;
    void dateLine(PropertyName name, const Moment& moment);
    void addDates();
    // DTSTAMP, unless iCalendar would get the same one again from the other dates.
    void addStamp();
    void addRecurrence();
    void addDateList(std::string_view name, const std::vector<Moment>& dates);
    void addProperty(const EntryProperty& property);
    void addText(const EntryProperty& property);
    void addList(const EntryProperty& property);
    void addStatus(const EntryProperty& property);
    void addTransparency(const EntryProperty& property);
    void addPosition(const EntryProperty& property);
    void addAttendee(const EntryProperty& property);
    static void addWord(std::string_view name, std::string_view word, const Parameter& parameter,
                        std::vector<Parameter>& parameters);
    void addBytes(std::string_view name, const EntryProperty& property);
    void addAttachment(const EntryProperty& property);
    void addAlarms();

    const SettledEntry& settled_;
    const Entry& entry_;
    std::string& lines_;
    bool allDay_;
    bool ownTransparency_;
};

}  // namespace qel::calendar

#endif
