#include "calendar/lines/Property.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

namespace {

using Name = PropertyName;
using Type = ValueType;
using Held = HeldAs;
using P = Property;

constexpr std::uint8_t kEntries = P::kEvent | P::kTodo | P::kJournal;
constexpr std::uint8_t kBoth = P::kICalendar | P::kVCalendar;

}  // namespace

constexpr Property kProperties[] = {
    {Name::Unknown, "", Type::Text, Held::Other, 0, 0, false},
    {Name::Begin, "BEGIN", Type::Text, Held::Other, 0, kBoth, false},
    {Name::End, "END", Type::Text, Held::Other, 0, kBoth, false},
    {Name::Version, "VERSION", Type::Text, Held::Other, P::kCalendar, kBoth, true},
    {Name::ProdId, "PRODID", Type::Text, Held::Other, P::kCalendar, kBoth, true},
    {Name::CalScale, "CALSCALE", Type::Text, Held::Other, P::kCalendar, P::kICalendar, true},
    {Name::Method, "METHOD", Type::Raw, Held::Other, P::kCalendar, P::kICalendar, true},
    {Name::Name, "NAME", Type::Text, Held::Other, P::kCalendar, P::kICalendar, false},
    {Name::RefreshInterval, "REFRESH-INTERVAL", Type::Text, Held::Other, P::kCalendar,
     P::kICalendar, true},
    {Name::Source, "SOURCE", Type::Raw, Held::Other, P::kCalendar, P::kICalendar, true},
    {Name::Tz, "TZ", Type::Text, Held::Other, P::kCalendar, P::kVCalendar, true},
    {Name::Daylight, "DAYLIGHT", Type::Text, Held::Other, P::kCalendar, P::kVCalendar, false},
    {Name::TzId, "TZID", Type::Text, Held::Other, P::kZone, P::kICalendar, true},
    {Name::TzUrl, "TZURL", Type::Raw, Held::Other, P::kZone, P::kICalendar, true},
    {Name::TzOffsetFrom, "TZOFFSETFROM", Type::Raw, Held::Other, P::kZone, P::kICalendar, true},
    {Name::TzOffsetTo, "TZOFFSETTO", Type::Raw, Held::Other, P::kZone, P::kICalendar, true},
    {Name::TzName, "TZNAME", Type::Text, Held::Other, P::kZone, P::kICalendar, false},
    {Name::DtStart, "DTSTART", Type::Raw, Held::Date, kEntries | P::kZone | P::kNotInCalendar,
     kBoth, true},
    {Name::DtEnd, "DTEND", Type::Raw, Held::Date, P::kEvent | P::kNotInCalendar, kBoth, true},
    {Name::Due, "DUE", Type::Raw, Held::Date, P::kTodo | P::kNotInCalendar, kBoth, true},
    {Name::Completed, "COMPLETED", Type::Raw, Held::Date, P::kTodo, kBoth, true},
    {Name::Created, "CREATED", Type::Raw, Held::Date, kEntries, P::kICalendar, true},
    {Name::DCreated, "DCREATED", Type::Raw, Held::Date, kEntries | P::kNotInCalendar, P::kVCalendar,
     true},
    {Name::LastModified, "LAST-MODIFIED", Type::Raw, Held::Date, kEntries | P::kZone | P::kCalendar,
     kBoth, true},
    {Name::DtStamp, "DTSTAMP", Type::Raw, Held::Date, kEntries | P::kNotInCalendar, P::kICalendar,
     true},
    {Name::XICalDtStamp, "X-ICAL-DTSTAMP", Type::Raw, Held::Date, kEntries, P::kVCalendar, true},
    {Name::RecurrenceId, "RECURRENCE-ID", Type::Raw, Held::Date, kEntries, P::kICalendar, true},
    {Name::XRecurrenceId, "X-RECURRENCE-ID", Type::Raw, Held::Date, kEntries, P::kVCalendar, true},
    {Name::Duration, "DURATION", Type::Raw, Held::Date, P::kEvent | P::kTodo | P::kAlarm,
     P::kICalendar, true},
    {Name::RDate, "RDATE", Type::Raw, Held::Date, kEntries | P::kZone, kBoth, false},
    {Name::ExDate, "EXDATE", Type::Raw, Held::Date, kEntries | P::kZone, kBoth, false},
    {Name::RRule, "RRULE", Type::Raw, Held::Other, kEntries | P::kZone | P::kNotInCalendar, kBoth,
     false},
    {Name::ExRule, "EXRULE", Type::Raw, Held::Other, kEntries | P::kZone, kBoth, false},
    {Name::XICalRRule, "X-ICAL-RRULE", Type::Raw, Held::Other, kEntries, P::kVCalendar, false},
    {Name::XICalExRule, "X-ICAL-EXRULE", Type::Raw, Held::Other, kEntries, P::kVCalendar, false},
    {Name::AAlarm, "AALARM", Type::Text, Held::Other, kEntries | P::kNotInCalendar, P::kVCalendar,
     false},
    {Name::DAlarm, "DALARM", Type::Text, Held::Other, kEntries | P::kNotInCalendar, P::kVCalendar,
     false},
    {Name::MAlarm, "MALARM", Type::Text, Held::Other, kEntries | P::kNotInCalendar, P::kVCalendar,
     false},
    {Name::PAlarm, "PALARM", Type::Text, Held::Other, kEntries | P::kNotInCalendar, P::kVCalendar,
     false},
    {Name::Action, "ACTION", Type::Text, Held::Other, P::kAlarm, P::kICalendar, true},
    {Name::Trigger, "TRIGGER", Type::Raw, Held::Other, P::kAlarm, P::kICalendar, true},
    {Name::Repeat, "REPEAT", Type::Raw, Held::Other, P::kAlarm, P::kICalendar, true},
    {Name::Uid, "UID", Type::Text, Held::Other, kEntries | P::kCalendar, kBoth, true},
    {Name::Body, "BODY", Type::Text, Held::Other, P::kJournal, P::kVCalendar, true},
    {Name::RNum, "RNUM", Type::Raw, Held::Other, kEntries, P::kVCalendar, true},
    {Name::Agent, "AGENT", Type::Raw, Held::Other, kEntries, P::kVCalendar, true},
    {Name::Attach, "ATTACH", Type::Raw, Held::Property, kEntries | P::kAlarm, kBoth, false},
    {Name::Attendee, "ATTENDEE", Type::Raw, Held::Property, kEntries | P::kAlarm, kBoth, false},
    {Name::Categories, "CATEGORIES", Type::TextList, Held::Property, kEntries | P::kCalendar, kBoth,
     false},
    {Name::Class, "CLASS", Type::Text, Held::Property, kEntries, kBoth, true},
    {Name::Color, "COLOR", Type::Text, Held::Property, kEntries | P::kCalendar, P::kICalendar,
     true},
    {Name::Comment, "COMMENT", Type::Text, Held::Property, kEntries | P::kZone, P::kICalendar,
     false},
    {Name::Conference, "CONFERENCE", Type::Raw, Held::Property, P::kEvent | P::kTodo, P::kICalendar,
     false},
    {Name::Contact, "CONTACT", Type::Text, Held::Property, kEntries, P::kICalendar, false},
    {Name::Description, "DESCRIPTION", Type::Text, Held::Property,
     kEntries | P::kAlarm | P::kCalendar, kBoth, true},
    {Name::Geo, "GEO", Type::Raw, Held::Property, P::kEvent | P::kTodo, kBoth, true},
    {Name::Image, "IMAGE", Type::Raw, Held::Property, kEntries | P::kCalendar, P::kICalendar,
     false},
    {Name::Location, "LOCATION", Type::Text, Held::Property, P::kEvent | P::kTodo, kBoth, true},
    {Name::Organizer, "ORGANIZER", Type::Raw, Held::Property, kEntries, P::kICalendar, true},
    {Name::PercentComplete, "PERCENT-COMPLETE", Type::Raw, Held::Property, P::kTodo, P::kICalendar,
     true},
    {Name::Priority, "PRIORITY", Type::Raw, Held::Property, P::kEvent | P::kTodo, kBoth, true},
    {Name::RelatedTo, "RELATED-TO", Type::Text, Held::Property, kEntries, kBoth, false},
    {Name::RequestStatus, "REQUEST-STATUS", Type::Raw, Held::Property, kEntries, P::kICalendar,
     false},
    {Name::Resources, "RESOURCES", Type::TextList, Held::Property, P::kEvent | P::kTodo, kBoth,
     false},
    {Name::Sequence, "SEQUENCE", Type::Raw, Held::Property, kEntries, kBoth, true},
    {Name::Status, "STATUS", Type::Text, Held::Property, kEntries, kBoth, true},
    {Name::Summary, "SUMMARY", Type::Text, Held::Property, kEntries | P::kAlarm, kBoth, true},
    {Name::Transp, "TRANSP", Type::Text, Held::Property, P::kEvent, kBoth, true},
    {Name::Url, "URL", Type::Raw, Held::Property, kEntries | P::kCalendar, kBoth, true},
};

namespace {

static_assert(
    [] {
        std::size_t next = 0;
        for (const Property& each : kProperties)
            if (static_cast<std::size_t>(each.id) != next++) return false;
        return next == static_cast<std::size_t>(kLastPropertyName) + 1;
    }(),
    "a row for each name, in the order of the names");

constexpr std::size_t kSlots = 256;

// REQUIRES: a name that is not empty.
constexpr std::size_t slotOf(std::string_view name) {
    const auto at = [name](std::size_t i) {
        return std::size_t{static_cast<unsigned char>(name[i])};
    };
    // Found by trying: no two names have one slot.
    return (at(0) * 124 + at(name.size() / 2) * 197 + at(name.size() - 1) * 18 + name.size() * 15) %
           kSlots;
}

// A name followed by zeros. Names are short: calling a function takes longer than to compare two
// words.
constexpr std::size_t kLongestName = 16;
struct NameBlock {
    std::array<char, kLongestName> bytes{};
};

constexpr auto kBlocks = [] {
    std::array<NameBlock, std::size(kProperties)> blocks{};
    for (std::size_t each = 0; each < blocks.size(); ++each)
        for (std::size_t at = 0; at < kProperties[each].name.size(); ++at)
            blocks[each].bytes[at] = kProperties[each].name[at];
    return blocks;
}();

// All bits of as many bytes as the row says.
constexpr auto kMasks = [] {
    std::array<NameBlock, kLongestName + 1> masks{};
    for (std::size_t length = 0; length < masks.size(); ++length)
        for (std::size_t at = 0; at < length; ++at) masks[length].bytes[at] = '\xFF';
    return masks;
}();

// Each name's number at its slot; elsewhere 0.
constexpr auto kTable = [] {
    std::array<std::uint8_t, kSlots> table{};
    for (std::size_t name = 1; name < std::size(kProperties); ++name)
        table[slotOf(kProperties[name].name)] = static_cast<std::uint8_t>(name);
    return table;
}();
static_assert(
    [] {
        for (std::size_t name = 1; name < std::size(kProperties); ++name)
            if (kTable[slotOf(kProperties[name].name)] != name) return false;
        return true;
    }(),
    "each name has a slot of its own");

}  // namespace

PropertyName propertyName(std::string_view text, std::size_t length) {
    if (length == 0 || length > kLongestName) return PropertyName::Unknown;
    const std::size_t found = kTable[slotOf(text.substr(0, length))];
    const char* const name = kBlocks[found].bytes.data();
    if (text.size() < kLongestName) {
        const bool same = kProperties[found].name == text.substr(0, length);
        return same ? static_cast<PropertyName>(found) : PropertyName::Unknown;
    }
    const char* const mask = kMasks[length].bytes.data();
    const std::uint64_t first = eightBytes(text.data()) & eightBytes(mask);
    const std::uint64_t rest = eightBytes(text.data() + 8) & eightBytes(mask + 8);
    const bool same = first == eightBytes(name) && rest == eightBytes(name + 8);
    return same ? static_cast<PropertyName>(found) : PropertyName::Unknown;
}

PropertyName propertyName(std::string_view name) {
    return propertyName(name, name.size());
}

}  // namespace qel::calendar
