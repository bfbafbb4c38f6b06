// Alarms of an entry that is being read: VALARM components, and the alarm lines of vCalendar 1.0.
// One thread.
#ifndef QEL_CALENDAR_FORMATS_ALARMREADER_H
#define QEL_CALENDAR_FORMATS_ALARMREADER_H

#include "calendar/entries/Entry.h"
#include "calendar/lines/CalendarReader.h"

namespace qel::calendar {

class EntryReader;

// Of one alarm: either function adds it to the reader's entry, or reports why not.
class AlarmReader {
  public:
    explicit AlarmReader(EntryReader& reader);

    // A VALARM.
    void takeComponent(const Component& component);
    // AALARM, DALARM, MALARM or PALARM.
    void takeLine(const ContentLine& line);

  private:
    void takeProperty(const ContentLine& line);
    void takeAction(const ContentLine& line);
    void takeTrigger(const ContentLine& line);
    void takeAddress(const ContentLine& line);
    void takeOther(const ContentLine& line, EntryProperty::Type type);
    // The sound or procedure becomes the alarm's text.
    void takeAttachment();
    // An alarm that came from vCalendar 1.0 is that alarm again.
    void restore();
    bool restoreAs(Alarm::Action action);
    void reportTimeless(const ContentLine& line, std::string_view when, std::string_view rest);

    EntryReader& reader_;
    Alarm& alarm_;  // the entry's last one, which goes again where it is of no use
    bool hasTrigger_ = false;
    bool hasAction_ = false;  // the one that counts comes yet
    bool usable_ = true;
};

}  // namespace qel::calendar

#endif
