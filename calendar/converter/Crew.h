// Threads that do jobs for the one that gives them and takes them back in the same order. While it
// waits it does jobs itself: without a further thread it does all of them. It belongs to one
// thread, and lives no longer than one of its calls.
#ifndef QEL_CALENDAR_CONVERTER_CREW_H
#define QEL_CALENDAR_CONVERTER_CREW_H

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace qel::calendar {

class Crew {
  public:
    // Does job `number`, as member 0 (the owner's thread) to size() - 1. It must not throw.
    using Job = std::function<void(std::size_t number, std::size_t member)>;

    // `size` threads with the owner's, or fewer where the system gives no more.
    Crew(std::size_t size, Job job);
    // Jobs that have begun are finished, others are not done.
    ~Crew();
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    // The next job, from number 0.
    void give();
    // Waits for the one that was given first. REQUIRES: open() != 0.
    void take();
    // Returns when all that were given are done.
    void wait();
    // Jobs that were given and not taken.
    [[nodiscard]] std::size_t open() const { return given_ - taken_; }

  private:
    void work(std::size_t member);
    void doNext(std::unique_lock<std::mutex>& lock, std::size_t member);
    // Until job `number` is done.
    void waitFor(std::unique_lock<std::mutex>& lock, std::size_t number);

    Job job_;
    std::mutex lock_;
    std::condition_variable mayBegin_;
    std::condition_variable isDone_;
    std::size_t given_ = 0;  // numbers below are given, begun, taken
    std::size_t begun_ = 0;
    std::size_t taken_ = 0;
    std::deque<bool> done_;  // of those that are open
    bool stopped_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace qel::calendar

#endif
