// The names of properties that this converter knows, each found once, when its line is read. Any
// thread.
#ifndef QEL_CALENDAR_LINES_PROPERTYNAME_H
#define QEL_CALENDAR_LINES_PROPERTYNAME_H

#include <cstdint>
#include <string_view>

namespace qel::calendar {

// In the order of their texts in PropertyName.cpp.
enum class PropertyName : std::uint8_t {
    Unknown,
    Begin,
    End,
    Version,
    Tz,
    Daylight,
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
    // Alarms of vCalendar 1.0.
    AAlarm,
    DAlarm,
    MAlarm,
    PAlarm,
    Uid,
    Body,
    // What propertyKind() describes.
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

// `name` is in capitals, as all names are here; Unknown for one that is not in the list.
[[nodiscard]] PropertyName propertyName(std::string_view name);

}  // namespace qel::calendar

#endif
