// The current user's registry.
#include "platform/Registry.h"

#include <windows.h>

#include <cstring>

namespace qel::platform {

namespace {

HKEY asKey(std::uintptr_t handle) noexcept {
    return reinterpret_cast<HKEY>(handle);
}

}  // namespace

bool RegistryKey::open(const char* /*profileDirectory*/, const char* key, Open how) noexcept {
    close();
    if (key[0] == '\0') return false;  // that would be the user's whole registry
    HKEY opened = nullptr;
    const LSTATUS result =
        how == Open::kCreate
            ? RegCreateKeyExA(HKEY_CURRENT_USER, key, 0, nullptr, REG_OPTION_NON_VOLATILE,
                              KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr, &opened, nullptr)
            : RegOpenKeyExA(HKEY_CURRENT_USER, key, 0, KEY_QUERY_VALUE, &opened);
    if (result != ERROR_SUCCESS) return false;
    handle_ = reinterpret_cast<std::uintptr_t>(opened);
    return true;
}

void RegistryKey::close() noexcept {
    if (handle_ != 0) RegCloseKey(asKey(handle_));
    handle_ = 0;
}

bool RegistryKey::set(const char* name, const char* text) noexcept {
    const auto* bytes = reinterpret_cast<const BYTE*>(text);
    const auto size = static_cast<DWORD>(std::strlen(text) + 1);
    return handle_ != 0 &&
           RegSetValueExA(asKey(handle_), name, 0, REG_SZ, bytes, size) == ERROR_SUCCESS;
}

bool RegistryKey::get(const char* name, char* out, std::size_t room) const noexcept {
    if (room == 0) return false;
    out[0] = '\0';
    if (handle_ == 0) return false;
    auto size = static_cast<DWORD>(room);
    if (RegQueryValueExA(asKey(handle_), name, nullptr, nullptr, reinterpret_cast<BYTE*>(out),
                         &size) != ERROR_SUCCESS) {
        out[0] = '\0';
        return false;
    }
    // A stored value need not be terminated.
    out[size < room ? size : room - 1] = '\0';
    return true;
}

}  // namespace qel::platform
