// The settings of the trace: where the log and the options file are, and what the options say.
#include <algorithm>
#include <climits>
#include <cstring>
#include <mutex>

#include "QelUtility/BxHost.h"
#include "platform/Immortal.h"
#include "trace/BxTraceInternal.h"
#include "trace/TraceState.h"

namespace {

using qel::trace::kPathRoom;
using qel::trace::Path;
using qel::trace::settings;
namespace platform = qel::platform;

constexpr char kSection[] = "LogSettings";
constexpr std::uint32_t kReloadMilliseconds = 60000;
constexpr std::size_t kSystemPathRoom = 260;  // the most that a system call is asked for

constinit std::atomic<bool> initialised{false};
constinit std::atomic<std::uint32_t> lastLoad{0};
constinit std::atomic<std::uint32_t> loadingThread{0};  // the one that makes the first load

// One thread loads at a time.
std::mutex& loadMutex() {
    static platform::Immortal<std::mutex> mutex;
    return mutex.get();
}

// A host's function that traces while it is asked for the profile directory gets no further.
bool loadsHere() {
    return loadingThread.load() == platform::threadId();
}

// --- Paths --------------------------------------------------------------------------------------

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

constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool endsInLog(const char* name) {
    const std::size_t length = std::strlen(name);
    if (length < 4) return false;
    const char* tail = name + length - 4;
    return tail[0] == '.' && lower(tail[1]) == 'l' && lower(tail[2]) == 'o' &&
           lower(tail[3]) == 'g';
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

// The choices of paths say whether there was memory to keep them.
bool chooseLogPath() {
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
    return qel::trace::publish(Path::kLog, log.text);
}

bool deriveSidePaths() {
    const char* log = qel::trace::path(Path::kLog);
    PathBuffer side = copyOf(log);
    const std::size_t directory = platform::directoryLength(log);
    bool kept = qel::trace::publish(Path::kSavedLog, log);
    side.cut(directory);
    kept = qel::trace::publish(Path::kRunDirectory, side.text) && kept;
    side.append("SyncML_Input.log");
    kept = qel::trace::publish(Path::kSyncInput, side.text) && kept;
    side.cut(directory);
    side.append("SyncML_Output.log");
    return qel::trace::publish(Path::kSyncOutput, side.text) && kept;
}

bool chooseOptionsPath() {
    PathBuffer options;
    if (!platform::environment("BX_OPTIONS_FILE_PATH", options.text, sizeof options.text)) {
        options = copyOf(qel::trace::path(Path::kLog));
        options.cut(lengthToLastSeparator(options.text));
        options.append("BxOptions.opt");
    }
    return qel::trace::publish(Path::kOptions, options.text);
}

// --- Options ------------------------------------------------------------------------------------

// A number as the C library reads it from a text (blanks, a sign, digits up to the first that is
// none), with what leaves 32 bits held at their end. Hexadecimal is unsigned and may have "0x".
int parseNumber(const char* text, unsigned base) {
    while (*text == ' ' || (*text >= '\t' && *text <= '\r')) ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') ++text;
    if (base == 16 && text[0] == '0' && lower(text[1]) == 'x') text += 2;
    const std::int64_t most =
        base == 16 ? std::int64_t{UINT_MAX} : std::int64_t{INT_MAX} + (negative ? 1 : 0);
    std::int64_t value = 0;
    for (;; ++text) {
        const char c = lower(*text);
        const int digit = c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : 99;
        if (digit >= static_cast<int>(base)) break;
        value = std::min(value * base + digit, most);
    }
    return static_cast<int>(static_cast<std::uint32_t>(negative ? -value : value));
}

// The options file; a host may ask for an option before anything was traced.
const char* optionsFile() {
    if (qel::trace::path(Path::kOptions)[0] == '\0') BxTrace_LoadSettings();
    return qel::trace::path(Path::kOptions);
}

// Reads an option's text; false when it is missing or empty.
bool readOption(const char* section, const char* key, char (&text)[1025]) {
    text[0] = '\0';
    if (section == nullptr || key == nullptr) return false;
    const char* file = optionsFile();
    if (file[0] != '\0') platform::readProfile(file, section, key, text, sizeof text);
    return text[0] != '\0';
}

void writeOption(const char* section, const char* key, const char* format, int value,
                 platform::ProfileWrite when = platform::ProfileWrite::kAlways) {
    const char* file = optionsFile();
    if (section == nullptr || key == nullptr || file[0] == '\0') return;
    char text[16];
    std::snprintf(text, sizeof text, format, value);
    // A file that cannot be written is no failure: the value in use stays.
    platform::writeProfile(file, section, key, text, when);
}

// Reads an option; one that is missing is filled in with the value in use. Another process may be
// filling in the same file: the value that it or its user has written meanwhile counts.
void readOrFillIn(const char* section, const char* key, unsigned base, int& value) {
    char text[1025];
    if (!readOption(section, key, text)) {
        writeOption(section, key, base == 16 ? "%x" : "%d", value,
                    platform::ProfileWrite::kIfMissing);
        if (!readOption(section, key, text)) return;
    }
    value = parseNumber(text, base);
}

using OptionReader = void (*)(const char*, const char*, int&);

void readSetting(OptionReader read, const char* key, std::atomic<int>& setting) {
    int value = setting.load(std::memory_order_relaxed);
    read(kSection, key, value);
    setting.store(value, std::memory_order_relaxed);
}

void readSettings() {
    qel::trace::Settings& s = settings();
    readSetting(BxTrace_GetOptionValue, "MaxFileSize", s.maxFileSize);
    readSetting(BxTrace_GetOptionValue, "MaxBackupCount", s.maxBackupCount);
    readSetting(BxTrace_GetOptionValue, "KeepLogFiles", s.keepLogFiles);
    readSetting(BxTrace_GetOptionValue, "VTraceVerbosity", s.verbosity);
    readSetting(BxTrace_GetHexOptionValue, "TracingOptions", s.tracingOptions);
    readSetting(BxTrace_GetHexOptionValue, "LogManagerLevel", s.logManagerLevel);
    readSetting(BxTrace_GetHexOptionValue, "LogManagerDetail", s.logManagerDetail);
    int retro = s.retroBufferSize.load();
    const int before = retro;
    BxTrace_GetOptionValue(kSection, "RetroactiveTracingBufferSize", retro);
    if (retro == before) return;
    const qel::trace::WriterLock lock;
    // Without the mutex the size stays; the next load finds the difference again.
    if (lock) qel::trace::resizeRetroBuffers(retro);
}

// What is settled once for the process; false when there is no memory for the log's own name.
bool readFirstSettings() {
    qel::trace::Settings& s = settings();
    readSetting(BxTrace_GetOptionValue, "SeparateLogForEachProcess", s.separateLogs);
    const char* log = qel::trace::path(Path::kLog);
    if (s.separateLogs != 0 && endsInLog(log)) {
        PathBuffer own = copyOf(log);
        char suffix[24];
        std::snprintf(suffix, sizeof suffix, "_%d.log", static_cast<int>(platform::processId()));
        // A path of the full length gives up some of its name, never the number.
        own.cut(std::min(std::strlen(log) - 4, kPathRoom - 1 - std::strlen(suffix)));
        own.append(suffix);
        if (!qel::trace::publish(Path::kLog, own.text)) return false;
    }
    readSetting(BxTrace_GetOptionValue, "KeepLogFileOpen", s.keepLogFileOpen);
    if (s.separateLogs == 0) s.keepLogFileOpen = 0;
    s.effectiveBackupCount = std::max(1, s.maxBackupCount.load());
    return true;
}

// The file from which an older component of the host takes two of the settings.
void writeCompatibilityFile() {
    PathBuffer file = copyOf(qel::trace::path(Path::kOptions));
    file.cut(lengthToLastSeparator(file.text));
    file.append("zqoptcfg.cfg");
    const auto write = [&file](const char* section, const char* key, int value) {
        char text[16];
        std::snprintf(text, sizeof text, "%d", value);
        platform::writeProfile(file.text, section, key, text);
    };
    write("zqwin", "MultiJobTraceLog", 1);
    write("General", "ErrLogMaxSize", settings().maxFileSize);
    write("General", "ErrLogBackups", settings().maxBackupCount);
}

void firstLoad(std::uint32_t now) {
    if (loadsHere()) return;
    const std::lock_guard lock(loadMutex());
    if (initialised.load(std::memory_order_acquire)) return;
    loadingThread.store(platform::threadId());
    const bool found = (qel::trace::path(Path::kLog)[0] != '\0' || chooseLogPath()) &&
                       deriveSidePaths() && chooseOptionsPath();
    if (found) readSettings();
    // Without memory for them the next call tries again, or this process would never log.
    if (found && readFirstSettings()) {
        writeCompatibilityFile();
        lastLoad.store(now, std::memory_order_relaxed);
        initialised.store(true, std::memory_order_release);
    }
    loadingThread.store(0);
}

void reload(std::uint32_t now) {
    // Inside a message the settings stay as they are; the log's lock is held there, and the options
    // file may need the same one.
    if (qel::trace::WriterLock::heldHere()) return;
    const std::unique_lock lock(loadMutex(), std::try_to_lock);
    if (!lock.owns_lock()) return;  // another thread is at it
    readSettings();
    lastLoad.store(now, std::memory_order_relaxed);
}

}  // namespace

namespace qel::trace {

void forgetLoad() noexcept {
    initialised.store(false);
    lastLoad.store(0);
    loadingThread.store(0);
}

}  // namespace qel::trace

void BxTrace_LoadSettings() {
    const std::uint32_t now = qel::trace::ticks();
    if (!initialised.load(std::memory_order_acquire)) return firstLoad(now);
    const std::uint32_t last = lastLoad.load(std::memory_order_relaxed);
    if (now > last && now - last < kReloadMilliseconds) return;
    reload(now);
}

bool BxTrace_ForceInitialization() {
    BxTrace_LoadSettings();
    return true;
}

void BxTrace_SetLogFileName(const char* name) {
    if (name == nullptr || name[0] == '\0' || loadsHere()) return;
    const std::lock_guard lock(loadMutex());
    PathBuffer log = copyOf(name);
    if (!endsInLog(log.text)) log.append(".log");
    qel::trace::publish(Path::kLog, log.text);
    deriveSidePaths();
    PathBuffer part = copyOf(log.text + lengthToLastSeparator(log.text));
    part.cut(64);
    qel::trace::publish(Path::kLogName, part.text);
}

char* BxTrace_GetOptionsFilePath() {
    return qel::trace::path(Path::kOptions);
}

char* QELUTILITY_CALL BxTrace_GetLogFilePath() {
    return qel::trace::path(Path::kLog);
}

char* QELUTILITY_CALL BxTrace_GetRunDirWithTrailingBackslash() {
    BxTrace_LoadSettings();
    return qel::trace::path(Path::kRunDirectory);
}

long BxTrace_GetTracingOptions() {
    BxTrace_LoadSettings();
    return settings().tracingOptions;
}

void BxTrace_GetOptionValue(const char* section, const char* key, int& value) {
    readOrFillIn(section, key, 10, value);
}

void BxTrace_GetHexOptionValue(const char* section, const char* key, int& value) {
    readOrFillIn(section, key, 16, value);
}

void BxTrace_SetOptionValue(const char* section, const char* key, int value) {
    writeOption(section, key, "%d", value);
}

void BxTrace_SetHexOptionValue(const char* section, const char* key, int value) {
    writeOption(section, key, "%x", value);
}
