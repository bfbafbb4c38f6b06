// The process, its threads and its environment.
#include "platform/Process.h"

#include <windows.h>

namespace qel::platform {

namespace {

bool moduleFileName(HMODULE module, char* out, std::size_t room) noexcept {
    if (room == 0) return false;
    out[0] = '\0';
    const DWORD length = GetModuleFileNameA(module, out, static_cast<DWORD>(room));
    const bool whole = length > 0 && length < room;
    if (!whole) out[0] = '\0';
    return whole;
}

}  // namespace

std::uint32_t tickCount() noexcept {
    return GetTickCount();
}

void sleepMilliseconds(std::uint32_t milliseconds) noexcept {
    Sleep(milliseconds);
}

std::uint32_t threadId() noexcept {
    return GetCurrentThreadId();
}

std::uint32_t processId() noexcept {
    return GetCurrentProcessId();
}

bool processPath(char* out, std::size_t room) noexcept {
    return moduleFileName(nullptr, out, room);
}

bool modulePath(char* out, std::size_t room) noexcept {
    // The address of any function of this module finds the module itself, whatever its file's name.
    HMODULE module = nullptr;
    if (GetModuleHandleExA(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            reinterpret_cast<const char*>(&modulePath), &module) == FALSE)
        module = nullptr;
    return moduleFileName(module, out, room);
}

bool environment(const char* name, char* out, std::size_t room) noexcept {
    if (room == 0) return false;
    out[0] = '\0';
    const DWORD length = GetEnvironmentVariableA(name, out, static_cast<DWORD>(room));
    if (length < room) return length > 0;
    // It did not fit: the call has given the room it needs and has copied nothing.
    char* whole = static_cast<char*>(LocalAlloc(LMEM_FIXED, length));
    if (whole == nullptr) return false;
    const DWORD copied = GetEnvironmentVariableA(name, whole, length);
    if (copied > 0 && copied < length) lstrcpynA(out, whole, static_cast<int>(room));
    LocalFree(whole);
    return out[0] != '\0';
}

void messageBox(const char* title, const char* text) noexcept {
    MessageBoxA(nullptr, text, title, MB_OK | MB_TASKMODAL);
}

}  // namespace qel::platform
