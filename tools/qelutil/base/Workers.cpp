#include "base/Workers.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <new>
#include <system_error>
#include <utility>

namespace qel::cli {

namespace {

// More threads wait for the disk and for each other.
constexpr unsigned kMostThreads = 16;
// Jobs for each thread, and of all, that may wait to be taken.
constexpr std::size_t kAhead = 4;
constexpr std::size_t kMostAhead = 128;
constexpr auto kNowAndThen = std::chrono::milliseconds(100);

}  // namespace

unsigned usualThreads() {
    return std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
}

Workers::Workers(unsigned threads, std::size_t count, Job job)
    : job_(std::move(job)), ahead_(std::min(threads * kAhead, kMostAhead)), done_(count) {
    try {
        threads_.reserve(threads);
        while (threads_.size() < std::min<std::size_t>(threads, count))
            threads_.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
        // Those that there are do all of it.
    } catch (const std::bad_alloc&) {
        // So they do; with them still running, an exception here would end the program.
    }
}

Workers::~Workers() {
    // Of the failure that may be on its way through here.
    const int failure = errno;
    {
        const std::lock_guard lock(lock_);
        stopped_ = true;
    }
    mayBegin_.notify_all();
    for (std::thread& each : threads_) each.join();
    errno = failure;
}

void Workers::work() {
    std::unique_lock lock(lock_);
    for (;;) {
        mayBegin_.wait(
            lock, [this] { return stopped_ || next_ == done_.size() || next_ < taken_ + ahead_; });
        if (stopped_ || next_ == done_.size()) return;
        const std::size_t number = next_++;
        lock.unlock();
        job_(number);
        lock.lock();
        done_[number] = true;
        isDone_.notify_one();
    }
}

void Workers::take(const std::function<void()>& meanwhile) {
    if (threads_.empty()) {
        job_(taken_++);
        return;
    }
    std::unique_lock lock(lock_);
    while (!isDone_.wait_for(lock, kNowAndThen, [this] { return done_[taken_]; })) {
        lock.unlock();
        meanwhile();
        lock.lock();
    }
    ++taken_;
    mayBegin_.notify_one();
}

}  // namespace qel::cli
