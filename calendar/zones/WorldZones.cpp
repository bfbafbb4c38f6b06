#include "calendar/zones/WorldZones.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/zones/YearlyChange.h"
#include "calendar/zones/ZoneData.h"

namespace qel::calendar {

namespace {

constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2499;
constexpr std::size_t kMostSuggestions = 5;
// Longer texts are no names; they are not compared with all names.
constexpr std::size_t kLongestName = 100;
constexpr int kHour = 3600;

struct Transition {
    std::int64_t utc = 0;
    const zonedata::Type* type = nullptr;
};

// The transitions of a zone one after the other: those of the database, then those of its rule.
class Transitions {
  public:
    explicit Transitions(std::size_t number)
        : zone_(zonedata::kZones[zonedata::kNames[number].zone]),
          rule_(zonedata::kRules[zone_.rule]),
          at_(zonedata::kTransitions + zone_.at),
          left_(zone_.count) {}

    [[nodiscard]] const zonedata::Type& first() const { return zonedata::kTypes[zone_.first]; }

    // False after the last one of the year 2499.
    bool next(Transition& transition) {
        if (left_ != 0) {
            --left_;
            last_.type = &zonedata::kTypes[number()];
            const std::int64_t step = number();
            last_.utc += step % 2 == 0 ? step / 2 * 3600 : step / 2;
            year_ = civilOf(static_cast<int>(last_.utc / kDaySeconds)).year - 1;
            transition = last_;
            return true;
        }
        while (queue_.empty()) {
            if (rule_.daylight < 0 || ++year_ > kLastYear) return false;
            addYear();
        }
        transition = queue_.back();
        queue_.pop_back();
        return true;
    }

  private:
    std::int64_t number() {
        std::int64_t value = 0;
        for (int shift = 0;; shift += 7) {
            const unsigned char byte = *at_++;
            value |= std::int64_t{byte % 128} << shift;
            if (byte < 128) return value;
        }
    }

    static std::int64_t local(const zonedata::Change& change, int year) {
        const YearlyChange yearly{change.month, change.week == 5 ? -1 : change.week,
                                  change.weekday + 1, change.second};
        return yearly.inYear(year);
    }

    // The two of a year, the later one first, as far as they are after the database's own.
    void addYear() {
        const zonedata::Type& standard = zonedata::kTypes[rule_.standard];
        const zonedata::Type& daylight = zonedata::kTypes[rule_.daylight];
        queue_ = {{local(rule_.begin, year_) - standard.offset, &daylight},
                  {local(rule_.end, year_) - daylight.offset, &standard}};
        std::sort(
            queue_.begin(), queue_.end(),
            [](const Transition& a, const Transition& b) { return a.utc > b.utc; });
        std::erase_if(queue_, [this](const Transition& each) { return each.utc <= last_.utc; });
    }

    const zonedata::Zone& zone_;
    const zonedata::Rule& rule_;
    const unsigned char* at_;
    std::size_t left_;
    Transition last_;  // of the database's own
    int year_ = kFirstYear - 1;
    std::vector<Transition> queue_;
};

std::string lower(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return result;
}

// How many letters have to be changed, added or left out to make one of the other.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = i;
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t change = diagonal + (one[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, diagonal + 1, change});
        }
    }
    return row.back();
}

// 0 for a name with these words in it; more, the less they resemble each other.
std::size_t unlikeness(const std::string& wanted, std::string_view name) {
    const std::string known = lower(name);
    if (known.find(wanted) != std::string::npos) return 0;
    const std::string city = known.substr(known.rfind('/') + 1);
    const std::string wantedCity = wanted.substr(wanted.rfind('/') + 1);
    return std::min(distance(wanted, known), distance(wantedCity, city) + 1);
}

}  // namespace

std::string_view worldZoneVersion() {
    return zonedata::kVersion;
}

std::size_t worldZoneCount() {
    return zonedata::kNameCount;
}

std::string_view worldZoneName(std::size_t number) {
    return zonedata::kNames[number].name;
}

std::optional<std::size_t> findWorldZone(std::string_view name) {
    const std::string wanted = lower(name);
    const auto* const end = zonedata::kNames + zonedata::kNameCount;
    const auto* const found = std::lower_bound(
        zonedata::kNames, end, wanted, [](const zonedata::Name& each, const std::string& text) {
            return lower(each.name) < text;
        });
    if (found == end || lower(found->name) != wanted) return std::nullopt;
    return static_cast<std::size_t>(found - zonedata::kNames);
}

namespace {

// The database's name for a zone of Windows, also for its summer time; null for another text.
const char* worldNameOfWindows(std::string_view name) {
    constexpr std::string_view kDaylight = "Daylight Time";
    std::string standard(name);
    if (name.ends_with(kDaylight))
        standard.replace(name.size() - kDaylight.size(), kDaylight.size(), "Standard Time");
    for (const WindowsZone& each : windowsZones())
        if (equalsIgnoreCase(each.windows, standard)) return each.world;
    return nullptr;
}

// A name as it is, with blanks for "_", or with "-" for "/".
std::optional<std::size_t> findTidied(std::string_view name) {
    if (const auto found = findWorldZone(name)) return found;
    std::string tidied(name);
    std::replace(tidied.begin(), tidied.end(), ' ', '_');
    if (const auto found = findWorldZone(tidied)) return found;
    std::replace(tidied.begin(), tidied.end(), '-', '/');
    return findWorldZone(tidied);
}

}  // namespace

std::optional<std::size_t> worldZoneMeant(std::string_view tzid) {
    tzid = trimmed(tzid);
    if (tzid.size() > 2 * kLongestName) return std::nullopt;
    if (const char* world = worldNameOfWindows(tzid)) return findWorldZone(world);
    // The database's names of offsets have the other sign.
    if (const auto offset = offsetNamed(tzid); offset && *offset % kHour == 0)
        return findWorldZone(*offset == 0 ? "Etc/GMT"
                                          : std::string("Etc/GMT") + (*offset > 0 ? '-' : '+') +
                                                std::to_string(std::abs(*offset) / kHour));
    // From the whole text to its last part: the name is the longest one that there is.
    for (std::string_view rest = tzid; !rest.empty();) {
        if (const auto found = findTidied(rest)) return found;
        const std::size_t slash = rest.find('/');
        if (slash == std::string_view::npos) break;
        rest.remove_prefix(slash + 1);
        // A last part alone is a city, or anything: "/example.org/UTC" is a zone, "x/Cuba" is not.
        if (rest.find('/') == std::string_view::npos && !equalsIgnoreCase(rest, "UTC")) break;
    }
    return std::nullopt;
}

std::optional<int> offsetNamed(std::string_view text) {
    text = trimmed(text);
    for (const std::string_view prefix : {"GMT", "UTC"})
        if (startsWithIgnoreCase(text, prefix)) text.remove_prefix(prefix.size());
    if (text.empty() || (text.front() != '+' && text.front() != '-')) return std::nullopt;
    return parseUtcOffset(text);
}

std::string noWorldZone(std::string_view name) {
    std::string text = "there is no time zone " + quoted(name);
    const std::string wanted = lower(trimmed(name));
    if (wanted.empty() || wanted.size() > kLongestName) return text;
    std::vector<std::pair<std::size_t, std::size_t>> near;
    for (std::size_t i = 0; i < worldZoneCount(); ++i)
        near.emplace_back(unlikeness(wanted, worldZoneName(i)), i);
    std::sort(near.begin(), near.end());
    const std::size_t most = wanted.size() / 3;
    std::string names;
    for (std::size_t i = 0; i < kMostSuggestions && near[i].first <= most; ++i)
        names += (names.empty() ? "" : ", ") + std::string(worldZoneName(near[i].second));
    if (!names.empty()) return text + "; similar names: " + names;
    return text + "; names are those of the IANA database, as Europe/Berlin";
}

int worldZoneOffset(std::size_t number, std::int64_t utc) {
    Transitions transitions(number);
    const zonedata::Type* type = &transitions.first();
    for (Transition each; transitions.next(each) && each.utc <= utc;) type = each.type;
    return type->offset;
}

ZonePtr makeWorldZone(std::size_t number) {
    ZoneParts parts;
    parts.id = worldZoneName(number);
    Transitions transitions(number);
    const zonedata::Type* last = &transitions.first();
    parts.baseOffset = last->offset;
    parts.baseName = last->name;
    for (Transition each; transitions.next(each);) {
        // Some differ only in what the database knows about them.
        if (each.type == last) continue;
        parts.changes.push_back(
            {each.utc, each.type->offset, each.type->daylight, each.type->name});
        last = each.type;
    }
    return std::make_shared<const Zone>(std::move(parts));
}

ZonePtr worldZone(std::size_t number) {
    static std::mutex lock;
    static std::vector<ZonePtr> built(worldZoneCount());
    const std::lock_guard guard(lock);
    if (built[number] == nullptr) built[number] = makeWorldZone(number);
    return built[number];
}

bool isUtc(const Zone& zone) {
    const ZoneParts& parts = zone.parts();
    return parts.baseName == "UTC" && parts.baseOffset == 0 && parts.changes.empty();
}

std::span<const WindowsZone> windowsZones() {
    static constexpr WindowsZone kZones[] = {
#define QEL_WINDOWS_ZONE(windows, world) {windows, world},
#include "calendar/zones/WindowsZones.def"
#undef QEL_WINDOWS_ZONE
    };
    return kZones;
}

}  // namespace qel::calendar
