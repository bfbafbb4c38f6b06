// The current time zone from the TZ variable or the system's zone file.
#include "platform/TimeZone.h"

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

#include "platform/Process.h"
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
    // An absolute name is used as it is.
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

TimeZoneDescription describe(const char* rule, int year) noexcept {
    TimeZoneDescription zone;
    return parsePosixZoneRule(rule, year, zone) ? zone : presentOffset();
}

// A thread's last answer. It holds for as long as TZ says the same and the clock's tick is the
// same: a zone file that is replaced counts a few milliseconds later.
struct KnownZone {
    bool known = false;
    bool named = false;  // TZ is set
    std::uint32_t tick = 0;
    int year = 0;
    TimeZoneDescription zone;
    char name[48] = "";   // the value of TZ
    char rule[128] = "";  // its rule text

    [[nodiscard]] bool answers(const char* value, std::uint32_t now) const noexcept {
        return known && tick == now && named == (value != nullptr) &&
               (value == nullptr || std::strcmp(name, value) == 0);
    }
    void learn(const char* value, std::uint32_t now, const char* text) noexcept {
        known = std::strlen(text) < sizeof rule &&
                (value == nullptr ||
                 (std::strlen(value) < sizeof name && std::getenv("TZDIR") == nullptr));
        if (!known) return;
        named = value != nullptr;
        tick = now;
        std::strcpy(name, named ? value : "");
        std::strcpy(rule, text);
    }
};

}  // namespace

TimeZoneDescription currentTimeZone(int year) noexcept {
    thread_local KnownZone last;
    const char* const value = std::getenv("TZ");
    const std::uint32_t now = tickCount();
    if (!last.answers(value, now)) {
        const RuleText rule = currentRuleText();
        last.learn(value, now, rule.text);
        last.zone = describe(rule.text, year);
        last.year = year;
    } else if (last.year != year) {
        last.zone = describe(last.rule, year);
        last.year = year;
    }
    return last.zone;
}

// There is no setting here that turns a zone's daylight saving off.
bool followsDaylightSaving() noexcept {
    return true;
}

}  // namespace qel::platform
