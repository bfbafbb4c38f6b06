#include "host/IRMonitorService.h"

#include <array>

namespace qel::host {

namespace {

using platform::ServiceControl;
using platform::ServiceHandle;
using platform::ServiceStatus;

constexpr char kServiceName[] = "IrMon";
constexpr int kMostPolls = 10;
constexpr std::uint32_t kPollMilliseconds = 1000;
constexpr std::uint32_t kShortestHint = 2000;  // milliseconds

enum class Action { kStop, kStart, kContinue, kNothing, kNone };

// The state that a wait hands to an action and that needs no action any more. That continuing
// counts as done when paused is this system's way: a pause that ends where it was expected to end
// is left.
constexpr std::array<std::uint32_t, 4> kFinalStates{platform::kStopped, platform::kRunning,
                                                    platform::kPaused, platform::kRunning};

// What is done about one state: an action at once, or a wait, or an action whose result is passed
// over for that of the wait behind it.
struct Transition {
    Action first = Action::kNone;
    std::uint32_t pending = 0;  // 0: no wait
    std::uint32_t expected = 0;
    Action then = Action::kNone;
};

constexpr Transition atOnce(Action action) {
    return {action, 0, 0, Action::kNone};
}

constexpr Transition after(std::uint32_t pending, std::uint32_t expected, Action then) {
    return {Action::kNone, pending, expected, then};
}

// Indexed by the state, [1, 7]: stopped, start pending, stop pending, running, continue pending,
// pause pending, paused.
using Transitions = std::array<Transition, 8>;

constexpr Transitions kStopping{{
    {},
    atOnce(Action::kNothing),
    after(platform::kStartPending, platform::kRunning, Action::kStop),
    after(platform::kStopPending, platform::kStopped, Action::kStop),
    atOnce(Action::kStop),
    after(platform::kContinuePending, platform::kRunning, Action::kStop),
    after(platform::kPausePending, platform::kPaused, Action::kStop),
    {Action::kStop, platform::kPausePending, platform::kPaused, Action::kStop},
}};

constexpr Transitions kStarting{{
    {},
    atOnce(Action::kStart),
    after(platform::kStartPending, platform::kRunning, Action::kNothing),
    after(platform::kStopPending, platform::kStopped, Action::kStart),
    atOnce(Action::kNothing),
    after(platform::kContinuePending, platform::kRunning, Action::kNothing),
    after(platform::kPausePending, platform::kPaused, Action::kContinue),
    {Action::kContinue, platform::kPausePending, platform::kPaused, Action::kContinue},
}};

class Handle {
  public:
    Handle(IRMonitorBackEnd& system, ServiceHandle handle) : system_(system), handle_(handle) {}
    ~Handle() {
        if (handle_ != 0) system_.closeHandle(handle_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    [[nodiscard]] ServiceHandle get() const { return handle_; }

  private:
    IRMonitorBackEnd& system_;
    ServiceHandle handle_;
};

// One way through the states. The way to a stop asks by interrogation, because its handle has no
// right to query; the way to a start asks by query.
class Operation {
  public:
    enum class Asks { kByInterrogation, kByQuery };

    Operation(IRMonitorBackEnd& system, ServiceHandle service, Asks asks)
        : system_(system), service_(service), asks_(asks) {}

    bool run(const Transitions& transitions, Action whenNotActive) {
        ServiceStatus status;
        const std::uint32_t error = interrogate(status);
        if (error == platform::kErrorServiceNotActive) return act(whenNotActive);
        if (!tellsState(error) || status.state >= transitions.size()) return false;
        const Transition& step = transitions.at(status.state);
        const bool done = act(step.first);
        return step.pending == 0 ? done : wait(step.pending, step.expected, step.then);
    }

  private:
    std::uint32_t interrogate(ServiceStatus& status) {
        return system_.control(service_, ServiceControl::kInterrogate, status);
    }

    // A service that starts or stops refuses to be interrogated, and its state comes with that.
    static bool tellsState(std::uint32_t error) {
        return error == 0 || error == platform::kErrorCannotAcceptControl;
    }

    bool ask(ServiceStatus& status) {
        status = {};
        return asks_ == Asks::kByQuery ? system_.query(service_, status) == 0
                                       : tellsState(interrogate(status));
    }

    // The first question is free; then a poll a second while the state is pending.
    bool wait(std::uint32_t pending, std::uint32_t expected, Action then) {
        ServiceStatus status;
        bool answered = ask(status);
        int polls = 0;
        while (answered && status.state == pending && polls < kMostPolls) {
            system_.pause(kPollMilliseconds);
            ++polls;
            answered = ask(status);
        }
        if (polls == kMostPolls || status.state != expected) return false;
        return expected == kFinalStates.at(static_cast<std::size_t>(then)) || act(then);
    }

    bool act(Action action) {
        switch (action) {
            case Action::kStop:
                return stop();
            case Action::kStart:
                return start();
            case Action::kContinue:
                return continueService();
            case Action::kNothing:
                return true;
            case Action::kNone:
                break;
        }
        return false;
    }

    bool stop() {
        ServiceStatus status;
        if (system_.control(service_, ServiceControl::kStop, status) != 0) return false;
        int polls = 0;
        while (status.state == platform::kStopPending && polls < kMostPolls) {
            system_.pause(kPollMilliseconds);
            ++polls;
            const std::uint32_t error = interrogate(status);
            if (error == platform::kErrorCannotAcceptControl)
                system_.pause(status.waitHint > kShortestHint ? status.waitHint : kShortestHint);
            else if (error != 0)
                break;
        }
        return polls < kMostPolls && status.state == platform::kStopped;
    }

    // A start that the manager refuses is no failure yet: the service may be running by now.
    bool start() {
        system_.start(service_);
        ServiceStatus status;
        system_.query(service_, status);
        return becomesRunning(status, platform::kStartPending);
    }

    bool continueService() {
        ServiceStatus status;
        return system_.control(service_, ServiceControl::kContinue, status) == 0 &&
               becomesRunning(status, platform::kContinuePending);
    }

    bool becomesRunning(ServiceStatus status, std::uint32_t pending) {
        bool answered = true;
        for (int polls = 0; answered && status.state == pending && polls < kMostPolls; ++polls) {
            system_.pause(kPollMilliseconds);
            answered = system_.query(service_, status) == 0;
        }
        return status.state == platform::kRunning;
    }

    IRMonitorBackEnd& system_;
    ServiceHandle service_;
    Asks asks_;
};

}  // namespace

bool stopMonitorService(IRMonitorBackEnd& system) {
    const Handle manager(system, system.openManager(platform::kManagerConnect));
    if (manager.get() == 0) return false;
    const Handle service(
        system, system.openService(manager.get(), kServiceName,
                                   platform::kServiceStop | platform::kServiceInterrogate));
    if (service.get() == 0) return false;
    return Operation(system, service.get(), Operation::Asks::kByInterrogation)
        .run(kStopping, Action::kNothing);
}

bool startMonitorService(IRMonitorBackEnd& system) {
    const Handle manager(system, system.openManager(platform::kManagerConnect));
    if (manager.get() == 0) return false;
    const Handle service(
        system,
        system.openService(manager.get(), kServiceName,
                           platform::kServiceStart | platform::kServicePauseContinue |
                               platform::kServiceInterrogate | platform::kServiceQueryStatus));
    if (service.get() == 0) return false;
    return Operation(system, service.get(), Operation::Asks::kByQuery)
        .run(kStarting, Action::kStart);
}

bool monitorServiceExists(IRMonitorBackEnd& system) {
    const Handle manager(system, system.openManager(platform::kManagerRead));
    if (manager.get() == 0) return false;
    const Handle service(
        system, system.openService(manager.get(), kServiceName, platform::kServiceInterrogate));
    return service.get() != 0;
}

}  // namespace qel::host
