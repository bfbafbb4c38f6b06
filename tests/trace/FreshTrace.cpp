#include "trace/FreshTrace.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <sstream>

#include "platform/Process.h"
#include "support/Environment.h"
#include "support/TraceCapture.h"

namespace qel::test {

namespace {

std::atomic<bool> ticksSet{false};
std::atomic<std::uint32_t> ticksNow{0};
std::atomic<std::uint32_t> looks{0};

// The system's clock stands still for some milliseconds. Here each look is a new tick, so that what
// happens once in a tick happens at each message.
std::uint32_t testTicks() {
    return ticksSet ? ticksNow.load() : platform::tickCount() + ++looks;
}

}  // namespace

FreshTrace::FreshTrace(const std::vector<std::string>& options, const std::string& logName) {
    setEnvironment("BX_ERR_LOG_FILE_PATH", file(logName));
    setEnvironment("BX_OPTIONS_FILE_PATH", "");
    if (!options.empty()) {
        std::string content = "[LogSettings]\r\n";
        for (const std::string& option : options) content += option + "\r\n";
        writeFile(file("BxOptions.opt"), content);
    }
    ticksSet = false;
    restart();
}

FreshTrace::~FreshTrace() {
    trace::installTraceSystem(nullptr);
    setEnvironment("BX_ERR_LOG_FILE_PATH", traceLogPath());
    setEnvironment("BX_OPTIONS_FILE_PATH",
                   (std::filesystem::path(traceDirectory()) / "trace.opt").string());
}

void FreshTrace::restart() {
    system_.emplace(&testTicks);
    trace::installTraceSystem(&*system_);
}

std::string FreshTrace::text(const std::string& name) const {
    std::string content = readFile(file(name));
    content.erase(std::remove(content.begin(), content.end(), '\r'), content.end());
    return content;
}

std::vector<std::string> FreshTrace::messages(const std::string& name) const {
    std::istringstream in(text(name));
    std::vector<std::string> result;
    bool banner = false;  // the banner's second line is empty but for its prefix
    for (std::string line; std::getline(in, line);) {
        const std::string message = withoutPrefix(line);
        const bool second = banner && message.empty();
        banner = message.find(" -- Halverd ") == 0;
        if (!banner && !second) result.push_back(message);
    }
    return result;
}

std::vector<std::string> FreshTrace::files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir_.path()))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

void FreshTrace::setTicks(std::uint32_t milliseconds) {
    ticksNow = milliseconds;
    ticksSet = true;
}

}  // namespace qel::test
