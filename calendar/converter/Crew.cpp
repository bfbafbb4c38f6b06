#include "calendar/converter/Crew.h"

#include <exception>
#include <utility>

namespace qel::calendar {

Crew::Crew(std::size_t size, Job job) : job_(std::move(job)) {
    threads_.reserve(size);
    try {
        while (threads_.size() + 1 < size)
            threads_.emplace_back([this, member = threads_.size() + 1] { work(member); });
    } catch (const std::exception&) {  // those that there are do all of it
    }
}

Crew::~Crew() {
    {
        const std::lock_guard guard(lock_);
        stopped_ = true;
    }
    mayBegin_.notify_all();
    for (std::thread& each : threads_) each.join();
}

void Crew::give() {
    {
        const std::lock_guard guard(lock_);
        done_.push_back(false);
        ++given_;
    }
    mayBegin_.notify_one();
}

void Crew::work(std::size_t member) {
    std::unique_lock lock(lock_);
    for (;;) {
        mayBegin_.wait(lock, [this] { return stopped_ || begun_ < given_; });
        if (stopped_) return;
        doNext(lock, member);
        isDone_.notify_one();
    }
}

void Crew::doNext(std::unique_lock<std::mutex>& lock, std::size_t member) {
    const std::size_t number = begun_++;
    lock.unlock();
    job_(number, member);
    lock.lock();
    done_[number - taken_] = true;
}

void Crew::waitFor(std::unique_lock<std::mutex>& lock, std::size_t number) {
    while (!done_[number - taken_])
        if (begun_ != given_)
            doNext(lock, 0);
        else
            isDone_.wait(lock);
}

void Crew::take() {
    std::unique_lock lock(lock_);
    waitFor(lock, taken_);
    done_.pop_front();
    ++taken_;
}

void Crew::wait() {
    std::unique_lock lock(lock_);
    for (std::size_t number = taken_; number < given_; ++number) waitFor(lock, number);
}

}  // namespace qel::calendar
