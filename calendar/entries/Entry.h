// A calendar entry between the two formats, in iCalendar's words: what the file said, as UTF-8
// text, moments, rules and alarms. Plain data; any thread.
#ifndef QEL_CALENDAR_ENTRIES_ENTRY_H
#define QEL_CALENDAR_ENTRIES_ENTRY_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "calendar/base/Moment.h"
#include "calendar/lines/ContentLine.h"
#include "calendar/lines/Property.h"
#include "calendar/rules/Rule.h"
#include "calendar/zones/Zone.h"

namespace qel::calendar {

enum class EntryKind { Event, Todo, Journal };

// What only one of the formats has is kept under these names, and gets its own name back:
// "X-VCAL-RNUM" of an iCalendar file is RNUM in vCalendar 1.0, "X-ICAL-CONTACT" of a vCalendar file
// is CONTACT in iCalendar. Parameters are carried in the same way.
inline constexpr std::string_view kVCalendarPrefix = "X-VCAL-";
inline constexpr std::string_view kICalendarPrefix = "X-ICAL-";
// The own name of what has one of these prefixes. The whole name where the own one would be
// structure, or would change how a value is read: nothing that was carried has had such a name.
[[nodiscard]] std::string_view restoredName(std::string_view name, std::string_view prefix);
// The name of the zone that TZ and DAYLIGHT describe in a vCalendar 1.0 file.
inline constexpr std::string_view kZoneName = "X-ICAL-TZID";

// A property that is neither a date, a rule nor an alarm.
struct EntryProperty {
    using Type = ValueType;
    std::string name;
    std::vector<Parameter> parameters;  // encoding and character set are undone
    Type type = Type::Text;
    std::string text;                // the value, except in a list
    std::vector<std::string> items;  // of a list, at least one
    std::size_t line = 0;
    // Of its name, where that was looked up already.
    PropertyName known = PropertyName::Unknown;

    [[nodiscard]] PropertyName id() const {
        return known == PropertyName::Unknown ? propertyName(name) : known;
    }
    void rename(std::string other) {
        name = std::move(other);
        known = PropertyName::Unknown;
    }
    // Of a list the first item.
    [[nodiscard]] const std::string& value() const {
        return type == Type::TextList ? items.front() : text;
    }
};

struct EntryRule {
    bool exclude = false;
    std::vector<Rule> rules;
    std::size_t line = 0;
};

struct Alarm {
    enum class Action { Audio, Display, Email, Procedure, Other };
    Action action = Action::Display;
    std::string actionName;  // of Other

    // When: a moment, or seconds after the entry's start (or its end).
    std::optional<Moment> at;
    std::int64_t offset = 0;
    bool fromEnd = false;

    std::optional<std::int64_t> snooze;  // seconds between repetitions
    std::optional<int> repeat;           // further times
    std::string text;     // what is shown or sent, or the sound or procedure, as text
    bool hasText = true;  // false: iCalendar requires one, so a substitute is written
    std::string address;  // to whom Email goes, without "mailto:"
    std::string summary;  // of Email
    std::vector<Parameter> targetParameters;  // of its ATTENDEE or ATTACH

    // Of a vCalendar 1.0 alarm: what followed its time, and its parameters, unchanged.
    bool fromVCalendar = false;
    std::string fields;
    std::vector<Parameter> parameters;

    std::vector<EntryProperty> others;  // whatever else a VALARM holds
    std::size_t line = 0;
};

struct Entry {
    EntryKind kind = EntryKind::Event;
    std::string component;  // its name in the file
    std::size_t line = 0;   // where it begins
    ZonePtr zone;           // of its zoned moments; may be null when there are none

    std::optional<Moment> start;
    std::optional<Moment> end;  // of an event; for all-day entries the day after the last
    std::optional<Moment> due;
    std::optional<Duration> duration;
    std::optional<Moment> completed;
    std::optional<Moment> created;
    std::optional<Moment> modified;
    std::optional<Moment> stamp;
    std::optional<Moment> recurrenceId;
    bool thisAndFuture = false;

    std::string uid;
    std::string madeUid;  // for a format that demands one, when uid is empty
    std::vector<EntryRule> rules;
    std::vector<Moment> dates;     // RDATE
    std::vector<Moment> excluded;  // EXDATE
    std::vector<Alarm> alarms;
    std::vector<EntryProperty> properties;

    // As it was made; its lists keep their memory.
    void clear();

    [[nodiscard]] const EntryProperty* find(std::string_view name) const;
    // What the properties of phones and PC programs say about whole days. Some phones say
    // AtMidnight of every event but appointments: it is all-day when it starts at midnight.
    enum class WholeDays { Unsaid, No, AtMidnight, Yes };
    struct WholeDaysSaid {
        WholeDays what = WholeDays::Unsaid;
        const EntryProperty* by = nullptr;
    };
    [[nodiscard]] WholeDaysSaid wholeDaysSaid() const;
    [[nodiscard]] bool saysAllDay() const { return wholeDaysSaid().what >= WholeDays::AtMidnight; }
    [[nodiscard]] bool recurs() const { return !rules.empty() || !dates.empty(); }
    // What a rule of this entry starts from, in its own clock. REQUIRES: start.
    [[nodiscard]] RuleStart ruleStart() const;
    // `moment` in the clock of `like`; where that is a date, the day there, and where only `moment`
    // is a date, that day at the time of `like`. Floating moments have no zone to move by: they
    // keep their wall clock.
    [[nodiscard]] Moment inClockOf(const Moment& like, const Moment& moment) const;
    // `moment` after `seconds` of elapsed time, on its own clock.
    [[nodiscard]] Moment later(const Moment& moment, std::int64_t seconds) const;
    // UTC where that can be known.
    [[nodiscard]] std::optional<Moment> toUtc(const Moment& moment) const;
};

}  // namespace qel::calendar

#endif
