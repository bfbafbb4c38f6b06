// Every block of memory of this program goes through a gate that counts the blocks in use and, for
// a thread that has armed it, refuses one allocation or all from one on. It stands in for the C
// library's allocator, and so under the library's strings, under operator new and under what the
// system's own libraries allocate. glibc only, and not under a sanitizer, which has a gate of its
// own.
#ifndef QEL_TESTS_FAULTS_ALLOCATIONGATE_H
#define QEL_TESTS_FAULTS_ALLOCATIONGATE_H

namespace qel::test {

// kOne: the n-th allocation alone, as when another thread has the memory for a moment.
// kRest: the n-th and all after it, as when there is none left.
enum class Refusal { kOne, kRest };

// From here to disarm, the calling thread's n-th allocation (from 1) is refused.
void armAllocations(int n, Refusal refusal) noexcept;
// Returns how many were refused.
int disarmAllocations() noexcept;

// The blocks that all threads have in use.
[[nodiscard]] long liveBlocks() noexcept;

}  // namespace qel::test

#endif
