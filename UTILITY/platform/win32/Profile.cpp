// Profile files by the system's own calls. Not every system makes those calls wait for each other
// between processes, so they are made under the file's lock.
#include "platform/Profile.h"

#include <windows.h>

#include "platform/PathLock.h"
#include "platform/ProfileLock.h"

namespace qel::platform {

namespace {

constexpr std::uint32_t kLockMilliseconds = 200;

}  // namespace

void readProfile(const char* path, const char* section, const char* key, char* out,
                 std::size_t room) noexcept {
    if (room == 0) return;
    out[0] = '\0';
    PathLock lock;
    // Without the lock the worst is a value that is missed this time.
    (void)lock.acquire(path, kLockMilliseconds);
    GetPrivateProfileStringA(section, key, "", out, static_cast<DWORD>(room), path);
}

bool writeProfile(const char* path, const char* section, const char* key, const char* value,
                  ProfileWrite when) noexcept {
    PathLock lock;
    if (!lockProfile(lock, path)) return false;
    if (when == ProfileWrite::kIfMissing) {
        char present[2];
        if (GetPrivateProfileStringA(section, key, "", present, sizeof present, path) != 0)
            return true;
    }
    return WritePrivateProfileStringA(section, key, value, path) != FALSE;
}

}  // namespace qel::platform
