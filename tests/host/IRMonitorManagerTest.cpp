#include "QelUtility/IRMonitorManager.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "host/IRMonitorBackEnd.h"
#include "support/Tables.h"

namespace {

using namespace qel::platform;
using qel::host::IRMonitorBackEnd;

// Plays a script: a word for each call that is expected, in order. A call is I (interrogate), Q
// (query), S, C (stop, continue control), G (start) or P (pause). Behind it stand the state that is
// answered, "!" and an error number, "/" and the state that the error still tells, "h" and the wait
// hint: "S3", "I!1061/3h5000", "P1000".
class ScriptedServices : public IRMonitorBackEnd {
  public:
    explicit ScriptedServices(const std::string& script) {
        std::istringstream in(script);
        for (std::string word; in >> word;) words_.push_back(word);
    }

    bool is9xFamily() override { return false; }
    void pause(std::uint32_t milliseconds) override {
        EXPECT_EQ("P" + std::to_string(milliseconds), next('P'));
    }
    ServiceHandle openManager(std::uint32_t access) override {
        managerAccess = access;
        return noManager ? 0 : open(1);
    }
    ServiceHandle openService(ServiceHandle manager, const char* name,
                              std::uint32_t access) override {
        EXPECT_EQ(manager, 1U);
        EXPECT_STREQ(name, "IrMon");
        serviceAccess = access;
        return noService ? 0 : open(2);
    }
    void closeHandle(ServiceHandle handle) override {
        EXPECT_TRUE(handle == 1 || handle == 2);
        --openHandles;
    }
    std::uint32_t query(ServiceHandle service, ServiceStatus& status) override {
        EXPECT_EQ(service, 2U);
        return answer('Q', status);
    }
    std::uint32_t control(ServiceHandle service, ServiceControl control,
                          ServiceStatus& status) override {
        EXPECT_EQ(service, 2U);
        const char call = control == ServiceControl::kInterrogate ? 'I'
                          : control == ServiceControl::kStop      ? 'S'
                          : control == ServiceControl::kContinue  ? 'C'
                                                                  : '?';
        return answer(call, status);
    }
    std::uint32_t start(ServiceHandle service) override {
        EXPECT_EQ(service, 2U);
        ServiceStatus ignored;
        return answer('G', ignored);
    }
    ProcessSearch findProcess(const char*, std::uint32_t&) override {
        ADD_FAILURE() << "the service path looks for no process";
        return ProcessSearch::kFailed;
    }
    bool endProcess(std::uint32_t, std::uint32_t) override { return false; }
    bool startSystemProgram(const char*) override { return false; }

    [[nodiscard]] bool finished() const { return at_ == words_.size() && openHandles == 0; }

    bool noManager = false;
    bool noService = false;
    std::uint32_t managerAccess = 0;
    std::uint32_t serviceAccess = 0;
    int openHandles = 0;

  private:
    ServiceHandle open(ServiceHandle handle) {
        ++openHandles;
        return handle;
    }
    std::string next(char call) {
        if (at_ == words_.size() || words_[at_][0] != call) {
            ADD_FAILURE() << "call " << call << " instead of "
                          << (at_ == words_.size() ? "the end" : words_[at_]);
            return "";
        }
        return words_[at_++];
    }
    std::uint32_t answer(char call, ServiceStatus& status) {
        const std::string word = next(call);
        const auto number = [&word](char mark) {
            const std::size_t at = mark == '\0' ? 0 : word.find(mark);
            return at == std::string::npos ? 0
                                           : static_cast<std::uint32_t>(
                                                 std::strtoul(word.c_str() + at + 1, nullptr, 10));
        };
        const std::uint32_t error = number('!');
        const std::uint32_t state = error != 0 ? number('/') : number('\0');
        if (state != 0) status.state = state;
        status.waitHint = number('h');
        return error;
    }

    std::vector<std::string> words_;
    std::size_t at_ = 0;
};

class ManagerWith {
  public:
    explicit ManagerWith(IRMonitorBackEnd& backEnd) : manager_(IRMonitorManager::getManager()) {
        qel::host::setIRMonitorBackEnd(&backEnd);
    }
    ~ManagerWith() {
        qel::host::setIRMonitorBackEnd(nullptr);
        manager_->Release();
    }
    ManagerWith(const ManagerWith&) = delete;
    ManagerWith& operator=(const ManagerWith&) = delete;
    IRMonitorManager* operator->() { return manager_; }

  private:
    IRMonitorManager* manager_;
};

TEST(IRMonitorService, StopsAndStartsFromEveryState) {
    for (qel::test::Row& row : qel::test::list("host/ir-services.txt")) {
        SCOPED_TRACE(row["call"] + ": " + row["state"]);
        const bool stops = row["call"] == "stop";
        ScriptedServices services(row["script"]);
        ManagerWith manager(services);
        EXPECT_EQ(stops ? manager->stopIrMon() : manager->startIrMon(), row["works"] == "yes");
        EXPECT_TRUE(services.finished()) << "calls left over, or a handle left open";
        EXPECT_EQ(services.managerAccess, kManagerConnect);
        EXPECT_EQ(services.serviceAccess, stops ? kServiceStop | kServiceInterrogate
                                                : kServiceStart | kServicePauseContinue |
                                                      kServiceInterrogate | kServiceQueryStatus);
    }
}

TEST(IRMonitorService, WithoutManagerOrServiceNothingWorks) {
    for (const bool noManager : {true, false}) {
        ScriptedServices services("");
        services.noManager = noManager;
        services.noService = true;
        ManagerWith manager(services);
        EXPECT_FALSE(manager->stopIrMon());
        EXPECT_FALSE(manager->startIrMon());
        EXPECT_FALSE(manager->isIRInstalled());
        EXPECT_EQ(services.managerAccess, kManagerRead);
        EXPECT_TRUE(services.finished());
    }
    ScriptedServices services("");
    ManagerWith manager(services);
    EXPECT_TRUE(manager->isIRInstalled());
    EXPECT_EQ(services.serviceAccess, kServiceInterrogate);
    EXPECT_TRUE(services.finished());
}

// The 9x family: a list of what each search finds, 0 for nothing and -1 for a failure.
class ScriptedProcesses : public ScriptedServices {
  public:
    explicit ScriptedProcesses(std::vector<int> found)
        : ScriptedServices(""), found_(std::move(found)) {}

    bool is9xFamily() override { return true; }
    ProcessSearch findProcess(const char* namePart, std::uint32_t& id) override {
        EXPECT_STREQ(namePart, "IRMON.EXE");
        const int found = searches < found_.size() ? found_[searches] : 0;
        ++searches;
        if (found < 0) return ProcessSearch::kFailed;
        id = static_cast<std::uint32_t>(found);
        return found > 0 ? ProcessSearch::kFound : ProcessSearch::kNotFound;
    }
    bool endProcess(std::uint32_t id, std::uint32_t waitMilliseconds) override {
        EXPECT_EQ(waitMilliseconds, 2500U);
        ended.push_back(id);
        return !protectedProcess;
    }
    bool startSystemProgram(const char* name) override {
        EXPECT_STREQ(name, "IRMON.EXE");
        ++starts;
        return !startFails;
    }

    std::size_t searches = 0;
    std::vector<std::uint32_t> ended;
    bool protectedProcess = false;
    bool startFails = false;
    int starts = 0;

  private:
    std::vector<int> found_;
};

TEST(IRMonitorProcess, StopEndsEveryProcessInFiveAttempts) {
    const struct {
        std::vector<int> found;
        bool stops;
        std::vector<std::uint32_t> ended;
    } rows[] = {
        {{7, -1, 8, 0}, true, {7, 8}},
        {{1, 2, 3, 4, 5, 6}, false, {1, 2, 3, 4, 5}},
        {{-1, -1, -1, -1, -1}, false, {}},
    };
    for (const auto& row : rows) {
        ScriptedProcesses processes(row.found);
        ManagerWith manager(processes);
        EXPECT_EQ(manager->stopIrMon(), row.stops);
        EXPECT_EQ(processes.ended, row.ended);
    }
    ScriptedProcesses processes({7, 7});
    processes.protectedProcess = true;
    ManagerWith manager(processes);
    EXPECT_TRUE(manager->stopIrMon());
    EXPECT_EQ(processes.searches, 1U);
}

TEST(IRMonitorProcess, StartHappensOnlyWhenNoneRuns) {
    ScriptedProcesses processes({7, 0, -1, 0});
    ManagerWith manager(processes);
    EXPECT_FALSE(manager->startIrMon());
    EXPECT_EQ(processes.starts, 0);
    EXPECT_TRUE(manager->startIrMon());
    EXPECT_TRUE(manager->startIrMon()) << "a failed search counts as not running";
    processes.startFails = true;
    EXPECT_FALSE(manager->startIrMon());
    EXPECT_EQ(processes.starts, 3);
}

// Runs last of its family: the answer stays for the life of the process.
TEST(IRMonitorProcess, ZZOnceSeenItStaysInstalled) {
    ScriptedProcesses processes({-1, 0, 7});
    ManagerWith manager(processes);
    EXPECT_FALSE(manager->isIRInstalled());
    EXPECT_FALSE(manager->isIRInstalled());
    EXPECT_TRUE(manager->isIRInstalled());
    EXPECT_TRUE(manager->isIRInstalled());
    EXPECT_EQ(processes.searches, 3U);
}

TEST(IRMonitorManager, FlagsAreClearedByTheirOperationsAndByRelease) {
    ScriptedServices services("");
    services.noManager = true;
    ManagerWith manager(services);
    EXPECT_EQ(manager.operator->(), IRMonitorManager::getManager());
    manager->setMustStart();
    manager->setMustStop();
    EXPECT_FALSE(manager->startIrMon());
    EXPECT_FALSE(manager->MustStart());
    EXPECT_TRUE(manager->MustStop());
    EXPECT_FALSE(manager->stopIrMon());
    EXPECT_FALSE(manager->MustStop());

    IRMonitorManager* one = IRMonitorManager::getManager();
    one->setMustStart();
    one->setMustStop();
    EXPECT_TRUE(one->MustStart() && one->MustStop());
}

}  // namespace
