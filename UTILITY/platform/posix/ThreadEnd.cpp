// The end of a thread by a key of the thread library, whose first keys need no memory.
#include "platform/ThreadEnd.h"

#include <pthread.h>

namespace qel::platform {

static_assert(sizeof(pthread_key_t) == sizeof(unsigned));

ThreadEnd::ThreadEnd(Call call) noexcept {
    pthread_key_t key = 0;
    usable_ = pthread_key_create(&key, call) == 0;
    key_ = key;
}

ThreadEnd::~ThreadEnd() {
    if (usable_) pthread_key_delete(key_);
}

void ThreadEnd::watch(void* object) const noexcept {
    if (usable_) (void)!pthread_setspecific(key_, object);
}

}  // namespace qel::platform
