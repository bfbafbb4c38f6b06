#include "trace/Rotation.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "platform/Files.h"
#include "trace/LogPaths.h"

namespace qel::trace {

namespace {

constexpr int kMostBackups = 16;  // one hexadecimal digit

const char* extension(const char* path) {
    return std::strrchr(path + platform::directoryLength(path), '.');
}

}  // namespace

bool canRotate(const char* path) noexcept {
    // A path that is cut would name another file.
    return strnlen(path, kPathRoom) < kPathRoom && extension(path) != nullptr;
}

int rotate(const char* path, int count) noexcept {
    const int baseLength = static_cast<int>(extension(path) - path);
    const bool existed = platform::fileExists(path);
    const platform::FileIdentity before = platform::fileIdentity(path);
    int result = 0;
    for (int n = std::min(count, kMostBackups); n >= 1; --n) {
        char target[kPathRoom + 8];
        char source[kPathRoom + 8];
        std::snprintf(target, sizeof target, "%.*s.bk%x", baseLength, path,
                      static_cast<unsigned>(n - 1));
        if (n == 1) {
            std::snprintf(source, sizeof source, "%s", path);
        } else {
            std::snprintf(source, sizeof source, "%.*s.bk%x", baseLength, path,
                          static_cast<unsigned>(n - 2));
        }
        if (platform::fileExists(target)) result = platform::removeFile(target);
        if (platform::fileExists(source)) result = platform::renameFile(source, target);
    }
    // A log that cannot be renamed is deleted, because it must not grow for ever. A log that
    // another process has begun under the same name meanwhile stays.
    const bool stillThere =
        existed && platform::fileExists(path) && platform::fileIdentity(path) == before;
    return stillThere ? platform::removeFile(path) : result;
}

}  // namespace qel::trace
