// The IANA time zone database as cmake/zone-data compiles it into the library. Times are seconds
// since 1 January 1900, offsets seconds east of UTC. Only WorldZones.cpp reads it.
#ifndef QEL_CALENDAR_ZONES_ZONEDATA_H
#define QEL_CALENDAR_ZONES_ZONEDATA_H

#include <cstddef>
#include <cstdint>

namespace qel::calendar::zonedata {

struct Name {
    const char* name;
    std::uint16_t zone;  // in kZones
};

// What a zone's clocks may show.
struct Type {
    std::int32_t offset;
    bool daylight;
    const char* name;
};

struct Change {
    std::int8_t month;    // 1..12
    std::int8_t week;     // 1..4, 5 the last
    std::int8_t weekday;  // 0 Sunday .. 6 Saturday
    std::int32_t second;  // of that day on the clock before the change; also outside the day
};

// The years after the last transition.
struct Rule {
    std::int16_t standard;  // in kTypes
    std::int16_t daylight;  // negative for a zone without it
    Change begin;
    Change end;
};

struct Zone {
    std::uint32_t at;     // its transitions, in kTransitions
    std::uint16_t count;  // of them
    std::uint16_t first;  // the type before them
    std::uint16_t rule;   // in kRules
};

extern const char* const kVersion;
extern const std::size_t kNameCount;
extern const Name kNames[];  // in the order of their small letters
extern const Zone kZones[];
extern const Type kTypes[];
extern const Rule kRules[];
// Two numbers for each transition, seven bits a byte, the lowest first: its type, and the seconds
// since the one before, which are odd as 2 * seconds + 1 or even as 2 * hours.
extern const unsigned char kTransitions[];

}  // namespace qel::calendar::zonedata

#endif
