// The zones of QelUtility's table and the computer's own, both ways between local time and UTC.
// Times are seconds since 1 January 1900 of the years 1900 to 2499. One thread for each object.
//
// QelUtility decides on summer time with conventions of its own that are an hour or more off around
// a change of offset (its UTC column, the class's single look-up). Here both directions follow the
// clock on the wall: a change happens at the local time that its rule names.
#ifndef QEL_CALENDAR_ZONES_TABLEZONE_H
#define QEL_CALENDAR_ZONES_TABLEZONE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "QelUtility/BxTimezones.h"

namespace qel::calendar {

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

class TableZone {
  public:
    // REQUIRES: 0, the computer's own zone, or a number of the table.
    explicit TableZone(int number);

    // Whether the zone's changes in `year` are known: outside 1990 to 2010 the table's zones keep
    // the offset of their first or last change.
    [[nodiscard]] bool knows(int year) const;

    [[nodiscard]] UtcTime toUtc(std::int64_t local);
    [[nodiscard]] std::int64_t offsetAtUtc(std::int64_t utc);

    // In the order of time.
    [[nodiscard]] std::vector<OffsetChange> changesIn(int year);

  private:
    [[nodiscard]] std::int64_t libraryOffset(std::int64_t local);
    [[nodiscard]] std::int64_t wallOffset(std::int64_t local);

    int number_;
    CBxTimeZoneUtility computer_;
    std::int64_t daylightOffset_ = 0;  // of the computer's zone; of the table's it plays no part
};

// The names of the table's zones: the first one belongs to number 1. Lasts as long as the process.
[[nodiscard]] const std::vector<std::string>& tableZoneNames();

struct FoundZone {
    int number = -1;     // 0 for the computer's own zone, negative when none was found
    std::string whyNot;  // then, in one sentence
};

// By number, by name without regard to case, or by a part of the name that no other zone has: "11",
// "Hawaii", "berlin", "utc", "local".
[[nodiscard]] FoundZone findTableZone(std::string_view name);

}  // namespace qel::calendar

#endif
