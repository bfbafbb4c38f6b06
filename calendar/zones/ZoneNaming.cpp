#include "calendar/zones/ZoneNaming.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "calendar/base/Days.h"

namespace qel::calendar {

namespace {

// Most of those that agree with the lines are the same in all years.
constexpr std::size_t kMostCandidates = 8;
constexpr int kFirstYear = 1900;
// As far as zones are known that are made of lines.
constexpr int kLastYear = 2099;

// The zones that most people of a zone of Windows live in, in the order of that list.
const std::vector<std::size_t>& usualZones() {
    static const std::vector<std::size_t> numbers = [] {
        std::vector<std::size_t> all;
        for (const WindowsZone& each : windowsZones())
            if (const auto number = findWorldZone(each.world)) all.push_back(*number);
        return all;
    }();
    return numbers;
}

}  // namespace

ZoneNaming::ZoneNaming(ZonePtr made, ZonePtr wanted, WorldZones& world)
    : made_(std::move(made)), wanted_(std::move(wanted)) {
    if (!made_->parts().daylight) return;
    if (wanted_ != nullptr) {
        alwaysWanted_ = agreesWithLines(*wanted_);
        return;
    }
    findCandidates(world);
    if (candidates_.empty()) return;
    // Lines without a rule say nothing about other years: a zone that has them knows more.
    if (!made_->parts().continued) {
        firstSteadyYear_ = kAlways;
        return;
    }
    const auto agreesFrom = [this](int year) {
        return agree(*made_, *candidates_.front(), yearBegin(year), yearBegin(kLastYear + 1));
    };
    for (int low = kFirstYear, high = kLastYear; low <= high && agreesFrom(high);) {
        const int middle = low + (high - low) / 2;
        if (!agreesFrom(middle)) {
            low = middle + 1;
            continue;
        }
        firstSteadyYear_ = middle;
        high = middle - 1;
    }
}

// A day before and after the lines too, where they are not cut off at the end of a year.
bool ZoneNaming::agreesWithLines(const Zone& zone) const {
    const auto& [begin, end] = *made_->parts().daylight;
    const auto isCut = [](std::int64_t moment) {
        return moment == yearBegin(civilOf(static_cast<int>(moment / kDaySeconds)).year);
    };
    return agree(*made_, zone, isCut(begin) ? begin : begin - kDaySeconds,
                 isCut(end) ? end : end + kDaySeconds);
}

void ZoneNaming::findCandidates(WorldZones& world) {
    const auto& [begin, end] = *made_->parts().daylight;
    for (const std::size_t number : usualZones()) {
        if (candidates_.size() == kMostCandidates) return;
        // To build a zone takes longer than to see that it is another one.
        if (worldZoneOffset(number, begin) != made_->offsetAtUtc(begin) ||
            worldZoneOffset(number, begin - kDaySeconds) != made_->offsetAtUtc(begin - kDaySeconds))
            continue;
        const ZonePtr& zone = world.zone(number);
        if (agreesWithLines(*zone)) candidates_.push_back(zone);
    }
}

const ZonePtr& ZoneNaming::zoneFor(int first, int last) const {
    if (alwaysWanted_) return wanted_;
    const auto fits = [&](const ZonePtr& zone) {
        return agree(*made_, *zone, yearBegin(first), yearBegin(last + 1));
    };
    if (wanted_ != nullptr) return !made_->parts().daylight && fits(wanted_) ? wanted_ : made_;
    const auto found = std::find_if(candidates_.begin(), candidates_.end(), fits);
    return found == candidates_.end() ? made_ : *found;
}

std::shared_ptr<const ZoneNaming> ZoneNamings::of(ZonePtr made, ZonePtr wanted, WorldZones& world) {
    // All of a zone made of lines follows from them.
    const bool same = last_ != nullptr && last_->wanted() == wanted &&
                      last_->made()->parts().ownLines == made->parts().ownLines;
    if (!same)
        last_ = std::make_shared<const ZoneNaming>(std::move(made), std::move(wanted), world);
    return last_;
}

}  // namespace qel::calendar
