#include "support/Resources.h"

#include <windows.h>
// After windows.h, whose types it uses.
#include <psapi.h>

#include <cstdint>

namespace qel::test {

std::size_t memoryInUse() {
    PROCESS_MEMORY_COUNTERS counters{};
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters))) return 0;
    return counters.PagefileUsage;
}

std::size_t openHandles() {
    DWORD count = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &count) && count != 0) return count;
    // Wine counts none. There a fresh handle has the lowest number that is free.
    const HANDLE fresh = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    if (fresh == nullptr) return 0;
    CloseHandle(fresh);
    return reinterpret_cast<std::uintptr_t>(fresh) / 4;
}

}  // namespace qel::test
