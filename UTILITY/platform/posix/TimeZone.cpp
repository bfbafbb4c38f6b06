// The current time zone from the TZ variable or the system's zone file.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include "platform/Platform.h"
#include "platform/posix/PosixZoneRule.h"

namespace qel::platform {

namespace {

constexpr char kSystemZoneFile[] = "/etc/localtime";
constexpr char kZoneFolder[] = "/usr/share/zoneinfo";

// Without memory of its own: a zone that could not be read would pass for UTC.
struct RuleText {
    char text[512] = "";
};

// The rule text that ends a TZif file of version 2 and later (RFC 8536 3.3): its last line, the
// text between the last two line feeds. Empty when there is none.
RuleText ruleTextOfFile(const char* path) {
    RuleText rule;
    // Only a regular file: reading a pipe or a device might not return.
    const int handle = open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (handle < 0) return rule;
    struct stat status {};
    char head[5] = "";
    char tail[sizeof rule.text + 1];  // the rule and the line feeds around it
    ssize_t length = 0;
    if (fstat(handle, &status) == 0 && S_ISREG(status.st_mode) &&
        pread(handle, head, sizeof head, 0) == sizeof head) {
        const off_t from = std::max<off_t>(status.st_size - off_t{sizeof tail}, 0);
        length = pread(handle, tail, sizeof tail, from);
    }
    close(handle);
    if (std::memcmp(head, "TZif", 4) != 0 || head[4] < '2') return rule;
    const std::string_view end(tail, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    if (end.size() < 2 || end.back() != '\n') return rule;
    const std::size_t before = end.find_last_of('\n', end.size() - 2);
    if (before == std::string_view::npos) return rule;
    const std::string_view line = end.substr(before + 1, end.size() - before - 2);
    rule.text[line.copy(rule.text, sizeof rule.text - 1)] = '\0';
    return rule;
}

// The rule text that the TZ variable names or is; without the variable, the system's.
RuleText currentRuleText() {
    const char* value = std::getenv("TZ");
    if (value == nullptr) return ruleTextOfFile(kSystemZoneFile);
    const bool named = *value == ':';
    if (named) ++value;
    if (*value == '\0') return {"UTC0"};
    const char* const folder = std::getenv("TZDIR");
    char path[PATH_MAX];
    // An absolute name stands for itself.
    const int length = *value == '/'
                           ? std::snprintf(path, sizeof path, "%s", value)
                           : std::snprintf(path, sizeof path, "%s/%s",
                                           folder != nullptr ? folder : kZoneFolder, value);
    const bool fits = length >= 0 && static_cast<std::size_t>(length) < sizeof path;
    RuleText rule = fits ? ruleTextOfFile(path) : RuleText();
    if (rule.text[0] == '\0' && !named) std::snprintf(rule.text, sizeof rule.text, "%s", value);
    return rule;
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
    TimeZoneDescription zone;
    return parsePosixZoneRule(currentRuleText().text, year, zone) ? zone : presentOffset();
}

// There is no setting here that turns a zone's daylight saving off.
bool followsDaylightSaving() noexcept {
    return true;
}

}  // namespace qel::platform
