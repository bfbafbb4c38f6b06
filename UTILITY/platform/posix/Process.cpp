// The process, its threads and its environment.
#include "platform/Process.h"

#ifdef QEL_HAS_DLADDR
#include <dlfcn.h>
#endif
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace qel::platform {

namespace {

#ifdef QEL_HAS_DLADDR
bool copyWhole(char* out, std::size_t room, const char* text) noexcept {
    if (room == 0) return false;
    const std::size_t length = std::strlen(text);
    out[0] = '\0';
    if (length >= room) return false;
    std::memcpy(out, text, length + 1);
    return length > 0;
}
#endif

#ifdef QEL_PORTABLE_POSIX
constexpr std::array<const char*, 0> kProgramLinks{};
#else
constexpr std::array kProgramLinks{"/proc/self/exe", "/proc/curproc/file", "/proc/self/path/a.out"};
#endif

#if defined(CLOCK_MONOTONIC_COARSE) && !defined(QEL_PORTABLE_POSIX)
// The clock of the last timer interrupt, a few milliseconds old and far cheaper to read.
constexpr clockid_t kTickClock = CLOCK_MONOTONIC_COARSE;
#else
constexpr clockid_t kTickClock = CLOCK_MONOTONIC;
#endif

#ifdef QEL_HAS_GETTID
constexpr bool kThreadIdIsTheSystems = true;

std::uint32_t newThreadId() noexcept {
    return static_cast<std::uint32_t>(gettid());
}
void restartThreadIds() noexcept {}
#else
constexpr bool kThreadIdIsTheSystems = false;

// The first thread that asks has the process's number, like the only one that a fork leaves; each
// later one has the next number.
std::atomic<std::uint32_t> threadsBefore{0};

std::uint32_t newThreadId() noexcept {
    return processId() + threadsBefore.fetch_add(1);
}
void restartThreadIds() noexcept {
    threadsBefore = 0;
}
#endif

}  // namespace

std::uint32_t tickCount() noexcept {
    std::timespec now{};
    clock_gettime(kTickClock, &now);
    const auto milliseconds = static_cast<std::uint64_t>(now.tv_sec) * 1000 +
                              static_cast<std::uint64_t>(now.tv_nsec) / 1000000;
    return static_cast<std::uint32_t>(milliseconds);
}

void sleepMilliseconds(std::uint32_t milliseconds) noexcept {
    std::timespec left{};
    left.tv_sec = static_cast<std::time_t>(milliseconds / 1000);
    left.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000;
    while (nanosleep(&left, &left) != 0) {
    }
}

std::uint32_t threadId() noexcept {
    // Asked of the system once in a thread, and again by the thread that a fork goes on with.
    thread_local std::uint32_t known = 0;
    static const int watched = pthread_atfork(nullptr, nullptr, [] {
        known = 0;
        restartThreadIds();
    });
    if (known != 0) return known;
    const std::uint32_t id = newThreadId();
    if (watched == 0 || !kThreadIdIsTheSystems) known = id;
    return id;
}

std::uint32_t processId() noexcept {
    return static_cast<std::uint32_t>(getpid());
}

bool processPath(char* out, std::size_t room) noexcept {
    if (room == 0) return false;
    // POSIX has no call for it; these are links to it on one system or another.
    for (const char* const link : kProgramLinks) {
        const ssize_t length = readlink(link, out, room);
        if (length <= 0 || static_cast<std::size_t>(length) >= room) continue;
        out[length] = '\0';
        return true;
    }
    out[0] = '\0';
    return false;
}

bool modulePath(char* out, std::size_t room) noexcept {
#ifdef QEL_HAS_DLADDR
    Dl_info info{};
    char resolved[PATH_MAX];
    // The address of any function of this module finds the module itself.
    if (dladdr(reinterpret_cast<const void*>(&modulePath), &info) != 0 &&
        info.dli_fname != nullptr && realpath(info.dli_fname, resolved) != nullptr)
        return copyWhole(out, room, resolved);
#endif
    return processPath(out, room);
}

bool environment(const char* name, char* out, std::size_t room) noexcept {
    if (room == 0) return false;
    const char* value = std::getenv(name);
    std::snprintf(out, room, "%s", value == nullptr ? "" : value);
    return out[0] != '\0';
}

void messageBox(const char* title, const char* text) noexcept {
    std::fprintf(stderr, "%s: %s\n", title, text);
}

}  // namespace qel::platform
