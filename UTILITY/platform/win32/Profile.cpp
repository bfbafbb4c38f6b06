// Profile files by the system's own calls.
#include <windows.h>

#include "platform/Platform.h"

namespace qel::platform {

void readProfile(const char* path, const char* section, const char* key, char* out,
                 std::size_t room) noexcept {
    if (room == 0) return;
    out[0] = '\0';
    GetPrivateProfileStringA(section, key, "", out, static_cast<DWORD>(room), path);
}

bool writeProfile(const char* path, const char* section, const char* key,
                  const char* value) noexcept {
    return WritePrivateProfileStringA(section, key, value, path) != FALSE;
}

}  // namespace qel::platform
