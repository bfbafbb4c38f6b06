// Day numbers to year, month and day and back, beside std::chrono. Each pair is checked to agree
// over the whole range before it is timed.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>

#include "QelUtility/ZQDate.h"
#include "dates/ZQDateInternal.h"

namespace {

constexpr int kDays = 219146;         // 1 January 1900 to 31 December 2499
constexpr int kUnixEpochDay = 25567;  // 1 January 1970
constexpr int kStride = 7919;         // a prime, so that the days come in no order

std::chrono::year_month_day chronoDate(int code) {
    return std::chrono::sys_days{std::chrono::days{code - kUnixEpochDay}};
}

bool agreeEverywhere() {
    for (int code = 0; code < kDays; ++code) {
        int month = 0, day = 0, year = 0;
        unsigned back = 0;
        const auto peer = chronoDate(code);
        if (ZQ_DateDecode(code, &month, &day, &year) != 0) return false;
        if (static_cast<int>(peer.year()) != year ||
            static_cast<unsigned>(peer.month()) != static_cast<unsigned>(month) ||
            static_cast<unsigned>(peer.day()) != static_cast<unsigned>(day))
            return false;
        if (ZQ_DateEncode(month, day, year, &back) != 0 || back != static_cast<unsigned>(code))
            return false;
    }
    return true;
}

void decodeOurs(benchmark::State& state) {
    if (!agreeEverywhere()) return state.SkipWithError("the two sides differ");
    int code = 0;
    for (auto _ : state) {
        int month = 0, day = 0, year = 0;
        benchmark::DoNotOptimize(ZQ_DateDecode(code, &month, &day, &year));
        benchmark::DoNotOptimize(month + day + year);
        code = (code + kStride) % kDays;
    }
}
BENCHMARK(decodeOurs)->Name("day number to date/ours");

void decodeChrono(benchmark::State& state) {
    int code = 0;
    for (auto _ : state) {
        const auto date = chronoDate(code);
        benchmark::DoNotOptimize(static_cast<int>(date.year()) +
                                 static_cast<int>(static_cast<unsigned>(date.month())) +
                                 static_cast<int>(static_cast<unsigned>(date.day())));
        code = (code + kStride) % kDays;
    }
}
BENCHMARK(decodeChrono)->Name("day number to date/std::chrono");

void encodeOurs(benchmark::State& state) {
    int year = 1900;
    for (auto _ : state) {
        unsigned code = 0;
        benchmark::DoNotOptimize(ZQ_DateEncode(1 + year % 12, 1 + year % 28, year, &code));
        benchmark::DoNotOptimize(code);
        year = year == 2499 ? 1900 : year + 1;
    }
}
BENCHMARK(encodeOurs)->Name("date to day number/ours");

void encodeChrono(benchmark::State& state) {
    int year = 1900;
    for (auto _ : state) {
        const std::chrono::sys_days days = std::chrono::year_month_day{
            std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(1 + year % 12)},
            std::chrono::day{static_cast<unsigned>(1 + year % 28)}};
        benchmark::DoNotOptimize(days.time_since_epoch().count() + kUnixEpochDay);
        year = year == 2499 ? 1900 : year + 1;
    }
}
BENCHMARK(encodeChrono)->Name("date to day number/std::chrono");

}  // namespace
