// The infrared monitor's manager against the system's own service manager: a service named "IrMon"
// is installed, started, stopped and removed.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "QelUtility/IRMonitorManager.h"

namespace {

class InstalledService {
  public:
    InstalledService() : manager_(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)) {
        if (manager_ == nullptr) return;
        char path[MAX_PATH];
        GetModuleFileNameA(nullptr, path, sizeof path);
        std::string program(path);
        program.replace(program.rfind('\\') + 1, std::string::npos, IRMON_SERVICE_PROGRAM);
        service_ =
            CreateServiceA(manager_, "IrMon", "IrMon", SERVICE_ALL_ACCESS,
                           SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_IGNORE,
                           program.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr);
    }
    ~InstalledService() {
        remove();
        if (manager_ != nullptr) CloseServiceHandle(manager_);
    }
    InstalledService(const InstalledService&) = delete;
    InstalledService& operator=(const InstalledService&) = delete;

    void remove() {
        if (service_ == nullptr) return;
        SERVICE_STATUS status{};
        ControlService(service_, SERVICE_CONTROL_STOP, &status);
        DeleteService(service_);
        CloseServiceHandle(service_);
        service_ = nullptr;
    }
    [[nodiscard]] bool installed() const { return service_ != nullptr; }
    [[nodiscard]] DWORD state() const {
        SERVICE_STATUS status{};
        return QueryServiceStatus(service_, &status) != FALSE ? status.dwCurrentState : 0;
    }
    // Asks for the start or the stop and does not wait for it.
    bool beginStart() { return StartServiceA(service_, 0, nullptr) != FALSE; }
    bool beginStop() {
        SERVICE_STATUS status{};
        return ControlService(service_, SERVICE_CONTROL_STOP, &status) != FALSE;
    }
    bool pause() {
        SERVICE_STATUS status{};
        if (ControlService(service_, SERVICE_CONTROL_PAUSE, &status) == FALSE) return false;
        for (int i = 0; i < 50 && state() != SERVICE_PAUSED; ++i) Sleep(100);
        return state() == SERVICE_PAUSED;
    }

  private:
    SC_HANDLE manager_;
    SC_HANDLE service_ = nullptr;
};

TEST(IRMonitorRealService, IsFoundStartedPausedAndStopped) {
    IRMonitorManager* manager = IRMonitorManager::getManager();
    if (manager->isIRInstalled()) GTEST_SKIP() << "this machine has an infrared monitor of its own";
    EXPECT_FALSE(manager->startIrMon());
    EXPECT_FALSE(manager->stopIrMon());

    InstalledService service;
    if (!service.installed()) GTEST_SKIP() << "no right to install a service";
    EXPECT_TRUE(manager->isIRInstalled());
    EXPECT_TRUE(manager->stopIrMon()) << "not running: nothing to do";
    EXPECT_TRUE(manager->startIrMon());
    EXPECT_EQ(service.state(), static_cast<DWORD>(SERVICE_RUNNING));
    EXPECT_TRUE(manager->startIrMon()) << "running already";
    EXPECT_TRUE(manager->stopIrMon());
    EXPECT_EQ(service.state(), static_cast<DWORD>(SERVICE_STOPPED));

    // One that is starting or stopping is waited for, though it refuses to be asked.
    ASSERT_TRUE(service.beginStart());
    ASSERT_EQ(service.state(), static_cast<DWORD>(SERVICE_START_PENDING));
    EXPECT_TRUE(manager->stopIrMon());
    EXPECT_EQ(service.state(), static_cast<DWORD>(SERVICE_STOPPED));
    ASSERT_TRUE(service.beginStart());
    ASSERT_EQ(service.state(), static_cast<DWORD>(SERVICE_START_PENDING));
    EXPECT_TRUE(manager->startIrMon());
    ASSERT_TRUE(service.beginStop());
    ASSERT_EQ(service.state(), static_cast<DWORD>(SERVICE_STOP_PENDING));
    EXPECT_TRUE(manager->startIrMon());
    ASSERT_TRUE(service.beginStop());
    ASSERT_EQ(service.state(), static_cast<DWORD>(SERVICE_STOP_PENDING));
    EXPECT_TRUE(manager->stopIrMon());
    EXPECT_EQ(service.state(), static_cast<DWORD>(SERVICE_STOPPED));

    // A paused service is continued, and the wait for the paused state behind it decides.
    ASSERT_TRUE(manager->startIrMon());
    ASSERT_TRUE(service.pause());
    EXPECT_FALSE(manager->startIrMon());
    EXPECT_EQ(service.state(), static_cast<DWORD>(SERVICE_RUNNING));
    EXPECT_TRUE(manager->stopIrMon());

    service.remove();
    EXPECT_FALSE(manager->isIRInstalled());
    manager->Release();
}

}  // namespace
