// Time zones as the command line names them: those of the library's table, UTC, and "local", the
// computer's own. Times are seconds since 1 January 1900. One thread.
//
// The library decides on summer time with conventions of its own that are an hour or more off
// around a change of offset (its UTC column, the class's single look-up). Here both directions
// follow the clock on the wall: a change takes place at the local time that its rule names.
#ifndef QELUTIL_BASE_ZONES_H
#define QELUTIL_BASE_ZONES_H

#include <cstdint>
#include <string>
#include <vector>

#include "QelUtility/BxTimezones.h"

namespace qel::cli {

// A change of offset: the wall-clock time that ends and the offsets (local time = UTC + offset).
struct OffsetChange {
    std::int64_t local;
    std::int64_t before;
    std::int64_t after;
};

// What a wall-clock time is in UTC.
struct UtcTime {
    enum class Kind { Once, Skipped, Repeated };
    std::int64_t utc;     // of a repeated time the first, of a skipped one as if the clock ran on
    std::int64_t offset;  // local time = UTC + offset
    Kind kind;
};

class Zone {
  public:
    // By number, by name without regard to case, or by a part of the name that no other zone has:
    // "11", "Hawaii", "berlin", "utc", "local". Throws UsageError that says what there is.
    static Zone named(const std::string& name);

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] int number() const { return number_; }  // 0 for the computer's own

    // Whether the zone's changes in `year` are known: outside 1990 to 2010 the table's zones keep
    // the offset of their first or last change.
    [[nodiscard]] bool knows(int year) const;

    [[nodiscard]] UtcTime toUtc(std::int64_t local);
    [[nodiscard]] std::int64_t offsetAtUtc(std::int64_t utc);

    // In the order of time.
    [[nodiscard]] std::vector<OffsetChange> changesIn(int year);

  private:
    friend std::vector<Zone> tableZones();
    Zone(int number, std::string name);
    [[nodiscard]] std::int64_t libraryOffset(std::int64_t local);
    [[nodiscard]] std::int64_t wallOffset(std::int64_t local);

    int number_;
    std::string name_;
    CBxTimeZoneUtility computer_;
    std::int64_t daylightOffset_ = 0;  // of the computer's zone; of the table's it plays no part
};

// All zones of the table, by number.
[[nodiscard]] std::vector<Zone> tableZones();

}  // namespace qel::cli

#endif
