#include "trace/TraceSystem.h"

#include <atomic>
#include <cstdlib>

#include "platform/Fork.h"
#include "platform/Immortal.h"

namespace qel::trace {

namespace {

constinit std::atomic<TraceSystem*> installed{nullptr};

TraceSystem& ownSystem() noexcept;

struct OwnSystem {
    OwnSystem() noexcept {
        // Without memory for it, what is still buffered as the process ends is lost.
        (void)!std::atexit([] { ownSystem().log().finish(); });
    }

    TraceSystem system;
};

TraceSystem& ownSystem() noexcept {
    static platform::Immortal<OwnSystem> own;
    return own.get().system;
}

}  // namespace

TraceSystem::TraceSystem(TickSource ticks) noexcept
    : options_(paths_, log_, ticks), log_(options_.settings(), paths_, ticks) {
    static const bool watched = platform::watchForks([] { traceSystem().beforeFork(); },
                                                     [] { traceSystem().afterForkInParent(); },
                                                     [] { traceSystem().afterForkInChild(); });
    static_cast<void>(watched);
}

// In the order in which a load and a message take them.
void TraceSystem::beforeFork() {
    options_.hold();
    log_.beforeFork();
    errorId_.hold();
    paths_.hold();
}

void TraceSystem::releaseAll() {
    paths_.release();
    errorId_.release();
}

void TraceSystem::afterForkInParent() {
    releaseAll();
    log_.afterForkInParent();
    options_.release();
}

void TraceSystem::afterForkInChild() {
    releaseAll();
    log_.afterForkInChild();
    options_.release();
}

TraceSystem& traceSystem() noexcept {
    TraceSystem* system = installed.load(std::memory_order_acquire);
    return system != nullptr ? *system : ownSystem();
}

TraceSystem* installTraceSystem(TraceSystem* system) noexcept {
    return installed.exchange(system, std::memory_order_acq_rel);
}

}  // namespace qel::trace
