#include "support/Resources.h"

#include <windows.h>
// After windows.h, whose types it uses.
#include <psapi.h>

namespace qel::test {

std::size_t memoryInUse() {
    PROCESS_MEMORY_COUNTERS counters{};
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters))) return 0;
    return counters.PagefileUsage;
}

std::size_t openHandles() {
    DWORD count = 0;
    return GetProcessHandleCount(GetCurrentProcess(), &count) ? count : 0;
}

}  // namespace qel::test
