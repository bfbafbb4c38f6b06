// The named mutex of the trace. Its name carries the process id: all copies of the library that one
// process has loaded share it, and nothing outside the process does.
#include "platform/TraceMutex.h"

#include <windows.h>

#include <atomic>
#include <cstdio>

namespace qel::platform {

namespace {

std::atomic<HANDLE> traceMutex{nullptr};  // made at the first use, kept until the process ends

HANDLE openTraceMutex() noexcept {
    HANDLE mutex = traceMutex.load();
    if (mutex != nullptr) return mutex;
    char name[40];
    std::snprintf(name, sizeof name, "BxTrace_TS_%d", static_cast<int>(GetCurrentProcessId()));
    mutex = CreateMutexA(nullptr, FALSE, name);
    HANDLE expected = nullptr;
    if (mutex != nullptr && !traceMutex.compare_exchange_strong(expected, mutex)) {
        CloseHandle(mutex);  // another thread was first; both handles are of one mutex
        mutex = expected;
    }
    return mutex;
}

}  // namespace

LockResult lockTraceMutex(std::uint32_t timeoutMilliseconds) noexcept {
    const HANDLE mutex = openTraceMutex();
    if (mutex == nullptr) return LockResult::kUnavailable;
    const DWORD result = WaitForSingleObject(mutex, timeoutMilliseconds);
    const bool locked = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
    return locked ? LockResult::kLocked : LockResult::kTimedOut;
}

void unlockTraceMutex() noexcept {
    ReleaseMutex(traceMutex.load());
}

}  // namespace qel::platform
