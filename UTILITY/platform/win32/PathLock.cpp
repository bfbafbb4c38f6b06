// Locks between processes: a mutex named after the path. An abandoned one counts as locked.
#include "platform/PathLock.h"

#include <windows.h>

#include <cstdio>

#include "platform/AsciiText.h"

namespace qel::platform {

namespace {

// FNV-1a over the full path without regard to case, so that all spellings of a path meet.
unsigned long long pathHash(const char* path) noexcept {
    char full[1024];
    const DWORD length = GetFullPathNameA(path, sizeof full, full, nullptr);
    const bool known = length > 0 && length < sizeof full;
    unsigned long long hash = 14695981039346656037ULL;
    for (const char* p = known ? full : path; *p != '\0'; ++p)
        hash = (hash ^ static_cast<unsigned char>(asciiToLower(*p))) * 1099511628211ULL;
    return hash;
}

}  // namespace

LockResult PathLock::acquire(const char* path, std::uint32_t timeoutMilliseconds) noexcept {
    release();
    char name[40];
    std::snprintf(name, sizeof name, "QelUtility_%016llx", pathHash(path));
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    if (mutex == nullptr) return LockResult::kUnavailable;
    const DWORD result = WaitForSingleObject(mutex, timeoutMilliseconds);
    if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED) {
        CloseHandle(mutex);
        return result == WAIT_TIMEOUT ? LockResult::kTimedOut : LockResult::kUnavailable;
    }
    handle_ = reinterpret_cast<std::intptr_t>(mutex);
    return LockResult::kLocked;
}

void PathLock::release() noexcept {
    if (handle_ == kNone) return;
    const HANDLE mutex = reinterpret_cast<HANDLE>(handle_);
    ReleaseMutex(mutex);
    CloseHandle(mutex);
    handle_ = kNone;
}

void PathLock::abandon() noexcept {
    release();  // there is no fork
}

}  // namespace qel::platform
