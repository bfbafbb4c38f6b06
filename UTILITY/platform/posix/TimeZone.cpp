// The current time zone from the TZ variable or the system's zone file.
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "platform/Platform.h"
#include "platform/posix/PosixZoneRule.h"

namespace qel::platform {

namespace {

namespace fs = std::filesystem;

constexpr char kSystemZoneFile[] = "/etc/localtime";
constexpr char kZoneFolder[] = "/usr/share/zoneinfo";
// The largest zone file in use is some 4 KiB; more than this is no zone file.
constexpr std::uintmax_t kMaxZoneFileSize = 1U << 20;

// The rule text that ends a TZif file of version 2 and later (RFC 8536 3.3): its last line, the
// text between the last two line feeds. Empty when there is none.
std::string ruleTextOfFile(const fs::path& path) {
    std::error_code error;
    // Only a regular file: reading a pipe or a device might not return.
    if (!fs::is_regular_file(path, error) || fs::file_size(path, error) > kMaxZoneFileSize)
        return {};
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file),
                              std::istreambuf_iterator<char>()};
    if (content.size() < 6 || content.compare(0, 4, "TZif") != 0 || content[4] < '2') return {};
    if (content.back() != '\n') return {};
    const std::size_t before = content.find_last_of('\n', content.size() - 2);
    if (before == std::string::npos) return {};
    return content.substr(before + 1, content.size() - before - 2);
}

// The rule text that the TZ variable names or is; without the variable, the system's.
std::string currentRuleText() {
    const char* const variable = std::getenv("TZ");
    if (variable == nullptr) return ruleTextOfFile(kSystemZoneFile);
    std::string_view value(variable);
    const bool named = !value.empty() && value.front() == ':';
    if (named) value.remove_prefix(1);
    if (value.empty()) return "UTC0";
    const char* const folder = std::getenv("TZDIR");
    // An absolute name stands for itself: a path appended to another replaces it.
    const fs::path path = fs::path(folder != nullptr ? folder : kZoneFolder) / fs::path(value);
    const std::string fromFile = ruleTextOfFile(path);
    return fromFile.empty() && !named ? std::string(value) : fromFile;
}

// A zone file may lack a rule for the time after its last change; then the offset that holds now
// stands without daylight saving.
TimeZoneDescription presentOffset() {
    TimeZoneDescription zone;
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (localtime_r(&now, &local) != nullptr) zone.bias = static_cast<int>(-local.tm_gmtoff / 60);
    return zone;
}

}  // namespace

TimeZoneDescription currentTimeZone(int year) noexcept {
    try {
        TimeZoneDescription zone;
        return parsePosixZoneRule(currentRuleText(), year, zone) ? zone : presentOffset();
    } catch (...) {  // memory is exhausted
        return {};
    }
}

// There is no setting here that turns a zone's daylight saving off.
bool followsDaylightSaving() noexcept {
    return true;
}

}  // namespace qel::platform
