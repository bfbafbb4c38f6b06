#include "QelUtility/IRMonitorManager.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "host/IRMonitorBackEnd.h"
#include "support/Tables.h"

namespace {

using namespace qel::platform;
using qel::test::Row;

// Plays the script of a row of ir-services.txt, which describes its words, and checks that it is
// called with what the row's operation asks for.
class ScriptedSystem : public qel::host::IRMonitorBackEnd {
  public:
    explicit ScriptedSystem(Row& row)
        : is9x_(row["family"] == "9x"), access_(kAccess.at(row["call"])), in_(row["script"]) {
        qel::host::setIRMonitorBackEnd(this);
        in_ >> word_;
    }
    ~ScriptedSystem() override {
        qel::host::setIRMonitorBackEnd(nullptr);
        EXPECT_EQ(word_, "") << "a call that was not made";
        EXPECT_EQ(openHandles_, 0);
    }

    bool is9xFamily() override { return is9x_; }
    void pause(std::uint32_t milliseconds) override {
        EXPECT_EQ("P" + std::to_string(milliseconds), next('P'));
    }
    ServiceHandle openManager(std::uint32_t access) override {
        EXPECT_EQ(access, access_.first);
        return open('M', 1);
    }
    ServiceHandle openService(ServiceHandle, const char* name, std::uint32_t access) override {
        EXPECT_STREQ(name, "IrMon");
        EXPECT_EQ(access, access_.second);
        return open('O', 2);
    }
    void closeHandle(ServiceHandle handle) override { openHandles_ -= static_cast<int>(handle); }
    std::uint32_t query(ServiceHandle service, ServiceStatus& status) override {
        return answer(service == 2 ? 'Q' : '?', status);
    }
    std::uint32_t control(ServiceHandle service, ServiceControl control,
                          ServiceStatus& status) override {
        return answer(service == 2 ? "?S?CI"[static_cast<int>(control)] : '?', status);
    }
    std::uint32_t start(ServiceHandle service) override {
        ServiceStatus ignored;
        return answer(service == 2 ? 'G' : '?', ignored);
    }
    ProcessSearch findProcess(const char* name, std::uint32_t& id) override {
        EXPECT_STREQ(name, "IRMON.EXE");
        ServiceStatus found;
        if (answer('F', found) != 0) return ProcessSearch::kFailed;
        id = found.state;
        return id != 0 ? ProcessSearch::kFound : ProcessSearch::kNotFound;
    }
    bool endProcess(std::uint32_t id, std::uint32_t waitMilliseconds) override {
        EXPECT_EQ(waitMilliseconds, 2500U);
        const std::string word = next('E');
        EXPECT_EQ(word.substr(0, word.find('!')), "E" + std::to_string(id));
        return word.find('!') == std::string::npos;
    }
    bool startSystemProgram(const char* name) override {
        EXPECT_STREQ(name, "IRMON.EXE");
        return next('R') == "R";
    }

  private:
    // What each call opens the manager and the service for.
    inline static const std::map<std::string, std::pair<std::uint32_t, std::uint32_t>> kAccess = {
        {"stop", {kManagerConnect, kServiceStop | kServiceInterrogate}},
        {"start",
         {kManagerConnect,
          kServiceStart | kServicePauseContinue | kServiceInterrogate | kServiceQueryStatus}},
        {"installed", {kManagerRead, kServiceInterrogate}}};

    // Opening is in the script only where it fails.
    ServiceHandle open(char call, ServiceHandle handle) {
        if (word_[0] == call) return next(call), 0;
        openHandles_ += static_cast<int>(handle);
        return handle;
    }
    std::string next(char call) {
        EXPECT_EQ(word_.substr(0, 1), std::string(1, call)) << "instead of " << word_;
        std::string word;
        word.swap(word_);
        in_ >> word_;
        return word;
    }
    std::uint32_t answer(char call, ServiceStatus& status) {
        const std::string word = next(call);
        const auto number = [&word](char mark) {
            const std::size_t at = mark == '\0' ? 0 : std::min(word.find(mark), word.size() - 1);
            return static_cast<std::uint32_t>(std::strtoul(word.c_str() + at + 1, nullptr, 10));
        };
        const bool fails = word.find('!') != std::string::npos;
        const std::uint32_t state = !fails                                ? number('\0')
                                    : word.find('/') != std::string::npos ? number('/')
                                                                          : 0;
        if (state != 0) status.state = state;
        status.waitHint = word.find('h') != std::string::npos ? number('h') : 0;
        return fails ? number('!') : 0;
    }

    bool is9x_;
    std::pair<std::uint32_t, std::uint32_t> access_;
    std::istringstream in_;
    std::string word_;
    int openHandles_ = 0;
};

// In the table's order: a monitor of the 9x family that was once seen stays installed.
TEST(IRMonitor, StopsAndStartsFromEveryState) {
    IRMonitorManager* manager = IRMonitorManager::getManager();
    for (Row& row : qel::test::list("host/ir-services.txt")) {
        SCOPED_TRACE(row["call"] + ": " + row["state"]);
        ScriptedSystem system(row);
        const bool works = row["call"] == "stop"    ? manager->stopIrMon()
                           : row["call"] == "start" ? manager->startIrMon()
                                                    : manager->isIRInstalled();
        EXPECT_EQ(works, row["works"] == "yes");
    }
    manager->Release();
}

TEST(IRMonitor, FlagsAreClearedByTheirOperationsAndByRelease) {
    Row row{{"call", "start"}, {"script", "M!5 M!5"}};
    IRMonitorManager* manager = IRMonitorManager::getManager();
    EXPECT_EQ(manager, IRMonitorManager::getManager());
    manager->setMustStart();
    manager->setMustStop();
    EXPECT_TRUE(manager->MustStart() && manager->MustStop());
    ScriptedSystem system(row);
    EXPECT_FALSE(manager->startIrMon());
    EXPECT_FALSE(manager->MustStart());
    EXPECT_TRUE(manager->MustStop());
    EXPECT_FALSE(manager->stopIrMon());
    EXPECT_FALSE(manager->MustStop());
    manager->setMustStop();
    manager->Release();
    manager = IRMonitorManager::getManager();
    EXPECT_FALSE(manager->MustStart() || manager->MustStop());
    manager->Release();
}

}  // namespace
