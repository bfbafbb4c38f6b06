// Day numbers to year, month and day and back; date-time texts to seconds and back.
#include <libical/ical.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>

#include "Comparison.h"
#include "QelUtility/VStr.h"
#include "QelUtility/ZQDate.h"
#include "QelUtility/ZQDateTime.h"
#include "QelUtility/ZQDuration.h"
#include "dates/CivilDate.h"

namespace qel::bench {

namespace {

constexpr int kDays = 219146;  // 1 January 1900 to 31 December 2499
constexpr int kStride = 7919;  // a prime, so that the days come in no order

std::chrono::year_month_day chronoDate(int code) {
    return std::chrono::sys_days{std::chrono::days{code - dates::kUnixEpochCodeDate}};
}

int chronoCode(int year, int month, int day) {
    const std::chrono::sys_days days = std::chrono::year_month_day{
        std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
        std::chrono::day{static_cast<unsigned>(day)}};
    return static_cast<int>(days.time_since_epoch().count()) + dates::kUnixEpochCodeDate;
}

bool sameDays() {
    for (int code = 0; code < kDays; ++code) {
        int month = 0;
        int day = 0;
        int year = 0;
        unsigned back = 0;
        const auto peer = chronoDate(code);
        if (ZQ_DateDecode(code, &month, &day, &year) != 0 ||
            static_cast<int>(peer.year()) != year ||
            static_cast<unsigned>(peer.month()) != static_cast<unsigned>(month) ||
            static_cast<unsigned>(peer.day()) != static_cast<unsigned>(day) ||
            ZQ_DateEncode(month, day, year, &back) != 0 || back != static_cast<unsigned>(code) ||
            chronoCode(year, month, day) != code)
            return false;
    }
    return true;
}

void addDayNumbers() {
    Comparison({"day number to date", 3.05, "16 bytes moved", 0, "std::chrono", 3.05}, sameDays)
        .ours([code = 0]() mutable {
            int month = 0;
            int day = 0;
            int year = 0;
            benchmark::DoNotOptimize(ZQ_DateDecode(code, &month, &day, &year));
            benchmark::DoNotOptimize(month + day + year);
            code = (code + kStride) % kDays;
        })
        .peer("std::chrono", [code = 0]() mutable {
            const auto date = chronoDate(code);
            benchmark::DoNotOptimize(static_cast<int>(date.year()) +
                                     static_cast<int>(static_cast<unsigned>(date.month())) +
                                     static_cast<int>(static_cast<unsigned>(date.day())));
            code = (code + kStride) % kDays;
        });
    Comparison({"date to day number", 1.6, "16 bytes moved", 0, "std::chrono", 1.6}, sameDays)
        .ours([year = 1900]() mutable {
            unsigned code = 0;
            benchmark::DoNotOptimize(ZQ_DateEncode(1 + year % 12, 1 + year % 28, year, &code));
            benchmark::DoNotOptimize(code);
            year = year == 2499 ? 1900 : year + 1;
        })
        .peer("std::chrono", [year = 1900]() mutable {
            benchmark::DoNotOptimize(chronoCode(year, 1 + year % 12, 1 + year % 28));
            year = year == 2499 ? 1900 : year + 1;
        });
}

// --- Texts ---------------------------------------------------------------------------------------

constexpr char kText[] = "20050615T083000Z";
constexpr std::int64_t kSeconds = std::int64_t{38516} * 86400 + 30600;  // from 1900

std::int64_t secondsOf(int year, int month, int day, int hour, int minute, int second) {
    return std::int64_t{dates::encodeCivilDate({year, month, day})} * dates::kSecondsPerDay +
           hour * 3600 + minute * 60 + second;
}

std::int64_t bySscanf(const char* text) {
    int f[6] = {};
    std::sscanf(text, "%4d%2d%2dT%2d%2d%2d", &f[0], &f[1], &f[2], &f[3], &f[4], &f[5]);
    return secondsOf(f[0], f[1], f[2], f[3], f[4], f[5]);
}

std::int64_t byHand(const char* text) {
    const auto two = [text](int at) { return (text[at] - '0') * 10 + (text[at + 1] - '0'); };
    return secondsOf(two(0) * 100 + two(2), two(4), two(6), two(9), two(11), two(13));
}

std::int64_t byLibical(const char* text) {
    return icaltime_as_timet(icaltime_from_string(text)) +
           std::int64_t{dates::kUnixEpochCodeDate} * dates::kSecondsPerDay;
}

void bySnprintf(std::int64_t seconds, char* out) {
    const dates::CivilDate date =
        dates::decodeCivilDate(static_cast<int>(seconds / dates::kSecondsPerDay));
    const int time = static_cast<int>(seconds % dates::kSecondsPerDay);
    std::snprintf(out, 32, "%04d%02d%02dT%02d%02d%02dZ", date.year, date.month, date.day,
                  time / 3600, time / 60 % 60, time % 60);
}

void addTexts() {
    static const VStr text(kText);
    Comparison({"date-time text to seconds", 18, "16 bytes read, no allocation", 0, "sscanf", 122},
               [] {
                   return ZQ_DateTimeToSeconds(text) == kSeconds && bySscanf(kText) == kSeconds &&
                          byHand(kText) == kSeconds && byLibical(kText) == kSeconds;
               })
        .ours(
            [] { benchmark::DoNotOptimize(ZQ_DateTimeToSeconds(static_cast<const char*>(text))); })
        .peer("hand-written", [t = text] { benchmark::DoNotOptimize(byHand(t)); })
        .peer("sscanf", [] { benchmark::DoNotOptimize(bySscanf(text)); })
        .peer("libical", [] { benchmark::DoNotOptimize(byLibical(text)); });
    Comparison({"seconds to date-time text", 15, "17 bytes written into a string that is reused", 0,
                "snprintf", 115},
               [] {
                   VStr out;
                   char peer[32];
                   ZQ_SecondsToDateTime(kSeconds, out, false);
                   bySnprintf(kSeconds, peer);
                   return out.Compare(kText) == 0 && std::strcmp(peer, kText) == 0;
               })
        .ours([out = VStr("x")]() mutable {
            out.Truncate(1);
            ZQ_SecondsToDateTime(kSeconds, out, false);
            benchmark::DoNotOptimize(static_cast<const char*>(out));
        })
        .peer("snprintf", [] {
            char out[32];
            bySnprintf(kSeconds, out);
            benchmark::DoNotOptimize(out);
        });
}

}  // namespace

void addDates() {
    addDayNumbers();
    addTexts();
}

}  // namespace qel::bench
