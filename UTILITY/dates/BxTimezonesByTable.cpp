// The conversions by the built-in table of zones.
#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstring>
#include <new>
#include <numeric>
#include <string_view>

#include "QelUtility/BxTimezones.h"
#include "QelUtility/BxTrace.h"
#include "QelUtility/ZQDate.h"
#include "dates/BxTimezoneTable.h"
#include "dates/CivilDate.h"
#include "dates/DateTimeFields.h"
#include "dates/DecimalField.h"
#include "dates/ZoneLookup.h"
#include "platform/AsciiText.h"

namespace {

using qel::dates::ZoneColumn;
using qel::dates::ZoneTime;

constexpr char kSourceName[] = "BxTimezones";
constexpr int kLineUnknownName = 120;
constexpr int kLineNameOfBadZone = 139;
constexpr int kLineUtcToUtcByOffset = 280;
constexpr int kLineLocalOfBadZone = 327;
constexpr int kLineUtcToUtc = 334;
constexpr int kLineUtcOfBadZone = 380;
constexpr int kLinePositiveMinutes = 475;
constexpr int kLineNegativeMinutes = 510;

constexpr int kBadZoneNumber = 2016;
constexpr int kNotUtc = 2098;

constexpr std::size_t kTextRoom = 48;
constexpr std::size_t kLocalLength = 15;  // "20050615T083000"

int reportBadZone(int line, int zone) {
    return BxTrace_Error_SL(kSourceName, line, "invalid timezoneID", zone, kBadZoneNumber);
}

// A date-time text, looked through once. A null one has no T, no Z and no length.
struct TimeText {
    const char* text;
    std::size_t length = 0;
    bool timed = false;  // has a T
    bool utc = false;    // has a Z
    ZoneTime time;       // where it is timed

    explicit TimeText(const char* t) : text(t) {
        if (t == nullptr || takeOrdinary()) return;
        for (; t[length] != '\0'; ++length) {
            timed = timed || t[length] == 'T';
            utc = utc || t[length] == 'Z';
        }
        if (!timed) return;
        time.date = qel::dates::decimalField(t, 8);
        time.hour = partAt(9);
        time.minute = partAt(11);
    }
    [[nodiscard]] std::string_view whole() const { return {text, length}; }
    // From a position on, empty when the text ends before it.
    [[nodiscard]] const char* tail(std::size_t position) const {
        return position < length ? text + position : "";
    }

  private:
    // Takes a text that has all its digits and nothing else, as nearly every one does.
    bool takeOrdinary() {
        qel::dates::DateTimeFields fields;
        if (!qel::dates::takeDateTime(text, fields)) return false;
        const bool z = text[kLocalLength] == 'Z';
        const std::size_t end = kLocalLength + (z ? 1 : 0);
        if (text[end] != '\0') return false;
        length = end;
        timed = true;
        utc = z;
        time.date = fields.year * 10000 + fields.month * 100 + fields.day;
        time.hour = static_cast<std::uint8_t>(fields.hour);
        time.minute = static_cast<std::uint8_t>(fields.minute);
        return true;
    }
    // A signed field is not a time of day; it counts as 0.
    [[nodiscard]] std::uint8_t partAt(std::size_t position) const {
        return static_cast<std::uint8_t>(std::max(qel::dates::decimalField(tail(position), 2), 0));
    }
};

// The date `step` days from an eight-digit date; the date itself when the calendar does not hold
// both.
std::int32_t neighbourDay(std::int32_t date, int step) {
    unsigned code = 0;
    if (ZQ_DateEncode(date / 100 % 100, date % 100, date / 10000, &code) != 0) return date;
    const int neighbour = static_cast<int>(code) + step;
    if (!qel::dates::isCodeDate(neighbour)) return date;
    char text[9];
    return qel::dates::decimalField(ZQ_CodeDateToAlpha(neighbour, text), 8);
}

// "%8dT%02d%02d"; returns the position for its terminator.
char* writeZoneTime(std::int32_t date, int hour, int minute, char (&text)[kTextRoom]) {
    // No date here has more than eight digits.
    const bool ordinary =
        date >= 10000000 && hour >= 0 && hour <= 99 && minute >= 0 && minute <= 99;
    if (!ordinary) {
        return text + std::snprintf(text, sizeof text, "%8ldT%02d%02d", static_cast<long>(date),
                                    hour, minute);
    }
    const auto digits = static_cast<unsigned>(date);
    qel::dates::putPair(text, digits / 1000000);
    qel::dates::putPair(text + 2, digits / 10000 % 100);
    qel::dates::putPair(text + 4, digits / 100 % 100);
    qel::dates::putPair(text + 6, digits % 100);
    text[8] = 'T';
    qel::dates::putPair(text + 9, static_cast<unsigned>(hour));
    qel::dates::putPair(text + 11, static_cast<unsigned>(minute));
    return text + 13;
}

// Writes a zone time less an offset, hour and minute alone, and gives its end. An offset of less
// than an hour moves nothing, its minutes included.
char* writeLessOffset(const ZoneTime& time, int offsetHours, int offsetMinutes,
                      char (&text)[kTextRoom]) {
    std::int32_t date = time.date;
    int hour = time.hour;
    int minute = time.minute;
    if (offsetHours < 0) {
        if (offsetMinutes > 0) {
            BxTrace_Error_SL(kSourceName, kLinePositiveMinutes, "bad timezone offset (minutes)",
                             offsetMinutes, QEL_MALFORMED);
            offsetMinutes = -offsetMinutes;
        }
        minute -= offsetMinutes;
        if (minute > 59) {
            minute -= 60;
            ++hour;
        }
        hour -= offsetHours;
        if (hour >= 24) {
            hour -= 24;
            date = neighbourDay(date, 1);
        }
    } else if (offsetHours > 0) {
        if (offsetMinutes < 0) {
            BxTrace_Error_SL(kSourceName, kLineNegativeMinutes, "bad timezone offset (minutes)",
                             offsetMinutes, QEL_MALFORMED);
            offsetMinutes = -offsetMinutes;
        }
        minute -= offsetMinutes;
        if (minute < 0) {
            minute += 60;
            --hour;
        }
        hour -= offsetHours;
        if (hour < 0) {
            hour += 24;
            date = neighbourDay(date, -1);
        }
    }
    return writeZoneTime(date, hour, minute, text);
}

// The two second digits of a text, as many as there are; a Z in their place does not count.
std::string_view secondDigits(const TimeText& in) {
    const char* const seconds = in.tail(13);
    std::size_t count = 0;
    while (count < 2 && seconds[count] != '\0' && seconds[count] != 'Z') ++count;
    return {seconds, count};
}

// Sets `out` to a text, which may be its own: 0, or 2001 and a null string. No text gives a null
// string too.
int setText(std::string_view text, VStr& out) {
    if (text.empty()) {
        out.Empty();
        return QEL_OK;
    }
    out.Copy(text.data(), static_cast<int>(text.size()));
    return out.IsEmpty() ? QEL_OUT_OF_MEMORY : QEL_OK;
}

// Sets `out` to a zone time less an offset, its seconds those of `in`, followed by `mark`.
int convert(const TimeText& in, int hours, int minutes, std::string_view mark, VStr& out) {
    char whole[kTextRoom];
    char* end = writeLessOffset(in.time, hours, minutes, whole);
    for (const char digit : secondDigits(in)) *end++ = digit;
    end += mark.copy(end, mark.size());
    return setText({whole, static_cast<std::size_t>(end - whole)}, out);
}

// Whether a text needs no conversion to UTC: one without a time, or in UTC.
bool needsNoUtc(const TimeText& in, int line) {
    if (!in.timed) return true;
    if (!in.utc) return false;
    BxTrace_Trace1(kSourceName, line, "local time is actually in UTC!");
    return true;
}

// What an offset may be: a zone time holds 8 bits of each part.
int clampOffset(int part) {
    return std::clamp<int>(part, INT8_MIN, INT8_MAX);
}

}  // namespace

int BxTZ_GetZoneID(const char* name) {
    const char* const wanted = name == nullptr ? "" : name;
    for (int zone = 1; zone <= qel::dates::kZoneCount; ++zone)
        if (qel::platform::equalNoCase(wanted, qel::dates::zoneName(zone))) return zone;
    char text[512];  // the error line shows less
    std::snprintf(text, sizeof text, "Bad Timezone: %.400s", wanted);
    BxTrace_Error_SL(kSourceName, kLineUnknownName, text, QEL_MALFORMED, QEL_MALFORMED);
    return -1;
}

int BxTZ_GetZoneName(int zone, VStr& name) {
    if (!qel::dates::isZoneNumber(zone)) {
        reportBadZone(kLineNameOfBadZone, zone);
        return 0;
    }
    name += qel::dates::zoneName(zone);
    return zone;
}

void BxTZ_GetZoneList(VStrArray& names, std::vector<int>& numbers) {
    std::array<int, qel::dates::kZoneCount> zones{};
    std::iota(zones.begin(), zones.end(), 1);
    std::sort(zones.begin(), zones.end(), [](int a, int b) {
        return std::strcmp(qel::dates::zoneName(a), qel::dates::zoneName(b)) < 0;
    });
    names.SetSize(qel::dates::kZoneCount);
    bool whole = true;
    for (int i = 0; i < qel::dates::kZoneCount; ++i) {
        names.SetAt(i, qel::dates::zoneName(zones[static_cast<std::size_t>(i)]));
        whole = whole && !names.ElementAt(i).IsEmpty();
    }
    try {
        numbers.assign(zones.begin(), zones.end());
    } catch (const std::bad_alloc&) {
        whole = false;
    }
    if (whole) return;
    names.RemoveAll();
    numbers.clear();
}

int BxTZ_LocalToUTC(int zone, const char* text, VStr& out) {
    TimeText in(text);
    if (in.timed && !qel::dates::isZoneNumber(zone)) {
        reportBadZone(kLineLocalOfBadZone, zone);
        out.Empty();
        return kBadZoneNumber;
    }
    if (needsNoUtc(in, kLineUtcToUtc)) return setText(in.whole(), out);
    ZoneTime& time = in.time;
    if (const int code = qel::dates::zoneOffsetAt(zone, ZoneColumn::Local, time); code != 0)
        return code;
    return convert(in, time.offsetHours, time.offsetMinutes, "Z", out);
}

int BxTZ_LocalToUTCByOffset(int offsetHours, int offsetMinutes, const char* text, VStr& out) {
    const TimeText in(text);
    if (needsNoUtc(in, kLineUtcToUtcByOffset)) return setText(in.whole(), out);
    return convert(in, clampOffset(offsetHours), clampOffset(offsetMinutes), "Z", out);
}

int BxTZ_UTCToLocal(int zone, const char* text, VStr& out) {
    TimeText in(text);
    if (in.timed && !qel::dates::isZoneNumber(zone)) {
        reportBadZone(kLineUtcOfBadZone, zone);
        out.Empty();
        return kBadZoneNumber;
    }
    if (!in.timed || !in.utc) {
        const int result = setText(in.whole(), out);
        return result == QEL_OK && in.timed ? kNotUtc : result;
    }
    ZoneTime& time = in.time;
    if (const int code = qel::dates::zoneOffsetAt(zone, ZoneColumn::Utc, time); code != 0)
        return code;
    return convert(in, -time.offsetHours, -time.offsetMinutes, "", out);
}

int BxTZ_ConvertZone(VStr& text, int fromZone, int toZone) {
    if (fromZone == toZone) return 0;
    VStr utc;
    VStr local;
    const int toUtc = BxTZ_LocalToUTC(fromZone, text, utc);
    if (toUtc == QEL_OUT_OF_MEMORY) return toUtc;
    const int toLocal = BxTZ_UTCToLocal(toZone, utc, local);
    if (toUtc == 0 && toLocal == 0) text <<= local;
    return toLocal;
}
