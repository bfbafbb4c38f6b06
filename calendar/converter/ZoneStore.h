// The zones of the file that is converted. One thread, but for what known describes: others may
// read that while nothing is added.
#ifndef QEL_CALENDAR_CONVERTER_ZONESTORE_H
#define QEL_CALENDAR_CONVERTER_ZONESTORE_H

#include <cstddef>

#include "calendar/formats/EntryReader.h"
#include "calendar/zones/ZoneNaming.h"

namespace qel::calendar {

class ZoneStore {
  public:
    ZoneStore() = default;
    ZoneStore(const ZoneStore&) = delete;
    ZoneStore& operator=(const ZoneStore&) = delete;

    void add(const ZonePtr& zone) {
        if (zone == nullptr) return;
        const std::size_t cost = zone->cost();
        if (bytes_ + cost > kMostBytes) return;
        // The same name may be described twice; the later one counts from there on.
        ZonePtr& place = described_[zone->id()];
        bytes_ += cost - (place == nullptr ? 0 : place->cost());
        place = zone;
        ++changes_;
    }

    void clear() {
        described_.clear();
        bytes_ = 0;
        ++changes_;
    }

    // Another number after each change.
    [[nodiscard]] std::size_t changes() const { return changes_; }

  private:
    // Far more than all zones of the world take; beyond it a zone counts as not described.
    static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

    ZonesById described_;
    std::size_t bytes_ = 0;
    std::size_t changes_ = 0;

  public:
    KnownZones known{&described_, {}};
    ZoneNamings namings;
};

}  // namespace qel::calendar

#endif
