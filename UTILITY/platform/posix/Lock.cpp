#include "platform/Lock.h"

#include <pthread.h>

#include <new>
#include <type_traits>

#include "platform/posix/ForkHooks.h"

namespace qel::platform {
namespace {

// A recursive mutex of the system's, in the storage itself.
class OwnMutex {
  public:
    OwnMutex() noexcept {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        pthread_mutex_init(&mutex_, &attributes);
        pthread_mutexattr_destroy(&attributes);
    }
    ~OwnMutex() { pthread_mutex_destroy(&mutex_); }
    OwnMutex(const OwnMutex&) = delete;
    OwnMutex& operator=(const OwnMutex&) = delete;

    void enter() noexcept { pthread_mutex_lock(&mutex_); }
    void leave() noexcept { pthread_mutex_unlock(&mutex_); }

  private:
    pthread_mutex_t mutex_;
};

pthread_mutex_t guard = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t released = PTHREAD_COND_INITIALIZER;

// For systems whose mutexes are larger than the storage: who owns a lock is written in it, under a
// mutex of all locks that is held for a moment alone.
class SharedMutex {
  public:
    void enter() noexcept {
        const pthread_t self = pthread_self();
        pthread_mutex_lock(&guard);
        while (depth_ > 0 && pthread_equal(owner_, self) == 0) pthread_cond_wait(&released, &guard);
        owner_ = self;
        ++depth_;
        pthread_mutex_unlock(&guard);
    }
    void leave() noexcept {
        pthread_mutex_lock(&guard);
        if (--depth_ == 0) pthread_cond_broadcast(&released);
        pthread_mutex_unlock(&guard);
    }

  private:
    pthread_t owner_{};
    unsigned depth_ = 0;
};

template <typename T>
constexpr bool kFits = sizeof(T) <= kLockSize;

#ifdef QEL_PORTABLE_POSIX
using Mutex = SharedMutex;
#else
using Mutex = std::conditional_t<kFits<OwnMutex>, OwnMutex, SharedMutex>;
#endif
static_assert(kFits<Mutex> && alignof(Mutex) <= kLockAlignment);

Mutex& mutexIn(void* storage) noexcept {
    return *static_cast<Mutex*>(storage);
}

}  // namespace

void holdLocks() noexcept {
    pthread_mutex_lock(&guard);
}

void releaseLocks() noexcept {
    pthread_mutex_unlock(&guard);
}

void renewLocks() noexcept {
    // Free of the threads that the child lacks.
    released = PTHREAD_COND_INITIALIZER;
    releaseLocks();
}

void lockInit(void* storage) noexcept {
    new (storage) Mutex;
}

void lockEnter(void* storage) noexcept {
    mutexIn(storage).enter();
}

void lockLeave(void* storage) noexcept {
    mutexIn(storage).leave();
}

void lockDestroy(void* storage) noexcept {
    mutexIn(storage).~Mutex();
}

}  // namespace qel::platform
