// The properties of both formats that this library treats in a way of their own, in one table. A
// property's name is looked up once, when its line is read. Any thread.
#ifndef QEL_CALENDAR_LINES_PROPERTY_H
#define QEL_CALENDAR_LINES_PROPERTY_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qel::calendar {

// In the order of the table in Property.cpp.
enum class PropertyName : std::uint8_t {
    Unknown,
    Begin,
    End,
    // Of calendars.
    Version,
    ProdId,
    CalScale,
    Method,
    Name,
    RefreshInterval,
    Source,
    Tz,
    Daylight,
    // Of zones.
    TzId,
    TzUrl,
    TzOffsetFrom,
    TzOffsetTo,
    TzName,
    // Moments, and what is made of them.
    DtStart,
    DtEnd,
    Due,
    Completed,
    Created,
    DCreated,
    LastModified,
    DtStamp,
    XICalDtStamp,
    RecurrenceId,
    XRecurrenceId,
    Duration,
    RDate,
    ExDate,
    RRule,
    ExRule,
    XICalRRule,
    XICalExRule,
    // Alarms: the lines of vCalendar 1.0, and what a VALARM alone has.
    AAlarm,
    DAlarm,
    MAlarm,
    PAlarm,
    Action,
    Trigger,
    Repeat,
    Uid,
    Body,
    RNum,
    Agent,
    // What an entry keeps as an EntryProperty.
    Attach,
    Attendee,
    Categories,
    Class,
    Color,
    Comment,
    Conference,
    Contact,
    Description,
    Geo,
    Image,
    Location,
    Organizer,
    PercentComplete,
    Priority,
    RelatedTo,
    RequestStatus,
    Resources,
    Sequence,
    Status,
    Summary,
    Transp,
    Url,
};

inline constexpr PropertyName kLastPropertyName = PropertyName::Url;

// How a value is written in iCalendar.
enum class ValueType : std::uint8_t {
    Text,
    TextList,  // CATEGORIES, RESOURCES
    Raw,       // without escapes: addresses, numbers
    Base64
};

// What an Entry makes of a property.
enum class HeldAs : std::uint8_t {
    Property,  // an EntryProperty
    Date,      // a moment, a list of moments, or the duration
    Other      // a rule, an alarm, the UID, or nothing
};

// A property of either format.
struct Property {
    // Bits of `places`.
    static constexpr std::uint8_t kEvent = 1;
    static constexpr std::uint8_t kTodo = 2;
    static constexpr std::uint8_t kJournal = 4;
    static constexpr std::uint8_t kAlarm = 8;
    static constexpr std::uint8_t kZone = 16;
    static constexpr std::uint8_t kCalendar = 32;
    // Left out, rather than kept, when it is a property of the calendar itself.
    static constexpr std::uint8_t kNotInCalendar = 64;
    // Bits of `formats`.
    static constexpr std::uint8_t kICalendar = 1;
    static constexpr std::uint8_t kVCalendar = 2;

    PropertyName id;
    std::string_view name;  // in capitals
    ValueType type;
    HeldAs held;
    std::uint8_t places;
    std::uint8_t formats;
    bool once;  // at most once in each of its places

    [[nodiscard]] constexpr bool standsIn(std::uint8_t place) const {
        return (places & place) != 0;
    }
    [[nodiscard]] constexpr bool isOf(std::uint8_t format) const { return (formats & format) != 0; }
};

// Unknown has no place and no format.
extern const Property kProperties[];
[[nodiscard]] inline const Property& propertyOf(PropertyName name) {
    return kProperties[static_cast<std::size_t>(name)];
}

// `name` is in capitals, as all names are here; Unknown for one that is not in the table.
[[nodiscard]] PropertyName propertyName(std::string_view name);
// The same for the name in the first `length` bytes of `text`, which is quicker where more follows.
[[nodiscard]] PropertyName propertyName(std::string_view text, std::size_t length);

}  // namespace qel::calendar

#endif
