// The service control manager and the process list.
#include "platform/Services.h"

#include <windows.h>
// tlhelp32.h needs windows.h before it.
#include <tlhelp32.h>

#include <cstdio>
#include <cstring>

namespace qel::platform {

namespace {

SC_HANDLE asHandle(ServiceHandle handle) noexcept {
    return reinterpret_cast<SC_HANDLE>(handle);
}

ServiceHandle fromHandle(SC_HANDLE handle) noexcept {
    return reinterpret_cast<ServiceHandle>(handle);
}

// Keeps what the manager said of the service. It fills the record also when the service's state is
// the reason for which it refused.
std::uint32_t finish(BOOL succeeded, const SERVICE_STATUS& from, ServiceStatus& status) noexcept {
    const DWORD error = succeeded != FALSE ? ERROR_SUCCESS : GetLastError();
    const bool filled = error == ERROR_SUCCESS || error == ERROR_INVALID_SERVICE_CONTROL ||
                        error == ERROR_SERVICE_CANNOT_ACCEPT_CTRL ||
                        error == ERROR_SERVICE_NOT_ACTIVE;
    if (filled && from.dwCurrentState != 0) status = {from.dwCurrentState, from.dwWaitHint};
    return error;
}

static_assert(kManagerConnect == SC_MANAGER_CONNECT && kManagerRead == GENERIC_READ);
static_assert(kServiceQueryStatus == SERVICE_QUERY_STATUS && kServiceStart == SERVICE_START &&
              kServiceStop == SERVICE_STOP && kServicePauseContinue == SERVICE_PAUSE_CONTINUE &&
              kServiceInterrogate == SERVICE_INTERROGATE);
static_assert(kStopped == SERVICE_STOPPED && kStartPending == SERVICE_START_PENDING &&
              kStopPending == SERVICE_STOP_PENDING && kRunning == SERVICE_RUNNING &&
              kContinuePending == SERVICE_CONTINUE_PENDING &&
              kPausePending == SERVICE_PAUSE_PENDING && kPaused == SERVICE_PAUSED);
static_assert(kErrorCannotAcceptControl == ERROR_SERVICE_CANNOT_ACCEPT_CTRL &&
              kErrorServiceNotActive == ERROR_SERVICE_NOT_ACTIVE);

}  // namespace

ServiceHandle openServiceManager(std::uint32_t access) noexcept {
    return fromHandle(OpenSCManagerA(nullptr, SERVICES_ACTIVE_DATABASEA, access));
}

ServiceHandle openService(ServiceHandle manager, const char* name, std::uint32_t access) noexcept {
    return fromHandle(OpenServiceA(asHandle(manager), name, access));
}

void closeServiceHandle(ServiceHandle handle) noexcept {
    CloseServiceHandle(asHandle(handle));
}

std::uint32_t queryService(ServiceHandle service, ServiceStatus& status) noexcept {
    SERVICE_STATUS from{};
    return finish(QueryServiceStatus(asHandle(service), &from), from, status);
}

std::uint32_t controlService(ServiceHandle service, ServiceControl control,
                             ServiceStatus& status) noexcept {
    SERVICE_STATUS from{};
    return finish(ControlService(asHandle(service), static_cast<DWORD>(control), &from), from,
                  status);
}

std::uint32_t startService(ServiceHandle service) noexcept {
    return StartServiceA(asHandle(service), 0, nullptr) != FALSE ? ERROR_SUCCESS : GetLastError();
}

bool is9xFamily() noexcept {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
    return GetVersionExA(&version) != FALSE && version.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS;
}

ProcessSearch findProcess(const char* namePart, std::uint32_t& id) noexcept {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return ProcessSearch::kFailed;
    PROCESSENTRY32 entry{};
    entry.dwSize = sizeof entry;
    ProcessSearch result = ProcessSearch::kNotFound;
    for (BOOL more = Process32First(snapshot, &entry); more != FALSE;
         more = Process32Next(snapshot, &entry)) {
        if (std::strstr(entry.szExeFile, namePart) == nullptr) continue;
        id = entry.th32ProcessID;
        result = ProcessSearch::kFound;
        break;
    }
    CloseHandle(snapshot);
    return result;
}

bool endProcess(std::uint32_t id, std::uint32_t waitMilliseconds) noexcept {
    const HANDLE process = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id);
    if (process == nullptr) return false;
    TerminateProcess(process, 0);
    WaitForSingleObject(process, waitMilliseconds);
    CloseHandle(process);
    return true;
}

bool startSystemProgram(const char* name) noexcept {
    char path[2 * MAX_PATH];
    const UINT length = GetSystemDirectoryA(path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return false;
    std::snprintf(path + length, sizeof path - length, "\\%s", name);
    char commandLine[1] = "";
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (CreateProcessA(path, commandLine, nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr,
                       nullptr, &startup, &started) == FALSE)
        return false;
    // The record's address is given where its thread handle belongs, so the new process stays
    // suspended; its callers have always had it so, and count the start as a success all the same.
    ResumeThread(reinterpret_cast<HANDLE>(&started));
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return true;
}

}  // namespace qel::platform
