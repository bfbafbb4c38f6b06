// The trace as a whole: the one object that owns its state.
#ifndef QEL_TRACE_TRACESYSTEM_H
#define QEL_TRACE_TRACESYSTEM_H

#include "platform/Process.h"
#include "trace/ErrorId.h"
#include "trace/LogPaths.h"
#include "trace/MessageLog.h"
#include "trace/Options.h"

namespace qel::trace {

// Nothing is loaded or opened before the first call of a function that needs it. Each member may be
// used from any thread and guards itself.
class TraceSystem {
  public:
    explicit TraceSystem(TickSource ticks = &platform::tickCount) noexcept;
    TraceSystem(const TraceSystem&) = delete;
    TraceSystem& operator=(const TraceSystem&) = delete;

    [[nodiscard]] Options& options() noexcept { return options_; }
    [[nodiscard]] const Settings& settings() const noexcept { return options_.settings(); }
    [[nodiscard]] LogPaths& paths() noexcept { return paths_; }
    [[nodiscard]] MessageLog& log() noexcept { return log_; }
    [[nodiscard]] ErrorId& errorId() noexcept { return errorId_; }

    // Around a fork, so that the child can trace whatever the other threads were doing.
    void beforeFork();
    void afterForkInParent();
    void afterForkInChild();

  private:
    void releaseAll();

    LogPaths paths_;
    Options options_;
    MessageLog log_;
    ErrorId errorId_;
};

// The one that the functions of BxTrace.h work on: the process's own, unless another is installed.
// The process's own is never destroyed, so that destructors may still trace while the process ends.
[[nodiscard]] TraceSystem& traceSystem() noexcept;

// Installs `system` for all threads, or the process's own again when it is null; returns the one
// that was installed before. The caller keeps it alive while it is installed.
// REQUIRES: no other thread is in a function of the trace.
TraceSystem* installTraceSystem(TraceSystem* system) noexcept;

}  // namespace qel::trace

#endif
