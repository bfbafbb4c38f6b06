#include "trace/TraceSystem.h"

#include <atomic>

#include "platform/Immortal.h"

namespace qel::trace {

namespace {

constinit std::atomic<TraceSystem*> installed{nullptr};

TraceSystem& ownSystem() noexcept {
    static platform::Immortal<TraceSystem> system;
    return system.get();
}

}  // namespace

TraceSystem& traceSystem() noexcept {
    TraceSystem* system = installed.load(std::memory_order_acquire);
    return system != nullptr ? *system : ownSystem();
}

TraceSystem* installTraceSystem(TraceSystem* system) noexcept {
    return installed.exchange(system, std::memory_order_acq_rel);
}

}  // namespace qel::trace
