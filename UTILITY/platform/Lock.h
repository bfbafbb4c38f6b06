// A recursive lock of one process, in storage that its owner provides.
#ifndef QEL_PLATFORM_LOCK_H
#define QEL_PLATFORM_LOCK_H

#include <cstddef>

namespace qel::platform {

constexpr std::size_t kLockSize = 6 * sizeof(void*);
constexpr std::size_t kLockAlignment = alignof(void*);

// `storage` is kLockSize bytes, aligned to kLockAlignment, that stay where they are until
// lockDestroy. REQUIRES of the others: initialised; of lockLeave: held by the calling thread; of
// lockDestroy: held by nobody.
void lockInit(void* storage) noexcept;
void lockEnter(void* storage) noexcept;
void lockLeave(void* storage) noexcept;
void lockDestroy(void* storage) noexcept;

}  // namespace qel::platform

#endif
