// What the trace facility keeps for the life of the process: the settings, the paths, and what the
// writer knows of the log that it writes to. The settings and the paths may be read by any thread
// at any time; the writer's part belongs to whoever holds the writer's mutex. Nothing here is ever
// destroyed, so that destructors may still trace while the process ends.
#ifndef QEL_TRACE_TRACESTATE_H
#define QEL_TRACE_TRACESTATE_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "platform/Platform.h"

namespace qel::trace {

inline constexpr std::size_t kPathRoom = 512;  // a path and its terminator
inline constexpr std::uint32_t kWaitMilliseconds =
    200;  // the most that a trace makes a caller wait

inline constexpr std::uint32_t kSyncInputBit = 0x2;
inline constexpr std::uint32_t kSyncOutputBit = 0x4;
inline constexpr std::uint32_t kSyncInMainLogBit = 0x08000000;
inline constexpr std::uint32_t kShowFailuresBit = 0x80000000;

inline constexpr int kFlushEveryMessage = 0x2;  // bits of keepLogFileOpen
inline constexpr int kRuntimesBuffering = 0x4;

// The options as they were last read; names and meanings are those of the options file.
struct Settings {
    std::atomic<int> maxFileSize{5000000};  // bytes
    std::atomic<int> maxBackupCount{3};
    std::atomic<int> effectiveBackupCount{3};  // at least 1; settled at the first load
    std::atomic<int> keepLogFiles{1};
    std::atomic<int> verbosity{0};
    std::atomic<int> tracingOptions{1};
    std::atomic<int> logManagerLevel{0};
    std::atomic<int> logManagerDetail{0};
    std::atomic<int> retroBufferSize{0};  // characters; changed under the writer's mutex alone
    std::atomic<int> separateLogs{0};     // settled at the first load, as is the next
    std::atomic<int> keepLogFileOpen{0};
};
Settings& settings() noexcept;

// --- Paths --------------------------------------------------------------------------------------

enum class Path { kLog, kSavedLog, kSyncInput, kSyncOutput, kRunDirectory, kOptions, kLogName };

// The path as it stands, empty before it is known. The text behind a pointer that was handed out
// never changes, whatever is published later.
[[nodiscard]] char* path(Path which) noexcept;

// Makes a copy of `text`, cut at 511 characters, the path. False, with the old one kept, when
// memory is exhausted.
bool publish(Path which, const char* text) noexcept;

// --- The writer ---------------------------------------------------------------------------------

// Holds the writer's mutex, when it could be had in time. Recursive.
class WriterLock {
  public:
    WriterLock() noexcept;
    ~WriterLock();
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;

    [[nodiscard]] platform::LockResult result() const noexcept { return result_; }
    explicit operator bool() const noexcept { return result_ == platform::LockResult::kLocked; }
    // True while the calling thread is inside some WriterLock.
    [[nodiscard]] static bool heldHere() noexcept;

  private:
    platform::LockResult result_;
};

struct Writer {
    const char* redirectedTo = nullptr;  // a SyncML log while one of its messages is written
    int opensSinceSizeCheck = 0;
    int failedOpens = 0;          // consecutive
    int directoryWritable = -1;   // -1 not yet known; settled once
    bool firstBanner = true;      // none written by this process yet
    platform::PathLock lock;      // held, where it is needed, from an ordinary open to its close
    std::size_t messageRoom = 0;  // bytes that the message at hand takes in the log, at most
    char* longBuffer = nullptr;   // the stream's buffer while a long message is written
    std::FILE* keptStream = nullptr;  // the log that is kept open
    char* keptBuffer = nullptr;       // that stream's own
    char keptPath[kPathRoom] = "";    // its name when it was opened
    std::int64_t keptSize = -1;       // its size in bytes; -1 not yet known
    std::uint32_t keptChecked = 0;    // the tick in which its name was last looked at
    std::array<char*, 2> retro{};     // the retroactive buffers, each of size + 1 bytes
    int retroCurrent = 0;
    int retroFill = 0;
    bool flushing = false;  // the retroactive buffers are on their way to the file
};
// REQUIRES: the calling thread holds a WriterLock.
Writer& writer() noexcept;

// The size of the retroactive buffers as the writers see it: 0 when they are off, negative while
// they are being flushed. REQUIRES: as above.
[[nodiscard]] int retroSize() noexcept;

// Resizes the retroactive buffers and empties them; a size that cannot be had, or one below 0,
// turns them off. REQUIRES: as above.
void resizeRetroBuffers(int size) noexcept;

// The path that a message goes to just now. REQUIRES: as above.
[[nodiscard]] const char* activeLogPath() noexcept;

// --- Clocks -------------------------------------------------------------------------------------

// Room for "06/15 14:02:11.123 000" with the widest numbers.
struct Stamp {
    char text[48];
};
// A time stamp: local time, milliseconds, and a number that counts the stamps of one millisecond.
[[nodiscard]] Stamp makeStamp() noexcept;
// The same to `out`, which has room for a Stamp; gives where its terminator stands.
char* putStamp(char* out) noexcept;

// Brings the facility back to its state before the first load and closes the log that is kept open.
// `ticks` becomes the clock of the settings load; null is the system's. For tests: no other thread
// may be in the facility.
void resetForTest(std::uint32_t (*ticks)() = nullptr) noexcept;
[[nodiscard]] std::uint32_t ticks() noexcept;

// The load's own state (BxTraceConfig.cpp), for the reset alone.
void forgetLoad() noexcept;

}  // namespace qel::trace

#endif
