// The way of a message from its text to the log: one message at a time, through one mutex.
#ifndef QEL_TRACE_MESSAGELOG_H
#define QEL_TRACE_MESSAGELOG_H

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "platform/LockResult.h"
#include "platform/PathLock.h"
#include "platform/Process.h"
#include "trace/KeptLog.h"
#include "trace/LogPaths.h"
#include "trace/MessageStream.h"
#include "trace/RetroBuffers.h"
#include "trace/Rotation.h"
#include "trace/Settings.h"

namespace qel::trace {

// The public functions may be called from any thread: each takes the writer's mutex (the platform's
// trace mutex, which is recursive) for as long as it needs it, and waits 200 ms at most. That mutex
// guards every member but writer_. Inside it, nothing waits for the mutex of the settings load,
// because a load takes the two in the other order.
class MessageLog {
  public:
    // The three must outlive the log.
    MessageLog(const Settings& settings, LogPaths& paths, TickSource ticks) noexcept
        : settings_(settings), paths_(paths), ticks_(ticks) {}
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    // Writes one message: 0 written, -1 not. The bits 2 and 4 of `mask` send it to the SyncML logs.
    // When the user is to see why it failed, `failure` becomes a text that says so.
    int write(const char* text, std::uint32_t mask, const char*& failure) noexcept;

    // Characters of each retroactive buffer; 0 while retroactive tracing is off.
    [[nodiscard]] int retroSize() const noexcept { return retro_.size(); }
    // Leaves the buffers as they are when the mutex cannot be had.
    void resizeRetro(int size) noexcept;
    // Writes what they hold into the log and empties them.
    void flushRetro() noexcept;

    // Writes out what the log that is kept open has buffered.
    void flushKept() noexcept;
    // The same as the process ends; each message after that is written out at once.
    void finish() noexcept;

    // Around a fork. The child starts without the messages that the parent has yet to write.
    void beforeFork() noexcept;
    void afterForkInParent() noexcept;
    void afterForkInChild() noexcept;

    // Rotates `path`, as rotate() does, when its size has reached "MaxFileSize"; otherwise -1 when
    // the file has a size, 0 when it has none.
    int limitSize(const char* path) noexcept;
    // Rotates `path` as rotate() does; -1 also when the mutex or the log's lock cannot be had.
    int rotateLocked(const char* path, int count) noexcept;

    // True while the calling thread holds the writer's mutex.
    [[nodiscard]] bool heldHere() const noexcept {
        return writer_.load(std::memory_order_relaxed) == platform::threadId();
    }

    // Holds the writer's mutex, if it could be had in time. Recursive.
    class Lock {
      public:
        explicit Lock(MessageLog& log) noexcept;
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

        [[nodiscard]] platform::LockResult result() const noexcept { return result_; }
        explicit operator bool() const noexcept { return result_ == platform::LockResult::kLocked; }

      private:
        MessageLog& log_;
        platform::LockResult result_;
    };

  private:
    // Where a message goes: the stream that is opened for it, the log that is kept open, or to the
    // retroactive buffers alone.
    struct Target {
        MessageStream* stream = nullptr;
        KeptLog* kept = nullptr;

        [[nodiscard]] bool put(const char* text, std::size_t length) const noexcept;
    };

    // All below: REQUIRES: the calling thread holds a Lock.
    [[nodiscard]] const char* activePath() const noexcept;
    [[nodiscard]] bool directoryWritable() noexcept;
    bool writeMessage(const char* text, std::uint32_t mask, bool& opened);
    bool writeLines(bool noPrefix, const char* text, const Target& target);
    bool writeSyncMLBlock(const char* text, bool input, const Target& target);
    void writeBanner(const Target& target);
    void reportFailedOpens(const Target& target);
    bool open(std::size_t room, Target& target);
    bool openForMessage(const char* path, std::size_t room);
    [[nodiscard]] bool cutLineDue(const char* path) noexcept;
    bool openKept(const char* path);
    bool openKeptLocked(const char* path, platform::LockResult lock);
    bool limitUnlessLocked(const char* path, platform::LockResult lock);
    bool close(const Target& target);

    const Settings& settings_;
    LogPaths& paths_;
    const TickSource ticks_;

    std::atomic<std::uint32_t> writer_{0};  // the thread that holds the mutex; 0: none
    int depth_ = 0;                         // how often it holds it

    const char* redirectedTo_ = nullptr;  // a SyncML log while one of its messages is written
    platform::PathLock fileLock_;         // keeps other processes off the log while it is needed
    MessageStream stream_;
    KeptLog kept_;
    RetroBuffers retro_;
    SizeCheck sizeCheck_;
    int failedOpens_ = 0;         // consecutive
    int directoryWritable_ = -1;  // -1 not yet known; decided once
    bool firstBanner_ = true;     // this process has not written one yet

    const char* endLookedUp_ = nullptr;  // the log whose end was last looked at
    std::uint32_t endLookedUpAt_ = 0;    // the tick of it
    bool ending_ = false;                // the process is
    bool heldForFork_ = false;
};

}  // namespace qel::trace

#endif
