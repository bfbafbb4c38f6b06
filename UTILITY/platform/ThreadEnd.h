// A call when a thread ends.
#ifndef QEL_PLATFORM_THREAD_END_H
#define QEL_PLATFORM_THREAD_END_H

#include <cstdint>

namespace qel::platform {

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
    std::uintptr_t key_ = 0;
    bool usable_ = false;
};

}  // namespace qel::platform

#endif
