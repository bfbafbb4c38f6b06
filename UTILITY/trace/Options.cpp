#include "trace/Options.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>

#include "QelUtility/BxHost.h"
#include "platform/AsciiText.h"
#include "platform/Files.h"
#include "platform/Process.h"
#include "platform/Profile.h"

namespace qel::trace {

namespace {

constexpr char kSection[] = "LogSettings";
constexpr std::size_t kSystemPathRoom = 260;  // the most that a system call is asked for

// A path under construction: text that does not fit is cut.
struct PathBuffer {
    char text[kPathRoom] = "";

    void append(const char* tail) {
        const std::size_t length = std::strlen(text);
        std::snprintf(text + length, sizeof text - length, "%s", tail);
    }
    void cut(std::size_t length) {
        if (length < sizeof text) text[length] = '\0';
    }
};

PathBuffer copyOf(const char* text) {
    PathBuffer buffer;
    buffer.append(text);
    return buffer;
}

bool endsInLog(const char* name) {
    const std::size_t length = std::strlen(name);
    if (length < 4) return false;
    const char* tail = name + length - 4;
    return tail[0] == '.' && platform::asciiToLower(tail[1]) == 'l' &&
           platform::asciiToLower(tail[2]) == 'o' && platform::asciiToLower(tail[3]) == 'g';
}

// The length up to and including the last separator, 0 when there is none.
std::size_t lengthToLastSeparator(const char* text) {
    std::size_t length = std::strlen(text);
    while (length > 0 && !platform::isPathSeparator(text[length - 1])) --length;
    return length;
}

void appendSeparator(PathBuffer& buffer) {
    const std::size_t length = std::strlen(buffer.text);
    if (length > 0 && platform::isPathSeparator(buffer.text[length - 1])) return;
    const char separator[] = {platform::kPathSeparator, '\0'};
    buffer.append(separator);
}

// A number as the C library reads it from a text (blanks, a sign, then digits up to the first other
// character), but saturating at 32 bits. Hexadecimal is unsigned and may begin with "0x".
int parseNumber(const char* text, unsigned base) {
    while (*text == ' ' || (*text >= '\t' && *text <= '\r')) ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') ++text;
    if (base == 16 && text[0] == '0' && platform::asciiToLower(text[1]) == 'x') text += 2;
    const std::int64_t most =
        base == 16 ? std::int64_t{UINT_MAX} : std::int64_t{INT_MAX} + (negative ? 1 : 0);
    std::int64_t value = 0;
    for (;; ++text) {
        const char c = platform::asciiToLower(*text);
        const int digit = c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : 99;
        if (digit >= static_cast<int>(base)) break;
        value = std::min(value * base + digit, most);
    }
    return static_cast<int>(static_cast<std::uint32_t>(negative ? -value : value));
}

}  // namespace

// --- Paths --------------------------------------------------------------------------------------

// The choices of paths return false when there is no memory to keep them.
bool Options::chooseLogPath() {
    PathBuffer log;
    if (platform::environment("BX_ERR_LOG_FILE_PATH", log.text, sizeof log.text)) {
        if (!endsInLog(log.text)) log.append(".log");
    } else {
        bool known = GetProfileDirectoryWithUserName(log.text, kSystemPathRoom);
        if (!known) {
            known = platform::modulePath(log.text, sizeof log.text);
            const std::size_t directory = lengthToLastSeparator(log.text);
            log.cut(directory > 0 ? directory - 1 : 0);
        }
        if (known) appendSeparator(log);
        log.append("BxTrace.log");
    }
    return paths_.publish(Path::kLog, log.text);
}

bool Options::deriveSidePaths() {
    const char* log = paths_.get(Path::kLog);
    PathBuffer side = copyOf(log);
    const std::size_t directory = platform::directoryLength(log);
    bool kept = paths_.publish(Path::kSavedLog, log);
    side.cut(directory);
    kept = paths_.publish(Path::kRunDirectory, side.text) && kept;
    side.append("SyncML_Input.log");
    kept = paths_.publish(Path::kSyncInput, side.text) && kept;
    side.cut(directory);
    side.append("SyncML_Output.log");
    return paths_.publish(Path::kSyncOutput, side.text) && kept;
}

bool Options::chooseOptionsPath() {
    PathBuffer options;
    if (!platform::environment("BX_OPTIONS_FILE_PATH", options.text, sizeof options.text)) {
        options = copyOf(paths_.get(Path::kLog));
        options.cut(lengthToLastSeparator(options.text));
        options.append("BxOptions.opt");
    }
    return paths_.publish(Path::kOptions, options.text);
}

void Options::setLogName(const char* name) {
    if (name == nullptr || name[0] == '\0' || loadsHere()) return;
    const std::lock_guard lock(mutex_);
    PathBuffer log = copyOf(name);
    if (!endsInLog(log.text)) log.append(".log");
    // Without memory for one of them it stays as it was.
    paths_.publish(Path::kLog, log.text);
    static_cast<void>(deriveSidePaths());
    PathBuffer part = copyOf(log.text + lengthToLastSeparator(log.text));
    part.cut(64);
    paths_.publish(Path::kLogName, part.text);
}

// --- The file -----------------------------------------------------------------------------------

// A host may ask for an option before anything was traced.
const char* Options::file() {
    if (paths_.get(Path::kOptions)[0] == '\0') load();
    return paths_.get(Path::kOptions);
}

// False when the option is missing or empty.
bool Options::readText(const char* section, const char* key, char (&text)[1025]) {
    text[0] = '\0';
    if (section == nullptr || key == nullptr) return false;
    const char* path = file();
    if (path[0] != '\0') platform::readProfile(path, section, key, text, sizeof text);
    return text[0] != '\0';
}

void Options::write(const char* section, const char* key, unsigned base, int value) {
    writeText(section, key, base, value, platform::ProfileWrite::kAlways);
}

void Options::writeText(const char* section, const char* key, unsigned base, int value,
                        platform::ProfileWrite when) {
    const char* path = file();
    if (section == nullptr || key == nullptr || path[0] == '\0') return;
    char text[16];
    std::snprintf(text, sizeof text, base == 16 ? "%x" : "%d", value);
    // A file that cannot be written is no failure: the value in use stays.
    platform::writeProfile(path, section, key, text, when);
}

void Options::read(const char* section, const char* key, unsigned base, int& value) {
    char text[1025];
    if (!readText(section, key, text)) {
        // Another process may be filling in the same file. The value that it or its user has
        // written meanwhile counts.
        writeText(section, key, base, value, platform::ProfileWrite::kIfMissing);
        if (!readText(section, key, text)) return;
    }
    value = parseNumber(text, base);
}

// --- Loads --------------------------------------------------------------------------------------

void Options::readSetting(const char* key, unsigned base, std::atomic<int>& setting) {
    int value = setting.load(std::memory_order_relaxed);
    read(kSection, key, base, value);
    setting.store(value, std::memory_order_relaxed);
}

void Options::readSettings() {
    readSetting("MaxFileSize", 10, settings_.maxFileSize);
    readSetting("MaxBackupCount", 10, settings_.maxBackupCount);
    readSetting("KeepLogFiles", 10, settings_.keepLogFiles);
    readSetting("VTraceVerbosity", 10, settings_.verbosity);
    readSetting("TracingOptions", 16, settings_.tracingOptions);
    readSetting("LogManagerLevel", 16, settings_.logManagerLevel);
    readSetting("LogManagerDetail", 16, settings_.logManagerDetail);
    const int before = log_.retroSize();
    int retro = before;
    read(kSection, "RetroactiveTracingBufferSize", 10, retro);
    // Without the writer's mutex the size stays, and the next load finds the difference again.
    if (retro != before) log_.resizeRetro(retro);
}

// What is decided once for the process; false when there is no memory for the log's own name.
bool Options::readFirstSettings() {
    readSetting("SeparateLogForEachProcess", 10, settings_.separateLogs);
    const char* log = paths_.get(Path::kLog);
    if (settings_.separateLogs != 0 && endsInLog(log)) {
        PathBuffer own = copyOf(log);
        char suffix[24];
        std::snprintf(suffix, sizeof suffix, "_%d.log", static_cast<int>(platform::processId()));
        // A path of the full length gives up some of its name, never the number.
        own.cut(std::min(std::strlen(log) - 4, kPathRoom - 1 - std::strlen(suffix)));
        own.append(suffix);
        if (!paths_.publish(Path::kLog, own.text)) return false;
    }
    readSetting("KeepLogFileOpen", 10, settings_.keepLogFileOpen);
    if (settings_.separateLogs == 0) settings_.keepLogFileOpen = 0;
    settings_.effectiveBackupCount = std::max(1, settings_.maxBackupCount.load());
    return true;
}

// The file from which an older component of the host takes two of the settings.
void Options::writeCompatibilityFile() const {
    PathBuffer path = copyOf(paths_.get(Path::kOptions));
    path.cut(lengthToLastSeparator(path.text));
    path.append("zqoptcfg.cfg");
    const auto write = [&path](const char* section, const char* key, int value) {
        char text[16];
        std::snprintf(text, sizeof text, "%d", value);
        platform::writeProfile(path.text, section, key, text);
    };
    write("zqwin", "MultiJobTraceLog", 1);
    write("General", "ErrLogMaxSize", settings_.maxFileSize);
    write("General", "ErrLogBackups", settings_.maxBackupCount);
}

// A host's function that traces while it is asked for the profile directory gets no further.
bool Options::loadsHere() const noexcept {
    return loadingThread_.load() == platform::threadId();
}

void Options::firstLoad(std::uint32_t now) {
    if (loadsHere()) return;
    const std::lock_guard lock(mutex_);
    if (initialised_.load(std::memory_order_acquire)) return;
    loadingThread_.store(platform::threadId());
    const bool found = (paths_.get(Path::kLog)[0] != '\0' || chooseLogPath()) &&
                       deriveSidePaths() && chooseOptionsPath();
    if (found) readSettings();
    // Without memory for them the next call tries again, or this process would never log.
    if (found && readFirstSettings()) {
        writeCompatibilityFile();
        lastLoad_.store(now, std::memory_order_relaxed);
        initialised_.store(true, std::memory_order_release);
    }
    loadingThread_.store(0);
}

void Options::reload(std::uint32_t now) {
    // Inside a message the settings stay as they are; the log's lock is held there, and the options
    // file may need the same one.
    if (log_.heldHere()) return;
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock.owns_lock()) return;  // another thread is loading
    readSettings();
    lastLoad_.store(now, std::memory_order_relaxed);
}

void Options::hold() {
    const bool mine = loadsHere();
    if (!mine) mutex_.lock();
    heldForFork_ = !mine;
}

void Options::release() {
    if (heldForFork_)
        mutex_.unlock();
    else
        loadingThread_.store(platform::threadId());  // it has another number in the child
}

}  // namespace qel::trace
