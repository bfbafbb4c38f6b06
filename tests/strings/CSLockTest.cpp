#include "QelUtility/CSLock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

// Whether another thread gets the lock while the caller does what it does in `meanwhile`.
class Contender {
  public:
    explicit Contender(CSLockable& target)
        : thread_([this, &target] {
              const CSLock guard(&target);
              entered_ = true;
          }) {}
    ~Contender() {
        if (thread_.joinable()) thread_.join();
    }
    bool entered() const { return entered_; }
    void join() { thread_.join(); }

  private:
    std::atomic<bool> entered_{false};
    std::thread thread_;
};

TEST(CSLock, GuardsOfOneThreadNestAndAnotherThreadWaits) {
    CSLockable target;
    CSLock outer(&target);
    {
        CSLock inner(&target);
        inner.lock();
    }
    Contender contender(target);
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_FALSE(contender.entered());
    outer.unlock();
    contender.join();
    EXPECT_TRUE(contender.entered());
}

TEST(CSLock, AGuardReleasesOnlyWhatItHolds) {
    CSLockable target;
    {
        CSLock guard(&target);
        guard.unlock();
        guard.unlock();
    }
    {
        CSLock guard(&target);
        guard.lock();
        guard.lock();
    }
    Contender(target).join();
    CSLock nothing(nullptr);
    nothing.unlock();
    nothing.lock();
}

TEST(CSLock, CopiesAndAssignmentsLeaveTheLocksAlone) {
    CSLockable held;
    CSLockable other;
    CSLock guard(&held);
    const CSLockable copy(held);
    other = held;
    Contender(other).join();
    CSLockable fresh(copy);
    Contender(fresh).join();
    guard.unlock();
    Contender(held).join();
}

}  // namespace
