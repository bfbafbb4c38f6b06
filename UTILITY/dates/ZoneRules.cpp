#include "dates/ZoneRules.h"

#include <chrono>
#include <optional>

#include "dates/CivilDate.h"
#include "dates/reldaymo.h"

namespace qel::dates {

namespace {

namespace chr = std::chrono;

constexpr int kLastFileTimeYear = 30828;
constexpr std::int64_t kFileTimePerDay = kSecondsPerDay * kFileTimePerSecond;
constexpr chr::sys_days kFileTimeEpoch = chr::year(1601) / chr::January / 1;
static_assert((chr::sys_days(chr::year(1900) / chr::January / 1) - kFileTimeEpoch).count() *
                  kFileTimePerDay ==
              kFileTimeOf1900);

std::int64_t fileTimeOfDay(chr::sys_days day) {
    return (day - kFileTimeEpoch).count() * kFileTimePerDay;
}

// Minutes as they are kept: 16 bits.
std::int64_t offsetOfMinutes(std::int64_t minutes) {
    return static_cast<std::int16_t>(minutes) * kFileTimePerMinute;
}

// The file time of a change in a year, in the local time that ends; none when the rule names no
// date or no time of day.
std::optional<std::int64_t> momentIn(int year, const platform::ZoneChangeMoment& moment,
                                     bool absolute) {
    if (moment.hour < 0 || moment.hour > 23 || moment.minute < 0 || moment.minute > 59 ||
        moment.second < 0 || moment.second > 59 || moment.millisecond < 0 ||
        moment.millisecond > 999)
        return std::nullopt;
    std::int64_t day = 0;
    if (absolute) {
        if (moment.month < 1 || moment.month > 12 || moment.day < 1 ||
            moment.day > daysInMonth(year, moment.month))
            return std::nullopt;
        day = fileTimeOfDay(chr::year(year) / moment.month / moment.day);
    } else {
        const int code = relativeDayOfMonth(year, moment.month, moment.day, moment.dayOfWeek);
        if (code < 0) return std::nullopt;
        day = kFileTimeOf1900 + code * kFileTimePerDay;
    }
    const std::int64_t seconds = moment.hour * 3600 + moment.minute * 60 + moment.second;
    return day + seconds * kFileTimePerSecond + moment.millisecond * (kFileTimePerSecond / 1000);
}

}  // namespace

FileTimeFields splitFileTime(std::int64_t fileTime) {
    const std::int64_t days = fileTime / kFileTimePerDay;
    const auto seconds = static_cast<int>(fileTime % kFileTimePerDay / kFileTimePerSecond);
    const int hour = seconds / 3600;
    const int minute = seconds % 3600 / 60;
    const std::int64_t code = days - kFileTimeOf1900 / kFileTimePerDay;
    if (isCodeDate(code)) {
        const CivilDate date = decodeCivilDate(static_cast<int>(code));
        return {date.year, date.month, date.day, hour, minute, seconds % 60};
    }
    const chr::year_month_day date(kFileTimeEpoch + chr::days(days));
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            hour,
            minute,
            seconds % 60};
}

ZoneOffsets zoneOffsets(const platform::TimeZoneDescription& zone, bool followsDaylight) {
    const std::int64_t standardBias = std::int64_t{zone.bias} + zone.standardBias;
    ZoneOffsets offsets{};
    offsets.daylightEnabled = followsDaylight && zone.standardDate.month != 0;
    offsets.standard = offsetOfMinutes(-standardBias);
    offsets.daylight = offsets.daylightEnabled
                           ? offsetOfMinutes(-(standardBias + zone.daylightBias))
                           : offsets.standard;
    return offsets;
}

DaylightYear daylightYear(std::int64_t fileTime, const platform::TimeZoneDescription& zone) {
    const int year = splitFileTime(fileTime).year;
    const bool absolute = zone.standardDate.year != 0;
    const auto standardChange = momentIn(year, zone.standardDate, absolute);
    const auto daylightChange = momentIn(year, zone.daylightDate, absolute);
    DaylightYear result;
    result.begin = fileTimeOfDay(chr::year(year) / chr::January / 1);
    // The last year is cut short by the largest file time.
    result.end = year < kLastFileTimeYear ? fileTimeOfDay(chr::year(year + 1) / chr::January / 1)
                                          : INT64_MAX;
    result.changes = standardChange && daylightChange;
    result.southern = zone.standardDate.month <= zone.daylightDate.month;
    result.toStandard = standardChange.value_or(0);
    result.toDaylight = daylightChange.value_or(0);
    return result;
}

bool isDaylightTime(std::int64_t fileTime, const platform::TimeZoneDescription& zone,
                    std::int64_t daylightOffset) {
    return fileTime > 0 && daylightYear(fileTime, zone).isDaylight(fileTime, daylightOffset);
}

}  // namespace qel::dates
