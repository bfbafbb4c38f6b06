// The back end that is the system itself.
#include "host/IRMonitorBackEnd.h"

#include <atomic>

#include "platform/Process.h"

namespace qel::host {

namespace {

class SystemBackEnd final : public IRMonitorBackEnd {
  public:
    bool is9xFamily() override { return platform::is9xFamily(); }
    void pause(std::uint32_t milliseconds) override { platform::sleepMilliseconds(milliseconds); }

    platform::ServiceHandle openManager(std::uint32_t access) override {
        return platform::openServiceManager(access);
    }
    platform::ServiceHandle openService(platform::ServiceHandle manager, const char* name,
                                        std::uint32_t access) override {
        return platform::openService(manager, name, access);
    }
    void closeHandle(platform::ServiceHandle handle) override {
        platform::closeServiceHandle(handle);
    }
    std::uint32_t query(platform::ServiceHandle service, platform::ServiceStatus& status) override {
        return platform::queryService(service, status);
    }
    std::uint32_t control(platform::ServiceHandle service, platform::ServiceControl control,
                          platform::ServiceStatus& status) override {
        return platform::controlService(service, control, status);
    }
    std::uint32_t start(platform::ServiceHandle service) override {
        return platform::startService(service);
    }

    platform::ProcessSearch findProcess(const char* namePart, std::uint32_t& id) override {
        return platform::findProcess(namePart, id);
    }
    bool endProcess(std::uint32_t id, std::uint32_t waitMilliseconds) override {
        return platform::endProcess(id, waitMilliseconds);
    }
    bool startSystemProgram(const char* name) override {
        return platform::startSystemProgram(name);
    }
};

std::atomic<IRMonitorBackEnd*> replacement{nullptr};

}  // namespace

IRMonitorBackEnd& irMonitorBackEnd() {
    static SystemBackEnd system;
    IRMonitorBackEnd* other = replacement.load();
    return other != nullptr ? *other : system;
}

void setIRMonitorBackEnd(IRMonitorBackEnd* backEnd) {
    replacement.store(backEnd);
}

}  // namespace qel::host
