// The log that is opened for one message and closed after it.
#ifndef QEL_TRACE_MESSAGESTREAM_H
#define QEL_TRACE_MESSAGESTREAM_H

#include <cstddef>
#include <cstdint>

namespace qel::trace {

// A buffer of its own instead of the C library's, which would write out in a child of a fork what
// another thread of the parent has put into it. The writer's mutex guards everything here: there is
// one message at a time.
class MessageStream {
  public:
    MessageStream() noexcept = default;
    MessageStream(const MessageStream&) = delete;
    MessageStream& operator=(const MessageStream&) = delete;

    // Opens `path` for a message of `room` bytes at most, banners not counted, with a buffer that
    // holds all of it, so that it reaches the log in one write, with no other process's lines in
    // the middle. Without memory for a long one it goes in pieces. `size` becomes the log's size,
    // -1 when it is unknown. False when the log cannot be opened.
    [[nodiscard]] bool open(const char* path, std::size_t room, std::int64_t* size) noexcept;

    // False when the log takes no more; the bytes are lost then, and close() is false too.
    bool put(const char* data, std::size_t length) noexcept;

    // Writes out what is buffered and closes the log. False when not everything that was put
    // reached the file.
    [[nodiscard]] bool close() noexcept;

    // In a child of a fork: no log is open. What a thread of the parent had open is left.
    void forget() noexcept;

  private:
    static constexpr int kNoFile = -1;
    static constexpr std::size_t kBuffer = 32768;

    void writeOut() noexcept;

    int file_ = kNoFile;
    char buffer_[kBuffer];
    char* longBuffer_ = nullptr;  // in the place of buffer_ while a long message is written
    char* text_ = buffer_;        // the one in use
    std::size_t room_ = kBuffer;  // bytes in it
    std::size_t used_ = 0;
    bool failed_ = false;
};

}  // namespace qel::trace

#endif
