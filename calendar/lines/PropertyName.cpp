#include "calendar/lines/PropertyName.h"

#include <array>
#include <cstddef>

namespace qel::calendar {

namespace {

constexpr std::string_view kTexts[] = {"",
                                       "BEGIN",
                                       "END",
                                       "VERSION",
                                       "TZ",
                                       "DAYLIGHT",
                                       "DTSTART",
                                       "DTEND",
                                       "DUE",
                                       "COMPLETED",
                                       "CREATED",
                                       "DCREATED",
                                       "LAST-MODIFIED",
                                       "DTSTAMP",
                                       "X-ICAL-DTSTAMP",
                                       "RECURRENCE-ID",
                                       "X-RECURRENCE-ID",
                                       "DURATION",
                                       "RDATE",
                                       "EXDATE",
                                       "RRULE",
                                       "EXRULE",
                                       "X-ICAL-RRULE",
                                       "X-ICAL-EXRULE",
                                       "AALARM",
                                       "DALARM",
                                       "MALARM",
                                       "PALARM",
                                       "UID",
                                       "BODY",
                                       "ATTACH",
                                       "ATTENDEE",
                                       "CATEGORIES",
                                       "CLASS",
                                       "COLOR",
                                       "COMMENT",
                                       "CONFERENCE",
                                       "CONTACT",
                                       "DESCRIPTION",
                                       "GEO",
                                       "IMAGE",
                                       "LOCATION",
                                       "ORGANIZER",
                                       "PERCENT-COMPLETE",
                                       "PRIORITY",
                                       "RELATED-TO",
                                       "REQUEST-STATUS",
                                       "RESOURCES",
                                       "SEQUENCE",
                                       "STATUS",
                                       "SUMMARY",
                                       "TRANSP",
                                       "URL"};
static_assert(std::size(kTexts) == static_cast<std::size_t>(kLastPropertyName) + 1);

constexpr std::size_t kSlots = 256;

// REQUIRES: a name that is not empty.
constexpr std::size_t slotOf(std::string_view name) {
    const auto at = [name](std::size_t i) {
        return std::size_t{static_cast<unsigned char>(name[i])};
    };
    return (at(0) * 5 + at(name.size() / 2) * 23 + at(name.size() - 1) * 3 + name.size() * 7) %
           kSlots;
}

// Each name's number at its slot, or at the next one that was free; 0 ends the search.
constexpr auto kTable = [] {
    std::array<std::uint8_t, kSlots> table{};
    for (std::size_t name = 1; name < std::size(kTexts); ++name) {
        std::size_t slot = slotOf(kTexts[name]);
        while (table[slot] != 0) slot = (slot + 1) % kSlots;
        table[slot] = static_cast<std::uint8_t>(name);
    }
    return table;
}();

}  // namespace

PropertyName propertyName(std::string_view name) {
    if (name.empty()) return PropertyName::Unknown;
    for (std::size_t slot = slotOf(name); kTable[slot] != 0; slot = (slot + 1) % kSlots)
        if (kTexts[kTable[slot]] == name) return static_cast<PropertyName>(kTable[slot]);
    return PropertyName::Unknown;
}

}  // namespace qel::calendar
