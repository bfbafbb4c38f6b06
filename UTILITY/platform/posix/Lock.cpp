#include "platform/Lock.h"

#include <pthread.h>

#include <new>

namespace qel::platform {
namespace {

static_assert(sizeof(pthread_mutex_t) <= kLockSize && alignof(pthread_mutex_t) <= kLockAlignment);

pthread_mutex_t* mutexIn(void* storage) noexcept {
    return static_cast<pthread_mutex_t*>(storage);
}

}  // namespace

void lockInit(void* storage) noexcept {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(new (storage) pthread_mutex_t, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

void lockEnter(void* storage) noexcept {
    pthread_mutex_lock(mutexIn(storage));
}

void lockLeave(void* storage) noexcept {
    pthread_mutex_unlock(mutexIn(storage));
}

void lockDestroy(void* storage) noexcept {
    pthread_mutex_destroy(mutexIn(storage));
}

}  // namespace qel::platform
