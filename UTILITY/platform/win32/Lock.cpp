#include "platform/Lock.h"

#include <windows.h>

#include <new>

namespace qel::platform {
namespace {

static_assert(sizeof(CRITICAL_SECTION) <= kLockSize && alignof(CRITICAL_SECTION) <= kLockAlignment);

CRITICAL_SECTION* sectionIn(void* storage) noexcept {
    return static_cast<CRITICAL_SECTION*>(storage);
}

}  // namespace

void lockInit(void* storage) noexcept {
    InitializeCriticalSection(new (storage) CRITICAL_SECTION);
}

void lockEnter(void* storage) noexcept {
    EnterCriticalSection(sectionIn(storage));
}

void lockLeave(void* storage) noexcept {
    LeaveCriticalSection(sectionIn(storage));
}

void lockDestroy(void* storage) noexcept {
    DeleteCriticalSection(sectionIn(storage));
}

}  // namespace qel::platform
