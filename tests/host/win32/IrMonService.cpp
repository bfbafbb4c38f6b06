// A service that does nothing but start, pause, continue and stop, each with a pending state of
// some milliseconds in between.
#include <windows.h>

namespace {

constexpr DWORD kPending = 700;  // milliseconds

SERVICE_STATUS_HANDLE statusHandle = nullptr;
HANDLE stopped = nullptr;

void report(DWORD state) {
    const bool pending = state == SERVICE_START_PENDING || state == SERVICE_STOP_PENDING;
    SERVICE_STATUS status{};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    status.dwControlsAccepted =
        state == SERVICE_START_PENDING ? 0 : SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_PAUSE_CONTINUE;
    status.dwCheckPoint = pending ? 1 : 0;
    status.dwWaitHint = pending ? 1000 : 0;
    SetServiceStatus(statusHandle, &status);
}

void WINAPI handle(DWORD control) {
    static DWORD state = SERVICE_RUNNING;
    switch (control) {
        case SERVICE_CONTROL_STOP:
            report(state = SERVICE_STOP_PENDING);
            SetEvent(stopped);
            return;
        case SERVICE_CONTROL_PAUSE:
            state = SERVICE_PAUSED;
            break;
        case SERVICE_CONTROL_CONTINUE:
            state = SERVICE_RUNNING;
            break;
        default:
            break;
    }
    report(state);
}

void WINAPI serviceMain(DWORD, LPSTR*) {
    char name[] = "IrMon";
    statusHandle = RegisterServiceCtrlHandlerA(name, handle);
    report(SERVICE_START_PENDING);
    Sleep(kPending);
    report(SERVICE_RUNNING);
    WaitForSingleObject(stopped, INFINITE);
    Sleep(kPending);
    report(SERVICE_STOPPED);
}

}  // namespace

int main() {
    stopped = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    char name[] = "IrMon";
    SERVICE_TABLE_ENTRYA table[] = {{name, serviceMain}, {nullptr, nullptr}};
    return StartServiceCtrlDispatcherA(table) != FALSE ? 0 : 1;
}
