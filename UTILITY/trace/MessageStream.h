// The stream of a log that is opened for one message and closed after it.
#ifndef QEL_TRACE_MESSAGESTREAM_H
#define QEL_TRACE_MESSAGESTREAM_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace qel::trace {

// The writer's mutex guards everything here: there is one message at a time.
class MessageStream {
  public:
    MessageStream() noexcept = default;
    MessageStream(const MessageStream&) = delete;
    MessageStream& operator=(const MessageStream&) = delete;

    // Opens `path` for a message of `room` bytes at most, banners not counted, with a buffer that
    // holds all of it, so that it reaches the log in one write, with no other process's lines in
    // the middle. Without memory for a long one it goes in pieces. `size` becomes the log's size,
    // -1 when it is unknown. Null when the log cannot be opened.
    [[nodiscard]] std::FILE* open(const char* path, std::size_t room, std::int64_t* size) noexcept;

    // Closes the stream. False when not everything that was written to it reached the file.
    [[nodiscard]] bool close(std::FILE* stream) noexcept;

    // In a child of a fork: no stream is open. What a thread of the parent had open is left.
    void forget() noexcept { longBuffer_ = nullptr; }

  private:
    static constexpr std::size_t kBuffer = 32768;

    char buffer_[kBuffer];
    char* longBuffer_ = nullptr;  // in the place of buffer_ while a long message is written
};

}  // namespace qel::trace

#endif
