// Every block of memory of this program goes through a gate that counts the blocks in use and, for
// a thread that has armed it, refuses one allocation or all from one on. It stands in for the C
// library's allocator, and so under the library's strings, under operator new and under what the
// system's own libraries allocate. glibc only, and not under a sanitizer, which has a gate of its
// own. Where SystemGate.cpp is linked in, system calls about files go through it in the same way.
#ifndef QEL_TESTS_FAULTS_ALLOCATIONGATE_H
#define QEL_TESTS_FAULTS_ALLOCATIONGATE_H

namespace qel::test {

// kOne: the n-th allocation alone, as when another thread has the memory for a moment.
// kRest: the n-th and all after it, as when there is none left.
enum class Refusal { kOne, kRest };

// kCalls: a call fails as on a broken disk. kInterrupted: a call that may wait is interrupted.
enum class Fault { kMemory, kCalls, kInterrupted };

// From here to disarm, the calling thread's n-th allocation or call (from 1) is refused.
void arm(Fault fault, int n, Refusal refusal) noexcept;
// Returns how many were refused.
int disarm() noexcept;

// For the gates: whether the thread's next allocation or call is refused; sets errno then.
[[nodiscard]] bool refuses(Fault fault) noexcept;

// The blocks that all threads have in use.
[[nodiscard]] long liveBlocks() noexcept;

}  // namespace qel::test

#endif
