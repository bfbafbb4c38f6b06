// A tick count that wraps: this program's own clock function adds an offset of the test's choosing
// to the time since the system's start.
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <ctime>
#include <string>

#include "platform/LockResult.h"
#include "platform/PathLock.h"
#include "platform/Process.h"
#include "support/TempDir.h"

namespace {

std::atomic<long long> upMilliseconds{0};

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* now) noexcept {
    if (syscall(SYS_clock_gettime, clock, now) != 0) return -1;
    if (clock != CLOCK_MONOTONIC && clock != CLOCK_MONOTONIC_COARSE) return 0;
    const long long milliseconds = upMilliseconds + now->tv_nsec / 1000000;
    now->tv_sec += static_cast<std::time_t>(milliseconds / 1000);
    now->tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000 + now->tv_nsec % 1000000;
    return 0;
}
}

namespace {

namespace platform = qel::platform;

// Moves the time since the start to `ticks` of the 32-bit clock.
void setUpTime(std::uint32_t ticks) {
    upMilliseconds = 0;
    constexpr long long kWrap = 1LL << 32;
    upMilliseconds = (kWrap + ticks - platform::tickCount()) % kWrap;
}

TEST(ClockFaults, WaitsEndWhenTheTickCountWraps) {
    const qel::test::TempDir dir;
    const std::string path = dir.file("file");
    platform::PathLock holder;
    ASSERT_EQ(holder.acquire(path.c_str(), 0), platform::LockResult::kLocked);
    setUpTime(0xFFFFFFFFU - 50);
    platform::PathLock waiter;
    const std::uint32_t before = platform::tickCount();
    EXPECT_EQ(waiter.acquire(path.c_str(), 200), platform::LockResult::kTimedOut);
    const std::uint32_t waited = platform::tickCount() - before;
    EXPECT_LT(platform::tickCount(), before) << "it has wrapped";
    EXPECT_GE(waited, 200U);
    EXPECT_LT(waited, 5000U);
    upMilliseconds = 0;
}

}  // namespace
