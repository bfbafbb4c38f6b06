#include "QelUtility/IRMonitorManager.h"

#include <cstdio>
#include <cstring>
#include <new>

#include "QelUtility/BxHost.h"
#include "host/IRMonitorBackEnd.h"
#include "host/IRMonitorService.h"
#include "platform/Registry.h"

namespace {

using qel::host::IRMonitorBackEnd;
using qel::platform::ProcessSearch;
using qel::platform::RegistryKey;

constexpr char kProcessName[] = "IRMON.EXE";
constexpr int kMostAttempts = 5;
constexpr std::uint32_t kEndMilliseconds = 2500;
constexpr std::size_t kTextRoom = 256;

// --- The 9x family ------------------------------------------------------------------------------

bool stopMonitorProcess(IRMonitorBackEnd& system) {
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        std::uint32_t id = 0;
        const ProcessSearch found = system.findProcess(kProcessName, id);
        if (found == ProcessSearch::kFailed) continue;
        // One that cannot be opened is ignored.
        if (found == ProcessSearch::kNotFound || !system.endProcess(id, kEndMilliseconds))
            return true;
    }
    return false;
}

bool monitorProcessRuns(IRMonitorBackEnd& system) {
    std::uint32_t id = 0;
    return system.findProcess(kProcessName, id) == ProcessSearch::kFound;
}

bool startMonitorProcess(IRMonitorBackEnd& system) {
    return !monitorProcessRuns(system) && system.startSystemProgram(kProcessName);
}

// --- The registry -------------------------------------------------------------------------------

bool openRoot(RegistryKey& key, RegistryKey::Open how) {
    char root[kTextRoom + 64];
    if (!BxHost_GetRegistryRoot(root, sizeof root)) return false;
    char directory[512];
    if (!GetProfileDirectoryWithUserName(directory, sizeof directory)) directory[0] = '\0';
    return key.open(directory, root, how);
}

// "NAME=<name>  GUIDS=<list>", in storage of its own: a text that exhausted memory has cut short
// must not be stored.
struct TransportText {
    char text[2 * kTextRoom + 32];

    TransportText(const char* name, BxHostString guids) {
        char configured[kTextRoom];
        BxHost_GetString(guids, configured, sizeof configured);
        char* out = text + std::snprintf(text, sizeof text, "NAME=%s  GUIDS=", name);
        // The list is put together again without a separator at either end.
        const char* const list = out;
        for (const char* item = configured; *item != '\0';) {
            const std::size_t length = std::strcspn(item, ",");
            if (length > 0 && out != list) *out++ = ',';
            std::memcpy(out, item, length);
            out += length;
            item += length;
            if (*item == ',') ++item;
        }
        *out = '\0';
    }
};

}  // namespace

IRMonitorManager* IRMonitorManager::m_sTheManager = nullptr;
bool IRMonitorManager::m_bIR9xInstalled = false;

IRMonitorManager* IRMonitorManager::getManager() {
    if (m_sTheManager == nullptr) m_sTheManager = new (std::nothrow) IRMonitorManager;
    return m_sTheManager;
}

void IRMonitorManager::Release() {
    m_sTheManager = nullptr;
    delete this;
}

bool IRMonitorManager::startIrMon() {
    m_bMustStart = false;
    IRMonitorBackEnd& system = qel::host::irMonitorBackEnd();
    return system.is9xFamily() ? startMonitorProcess(system)
                               : qel::host::startMonitorService(system);
}

bool IRMonitorManager::stopIrMon() {
    m_bMustStop = false;
    IRMonitorBackEnd& system = qel::host::irMonitorBackEnd();
    return system.is9xFamily() ? stopMonitorProcess(system) : qel::host::stopMonitorService(system);
}

bool IRMonitorManager::isIRInstalled() {
    IRMonitorBackEnd& system = qel::host::irMonitorBackEnd();
    if (!system.is9xFamily()) return qel::host::monitorServiceExists(system);
    // Once seen, it is installed: a monitor that has been stopped can be started again.
    if (!m_bIR9xInstalled) m_bIR9xInstalled = monitorProcessRuns(system);
    return m_bIR9xInstalled;
}

void IRMonitorManager::selectIR() {
    RegistryKey key;
    if (!openRoot(key, RegistryKey::Open::kCreate)) return;
    char name[kTextRoom];
    BxHost_GetString(BXHOST_IR_TRANSPORT_NAME, name, sizeof name);
    key.set("TransportParam", TransportText(name, BXHOST_IR_TRANSPORT_GUIDS).text);
    key.set("CurrentIRParam", "NAME=OBEX ");
    key.set("Selected_Transport", "3");
}

void IRMonitorManager::deselectIR() {
    RegistryKey key;
    if (!openRoot(key, RegistryKey::Open::kCreate)) return;
    key.set("TransportParam", TransportText("USB", BXHOST_USB_TRANSPORT_GUIDS).text);
    key.set("CurrentUSBParam", "NAME=USB ");
    key.set("Selected_Transport", "1");
}

bool IRMonitorManager::isIRSelected() {
    RegistryKey key;
    if (!openRoot(key, RegistryKey::Open::kExisting)) return false;
    char selected[16];
    return key.get("Selected_Transport", selected, sizeof selected) && selected[0] == '3';
}

void IRMonitorManager::setMustStart() {
    m_bMustStart = true;
}

bool IRMonitorManager::MustStart() {
    return m_bMustStart;
}

void IRMonitorManager::setMustStop() {
    m_bMustStop = true;
}

bool IRMonitorManager::MustStop() {
    return m_bMustStop;
}
