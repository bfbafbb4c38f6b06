// Services and processes of the system. Where there is no service manager and no such process list,
// every call fails. Callable from any thread.
#ifndef QEL_PLATFORM_SERVICES_H
#define QEL_PLATFORM_SERVICES_H

#include <cstdint>

namespace qel::platform {

using ServiceHandle = std::uintptr_t;  // 0: none

// Access rights, states, controls and error numbers as the service manager has them.
inline constexpr std::uint32_t kManagerConnect = 0x0001;
inline constexpr std::uint32_t kManagerRead = 0x80000000;
inline constexpr std::uint32_t kServiceQueryStatus = 0x0004;
inline constexpr std::uint32_t kServiceStart = 0x0010;
inline constexpr std::uint32_t kServiceStop = 0x0020;
inline constexpr std::uint32_t kServicePauseContinue = 0x0040;
inline constexpr std::uint32_t kServiceInterrogate = 0x0080;

enum ServiceState : std::uint32_t {
    kStopped = 1,
    kStartPending = 2,
    kStopPending = 3,
    kRunning = 4,
    kContinuePending = 5,
    kPausePending = 6,
    kPaused = 7
};

enum class ServiceControl : std::uint32_t {
    kStop = 1,
    kPause = 2,
    kContinue = 3,
    kInterrogate = 4
};

inline constexpr std::uint32_t kErrorNoServiceManager = 1;  // "incorrect function"
inline constexpr std::uint32_t kErrorCannotAcceptControl = 1061;
inline constexpr std::uint32_t kErrorServiceNotActive = 1062;

struct ServiceStatus {
    std::uint32_t state = 0;     // a ServiceState; 0 not known
    std::uint32_t waitHint = 0;  // milliseconds
};

// The manager of the active database.
[[nodiscard]] ServiceHandle openServiceManager(std::uint32_t access) noexcept;
[[nodiscard]] ServiceHandle openService(ServiceHandle manager, const char* name,
                                        std::uint32_t access) noexcept;
void closeServiceHandle(ServiceHandle handle) noexcept;
// 0 or the system's error number. `status` is filled on success, and also with the errors by which
// the manager says that the service's state does not allow the control.
std::uint32_t queryService(ServiceHandle service, ServiceStatus& status) noexcept;
std::uint32_t controlService(ServiceHandle service, ServiceControl control,
                             ServiceStatus& status) noexcept;
std::uint32_t startService(ServiceHandle service) noexcept;

// Whether this is the system family without services (platform identifier 1).
[[nodiscard]] bool is9xFamily() noexcept;

enum class ProcessSearch { kFound, kNotFound, kFailed };
// The first process with `namePart` in its executable's name, with regard to case.
[[nodiscard]] ProcessSearch findProcess(const char* namePart, std::uint32_t& id) noexcept;
[[nodiscard]] bool endProcess(std::uint32_t id, std::uint32_t waitMilliseconds) noexcept;
[[nodiscard]] bool startSystemProgram(const char* name) noexcept;

}  // namespace qel::platform

#endif
