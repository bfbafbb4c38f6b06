// Words that the two formats have for the same thing. Any thread.
#ifndef QEL_CALENDAR_FORMATS_VOCABULARY_H
#define QEL_CALENDAR_FORMATS_VOCABULARY_H

#include <string>
#include <string_view>
#include <vector>

#include "calendar/entries/Entry.h"

namespace qel::calendar {

// The URI of a person without an address.
inline constexpr std::string_view kNoMail = "invalid:nomail";

// STATUS of an entry; "" where the other format has no such word.
[[nodiscard]] std::string_view statusFromVCalendar(std::string_view status, EntryKind kind);
// "" for a word that neither format has.
[[nodiscard]] std::string_view transparencyToVCalendar(std::string_view word);
[[nodiscard]] std::string_view statusToVCalendar(std::string_view status, EntryKind kind);

// An ATTENDEE: vCalendar 1.0 has "John Smith <smith@host.com>", iCalendar a URI and a CN. A name
// without an address has the URI kNoMail.
struct CalendarAddress {
    std::string name;
    std::string uri;
};
[[nodiscard]] CalendarAddress addressFromVCalendar(std::string_view text);
[[nodiscard]] std::string addressToVCalendar(const CalendarAddress& address);

// Adds ROLE or PARTSTAT, and beside it the vCalendar word where it could not be restored otherwise.
void addRoleFromVCalendar(const std::string& role, std::vector<Parameter>& parameters);
void addParticipationFromVCalendar(const std::string& status, EntryKind kind,
                                   std::vector<Parameter>& parameters);
// The vCalendar words; "" without one.
[[nodiscard]] std::string_view roleToVCalendar(std::string_view role);
[[nodiscard]] std::string_view participationToVCalendar(std::string_view status);

// The fields of a vCalendar 1.0 alarm after its time, "PT5M;2;text". Reading ignores invalid
// fields and is false for a duration without its "T"; writing gives "" when all fields are empty.
[[nodiscard]] bool readAlarmFields(Alarm& alarm);
[[nodiscard]] std::string writeAlarmFields(const Alarm& alarm);
[[nodiscard]] std::string_view alarmName(Alarm::Action action);  // "AALARM", ...

// True for "scheme:rest" without blanks.
[[nodiscard]] bool isUri(std::string_view text);

}  // namespace qel::calendar

#endif
