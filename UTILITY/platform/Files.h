// Paths, streams and directories. Paths are in the system's code page. No function here follows a
// path into a device that blocks. Callable from any thread.
#ifndef QEL_PLATFORM_FILES_H
#define QEL_PLATFORM_FILES_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace qel::platform {

// What is written between the parts of a path.
extern const char kPathSeparator;
// True for each character that separates the parts of a path on this platform.
[[nodiscard]] bool isPathSeparator(char c) noexcept;
// The length of the path's drive and directory, the last separator included; 0 when it has none.
[[nodiscard]] std::size_t directoryLength(const char* path) noexcept;

// Streams that are not inherited by child processes; null with errno set when there is none. New
// files are made for the user alone. Reading and writing: binary, regular files only. Appending:
// text mode; every write lands at the file's end. Others may rename and remove the file meanwhile;
// with kHeld they may not, where the system can forbid it.
enum class NameWhileOpen { kFree, kHeld };
[[nodiscard]] std::FILE* openForAppend(const char* path,
                                       NameWhileOpen name = NameWhileOpen::kFree) noexcept;
// As openForAppend with kFree, for a few writes and a close: `size` is the file's size at that
// moment, -1 when it is not known, and the stream has no position to ask for or to change.
[[nodiscard]] std::FILE* openForMessage(const char* path, std::int64_t* size) noexcept;
// Whether what such a stream holds in its buffer reaches the file in one write.
[[nodiscard]] bool messagesAreWhole() noexcept;
[[nodiscard]] std::FILE* openForRead(const char* path) noexcept;
[[nodiscard]] std::FILE* openForWrite(const char* path) noexcept;
// Whether two processes that append at the same moment never write over each other.
[[nodiscard]] bool appendsAreAtomic() noexcept;

[[nodiscard]] bool fileExists(const char* path) noexcept;
// The size in bytes; -1 when the file cannot be examined.
[[nodiscard]] std::int64_t fileSize(const char* path) noexcept;

// Which file a name refers to just now; two that are equal are the same file.
struct FileIdentity {
    std::uint64_t volume = 0;
    std::uint64_t index = 0;
    bool known = false;
    bool operator==(const FileIdentity&) const = default;
};
[[nodiscard]] FileIdentity fileIdentity(const char* path) noexcept;
// Whether a stream that was opened with kHeld is still the file of that name.
[[nodiscard]] bool stillNamed(std::FILE* stream, const char* path) noexcept;

// 0, or -1 with errno set. removeFile removes no directory.
int removeFile(const char* path) noexcept;
int renameFile(const char* from, const char* to) noexcept;

[[nodiscard]] bool directoryWritable(const char* directory) noexcept;
// Makes the directory, for the user alone; true also when it is there already. Parents are not
// made.
[[nodiscard]] bool createDirectory(const char* directory) noexcept;
[[nodiscard]] bool currentDirectory(char* out, std::size_t room) noexcept;

// The folder below which programs keep a user's state: the roaming application-data folder,
// $XDG_STATE_HOME or ~/.local/state. It is made when missing. False when there is none.
[[nodiscard]] bool userStateDirectory(char* out, std::size_t room) noexcept;

}  // namespace qel::platform

#endif
