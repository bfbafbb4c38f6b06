#include "QelUtility/CSLock.h"

#include "platform/Lock.h"

CSLockable::CSLockable() : m_section{} {
    static_assert(sizeof m_section == qel::platform::kLockSize &&
                  alignof(decltype(m_section)) >= qel::platform::kLockAlignment);
    qel::platform::lockInit(m_section);
}

CSLockable::CSLockable(const CSLockable& /*o*/) : CSLockable() {}

CSLockable& CSLockable::operator=(const CSLockable& /*o*/) {
    return *this;
}

CSLockable::~CSLockable() {
    qel::platform::lockDestroy(m_section);
}

CSLock::CSLock(CSLockable* t) : m_locked(false), m_target(t) {
    lock();
}

CSLock::~CSLock() {
    unlock();
}

void CSLock::lock() {
    if (!m_locked && m_target != nullptr) qel::platform::lockEnter(m_target->m_section);
    m_locked = true;
}

void CSLock::unlock() {
    if (m_locked && m_target != nullptr) qel::platform::lockLeave(m_target->m_section);
    m_locked = false;
}
