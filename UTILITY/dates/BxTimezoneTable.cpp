#include "dates/BxTimezoneTable.h"

#include <array>

#include "dates/CivilDate.h"

namespace qel::dates {

namespace {

constexpr int kFirstTableYear = 1990;
constexpr int kLastTableYear = 2010;
constexpr std::size_t kChangesOfSummerZone = 2 * (kLastTableYear - kFirstTableYear + 1);
static_assert(kChangesOfSummerZone == 42);

constexpr int kHour = 60;         // all offsets are in minutes
constexpr int kSummerShift = 60;  // what summer adds to every zone that has one

// Weekdays as weekdayOf counts them.
constexpr int kSunday = 1;
constexpr int kTuesday = 3;
constexpr int kWednesday = 4;
constexpr int kFriday = 6;
constexpr int kSaturday = 7;
constexpr int kLastWeek = 5;

// A weekday of a month and the full hour of the local time that ends then.
struct ChangeRule {
    int month;
    int week;  // [1, 4], or kLastWeek
    int weekday;
    int hour;
};

// The rules that one family of zones shares.
struct Summer {
    ChangeRule begin;
    ChangeRule end;
};

constexpr Summer kNorthAmerica{{4, 1, kSunday, 2}, {10, kLastWeek, kSunday, 2}};
constexpr Summer kWestEurope{{3, kLastWeek, kSunday, 1}, {10, kLastWeek, kSunday, 2}};
constexpr Summer kCentralEurope{{3, kLastWeek, kSunday, 2}, {10, kLastWeek, kSunday, 3}};
constexpr Summer kEastEurope{{3, kLastWeek, kSunday, 3}, {10, kLastWeek, kSunday, 4}};
constexpr Summer kMidAtlantic{{3, kLastWeek, kSunday, 2}, {9, kLastWeek, kSunday, 2}};
constexpr Summer kBucharest{{3, kLastWeek, kSunday, 0}, {9, kLastWeek, kSunday, 1}};
constexpr Summer kCairo{{5, 1, kFriday, 2}, {9, kLastWeek, kWednesday, 2}};
constexpr Summer kTehran{{3, 1, kSunday, 2}, {9, 4, kTuesday, 2}};
constexpr Summer kBaghdad{{4, 1, kSunday, 3}, {10, 1, kSunday, 4}};
constexpr Summer kSouthAustralia{{10, kLastWeek, kSunday, 2}, {3, kLastWeek, kSunday, 2}};
constexpr Summer kTasmania{{10, 1, kSunday, 2}, {3, kLastWeek, kSunday, 2}};
constexpr Summer kSydney2000{{8, kLastWeek, kSunday, 2}, {3, kLastWeek, kSunday, 2}};
constexpr Summer kNewZealand{{10, 1, kSunday, 2}, {3, 3, kSunday, 2}};
constexpr Summer kBrasilia{{10, 3, kSunday, 2}, {2, 2, kSunday, 2}};
constexpr Summer kSantiago{{10, 2, kSaturday, 0}, {3, 2, kSaturday, 0}};

struct ZoneRow {
    int number;
    const char* name;
    int standardOffset;              // minutes
    const Summer* summer = nullptr;  // null: no daylight saving
};

// clang-format off
constexpr std::array<ZoneRow, kZoneCount> kZones{{
    {1, "Eniwetok, Kwajalein", -12 * kHour},
    {2, "Midway Island, Samoa", -11 * kHour},
    {3, "Hawaii", -10 * kHour},
    {4, "Alaska", -9 * kHour, &kNorthAmerica},
    {5, "Pacific Time (US and Canada); Tijuana", -8 * kHour, &kNorthAmerica},
    {6, "Arizona", -7 * kHour},
    {7, "Mountain Time (US and Canada)", -7 * kHour, &kNorthAmerica},
    {8, "Central Time (US and Canada)", -6 * kHour, &kNorthAmerica},
    {9, "Mexico City", -6 * kHour, &kNorthAmerica},
    {10, "Saskatchewan", -6 * kHour},
    {11, "Eastern Time (US and Canada)", -5 * kHour, &kNorthAmerica},
    {12, "Indiana (East)", -5 * kHour},
    {13, "Atlantic Time (Canada)", -4 * kHour, &kNorthAmerica},
    {14, "Caracas, La Paz", -4 * kHour},
    {15, "Newfoundland", -2 * kHour - 30, &kNorthAmerica},
    {16, "Brasilia", -3 * kHour, &kBrasilia},
    {17, "Buenos Aires, Georgetown", -3 * kHour},
    {18, "Mid-Atlantic", -2 * kHour, &kMidAtlantic},
    {19, "Azores", -1 * kHour, &kCentralEurope},
    {20, "Dublin, Edinburgh", 0, &kWestEurope},
    {21, "Lisbon, London", 0, &kWestEurope},
    {22, "UTC", 0},
    {23, "Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna", 1 * kHour, &kCentralEurope},
    {24, "Brussels, Copenhagen, Madrid, Paris", 1 * kHour, &kCentralEurope},
    {25, "Belgrade, Bratislava, Budapest, Ljubljana, Prague", 1 * kHour, &kCentralEurope},
    {26, "Sarajevo, Skopje, Sofija, Vilnius, Warsaw, Zagreb", 1 * kHour, &kCentralEurope},
    {27, "Athens, Istanbul, Minsk", 2 * kHour, &kCentralEurope},
    {28, "Bucharest", 2 * kHour, &kBucharest},
    {29, "Cairo", 2 * kHour, &kCairo},
    {30, "Harare, Pretoria", 2 * kHour},
    {31, "Helsinki, Riga, Tallinn", 2 * kHour, &kEastEurope},
    {32, "Jerusalem", 2 * kHour},
    {33, "Kuwait, Riyadh", 3 * kHour},
    {34, "Moscow, St. Petersburg, Volgograd", 3 * kHour, &kCentralEurope},
    {35, "Nairobi", 3 * kHour},
    {36, "Tehran", 3 * kHour + 30, &kTehran},
    {37, "Abu Dhabi, Muscat", 4 * kHour},
    {38, "Baku, Tbilisi, Yerevan", 4 * kHour, &kCentralEurope},
    {39, "Kabul", 4 * kHour + 30},
    {40, "Islamabad, Karachi, Tashkent", 5 * kHour},
    {41, "Ekaterinburg", 5 * kHour, &kCentralEurope},
    {42, "Calcutta, Chennai, Mumbai, New Delhi", 5 * kHour + 30},
    {43, "Astana, Dhaka", 6 * kHour},
    {44, "Sri Jayawardenepura", 6 * kHour},
    {45, "Bangkok, Hanoi, Jakarta", 7 * kHour},
    {46, "Beijing, Chongqing, Hong Kong, Urumqi", 8 * kHour},
    {47, "Perth", 8 * kHour},
    {48, "Seoul", 9 * kHour},
    {49, "Osaka, Sapporo, Tokyo", 9 * kHour},
    {50, "Adelaide", 9 * kHour + 30, &kSouthAustralia},
    {51, "Darwin", 9 * kHour + 30},
    {52, "Brisbane", 10 * kHour},
    {53, "Canberra, Melbourne, Sydney", 10 * kHour, &kSouthAustralia},
    {54, "Guam, Port Moresby", 10 * kHour},
    {55, "Magadan, Solomon Is., New Caledonia", 11 * kHour},
    {56, "Fiji, Kamchatka, Marshall Is.", 12 * kHour},
    {57, "Auckland, Wellington", 12 * kHour, &kNewZealand},
    {58, "Central America", -6 * kHour},
    {59, "Bogota, Lima, Quito", -5 * kHour},
    {60, "Santiago", -4 * kHour, &kSantiago},
    {61, "Greenland", -3 * kHour, &kNorthAmerica},
    {62, "Cape Verde Is.", -1 * kHour},
    {63, "Casablanca, Monrovia", 0},
    {64, "West Central Africa", 1 * kHour},
    {65, "Baghdad", 3 * kHour, &kBaghdad},
    {66, "Kathmandu", 5 * kHour + 45},
    {67, "Almaty, Novosibirsk", 6 * kHour, &kCentralEurope},
    {68, "Rangoon", 6 * kHour + 30},
    {69, "Krasnoyarsk", 7 * kHour, &kCentralEurope},
    {70, "Kuala Lumpur, Singapore", 8 * kHour},
    {71, "Taipei", 8 * kHour},
    {72, "Irkutsk, Ulaan Bataar", 8 * kHour, &kCentralEurope},
    {73, "Yakutsk", 9 * kHour, &kCentralEurope},
    {74, "Hobart", 10 * kHour, &kTasmania},
    {75, "Vladivostok", 10 * kHour, &kCentralEurope},
    {76, "Canberra, Melbourne, Sydney (Year 2000 only)", 10 * kHour, &kSydney2000},
    {77, "Nuku alofa", 13 * kHour},
}};
// clang-format on

constexpr std::size_t changeCount(const ZoneRow& row) {
    return row.summer == nullptr ? 1 : kChangesOfSummerZone;
}

// Where each zone's changes begin in the table of all changes; the last entry is their number.
constexpr auto kFirstChange = [] {
    std::array<std::size_t, kZoneCount + 1> first{};
    for (std::size_t i = 0; i < kZones.size(); ++i)
        first[i + 1] = first[i] + changeCount(kZones[i]);
    return first;
}();
constexpr std::size_t kChangeCount = kFirstChange[kZoneCount];

constexpr bool numbersAscendByOne() {
    for (std::size_t i = 0; i < kZones.size(); ++i)
        if (kZones[i].number != static_cast<int>(i) + 1) return false;
    return true;
}
static_assert(numbersAscendByOne());
static_assert(kChangeCount == 38 * 42 + 39, "38 zones with daylight saving, 39 without");

constexpr ZoneTime zoneTime(int codeDate, int minutes, int offset) {
    // One day up or down is all that an offset can move.
    if (minutes < 0) {
        minutes += 24 * kHour;
        --codeDate;
    } else if (minutes >= 24 * kHour) {
        minutes -= 24 * kHour;
        ++codeDate;
    }
    const CivilDate date = decodeCivilDate(codeDate);
    return {date.year * 10000 + date.month * 100 + date.day,
            static_cast<std::uint8_t>(minutes / kHour), static_cast<std::uint8_t>(minutes % kHour),
            static_cast<std::int8_t>(offset / kHour), static_cast<std::int8_t>(offset % kHour)};
}

constexpr ZoneChange change(int codeDate, int hour, int offset) {
    const int minutes = hour * kHour;
    return {zoneTime(codeDate, minutes, offset), zoneTime(codeDate, minutes - offset, offset)};
}

constexpr ZoneChange change(const ChangeRule& rule, int year, int offset) {
    const int first = encodeCivilDate({year, rule.month, 1});
    int day = 1 + (rule.weekday - weekdayOf(first) + 7) % 7 + 7 * (rule.week - 1);
    if (day > daysInMonth(year, rule.month)) day -= 7;
    return change(first + day - 1, rule.hour, offset);
}

constexpr auto kChanges = [] {
    std::array<ZoneChange, kChangeCount> changes{};
    std::size_t next = 0;
    for (const ZoneRow& row : kZones) {
        if (row.summer == nullptr) {
            changes[next++] = change(encodeCivilDate({1990, 1, 7}), 0, row.standardOffset);
            continue;
        }
        const Summer& summer = *row.summer;
        const int summerOffset = row.standardOffset + kSummerShift;
        for (int year = kFirstTableYear; year <= kLastTableYear; ++year) {
            const ZoneChange begin = change(summer.begin, year, summerOffset);
            const ZoneChange end = change(summer.end, year, row.standardOffset);
            // South of the equator the year begins in summer.
            const bool north = summer.begin.month < summer.end.month;
            changes[next++] = north ? begin : end;
            changes[next++] = north ? end : begin;
        }
    }
    return changes;
}();

static_assert(kChanges[kFirstChange[11 - 1]].local.date == 19900401);  // Eastern: Sunday, 1 April
static_assert(kChanges[kFirstChange[11 - 1]].utc.hour == 6);

}  // namespace

const char* zoneName(int zone) noexcept {
    return kZones[static_cast<std::size_t>(zone) - 1].name;
}

std::span<const ZoneChange> zoneChanges(int zone) noexcept {
    const std::size_t index = static_cast<std::size_t>(zone) - 1;
    return {kChanges.data() + kFirstChange[index], kChanges.data() + kFirstChange[index + 1]};
}

}  // namespace qel::dates
