#include "faults/AllocationGate.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

extern "C" {
// The allocator under the names by which the C library still offers it to those who replace it.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace qel::test {

namespace {

constinit std::atomic<long> live{0};

// Plain data: a thread's first look at them must not allocate.
constinit thread_local Fault armed = Fault::kMemory;
constinit thread_local int left = 0;  // allocations until the refused one; 0: not armed
constinit thread_local bool refusesRest = false;
constinit thread_local int refused = 0;

void* counted(void* block) noexcept {
    if (block != nullptr) live.fetch_add(1, std::memory_order_relaxed);
    return block;
}

}  // namespace

bool refuses(Fault fault) noexcept {
    if (left == 0 || fault != armed) return false;
    if (left > 1) {
        --left;
        return false;
    }
    if (refused > 0 && !refusesRest) return false;
    ++refused;
    errno = fault == Fault::kMemory ? ENOMEM : fault == Fault::kCalls ? EIO : EINTR;
    return true;
}

void arm(Fault fault, int n, Refusal refusal) noexcept {
    armed = fault;
    refusesRest = refusal == Refusal::kRest;
    refused = 0;
    left = n;
}

int disarm() noexcept {
    left = 0;
    return refused;
}

long liveBlocks() noexcept {
    return live.load(std::memory_order_relaxed);
}

}  // namespace qel::test

using qel::test::counted;

namespace {

bool refuses() noexcept {
    return qel::test::refuses(qel::test::Fault::kMemory);
}

}  // namespace

// Seen by the system's libraries too, whatever the compiler hides of a program.
#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t size) noexcept {
    return refuses() ? nullptr : counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return refuses() ? nullptr : counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) noexcept {
    if (refuses()) return nullptr;
    if (block == nullptr) return counted(__libc_malloc(size));
    void* grown = __libc_realloc(block, size);
    // A size of 0 frees the block.
    if (grown == nullptr && size == 0) qel::test::live.fetch_sub(1, std::memory_order_relaxed);
    return grown;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return refuses() ? nullptr : counted(__libc_memalign(alignment, size));
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return aligned_alloc(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    void* made = aligned_alloc(alignment, size);
    if (made == nullptr) return ENOMEM;
    *block = made;
    return 0;
}

void free(void* block) noexcept {
    if (block == nullptr) return;
    qel::test::live.fetch_sub(1, std::memory_order_relaxed);
    __libc_free(block);
}
}
#pragma GCC visibility pop
