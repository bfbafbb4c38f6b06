// The zones of QelUtility's table.
#include "calendar/api/Calls.h"
#include "calendar/base/Days.h"
#include "calendar/zones/TableZone.h"

namespace {

namespace api = qel::calendar::api;
using qel::calendar::TableZone;
using qel::calendar::UtcTime;

constexpr int64_t kEndOfTime = int64_t{qel::calendar::dayNumber(2500, 1, 1)} * 86400;

bool isZone(int zone) {
    return zone >= 0 && static_cast<size_t>(zone) <= qel::calendar::tableZoneNames().size();
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

const char* qelcal_zone_name(int zone) {
    return api::guardedValue(
        "",
        [zone] {
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
        const qel::calendar::FoundZone found = qel::calendar::findTableZone(name);
        if (found.number < 0) return api::fail(QELCAL_UNKNOWN_NAME, found.whyNot);
        *zone = found.number;
        return int{QELCAL_OK};
    });
}

int qelcal_zone_knows(int zone, int year) {
    return api::guardedValue(
        0, [=] { return isZone(zone) && isYear(year) && TableZone(zone).knows(year) ? 1 : 0; });
}

int qelcal_zone_to_utc(int zone, int64_t local, int64_t* utc, int* occurs) {
    return api::guarded([=] {
        if (!isZone(zone) || !isTime(local) || utc == nullptr) return refuse();
        const UtcTime time = TableZone(zone).toUtc(local);
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
        *offset = TableZone(zone).offsetAtUtc(utc);
        return int{QELCAL_OK};
    });
}

int qelcal_zone_changes(int zone, int year, qelcal_offset_change* changes, size_t room,
                        size_t* count) {
    return api::guarded([=] {
        if (!isZone(zone) || !isYear(year) || count == nullptr || (changes == nullptr && room != 0))
            return refuse();
        const auto found = TableZone(zone).changesIn(year);
        *count = found.size();
        for (size_t i = 0; i < found.size() && i < room; ++i)
            changes[i] = {found[i].local, found[i].before, found[i].after};
        return int{QELCAL_OK};
    });
}
