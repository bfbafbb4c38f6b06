// The error ID: a text that is appended to every error line.
#ifndef QEL_TRACE_ERRORID_H
#define QEL_TRACE_ERRORID_H

#include <cstddef>
#include <mutex>

namespace qel::trace {

// Callable from any thread; a mutex guards the text.
class ErrorId {
  public:
    static constexpr std::size_t kRoom = 65;  // 64 characters and the terminator

    // Cuts the text at 64 characters; null clears it.
    void set(const char* text);
    // Copies the text, cut to `size` - 1 characters; false when there is none.
    bool get(char* buffer, std::size_t size);

    // Around a fork.
    void hold() { mutex_.lock(); }
    void release() { mutex_.unlock(); }

  private:
    std::mutex mutex_;
    char text_[kRoom] = "";
};

}  // namespace qel::trace

#endif
