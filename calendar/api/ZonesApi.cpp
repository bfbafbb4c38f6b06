// The zones of QelUtility's table, the computer's own, and those of the IANA database.
#include <optional>
#include <string_view>
#include <vector>

#include "calendar/api/Calls.h"
#include "calendar/base/Days.h"
#include "calendar/zones/TableZone.h"
#include "calendar/zones/WorldZones.h"
#include "calendar/zones/ZoneClock.h"

namespace {

namespace api = qel::calendar::api;
using qel::calendar::TableZone;
using qel::calendar::UtcTime;

constexpr int64_t kEndOfTime = int64_t{qel::calendar::dayNumber(2500, 1, 1)} * 86400;

// The number of a zone of the database there, if it is one.
std::optional<size_t> worldZone(int zone) {
    if (zone < QELCAL_FIRST_WORLD_ZONE) return std::nullopt;
    const auto number = static_cast<size_t>(zone) - QELCAL_FIRST_WORLD_ZONE;
    return number < qel::calendar::worldZoneCount() ? std::optional(number) : std::nullopt;
}

bool isZone(int zone) {
    if (worldZone(zone)) return true;
    return zone >= 0 && static_cast<size_t>(zone) <= qel::calendar::tableZoneNames().size();
}

UtcTime toUtc(int zone, int64_t local) {
    if (const auto number = worldZone(zone))
        return qel::calendar::utcOf(*qel::calendar::makeWorldZone(*number), local);
    return TableZone(zone).toUtc(local);
}

std::vector<qel::calendar::OffsetChange> changesIn(int zone, int year) {
    if (const auto number = worldZone(zone))
        return qel::calendar::changesIn(*qel::calendar::makeWorldZone(*number), year);
    return TableZone(zone).changesIn(year);
}

// A whole name of the database, or else what the table finds.
int find(std::string_view name, int& zone) {
    const qel::calendar::FoundZone found = qel::calendar::findTableZone(name);
    zone = found.number;
    if (found.number >= 0) return QELCAL_OK;
    const auto world = qel::calendar::findWorldZone(name);
    if (!world)
        return api::fail(QELCAL_UNKNOWN_NAME, name.find('/') == std::string_view::npos
                                                  ? found.whyNot
                                                  : qel::calendar::noWorldZone(name));
    zone = QELCAL_FIRST_WORLD_ZONE + static_cast<int>(*world);
    return QELCAL_OK;
}

bool isTime(int64_t seconds) {
    return seconds >= 0 && seconds < kEndOfTime;
}

bool isYear(int year) {
    return year >= 1900 && year <= 2499;
}

int refuse() {
    return api::fail(QELCAL_INVALID_ARGUMENT,
                     "there is no zone of that number, the time lies outside the years 1900 to "
                     "2499, or the result is null");
}

}  // namespace

size_t qelcal_zone_count() {
    return api::guardedValue(
        size_t{0}, [] { return qel::calendar::tableZoneNames().size(); });
}

const char* qelcal_zone_data_version() {
    return qel::calendar::worldZoneVersion().data();
}

size_t qelcal_zone_data_count() {
    return qel::calendar::worldZoneCount();
}

const char* qelcal_zone_name(int zone) {
    return api::guardedValue(
        "",
        [zone] {
            if (const auto number = worldZone(zone))
                return qel::calendar::worldZoneName(*number).data();
            if (!isZone(zone)) return "";
            return zone == 0
                       ? "the computer's own zone"
                       : qel::calendar::tableZoneNames()[static_cast<size_t>(zone) - 1].c_str();
        });
}

int qelcal_zone_find(const char* name, int* zone) {
    if (name == nullptr || zone == nullptr)
        return api::fail(QELCAL_INVALID_ARGUMENT, "the name or the result is null");
    return api::guarded([=] {
        int found = 0;
        const int result = find(name, found);
        if (result == QELCAL_OK) *zone = found;
        return result;
    });
}

int qelcal_zone_knows(int zone, int year) {
    return api::guardedValue(
        0,
        [=] {
            if (!isZone(zone) || !isYear(year)) return 0;
            return worldZone(zone) || TableZone(zone).knows(year) ? 1 : 0;
        });
}

int qelcal_zone_to_utc(int zone, int64_t local, int64_t* utc, int* occurs) {
    return api::guarded([=] {
        if (!isZone(zone) || !isTime(local) || utc == nullptr) return refuse();
        const UtcTime time = toUtc(zone, local);
        *utc = time.utc;
        if (occurs != nullptr)
            *occurs = time.kind == UtcTime::Kind::Skipped    ? QELCAL_SKIPPED
                      : time.kind == UtcTime::Kind::Repeated ? QELCAL_REPEATED
                                                             : QELCAL_ONCE;
        return int{QELCAL_OK};
    });
}

int qelcal_zone_offset(int zone, int64_t utc, int64_t* offset) {
    return api::guarded([=] {
        if (!isZone(zone) || !isTime(utc) || offset == nullptr) return refuse();
        const auto number = worldZone(zone);
        *offset = number ? qel::calendar::worldZoneOffset(*number, utc)
                         : TableZone(zone).offsetAtUtc(utc);
        return int{QELCAL_OK};
    });
}

int qelcal_zone_changes(int zone, int year, qelcal_offset_change* changes, size_t room,
                        size_t* count) {
    return api::guarded([=] {
        if (!isZone(zone) || !isYear(year) || count == nullptr || (changes == nullptr && room != 0))
            return refuse();
        const auto found = changesIn(zone, year);
        *count = found.size();
        for (size_t i = 0; i < found.size() && i < room; ++i)
            changes[i] = {found[i].local, found[i].before, found[i].after};
        return int{QELCAL_OK};
    });
}
