// The end of a thread by a key of the thread library, whose first keys need no memory.
#include "platform/ThreadEnd.h"

#include <pthread.h>

#include <cstdint>

namespace qel::platform {

static_assert(sizeof(pthread_key_t) <= sizeof(std::uintptr_t));

ThreadEnd::ThreadEnd(Call call) noexcept {
    pthread_key_t key = 0;
    usable_ = pthread_key_create(&key, call) == 0;
    key_ = static_cast<std::uintptr_t>(key);
}

ThreadEnd::~ThreadEnd() {
    if (usable_) pthread_key_delete(static_cast<pthread_key_t>(key_));
}

void ThreadEnd::watch(void* object) const noexcept {
    if (usable_) (void)!pthread_setspecific(static_cast<pthread_key_t>(key_), object);
}

}  // namespace qel::platform
