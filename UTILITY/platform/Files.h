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
// files are made for the user alone. Binary, regular files only.
[[nodiscard]] std::FILE* openForRead(const char* path) noexcept;
[[nodiscard]] std::FILE* openForWrite(const char* path) noexcept;
// Whether two processes that append at the same moment never write over each other.
[[nodiscard]] bool appendsAreAtomic() noexcept;
// Whether the file has nothing after its last line end. True also when that cannot be known.
[[nodiscard]] bool endsInLine(const char* path) noexcept;

// Files for appending, in text mode, that child processes do not inherit: -1 when one cannot be
// opened. New ones are made for the user alone. Every write lands at the file's end.
//
// For one message: others may rename and remove the file meanwhile. `size` becomes the file's size
// at that moment, -1 when it is not known.
[[nodiscard]] int openForMessage(const char* path, std::int64_t* size) noexcept;
// One that stays open: where the system can forbid it, nobody renames or removes it meanwhile.
[[nodiscard]] int openHeld(const char* path) noexcept;
// How many of the bytes reached the file; less than `size` when it takes no more.
[[nodiscard]] std::size_t appendTo(int file, const char* data, std::size_t size) noexcept;
// Whether appendTo() is one write of the system's, with no other process's bytes in the middle.
[[nodiscard]] bool messagesAreWhole() noexcept;
void closeAppended(int file) noexcept;
// Whether it is still the file of that name.
[[nodiscard]] bool stillNamed(int file, const char* path) noexcept;

[[nodiscard]] bool fileExists(const char* path) noexcept;
// The size in bytes; -1 when the file cannot be examined.
[[nodiscard]] std::int64_t fileSize(const char* path) noexcept;

// A number that is another one after the file has been written or replaced, clock ticks apart; -1
// when the file cannot be examined.
[[nodiscard]] std::int64_t changeStamp(const char* path) noexcept;

// Which file a name refers to just now; two that are equal are the same file.
struct FileIdentity {
    std::uint64_t volume = 0;
    std::uint64_t index = 0;
    bool known = false;
    bool operator==(const FileIdentity&) const = default;
};
[[nodiscard]] FileIdentity fileIdentity(const char* path) noexcept;

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
