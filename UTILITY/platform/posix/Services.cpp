// There is no service manager here, and no process list of that kind.
#include "platform/Services.h"

namespace qel::platform {

ServiceHandle openServiceManager(std::uint32_t /*access*/) noexcept {
    return 0;
}

ServiceHandle openService(ServiceHandle /*manager*/, const char* /*name*/,
                          std::uint32_t /*access*/) noexcept {
    return 0;
}

void closeServiceHandle(ServiceHandle /*handle*/) noexcept {}

std::uint32_t queryService(ServiceHandle /*service*/, ServiceStatus& /*status*/) noexcept {
    return kErrorNoServiceManager;
}

std::uint32_t controlService(ServiceHandle /*service*/, ServiceControl /*control*/,
                             ServiceStatus& /*status*/) noexcept {
    return kErrorNoServiceManager;
}

std::uint32_t startService(ServiceHandle /*service*/) noexcept {
    return kErrorNoServiceManager;
}

bool is9xFamily() noexcept {
    return false;
}

ProcessSearch findProcess(const char* /*namePart*/, std::uint32_t& /*id*/) noexcept {
    return ProcessSearch::kFailed;
}

bool endProcess(std::uint32_t /*id*/, std::uint32_t /*waitMilliseconds*/) noexcept {
    return false;
}

bool startSystemProgram(const char* /*name*/) noexcept {
    return false;
}

}  // namespace qel::platform
