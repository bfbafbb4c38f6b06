// The log files: opening one for the next message, its banners, and its numbered backups.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "trace/BxTraceInternal.h"
#include "trace/TraceState.h"

namespace {

using qel::platform::LockResult;
using qel::trace::kPathRoom;
using qel::trace::kWaitMilliseconds;
using qel::trace::Path;
using qel::trace::settings;
using qel::trace::Writer;
using qel::trace::writer;
using qel::trace::WriterLock;
namespace platform = qel::platform;

constexpr int kMostBackups = 16;                // one hexadecimal digit
constexpr int kOpensBetweenSizeChecks = 500;    // asking for the size each time would cost too much
constexpr std::int64_t kShortestBannered = 20;  // bytes; a shorter log has no banner yet
constexpr std::size_t kStreamBuffer = 32768;
constexpr std::size_t kBannerRoom = 4096;  // more than all that goes before the message itself

// How long a message waits for the log's lock. Short, because it is written without the lock too,
// and because the process's other threads wait meanwhile.
constexpr std::uint32_t kAppendWaitMilliseconds = 50;

// For the log that is opened for each message: one at a time, under the writer's mutex.
constinit char streamBuffer[kStreamBuffer];

// --- Backups ------------------------------------------------------------------------------------

// Rotates under whatever locks could be had. The file is taken away at the end only when it is
// still the one that was there at the beginning: a log that another process has begun meanwhile
// stays.
int rotate(const char* path, std::size_t dot, int count) {
    const int baseLength = static_cast<int>(dot);
    const bool existed = platform::fileExists(path);
    const platform::FileIdentity before = platform::fileIdentity(path);
    int result = 0;
    for (int n = std::min(count, kMostBackups); n >= 1; --n) {
        char target[kPathRoom + 8];
        char source[kPathRoom + 8];
        std::snprintf(target, sizeof target, "%.*s.bk%x", baseLength, path,
                      static_cast<unsigned>(n - 1));
        if (n == 1) {
            std::snprintf(source, sizeof source, "%s", path);
        } else {
            std::snprintf(source, sizeof source, "%.*s.bk%x", baseLength, path,
                          static_cast<unsigned>(n - 2));
        }
        if (platform::fileExists(target)) result = platform::removeFile(target);
        if (platform::fileExists(source)) result = platform::renameFile(source, target);
    }
    const bool stillThere =
        existed && platform::fileExists(path) && platform::fileIdentity(path) == before;
    return stillThere ? platform::removeFile(path) : result;
}

// --- Opening ------------------------------------------------------------------------------------

bool logDirectoryWritable() {
    Writer& w = writer();
    if (w.directoryWritable < 0) {
        const char* log = qel::trace::activeLogPath();
        char directory[kPathRoom + 2] = "";
        std::size_t length = std::strlen(log);
        while (length > 0 && !platform::isPathSeparator(log[length - 1])) --length;
        bool known = true;
        if (length > 0) {
            std::memcpy(directory, log, length);
            directory[length] = '\0';
        } else {
            known = platform::currentDirectory(directory, kPathRoom);
        }
        w.directoryWritable = known && platform::directoryWritable(directory) ? 1 : 0;
    }
    return w.directoryWritable == 1;
}

void reportFailedOpens(std::FILE* stream) {
    Writer& w = writer();
    if (w.failedOpens == 0) return;
    const int length = std::fprintf(
        stream,
        "\n\n** The previous %d logging attempts were thwarted by 'OpenLogFile' failures **\n\n",
        w.failedOpens);
    w.failedOpens = 0;
    if (w.keptStream != nullptr) w.keptSize += std::max(length, 0);
}

void writeBanner(std::FILE* stream) {
    char banner[96];
    std::snprintf(banner, sizeof banner, " -- Halverd Log File, TracingOptions=%x --\n\n",
                  static_cast<unsigned>(settings().tracingOptions.load()));
    BxTrace_WriteLines(false, banner, stream);
    if (settings().separateLogs == 0) return;
    char program[kPathRoom];
    if (!platform::processPath(program, sizeof program)) program[0] = '\0';
    char line[kPathRoom + 64];
    std::snprintf(line, sizeof line, "Process ID is %d, running '%s'\n",
                  static_cast<int>(platform::processId()), program);
    BxTrace_WriteLines(false, line, stream);
}

// Applies the size limit to the log. False when another process holds the log's lock: then nothing
// is rotated under its hands, and the next message tries again.
bool limitSize(const char* log, LockResult lock) {
    if (lock == LockResult::kTimedOut) return false;
    BxTrace_CheckLogSize(log);
    return true;
}

// Gives the stream a buffer that holds the whole message, so that it reaches the log in one write,
// with no other process's lines in the middle. Without memory for a long one it goes in pieces.
void bufferMessage(std::FILE* stream) {
    Writer& w = writer();
    char* buffer = streamBuffer;
    std::size_t room = kStreamBuffer;
    if (w.messageRoom > kStreamBuffer - kBannerRoom) {
        w.longBuffer = static_cast<char*>(std::malloc(w.messageRoom + kBannerRoom));
        if (w.longBuffer != nullptr) {
            buffer = w.longBuffer;
            room = w.messageRoom + kBannerRoom;
        }
    }
    std::setvbuf(stream, buffer, _IOFBF, room);
}

int openEachTime(std::FILE** stream) {
    Writer& w = writer();
    if (qel::trace::retroSize() >= 1) return 0;
    if (!logDirectoryWritable()) return -1;
    const char* log = qel::trace::activeLogPath();
    const bool sizeDue = ++w.opensSinceSizeCheck > kOpensBetweenSizeChecks;
    // A message that is one write lands whole at the log's end, wherever the log has been renamed
    // to by then; only who rotates or begins a log makes the others wait. Elsewhere each message
    // takes the lock, and goes without it where appending is safe.
    if (sizeDue || !platform::messagesAreWhole()) {
        const bool safe = platform::appendsAreAtomic();
        const LockResult lock =
            w.lock.acquire(log, safe ? kAppendWaitMilliseconds : kWaitMilliseconds);
        if (lock == LockResult::kTimedOut && !safe) return -1;
        if (sizeDue && limitSize(log, lock)) w.opensSinceSizeCheck = 0;
    }
    std::int64_t length = -1;
    std::FILE* opened = platform::openForMessage(log, &length);
    if (opened == nullptr) {
        ++w.failedOpens;
        w.lock.release();
        return -1;
    }
    bufferMessage(opened);
    if (length < kShortestBannered && !w.lock.held() &&
        w.lock.acquire(log, kAppendWaitMilliseconds) == LockResult::kLocked)
        length = platform::fileSize(log);  // another process may have begun the log meanwhile
    if (length < kShortestBannered || w.firstBanner) {
        w.firstBanner = false;
        writeBanner(opened);
    }
    reportFailedOpens(opened);
    *stream = opened;
    return 0;
}

void closeKept() {
    Writer& w = writer();
    if (w.keptStream == nullptr) return;
    std::fclose(w.keptStream);
    w.keptStream = nullptr;
}

// Gives the kept-open log its buffer. It is never freed: the run-time library still writes it out
// when the process ends, and this library may have been unloaded by then.
void bufferKept() {
    Writer& w = writer();
    if (w.keptBuffer == nullptr) w.keptBuffer = static_cast<char*>(std::malloc(kStreamBuffer));
    if (w.keptBuffer != nullptr) std::setvbuf(w.keptStream, w.keptBuffer, _IOFBF, kStreamBuffer);
}

// Opens the log that is to be kept open, under the log's lock.
int openKeptLocked(const char* log, LockResult lock) {
    Writer& w = writer();
    if (w.keptSize == -1) w.keptSize = std::max<std::int64_t>(0, platform::fileSize(log));
    if (w.keptSize >= settings().maxFileSize && limitSize(log, lock)) w.keptSize = 0;
    w.keptStream = platform::openForAppend(log, platform::NameWhileOpen::kHeld);
    if (w.keptStream == nullptr) {
        ++w.failedOpens;
        return -1;
    }
    std::snprintf(w.keptPath, sizeof w.keptPath, "%s", log);
    if ((settings().keepLogFileOpen & qel::trace::kRuntimesBuffering) == 0) bufferKept();
    if (w.keptSize == 0)
        BxTrace_WriteLines(false, " -- Halverd Linkup Log File --\n\n", w.keptStream);
    reportFailedOpens(w.keptStream);
    return 0;
}

int openKept() {
    Writer& w = writer();
    const char* log = qel::trace::activeLogPath();
    const LockResult lock = w.lock.acquire(log, kAppendWaitMilliseconds);
    const int result = openKeptLocked(log, lock);
    w.lock.release();
    return result;
}

int openOrReuseKept(std::FILE** stream) {
    Writer& w = writer();
    if (w.keptStream != nullptr && w.keptSize != -1 && w.keptSize >= settings().maxFileSize)
        closeKept();
    // Someone may have renamed or removed the log. Asked once in a tick: until the next one, what
    // is written shares the fate of what was written just before.
    const std::uint32_t now = qel::trace::ticks();
    if (w.keptStream != nullptr && now != w.keptChecked) {
        w.keptChecked = now;
        if (!platform::stillNamed(w.keptStream, w.keptPath)) {
            closeKept();
            w.keptSize = -1;
        }
    }
    if (w.keptStream == nullptr && openKept() != 0) return -1;
    *stream = w.keptStream;
    return 0;
}

}  // namespace

int OpenLogFile(std::FILE** stream) {
    *stream = nullptr;
    // Only a host that traces while it is asked for its profile directory can be as early as this.
    if (qel::trace::activeLogPath()[0] == '\0') return -1;
    return settings().keepLogFileOpen != 0 ? openOrReuseKept(stream) : openEachTime(stream);
}

int BxTrace_CloseLogFile(std::FILE* stream) {
    if (stream == nullptr || settings().keepLogFileOpen != 0) return 0;
    const bool written = std::ferror(stream) == 0;
    const bool closed = std::fclose(stream) == 0;
    Writer& w = writer();
    std::free(w.longBuffer);
    w.longBuffer = nullptr;
    w.lock.release();
    return written && closed ? 0 : -1;
}

void BxTrace_FlushLog() {
    const WriterLock lock;
    if (lock && writer().keptStream != nullptr) std::fflush(writer().keptStream);
}

int BxTrace_CheckLogSize(const char* path) {
    BxTrace_LoadSettings();
    const std::int64_t size = std::max<std::int64_t>(0, platform::fileSize(path));
    if (size >= settings().maxFileSize)
        return BxTrace_MusicalBackups(path, settings().effectiveBackupCount);
    return size != 0 ? -1 : 0;
}

int BxTrace_ErrorLogDelete() {
    BxTrace_LoadSettings();
    return settings().keepLogFiles != 0 ? 0 : BxTrace_BackupLogFile();
}

int BxTrace_BackupLogFile() {
    BxTrace_LoadSettings();
    const char* log = qel::trace::path(Path::kLog);
    return platform::fileExists(log) ? BxTrace_MusicalBackups(log, settings().maxBackupCount) : 0;
}

int BxTrace_MusicalBackups(const char* path, int count) {
    BxTrace_LoadSettings();
    if (path == nullptr) path = qel::trace::path(Path::kLog);
    // A cut path would be another file's.
    if (strnlen(path, kPathRoom) == kPathRoom) return -1;
    const std::size_t directory = platform::directoryLength(path);
    const char* dot = std::strrchr(path + directory, '.');
    if (dot == nullptr) return -1;
    const WriterLock lock;
    if (!lock) return -1;
    Writer& w = writer();
    platform::PathLock logLock;
    if (!w.lock.held() && logLock.acquire(path, kWaitMilliseconds) == LockResult::kTimedOut)
        return -1;
    if (w.keptStream != nullptr && std::strcmp(w.keptPath, path) == 0) {
        closeKept();
        w.keptSize = -1;
    }
    return rotate(path, static_cast<std::size_t>(dot - path), count);
}
