// Threads that do numbered jobs ahead of the one thread that takes what they made, in order.
#ifndef QELUTIL_BASE_WORKERS_H
#define QELUTIL_BASE_WORKERS_H

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace qel::cli {

// As many threads as pay on this computer.
[[nodiscard]] unsigned usualThreads();

// Belongs to one thread, which joins the others when it ends.
class Workers {
  public:
    // A job must not throw.
    using Job = std::function<void(std::size_t number)>;

    // Jobs 0 to `count` - 1. Each begins when one of `threads` threads is free and it is not too
    // far ahead of the job taken last, so that what waits to be taken stays little. Where the
    // system gives no thread, take() does the jobs.
    Workers(unsigned threads, std::size_t count, Job job);
    // Jobs that have begun are finished, others are not done.
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    // Waits for the next job in order, and calls `meanwhile` now and then.
    void take(const std::function<void()>& meanwhile);

  private:
    void work();

    Job job_;
    std::size_t ahead_;
    std::mutex lock_;
    std::condition_variable mayBegin_;
    std::condition_variable isDone_;
    std::size_t next_ = 0;    // to begin
    std::size_t taken_ = 0;   // jobs before it
    std::vector<bool> done_;  // of all jobs
    bool stopped_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace qel::cli

#endif
