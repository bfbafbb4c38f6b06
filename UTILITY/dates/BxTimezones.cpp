// The conversion by the rules of the computer's own zone.
#include "QelUtility/BxTimezones.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "QelUtility/ZQDate.h"
#include "dates/CivilDate.h"
#include "dates/DateTimeFields.h"
#include "dates/DecimalField.h"
#include "dates/ZoneRules.h"
#include "platform/LocalClock.h"
#include "platform/TimeZone.h"

namespace {

using qel::platform::TimeZoneDescription;
using qel::platform::ZoneChangeMoment;

constexpr std::size_t kLocalLength = 15;  // "20050615T083000"
constexpr std::size_t kUtcLength = 16;    // with the Z
constexpr std::size_t kTPosition = 8;

CBxTimeZoneUtility::SYSTEMTIME exchangeMoment(const ZoneChangeMoment& moment) {
    const auto word = [](int value) { return static_cast<std::uint16_t>(value); };
    return {word(moment.year),   word(moment.month),      word(moment.dayOfWeek),
            word(moment.day),    word(moment.hour),       word(moment.minute),
            word(moment.second), word(moment.millisecond)};
}

ZoneChangeMoment momentOf(const CBxTimeZoneUtility::SYSTEMTIME& time) {
    return {time.wYear, time.wMonth,  time.wDayOfWeek, time.wDay,
            time.wHour, time.wMinute, time.wSecond,    time.wMilliseconds};
}

// What became of the computer's zone in a year, by the version of the zone.
struct KnownYear {
    std::uint32_t version = 0;
    qel::dates::DaylightYear year;
};

bool isDateTime(const char* text, std::size_t length) {
    return text != nullptr && std::strlen(text) == length && text[kTPosition] == 'T';
}

// The seconds since 1900 of an ordinary text, all digits and each part in its range; -1 otherwise.
std::int64_t ordinarySeconds(const char* text) {
    qel::dates::DateTimeFields fields;
    if (!qel::dates::takeDateTime(text, fields)) return -1;
    const qel::dates::CivilDate date{fields.year, fields.month, fields.day};
    if (!qel::dates::isEncodable(date) ||
        date.day > qel::dates::daysInMonth(date.year, date.month) || fields.hour > 23 ||
        fields.minute > 59)
        return -1;
    return std::int64_t{qel::dates::encodeCivilDate(date)} * qel::dates::kSecondsPerDay +
           fields.hour * 3600 + fields.minute * 60 + fields.second;
}

// The file time of a text that isDateTime accepts.
std::int64_t fileTimeOf(const char* text) {
    if (const std::int64_t seconds = ordinarySeconds(text); seconds >= 0)
        return seconds * qel::dates::kFileTimePerSecond + qel::dates::kFileTimeOf1900;
    char date[9] = {};
    char hourMinute[5] = {};
    std::memcpy(date, text, 8);
    std::memcpy(hourMinute, text + 9, 4);
    const std::int64_t seconds =
        std::int64_t{ZQ_AlphaToCodeDate(date)} * qel::dates::kSecondsPerDay +
        ZQ_AlphaToCodeTime(hourMinute) + qel::dates::decimalField(text + 13, 3);
    return seconds * qel::dates::kFileTimePerSecond + qel::dates::kFileTimeOf1900;
}

// The text of a file time. What was converted may lie in this same buffer, so it has been read by
// now.
const char* writeDateTime(std::int64_t fileTime, bool utc, char* result) {
    const qel::dates::FileTimeFields fields = qel::dates::splitFileTime(fileTime);
    // There are four places for the year.
    qel::dates::putDateTime(result,
                            {std::min(fields.year, 9999), fields.month, fields.day, fields.hour,
                             fields.minute, fields.second},
                            utc ? 'Z' : '\0');
    if (utc) result[kUtcLength] = '\0';
    return result;
}

}  // namespace

int CBxTimeZoneUtility::Initialize() {
    m_nDaylightOffset = 0;
    m_nStandardOffset = 0;
    return LoadTimeZone(nullptr);
}

int CBxTimeZoneUtility::LoadTimeZone(_EXCH_TZ* zone) {
    _EXCH_TZ description{};
    if (zone != nullptr)
        description = *zone;
    else
        LoadCurrentTZ(&description);
    TimeZoneDescription rules;
    rules.bias = description.Bias;
    rules.standardBias = description.StandardBias;
    rules.daylightBias = description.DaylightBias;
    rules.standardDate = momentOf(description.StandardDate);
    const qel::dates::ZoneOffsets offsets =
        qel::dates::zoneOffsets(rules, qel::platform::followsDaylightSaving());
    m_nStandardOffset = offsets.standard;
    m_nDaylightOffset = offsets.daylight;
    m_bDaylightEnabled = offsets.daylightEnabled ? 1 : 0;
    return 0;
}

void CBxTimeZoneUtility::LoadCurrentTZ(_EXCH_TZ* out) {
    const int thisYear = qel::platform::localClock().year;
    const TimeZoneDescription zone = qel::platform::currentTimeZone(thisYear);
    *out = {zone.bias,
            zone.standardBias,
            zone.daylightBias,
            0,
            exchangeMoment(zone.standardDate),
            0,
            exchangeMoment(zone.daylightDate)};
}

__int64 CBxTimeZoneUtility::GetAdjustment(__int64 fileTime) {
    if (m_bDaylightEnabled == 0) return m_nStandardOffset;
    const auto bits = static_cast<std::uint64_t>(fileTime);
    const FILETIME time{static_cast<std::uint32_t>(bits), static_cast<std::uint32_t>(bits >> 32)};
    return IsDaylightSavingTime(time) != 0 ? m_nDaylightOffset : m_nStandardOffset;
}

// The rules are always those of the computer's zone, as they are now; only the offsets are this
// object's. A thread keeps the year that it needed last.
int CBxTimeZoneUtility::IsDaylightSavingTime(FILETIME time) {
    const auto fileTime =
        static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
    if (fileTime <= 0) return 0;
    constinit thread_local KnownYear last;
    // Asked for first: rules that change meanwhile are then asked for again.
    const std::uint32_t version = qel::platform::timeZoneVersion();
    if (version != last.version || !last.year.has(fileTime)) {
        const int year = qel::dates::splitFileTime(fileTime).year;
        last.year = qel::dates::daylightYear(fileTime, qel::platform::currentTimeZone(year));
        last.version = version;
    }
    return last.year.isDaylight(fileTime, m_nDaylightOffset) ? 1 : 0;
}

const char* CBxTimeZoneUtility::LocalToUTC(const char* text) {
    if (!isDateTime(text, kLocalLength)) return text;
    const std::int64_t local = fileTimeOf(text);
    return writeDateTime(local - GetAdjustment(local), true, m_szResult);
}

const char* CBxTimeZoneUtility::UTCToLocal(const char* text) {
    if (!isDateTime(text, kUtcLength) || text[kUtcLength - 1] != 'Z') return text;
    const std::int64_t utc = fileTimeOf(text);
    return writeDateTime(utc + GetAdjustment(utc), false, m_szResult);
}
