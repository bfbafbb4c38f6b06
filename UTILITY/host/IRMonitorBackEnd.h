// What the infrared monitor's manager asks of the system: services, processes and pauses, behind an
// interface, so that its states can be played through by a script. One thread.
#ifndef QEL_HOST_IRMONITORBACKEND_H
#define QEL_HOST_IRMONITORBACKEND_H

#include <cstdint>

#include "platform/Services.h"

namespace qel::host {

class IRMonitorBackEnd {
  public:
    virtual ~IRMonitorBackEnd() = default;

    virtual bool is9xFamily() = 0;
    virtual void pause(std::uint32_t milliseconds) = 0;

    // Handles are 0 on failure; closeHandle ends either kind. The other calls return 0
    // or the system's error number.
    virtual platform::ServiceHandle openManager(std::uint32_t access) = 0;
    virtual platform::ServiceHandle openService(platform::ServiceHandle manager, const char* name,
                                                std::uint32_t access) = 0;
    virtual void closeHandle(platform::ServiceHandle handle) = 0;
    virtual std::uint32_t query(platform::ServiceHandle service,
                                platform::ServiceStatus& status) = 0;
    virtual std::uint32_t control(platform::ServiceHandle service, platform::ServiceControl control,
                                  platform::ServiceStatus& status) = 0;
    virtual std::uint32_t start(platform::ServiceHandle service) = 0;

    virtual platform::ProcessSearch findProcess(const char* namePart, std::uint32_t& id) = 0;
    // Ends a process and waits for it, at most `waitMilliseconds`. False when it cannot be opened.
    virtual bool endProcess(std::uint32_t id, std::uint32_t waitMilliseconds) = 0;
    // Starts a program of the system's directory, suspended.
    virtual bool startSystemProgram(const char* name) = 0;
};

// The back end in use: the system's own unless a test has set another. A null one brings it back.
[[nodiscard]] IRMonitorBackEnd& irMonitorBackEnd();
void setIRMonitorBackEnd(IRMonitorBackEnd* backEnd);

}  // namespace qel::host

#endif
