// The log that is kept open between messages.
#ifndef QEL_TRACE_KEPTLOG_H
#define QEL_TRACE_KEPTLOG_H

#include <cstdint>
#include <cstdio>

#include "trace/LogPaths.h"

namespace qel::trace {

// The writer's mutex guards everything here.
class KeptLog {
  public:
    KeptLog() noexcept = default;
    // Closes the log. The process's own trace is never destroyed: there the run-time library writes
    // out what is buffered when the process ends.
    ~KeptLog();
    KeptLog(const KeptLog&) = delete;
    KeptLog& operator=(const KeptLog&) = delete;

    // The open log, or null when it must be opened: there is none, it has reached `limit` bytes, or
    // its file has been renamed or removed. `now` is the clock's tick.
    [[nodiscard]] std::FILE* current(std::int64_t limit, std::uint32_t now) noexcept;

    // The size in bytes of the log that is to be opened.
    [[nodiscard]] std::int64_t sizeBeforeOpen(const char* path) noexcept;
    void startEmpty() noexcept { size_ = 0; }

    // Opens `path` for appending, with a buffer of this library's (or of the run-time library's own
    // choice). Null when it cannot be opened.
    std::FILE* open(const char* path, bool runtimesBuffer) noexcept;

    // Counts what was written.
    void grow(std::int64_t bytes) noexcept { size_ += bytes; }

    // Writes out what is buffered. False when that failed; true without a log.
    bool flush() noexcept;

    // Closes the log if it is the file that is about to be rotated.
    void closeBeforeRotation(const char* path) noexcept;

  private:
    void close() noexcept;

    std::FILE* stream_ = nullptr;
    char* buffer_ = nullptr;     // the stream's, when the run-time library does not choose it
    char path_[kPathRoom] = "";  // the name under which it was opened
    std::int64_t size_ = -1;     // bytes; -1 unknown
    std::uint32_t checked_ = 0;  // the tick in which its name was last looked up
};

}  // namespace qel::trace

#endif
