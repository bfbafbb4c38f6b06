#include "QelUtility/CSLock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

// Another thread that takes the lock; the destructor waits for it.
class Contender {
  public:
    explicit Contender(CSLockable& target)
        : thread_([this, &target] {
              const CSLock guard(&target);
              entered_ = true;
          }) {}
    ~Contender() { thread_.join(); }
    bool entered() const { return entered_; }

  private:
    std::atomic<bool> entered_{false};
    std::thread thread_;
};

TEST(CSLock, GuardsOfOneThreadNestAndReleaseOnlyWhatTheyHold) {
    CSLockable target;
    CSLock outer(&target);
    {
        CSLock inner(&target);
        inner.lock();
    }
    const Contender contender(target);
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_FALSE(contender.entered());
    outer.unlock();
    outer.unlock();
    CSLock nothing(nullptr);
    nothing.unlock();
    nothing.lock();
}

TEST(CSLock, CopiesAndAssignmentsLeaveTheLocksAlone) {
    CSLockable held;
    CSLockable other;
    CSLock guard(&held);
    CSLockable copy(held);
    other = held;
    { const Contender ofTheAssigned(other); }
    { const Contender ofTheCopy(copy); }
    guard.unlock();
    { const Contender ofTheSource(held); }
}

}  // namespace
