// An object for static storage that is made without memory of its own and is never destroyed, so
// that other objects' destructors can still use it while the process ends:
//
//   std::mutex& loadMutex() {
//       static Immortal<std::mutex> mutex;
//       return mutex.get();
//   }
#ifndef QEL_PLATFORM_IMMORTAL_H
#define QEL_PLATFORM_IMMORTAL_H

#include <new>

namespace qel::platform {

template <typename T>
class Immortal {
  public:
    Immortal() noexcept(noexcept(T())) : object_(new (storage_) T) {}
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;
    [[nodiscard]] T& get() noexcept { return *object_; }

  private:
    alignas(T) unsigned char storage_[sizeof(T)];
    T* object_;
};

}  // namespace qel::platform

#endif
