// A profile file in place of the registry. Values are quoted, so that blanks at their ends survive.
#include "platform/Registry.h"

#include <cstdio>
#include <cstring>

#include "platform/Files.h"
#include "platform/Profile.h"

namespace qel::platform {

bool RegistryKey::open(const char* profileDirectory, const char* key, Open how) noexcept {
    close();
    const bool keyFits = std::strlen(key) < sizeof section_;
    // A bracket would end the section's name before its time.
    if (profileDirectory[0] == '\0' || key[0] == '\0' || !keyFits ||
        std::strchr(key, ']') != nullptr)
        return false;
    const int length = std::snprintf(file_, sizeof file_, "%s/registry.ini", profileDirectory);
    const bool fits = static_cast<std::size_t>(length) < sizeof file_;
    if (!fits || (how == Open::kExisting && !fileExists(file_))) {
        file_[0] = '\0';
        return false;
    }
    std::snprintf(section_, sizeof section_, "%s", key);
    return true;
}

void RegistryKey::close() noexcept {
    file_[0] = '\0';
    section_[0] = '\0';
    handle_ = 0;
}

bool RegistryKey::set(const char* name, const char* text) noexcept {
    char quoted[1024];
    const int length = std::snprintf(quoted, sizeof quoted, "\"%s\"", text);
    const bool fits = static_cast<std::size_t>(length) < sizeof quoted;
    return file_[0] != '\0' && fits && writeProfile(file_, section_, name, quoted);
}

bool RegistryKey::get(const char* name, char* out, std::size_t room) const noexcept {
    if (room == 0) return false;
    out[0] = '\0';
    if (file_[0] == '\0') return false;
    char text[1024];
    readProfile(file_, section_, name, text, sizeof text);
    const std::size_t length = std::strlen(text);
    if (length == 0 || length >= room) return false;
    std::memcpy(out, text, length + 1);
    return true;
}

}  // namespace qel::platform
