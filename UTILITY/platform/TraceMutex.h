// The mutex that all trace output goes through. Callable from any thread.
#ifndef QEL_PLATFORM_TRACE_MUTEX_H
#define QEL_PLATFORM_TRACE_MUTEX_H

#include <cstdint>

#include "platform/LockResult.h"

namespace qel::platform {

// The recursive mutex that all trace output of this process goes through, shared on Windows by all
// copies of the library in the process. Every kLocked is paired with an unlock on the same thread.
[[nodiscard]] LockResult lockTraceMutex(std::uint32_t timeoutMilliseconds) noexcept;
void unlockTraceMutex() noexcept;

}  // namespace qel::platform

#endif
