// The end of a thread by the compiler's run-time library, which remembers what it can.
#include "platform/ThreadEnd.h"

#include <array>
#include <atomic>
#include <cstddef>

namespace qel::platform {

namespace {

constexpr std::size_t kMostKeys = 4;

std::atomic<std::size_t> nextKey{0};
std::array<std::atomic<ThreadEnd::Call>, kMostKeys> calls{};

struct Watched {
    std::array<void*, kMostKeys> objects{};
    ~Watched() {
        for (std::size_t key = 0; key < kMostKeys; ++key) {
            const ThreadEnd::Call call = calls[key];
            if (call != nullptr && objects[key] != nullptr) call(objects[key]);
        }
    }
};

}  // namespace

ThreadEnd::ThreadEnd(Call call) noexcept {
    key_ = nextKey++;
    usable_ = key_ < kMostKeys;
    if (usable_) calls[key_] = call;
}

ThreadEnd::~ThreadEnd() {
    if (usable_) calls[key_] = nullptr;
}

void ThreadEnd::watch(void* object) const noexcept {
    thread_local Watched watched;
    if (usable_) watched.objects[key_] = object;
}

}  // namespace qel::platform
