// The log that is kept open between messages.
#ifndef QEL_TRACE_KEPTLOG_H
#define QEL_TRACE_KEPTLOG_H

#include <cstddef>
#include <cstdint>

#include "trace/LogPaths.h"

namespace qel::trace {

// The log's messages wait in a buffer of its own, which is written out when it is full. A message
// is taken or refused as a whole: what was taken stays until the file has it, however often a full
// disk refuses it, and what was refused is dropped. The writer's mutex guards everything here.
class KeptLog {
  public:
    KeptLog() noexcept = default;
    // Writes out what is buffered and closes the log.
    ~KeptLog() { close(); }
    KeptLog(const KeptLog&) = delete;
    KeptLog& operator=(const KeptLog&) = delete;

    // Whether the log is open. It is closed when it has reached `limit` bytes and when its file has
    // been renamed or removed. `now` is the clock's tick.
    [[nodiscard]] bool current(std::int64_t limit, std::uint32_t now) noexcept;

    // The size in bytes of the log that is to be opened.
    [[nodiscard]] std::int64_t sizeBeforeOpen(const char* path) noexcept;
    void startEmpty() noexcept { size_ = 0; }

    // Opens `path` for appending, with a buffer of this library's size or of the run-time
    // library's. False when it cannot be opened.
    [[nodiscard]] bool open(const char* path, bool runtimesBuffer) noexcept;

    // A message: its pieces between begin() and end(), which is false when the message was refused.
    // With `flush` all that is buffered must reach the file.
    void begin() noexcept;
    [[nodiscard]] bool put(const char* text, std::size_t length) noexcept;
    [[nodiscard]] bool end(bool flush) noexcept;

    // Counts what was written.
    void grow(std::int64_t bytes) noexcept { size_ += bytes; }

    // Writes out what is buffered. False when that failed; true without a log.
    bool flush() noexcept;

    // Closes the log if it is the file that is about to be rotated.
    void closeBeforeRotation(const char* path) noexcept;

    // Closes the log and drops what is buffered, which another process writes.
    void forget() noexcept;

  private:
    static constexpr int kNoFile = -1;
    static constexpr std::size_t kBuffer = 32768;

    void close() noexcept;
    [[nodiscard]] bool writeOut(std::size_t count) noexcept;

    int file_ = kNoFile;
    char buffer_[kBuffer];
    std::size_t room_ = kBuffer;    // how much of the buffer is used
    std::size_t used_ = 0;          // bytes in it
    std::size_t taken_ = 0;         // those of them that belong to messages that were taken
    std::size_t partOut_ = 0;       // bytes of the present message that have left the buffer
    bool refused_ = false;          // the present message does not fit and cannot be written
    bool cut_ = false;              // the file ends in a part of a message that was refused
    char last_ = '\n';              // the last byte that reached the file
    char path_[kPathRoom] = "";     // the name under which it was opened
    std::int64_t size_ = -1;        // bytes; -1 unknown
    std::int64_t sizeBefore_ = -1;  // before the present message
    std::uint32_t checked_ = 0;     // the tick in which its name was last looked up
};

}  // namespace qel::trace

#endif
