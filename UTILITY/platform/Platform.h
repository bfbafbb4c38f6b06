// The library's one door to the operating system: free functions, declared here once and defined
// twice, in posix/ and in win32/. Callable from any thread unless a function says otherwise.
#ifndef QEL_PLATFORM_PLATFORM_H
#define QEL_PLATFORM_PLATFORM_H

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace qel::platform {

// --- Memory of strings (Memory.cpp) -------------------------------------------------------------

// A zero-filled block of `size` bytes, or null when memory is exhausted. Freed by stringFree alone.
[[nodiscard]] char* stringAlloc(std::size_t size) noexcept;

// The block grown or shrunk to `size` bytes, content kept and new bytes zero; it may move. Null
// when memory is exhausted, and then `block` stands as it was. A null `block` allocates.
[[nodiscard]] char* stringRealloc(char* block, std::size_t size) noexcept;

// Frees a block of the two functions above; null is nothing.
void stringFree(char* block) noexcept;

// The number of bytes that may be used in `block`, at least what was asked for; 0 for null.
[[nodiscard]] std::size_t stringBlockSize(const char* block) noexcept;

// --- The local clock (LocalClock.cpp) -----------------------------------------------------------

// A wall-clock reading in the computer's current time zone.
struct LocalClock {
    int year;         // all digits, such as 2005
    int month;        // [1, 12]
    int day;          // [1, 31]
    int hour;         // [0, 23]
    int minute;       // [0, 59]
    int second;       // [0, 59]; a leap second shows as the 59th
    int millisecond;  // [0, 999]
};

// The local wall clock now; all zero when the system cannot tell.
[[nodiscard]] LocalClock localClock() noexcept;

// --- Locks (Lock.cpp) ----------------------------------------------------------------------------
// A recursive lock of one process, in storage that its owner provides.

constexpr std::size_t kLockSize = 6 * sizeof(void*);
constexpr std::size_t kLockAlignment = alignof(void*);

// `storage` is kLockSize bytes, aligned to kLockAlignment, that stay where they are until
// lockDestroy. REQUIRES of the others: initialised; of lockLeave: held by the calling thread; of
// lockDestroy: held by nobody.
void lockInit(void* storage) noexcept;
void lockEnter(void* storage) noexcept;
void lockLeave(void* storage) noexcept;
void lockDestroy(void* storage) noexcept;

// --- The current time zone (TimeZone.cpp) --------------------------------------------------------

// The moment of a yearly change of offset, in the wall-clock time that it ends. With `year` 0 a
// rule: the `day`-th (1 to 4, 5 = the last) `dayOfWeek` of `month`. With another year a date: `day`
// of `month`. Month 0: the zone has no such change.
struct ZoneChangeMoment {
    int year = 0;
    int month = 0;      // [0, 12]
    int dayOfWeek = 0;  // [0, 6], 0 = Sunday
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

// A zone's offsets in minutes, UTC = local time + bias. In standard time the bias is
// `bias + standardBias`; daylight saving adds `daylightBias`, which is mostly -60.
struct TimeZoneDescription {
    int bias = 0;
    int standardBias = 0;
    int daylightBias = 0;
    ZoneChangeMoment standardDate;  // the change to standard time
    ZoneChangeMoment daylightDate;  // the change to daylight saving
};

// The computer's current zone with the rules that hold now. Where a rule cannot be put as a weekday
// of a month, both changes come as the dates of `year`. UTC when the system cannot tell. May read a
// file; callable from any thread that no other thread changes the environment under.
[[nodiscard]] TimeZoneDescription currentTimeZone(int year) noexcept;

// Whether the computer follows daylight saving: true unless its settings say otherwise.
[[nodiscard]] bool followsDaylightSaving() noexcept;

// --- Code pages (CodePages.cpp) ------------------------------------------------------------------

enum class CodePageFailure {
    kNone,
    kNoRoom,   // the output cannot hold the result
    kInvalid,  // the input holds a sequence that means nothing in its code page, or ends inside one
    kOther     // no such code page, or the system refused
};

struct CodePageResult {
    std::uint32_t count;  // units or bytes written; 0 on failure
    CodePageFailure failure;
};

// Makes the conversion functions ready; to be asked before each conversion. False when the system
// has none.
[[nodiscard]] bool codePagesAvailable() noexcept;

// Decodes `length` bytes of a code page (0: the system's default ANSI set) into UTF-16, all of them
// or none. Elsewhere than on Windows the pages are 0 (as windows-1252), 936, 950 and 65001, and
// invalid input is always refused; Windows replaces most of it.
[[nodiscard]] CodePageResult decodeCodePage(std::uint32_t codePage, const char* in,
                                            std::uint32_t length, char16_t* out,
                                            std::uint32_t room) noexcept;

// The way back, again all or nothing. What the code page lacks becomes its default character, "?"
// for each UTF-16 unit elsewhere than on Windows.
[[nodiscard]] CodePageResult encodeCodePage(std::uint32_t codePage, const char16_t* in,
                                            std::uint32_t count, char* out,
                                            std::uint32_t room) noexcept;

// From one page to another in one step, with the result that decoding and encoding have: the bytes
// written, or 0 where the two must be asked. That is so for every text that does not convert whole,
// for one that begins with a byte-order mark, and where input and output overlap. `out` may have
// been written to then.
[[nodiscard]] std::uint32_t convertCodePage(std::uint32_t from, std::uint32_t to, const char* in,
                                            std::uint32_t length, char* out,
                                            std::uint32_t room) noexcept;

// For input that decodeCodePage found invalid (length at least 2): how many of its bytes can be
// skipped at once because no decoding that begins before them would succeed, in [1, length - 1].
// Takes time in proportion to the length, where trying each position would take its square.
[[nodiscard]] std::uint32_t undecodablePrefix(std::uint32_t codePage, const char* in,
                                              std::uint32_t length) noexcept;

// --- Clock, thread, process (Process.cpp) -------------------------------------------------------

// Milliseconds of system up-time; wraps every 49.7 days.
[[nodiscard]] std::uint32_t tickCount() noexcept;
void sleepMilliseconds(std::uint32_t milliseconds) noexcept;

[[nodiscard]] std::uint32_t threadId() noexcept;
[[nodiscard]] std::uint32_t processId() noexcept;

// The full path of the process's executable, and of the module (shared library or program) that
// this code is part of. False, with an empty text, when it is unknown or longer than `room` - 1.
[[nodiscard]] bool processPath(char* out, std::size_t room) noexcept;
[[nodiscard]] bool modulePath(char* out, std::size_t room) noexcept;

// The value of an environment variable, cut at room - 1 bytes. False when it is not set or empty.
[[nodiscard]] bool environment(const char* name, char* out, std::size_t room) noexcept;

// Tells the user: a task-modal message box, a line on standard error where there are none.
void messageBox(const char* title, const char* text) noexcept;

// --- The end of a thread (ThreadEnd.cpp) ---------------------------------------------------------

// Calls a function for an object that a thread keeps when that thread ends. A thread_local object
// with a destructor is no substitute: where memory is exhausted when a thread first meets one, the
// run-time library may end the process. One object for each thread and ThreadEnd, and four
// ThreadEnds in the library at most.
class ThreadEnd {
  public:
    using Call = void (*)(void* object) noexcept;

    explicit ThreadEnd(Call call) noexcept;
    // The objects that are still watched are left as they are.
    ~ThreadEnd();
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;

    // Watches the calling thread's object; to be called at each use, which costs little. Without
    // memory to remember it the object is left as it is.
    void watch(void* object) const noexcept;

  private:
    unsigned key_ = 0;
    bool usable_ = false;
};

// --- The writer's mutex (TraceMutex.cpp) --------------------------------------------------------

enum class LockResult {
    kLocked,
    kTimedOut,
    kUnavailable  // the mutex could not be created; a later call tries again
};

// The recursive mutex that all trace output of this process goes through, shared on Windows by all
// copies of the library in the process. Every kLocked is paired with an unlock on the same thread.
[[nodiscard]] LockResult lockTraceMutex(std::uint32_t timeoutMilliseconds) noexcept;
void unlockTraceMutex() noexcept;

// --- Files (Files.cpp) --------------------------------------------------------------------------
//
// Paths are in the system's code page. No function here follows a path into a device that blocks.

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

// Which file a name stands for just now; two that are equal are the same file.
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

// --- Locks between processes (PathLock.cpp) -----------------------------------------------------

// Keeps the processes that write, rotate or rewrite the file `path` apart; advisory, and held by
// one object at a time, so a thread that holds one must not wait for another on the same path. The
// lock leaves no file behind. One thread.
class PathLock {
  public:
    PathLock() noexcept = default;
    ~PathLock() { release(); }
    PathLock(const PathLock&) = delete;
    PathLock& operator=(const PathLock&) = delete;

    // Waits at most `timeoutMilliseconds`. kUnavailable: nothing to lock with, as where the
    // directory does not exist.
    LockResult acquire(const char* path, std::uint32_t timeoutMilliseconds) noexcept;
    void release() noexcept;
    [[nodiscard]] bool held() const noexcept { return handle_ != kNone; }

  private:
    static constexpr std::intptr_t kNone = -1;
    std::intptr_t handle_ = kNone;
};

// --- Profile files (Profile.cpp) ----------------------------------------------------------------
//
// INI files: "[section]" lines and "key=value" lines. Names are compared without regard to case,
// blanks around names and values do not count, and one pair of quotes around a value is dropped.

// The value, cut at room - 1 bytes; an empty text when it is missing or the file cannot be read.
void readProfile(const char* path, const char* section, const char* key, char* out,
                 std::size_t room) noexcept;
// Sets one value and keeps every other line; with kIfMissing a value that is there and not empty
// stays, and that counts as written. Threads and processes that write one file at the same time
// take turns, looking for the value included. False, with the file as it was, when it cannot be
// written, when others had it for 200 ms, or (elsewhere than on Windows) when the line would not
// read back as it was given.
enum class ProfileWrite { kAlways, kIfMissing };
bool writeProfile(const char* path, const char* section, const char* key, const char* value,
                  ProfileWrite when = ProfileWrite::kAlways) noexcept;

// --- Formatting (Format.cpp) --------------------------------------------------------------------

// Formats like vsnprintf into `out`, whole or cut at room - 1 bytes, always terminated, and returns
// the length that the whole text has (negative, with an empty text, when the format is bad). %I64d,
// %I32d and their like work on every platform. A null format is the text "(null)".
int formatTextV(char* out, std::size_t room, const char* format, std::va_list arguments) noexcept;

}  // namespace qel::platform

#endif
