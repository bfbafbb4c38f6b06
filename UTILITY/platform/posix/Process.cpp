// The process, its threads and its environment.
#include "platform/Process.h"

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace qel::platform {

namespace {

bool copyWhole(char* out, std::size_t room, const char* text) noexcept {
    if (room == 0) return false;
    const std::size_t length = std::strlen(text);
    out[0] = '\0';
    if (length >= room) return false;
    std::memcpy(out, text, length + 1);
    return length > 0;
}

}  // namespace

std::uint32_t tickCount() noexcept {
    // The clock of the last timer interrupt, a few milliseconds old and far cheaper to read.
    std::timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
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
    static const int watched = pthread_atfork(nullptr, nullptr, [] { known = 0; });
    if (known != 0) return known;
    const auto id = static_cast<std::uint32_t>(gettid());
    if (watched == 0) known = id;
    return id;
}

std::uint32_t processId() noexcept {
    return static_cast<std::uint32_t>(getpid());
}

bool processPath(char* out, std::size_t room) noexcept {
    if (room == 0) return false;
    out[0] = '\0';
    const ssize_t length = readlink("/proc/self/exe", out, room);
    if (length <= 0 || static_cast<std::size_t>(length) >= room) {
        out[0] = '\0';
        return false;
    }
    out[length] = '\0';
    return true;
}

bool modulePath(char* out, std::size_t room) noexcept {
    Dl_info info{};
    char resolved[PATH_MAX];
    // The address of any function of this module finds the module itself.
    if (dladdr(reinterpret_cast<const void*>(&modulePath), &info) == 0 ||
        info.dli_fname == nullptr || realpath(info.dli_fname, resolved) == nullptr)
        return processPath(out, room);
    return copyWhole(out, room, resolved);
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
