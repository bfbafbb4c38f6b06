#include "trace/Stamp.h"

#include <atomic>
#include <cstdint>

#include "platform/LocalClock.h"

namespace qel::trace {

namespace {

// The last stamp: its millisecond in the upper half, its number in the lower. It starts with 1000,
// which is no clock's millisecond.
constinit std::atomic<std::uint64_t> lastStamp{std::uint64_t{1000} << 32};

}  // namespace

char* putStamp(char* out) noexcept {
    const platform::LocalClock now = platform::localClock();
    const auto millisecond = static_cast<std::uint64_t>(now.millisecond);
    std::uint64_t last = lastStamp.load(std::memory_order_relaxed);
    std::uint64_t mine = 0;
    do {
        mine = last >> 32 == millisecond ? (millisecond << 32) | ((last + 1) & 0xFFFFFFFF)
                                         : millisecond << 32;
    } while (!lastStamp.compare_exchange_weak(last, mine, std::memory_order_relaxed));
    // Digit by digit: snprintf would take half of the time that a whole line takes.
    const auto put2 = [&out](int number, char after) {
        *out++ = static_cast<char>('0' + number / 10);
        *out++ = static_cast<char>('0' + number % 10);
        *out++ = after;
    };
    put2(now.month, '/');
    put2(now.day, ' ');
    put2(now.hour, ':');
    put2(now.minute, ':');
    put2(now.second, '.');
    *out++ = static_cast<char>('0' + now.millisecond / 100);
    put2(now.millisecond % 100, ' ');
    char digits[10];
    int count = 0;
    for (auto number = static_cast<std::uint32_t>(mine); number != 0 || count < 3; number /= 10)
        digits[count++] = static_cast<char>('0' + number % 10);
    while (count != 0) *out++ = digits[--count];
    *out++ = '\0';
    return out - 1;
}

Stamp makeStamp() noexcept {
    Stamp stamp;
    putStamp(stamp.text);
    return stamp;
}

}  // namespace qel::trace
