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

// POSIX leaves its declaration to the program; where the system has one too, it is the same.
extern "C" char** environ;

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
    const bool fits = static_cast<std::size_t>(length) < sizeof path;
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
    if (localtime_r(&now, &local) == nullptr) return zone;
#ifdef QEL_HAS_TM_GMTOFF
    zone.bias = static_cast<int>(-local.tm_gmtoff / 60);
#else
    std::tm world{};
    if (gmtime_r(&now, &world) == nullptr) return zone;
    const int later = local.tm_year != world.tm_year ? local.tm_year - world.tm_year
                                                     : local.tm_yday - world.tm_yday;
    // At most one day apart.
    const int days = (later > 0 ? 1 : 0) - (later < 0 ? 1 : 0);
    zone.bias = -((days * 24 + local.tm_hour - world.tm_hour) * 60 + local.tm_min - world.tm_min);
#endif
    return zone;
}

// Where the environment holds TZ, or that it does not: a look at one entry in place of a search
// through all. Whoever sets, changes or removes a variable leaves a mark there: another array,
// another entry, or another last one. Who moves entries by hand may be missed until the clock's
// next tick.
class VariablePlace {
  public:
    // Looks for the variable; null where it is not set.
    const char* find() noexcept {
        entries_ = environ;
        value_ = nullptr;
        count_ = 0;
        entry_ = nullptr;
        for (char** at = entries_; at != nullptr && *at != nullptr; ++at, ++count_) {
            entry_ = *at;
            if (std::strncmp(entry_, kName, kNameLength) != 0) continue;
            value_ = entry_ + kNameLength;
            break;
        }
        return value_;
    }
    // Whether the last answer still holds, as far as can be seen here.
    [[nodiscard]] bool holds() const noexcept {
        if (entries_ != environ || entries_ == nullptr) return false;
        if (value_ != nullptr) return entries_[count_] == entry_;
        return entries_[count_] == nullptr && (count_ == 0 || entries_[count_ - 1] == entry_);
    }
    [[nodiscard]] const char* value() const noexcept { return value_; }

  private:
    static constexpr char kName[] = "TZ=";
    static constexpr std::size_t kNameLength = sizeof kName - 1;

    char** entries_ = nullptr;
    std::size_t count_ = 0;        // of the entries before the variable, or of all
    const char* entry_ = nullptr;  // the variable's, or the last one
    const char* value_ = nullptr;
};

// What a thread knows of the zone. It holds for as long as TZ says the same and the clock's tick is
// the same: a zone file that is replaced counts a few milliseconds later.
class KnownZone {
  public:
    std::uint32_t version() noexcept {
        const std::uint32_t now = tickCount();
        if (known_ && tick_ == now && place_.holds() && saysTheSame(place_.value()))
            return version_;
        const char* const value = place_.find();
        if (!known_ || tick_ != now || !saysTheSame(value)) learn(value, now);
        return version_;
    }
    [[nodiscard]] TimeZoneDescription describe(int year) noexcept {
        version();
        TimeZoneDescription zone;
        return parsePosixZoneRule(rule_.text, year, zone) ? zone : presentOffset();
    }

  private:
    [[nodiscard]] bool saysTheSame(const char* value) const noexcept {
        return named_ == (value != nullptr) && (value == nullptr || std::strcmp(name_, value) == 0);
    }
    void learn(const char* value, std::uint32_t now) noexcept {
        const RuleText rule = currentRuleText();
        TimeZoneDescription zone;
        // Without a rule the offset is the system's, which may change.
        const bool same = known_ && saysTheSame(value) && std::strcmp(rule_.text, rule.text) == 0 &&
                          parsePosixZoneRule(rule.text, 0, zone);
        if (!same) ++version_;
        known_ = value == nullptr ||
                 (std::strlen(value) < sizeof name_ && std::getenv("TZDIR") == nullptr);
        named_ = value != nullptr;
        tick_ = now;
        rule_ = rule;
        if (known_) std::strcpy(name_, named_ ? value : "");
    }

    bool known_ = false;
    bool named_ = false;  // TZ is set
    std::uint32_t tick_ = 0;
    std::uint32_t version_ = 0;
    VariablePlace place_;
    char name_[48] = "";  // the value of TZ
    RuleText rule_;
};

constinit thread_local KnownZone lastZone;

}  // namespace

std::uint32_t timeZoneVersion() noexcept {
    return lastZone.version();
}

TimeZoneDescription currentTimeZone(int year) noexcept {
    return lastZone.describe(year);
}

// There is no setting here that turns a zone's daylight saving off.
bool followsDaylightSaving() noexcept {
    return true;
}

}  // namespace qel::platform
