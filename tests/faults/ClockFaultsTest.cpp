// Clocks that go backwards or wrap. This program's own clock functions add offsets of the test's
// choosing to the wall clock and to the time since the system's start.
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <ctime>
#include <string>

#include "QelUtility/BxTrace.h"
#include "platform/LocalClock.h"
#include "platform/LockResult.h"
#include "platform/PathLock.h"
#include "platform/Process.h"
#include "support/TempDir.h"
#include "trace/FreshTrace.h"

namespace {

std::atomic<long> wallSeconds{0};
std::atomic<long long> upMilliseconds{0};

}  // namespace

extern "C" {

int timespec_get(timespec* now, int base) noexcept {
    if (base != TIME_UTC || syscall(SYS_clock_gettime, CLOCK_REALTIME, now) != 0) return 0;
    now->tv_sec += wallSeconds;
    return base;
}

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
using qel::test::FreshTrace;

// Moves the time since the start to `ticks` of the 32-bit clock.
void setUpTime(std::uint32_t ticks) {
    upMilliseconds = 0;
    constexpr long long kWrap = 1LL << 32;
    upMilliseconds = (kWrap + ticks - platform::tickCount()) % kWrap;
}

TEST(ClockFaults, AWallClockThatGoesBackIsShownAndHarmsNothing) {
    const FreshTrace trace({"MaxFileSize=400", "MaxBackupCount=16", "SeparateLogForEachProcess=1",
                            "KeepLogFileOpen=2"});
    constexpr long kDay = 86400;
    const long steps[] = {0, -3600, -400 * kDay, 40 * kDay, -20000 * kDay, 1};
    const int thisYear = platform::localClock().year;
    int number = 0;
    for (const long seconds : steps) {
        wallSeconds = seconds;
        const platform::LocalClock now = platform::localClock();
        EXPECT_GE(now.month, 1);
        EXPECT_LE(now.month, 12);
        EXPECT_TRUE(seconds >= -300 * kDay || now.year < thisYear) << now.year;
        for (int i = 0; i < 3; ++i, ++number)
            EXPECT_EQ(BxTrace_Trace00(("message " + std::to_string(number)).c_str()), 0);
    }
    wallSeconds = 0;
    std::vector<std::string> found;
    std::vector<std::string> names = trace.files();
    for (const std::string& name : names) {
        if (name.rfind("trace", 0) != 0) continue;
        for (const std::string& line : trace.messages(name))
            if (line.rfind("message ", 0) == 0) found.push_back(line);
    }
    EXPECT_EQ(found.size(), static_cast<std::size_t>(number))
        << "rotation does not go by the clock";
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
