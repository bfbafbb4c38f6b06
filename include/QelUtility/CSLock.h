/// @file
/// CSLockable gives an object a lock of its own; CSLock holds it for a scope. The lock is
/// recursive: the thread that holds it may take it again, and gives it back as often. There is no
/// time-out. A guard belongs to one thread.
#ifndef QELUTILITY_CSLOCK_H
#define QELUTILITY_CSLOCK_H

#include "QelUtility/QelTypes.h"

/// An object with a recursive lock of its own, for CSLock to hold.
class QELUTILITY_API CSLockable {
  public:
    /// The lock is free.
    CSLockable();
    /// The copy has a lock of its own, which is free.
    CSLockable(const CSLockable& o);
    /// Leaves both locks as they are.
    CSLockable& operator=(const CSLockable& o);
    /// REQUIRES: nobody holds the lock.
    virtual ~CSLockable();

  private:
    friend class CSLock;

    /// Room for the platform's own lock: a critical section, a mutex.
    void* m_section[6];
};

/// A guard that holds the lock of a CSLockable from its construction to its end.
class QELUTILITY_API CSLock {
  public:
    /// Takes the lock of `t`, waiting as long as it takes. A null `t` is no lock at all.
    explicit CSLock(CSLockable* t);
    /// Gives back what it holds.
    ~CSLock();
    CSLock(const CSLock&) = delete;
    CSLock& operator=(const CSLock&) = delete;

    /// Takes the lock again after unlock; nothing on a guard that holds its lock already.
    void lock();
    /// Gives the lock back early; nothing on a guard that does not hold its lock.
    void unlock();

  private:
    bool m_locked;
    CSLockable* m_target;
};

#endif
