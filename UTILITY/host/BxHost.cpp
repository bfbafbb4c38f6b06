#include "QelUtility/BxHost.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <mutex>

#include "platform/Files.h"
#include "platform/Immortal.h"

namespace {

constexpr std::size_t kMostCharacters = 255;

constexpr std::array<const char*, BXHOST_STRING_COUNT> kDefaultStrings{
    "Halverd",
    "Linkup",
    "Norvale",
    "",
    "{DC623A55-9F72-4ca8-98E1-07A529275F3D}",
    "{4E07B7D5-232E-4c8c-8CE2-B7E5980603AF}",
};

// A text that the host may have put in place of a default.
struct Override {
    bool set = false;
    char text[kMostCharacters + 1] = "";

    void assign(const char* value) {
        set = value != nullptr;
        std::snprintf(text, sizeof text, "%s", set ? value : "");
    }
};

struct HostTexts {
    std::mutex mutex;
    std::array<Override, BXHOST_STRING_COUNT> strings;
    Override registryRoot;
};

HostTexts& hostTexts() {
    static qel::platform::Immortal<HostTexts> texts;
    return texts.get();
}

std::atomic<BxHostTextSource> profileDirectorySource{nullptr};
std::atomic<BxHostTextSource> modelIdSource{nullptr};

// True when all of a text that took `length` characters has gone into the buffer; else empties it.
// REQUIRES: size > 0
bool whole(char* buffer, unsigned long size, int length) {
    if (static_cast<unsigned long>(length) < size) return true;
    buffer[0] = '\0';
    return false;
}

// True when the source filled the buffer with a terminated, non-empty text. A source that throws
// has none: the trace asks in the middle of its callers' error handling.
bool ask(BxHostTextSource source, char* buffer, unsigned long size) {
    bool filled = false;
    try {
        filled =
            source(buffer, size) && buffer[0] != '\0' && std::memchr(buffer, '\0', size) != nullptr;
    } catch (...) {
        filled = false;
    }
    if (!filled) buffer[0] = '\0';
    return filled;
}

bool defaultProfileDirectory(char* buffer, unsigned long size) {
    char state[1024];
    if (!qel::platform::userStateDirectory(state, sizeof state)) return false;
    const int length =
        std::snprintf(buffer, size, "%s%cQelUtility", state, qel::platform::kPathSeparator);
    return whole(buffer, size, length) && qel::platform::createDirectory(buffer);
}

const char* current(const HostTexts& texts, BxHostString which) {
    const auto index = static_cast<std::size_t>(which);
    const Override& own = texts.strings[index];
    return own.set ? own.text : kDefaultStrings[index];
}

}  // namespace

bool GetProfileDirectoryWithUserName(char* buffer, unsigned long size) {
    if (buffer == nullptr || size == 0) return false;
    buffer[0] = '\0';
    const BxHostTextSource source = profileDirectorySource.load();
    return ask(source != nullptr ? source : &defaultProfileDirectory, buffer, size);
}

bool GetCurrentModelID(char* buffer, unsigned long size) {
    if (buffer == nullptr || size == 0) return false;
    buffer[0] = '\0';
    const BxHostTextSource source = modelIdSource.load();
    return source != nullptr && ask(source, buffer, size);
}

void BxHost_SetProfileDirectorySource(BxHostTextSource source) {
    profileDirectorySource.store(source);
}

void BxHost_SetModelIDSource(BxHostTextSource source) {
    modelIdSource.store(source);
}

bool BxHost_GetString(BxHostString which, char* buffer, unsigned long size) {
    if (buffer == nullptr || size == 0) return false;
    buffer[0] = '\0';
    if (static_cast<unsigned>(which) >= BXHOST_STRING_COUNT) return false;
    HostTexts& texts = hostTexts();
    const std::lock_guard lock(texts.mutex);
    return whole(buffer, size, std::snprintf(buffer, size, "%s", current(texts, which)));
}

void BxHost_SetString(BxHostString which, const char* text) {
    if (static_cast<unsigned>(which) >= BXHOST_STRING_COUNT) return;
    HostTexts& texts = hostTexts();
    const std::lock_guard lock(texts.mutex);
    texts.strings[static_cast<std::size_t>(which)].assign(text);
}

bool BxHost_GetRegistryRoot(char* buffer, unsigned long size) {
    if (buffer == nullptr || size == 0) return false;
    HostTexts& texts = hostTexts();
    const std::lock_guard lock(texts.mutex);
    const int length =
        texts.registryRoot.set
            ? std::snprintf(buffer, size, "%s", texts.registryRoot.text)
            : std::snprintf(buffer, size, "Software\\%s\\%s", current(texts, BXHOST_COMPANY),
                            current(texts, BXHOST_PRODUCT));
    return whole(buffer, size, length);
}

void BxHost_SetRegistryRoot(const char* key) {
    HostTexts& texts = hostTexts();
    const std::lock_guard lock(texts.mutex);
    texts.registryRoot.assign(key);
}
