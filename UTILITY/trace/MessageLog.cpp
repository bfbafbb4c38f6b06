#include "trace/MessageLog.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "platform/Files.h"
#include "platform/LockResult.h"
#include "platform/PathLock.h"
#include "platform/Process.h"
#include "platform/TraceMutex.h"
#include "trace/Stamp.h"

namespace qel::trace {

namespace {

using platform::LockResult;

constexpr std::uint32_t kWaitMilliseconds = 200;  // the most that a trace makes its caller wait
constexpr std::int64_t kShortestBannered = 20;    // bytes; a shorter log has no banner yet
constexpr std::size_t kPrefixRoom = 72;           // "[", 8 digits, "] ", a stamp, ": "
static_assert(kPrefixRoom >= 13 + sizeof(Stamp::text));

// How long a message waits for the log's lock. Short, because the message is written without the
// lock too, and because the process's other threads wait meanwhile.
constexpr std::uint32_t kAppendWaitMilliseconds = 50;

// "[%4.4X] %s: " with the thread and a stamp; returns the length. Digit by digit, because snprintf
// would take half of the time of a line.
std::size_t putPrefix(char* prefix) {
    char digits[8];
    int count = 0;
    for (std::uint32_t rest = platform::threadId(); rest != 0 || count < 4; rest >>= 4)
        digits[count++] = "0123456789ABCDEF"[rest & 15];
    char* out = prefix;
    *out++ = '[';
    while (count != 0) *out++ = digits[--count];
    *out++ = ']';
    *out++ = ' ';
    out = putStamp(out);
    *out++ = ':';
    *out++ = ' ';
    return static_cast<std::size_t>(out - prefix);
}

// How many bytes a message takes in the log at most: its text, and a prefix and a line end for each
// of its lines.
std::size_t roomFor(const char* text) {
    const std::size_t length = std::strlen(text);
    // Counting the lines of a short text would cost more than the room for as many as it can have.
    const auto lines =
        length < 256 ? static_cast<std::ptrdiff_t>(length) : std::count(text, text + length, '\n');
    return length + (static_cast<std::size_t>(lines) + 1) * (kPrefixRoom + 1);
}

}  // namespace

// --- The writer's mutex -------------------------------------------------------------------------

MessageLog::Lock::Lock(MessageLog& log) noexcept
    : log_(log), result_(platform::lockTraceMutex(kWaitMilliseconds)) {
    if (result_ != LockResult::kLocked) return;
    if (log_.heldHere()) {
        ++log_.depth_;
        return;
    }
    log_.depth_ = 1;
    log_.writer_.store(platform::threadId(), std::memory_order_relaxed);
    // A thread that ended while it held the mutex has left its message unfinished.
    log_.fileLock_.release();
    log_.redirectedTo_ = nullptr;
    log_.retro_.setFlushing(false);
}

MessageLog::Lock::~Lock() {
    if (result_ != LockResult::kLocked) return;
    if (--log_.depth_ == 0) log_.writer_.store(0, std::memory_order_relaxed);
    platform::unlockTraceMutex();
}

// --- Messages -----------------------------------------------------------------------------------

bool MessageLog::Target::put(const char* text, std::size_t length) const noexcept {
    if (kept != nullptr) return kept->put(text, length);
    return stream != nullptr && stream->put(text, length);
}

int MessageLog::write(const char* text, std::uint32_t mask, const char*& failure) noexcept {
    const Lock lock(*this);
    if (!lock) {
        if (lock.result() == LockResult::kTimedOut)
            failure = "WaitForSingleObject timed out in BxTrace_Trace000";
        return -1;
    }
    const bool toMainLog = (settings_.tracingMask() & kSyncInMainLogBit) != 0;
    if (!toMainLog && (mask & kSyncInputBit) != 0)
        redirectedTo_ = paths_.get(Path::kSyncInput);
    else if (!toMainLog && (mask & kSyncOutputBit) != 0)
        redirectedTo_ = paths_.get(Path::kSyncOutput);
    bool written = false;
    try {
        bool opened = false;
        written = writeMessage(text, mask, opened);
        if (!opened) failure = "OpenLogFile failed in BxTrace_Trace000";
    } catch (...) {
        failure = "Exception caught in BxTrace_Trace000";
    }
    if (redirectedTo_ != nullptr) {
        // The saved path lacks the process's number: with a log for each process, the first SyncML
        // message makes this process use the shared name from here on.
        redirectedTo_ = nullptr;
        paths_.publish(Path::kLog, paths_.get(Path::kSavedLog));
    }
    fileLock_.release();
    return written ? 0 : -1;
}

bool MessageLog::writeMessage(const char* text, std::uint32_t mask, bool& opened) {
    Target target;
    const int failedOpens = failedOpens_;
    const bool firstBanner = firstBanner_;
    opened = open(roomFor(text), target);
    if (!opened) return false;
    const bool syncML = (mask & (kSyncInputBit | kSyncOutputBit)) != 0;
    const bool written = syncML && retro_.size() == 0
                             ? writeSyncMLBlock(text, (mask & kSyncInputBit) != 0, target)
                             : writeLines(false, text, target);
    const bool closed = close(target);
    if (written && closed) return true;
    // What came before the message is to be told with the next one, on a line of its own.
    failedOpens_ = failedOpens;
    firstBanner_ = firstBanner;
    endLookedUp_ = nullptr;
    return false;
}

// Writes `text` line by line to the log, or to the retroactive buffers while they take traces.
// Every line gets a prefix; with `noPrefix` the first does not.
bool MessageLog::writeLines(bool noPrefix, const char* text, const Target& target) {
    assert(heldHere());
    const bool toBuffers = retro_.takeTraces();
    std::int64_t written = 0;
    bool failed = false;
    const auto put = [&](const char* piece, std::size_t length) {
        if (toBuffers)
            retro_.append(piece, length);
        else if (target.put(piece, length))
            written += static_cast<std::int64_t>(length);
        else
            failed = true;
    };
    bool prefixDue = !noPrefix;
    const char* line = text;
    while (*line != '\0') {
        const char* newline = std::strchr(line, '\n');
        const char* next = newline != nullptr ? newline + 1 : line + std::strlen(line);
        if (prefixDue) {
            char prefix[kPrefixRoom];
            put(prefix, putPrefix(prefix));
        }
        // What comes from the buffers has its prefixes already.
        prefixDue = !retro_.flushing();
        put(line, static_cast<std::size_t>(next - line));
        line = next;
    }
    if (written > 0 && line[-1] != '\n') put("\n", 1);
    if (target.kept != nullptr) target.kept->grow(written);
    return !failed;
}

// A SyncML document keeps its own layout: a header, the text as it is, a line end.
bool MessageLog::writeSyncMLBlock(const char* text, bool input, const Target& target) {
    char header[96];
    const int length = std::snprintf(header, sizeof header, "%s: %s\n", makeStamp().text,
                                     input ? "SyncML Input:" : "SyncML Output:");
    return target.put(header, static_cast<std::size_t>(length)) &&
           target.put(text, std::strlen(text)) && target.put("\n", 1);
}

void MessageLog::writeBanner(const Target& target) {
    char banner[96];
    std::snprintf(banner, sizeof banner, " -- Halverd Log File, TracingOptions=%x --\n\n",
                  settings_.tracingMask());
    writeLines(false, banner, target);
    if (settings_.separateLogs == 0) return;
    char program[kPathRoom];
    if (!platform::processPath(program, sizeof program)) program[0] = '\0';
    char line[kPathRoom + 64];
    std::snprintf(line, sizeof line, "Process ID is %d, running '%s'\n",
                  static_cast<int>(platform::processId()), program);
    writeLines(false, line, target);
}

void MessageLog::reportFailedOpens(const Target& target) {
    if (failedOpens_ == 0) return;
    char line[128];
    const int length = std::snprintf(
        line, sizeof line,
        "\n\n** The previous %d logging attempts were thwarted by 'OpenLogFile' failures **\n\n",
        failedOpens_);
    failedOpens_ = 0;
    // Whether it reached the file shows when the message after it is closed.
    (void)target.put(line, static_cast<std::size_t>(length));
    if (target.kept != nullptr) target.kept->grow(length);
}

// --- Opening and closing ------------------------------------------------------------------------

const char* MessageLog::activePath() const noexcept {
    return redirectedTo_ != nullptr ? redirectedTo_ : paths_.get(Path::kLog);
}

bool MessageLog::directoryWritable() noexcept {
    if (directoryWritable_ < 0) {
        const char* log = activePath();
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
        directoryWritable_ = known && platform::directoryWritable(directory) ? 1 : 0;
    }
    return directoryWritable_ == 1;
}

// Gives the target for a message that takes `room` bytes at most; it is empty, and the result true,
// while messages go to the retroactive buffers alone.
bool MessageLog::open(std::size_t room, Target& target) {
    assert(heldHere());
    target = {};
    const char* path = activePath();
    // Only a host that traces while it is asked for its profile directory can be as early as this.
    if (path[0] == '\0') return false;
    if (settings_.keepLogFileOpen != 0) {
        if (!kept_.current(settings_.maxFileSize, ticks_()) && !openKept(path)) return false;
        kept_.begin();
        target.kept = &kept_;
        return true;
    }
    if (retro_.takeTraces()) return true;
    if (!directoryWritable()) return false;
    if (!openForMessage(path, room)) return false;
    target.stream = &stream_;
    return true;
}

// Whether the log ends in a part of a line, as a full disk or a process that was killed leaves it.
// Looked up once in a tick, because that costs system calls, and after each message that failed.
bool MessageLog::cutLineDue(const char* path) noexcept {
    const std::uint32_t now = ticks_();
    if (path == endLookedUp_ && now == endLookedUpAt_) return false;
    endLookedUp_ = path;
    endLookedUpAt_ = now;
    return !platform::endsInLine(path);
}

bool MessageLog::openForMessage(const char* path, std::size_t room) {
    const bool sizeDue = sizeCheck_.countOpen();
    // A message that is one write lands whole at the log's end, wherever the log has been renamed
    // to by then, so only those who rotate or begin a log make the others wait. On other systems
    // each message takes the lock, and goes without it where appending is safe.
    if (sizeDue || !platform::messagesAreWhole()) {
        const bool safe = platform::appendsAreAtomic();
        const LockResult lock =
            fileLock_.acquire(path, safe ? kAppendWaitMilliseconds : kWaitMilliseconds);
        if (lock == LockResult::kTimedOut && !safe) return false;
        if (sizeDue && limitUnlessLocked(path, lock)) sizeCheck_.examined();
    }
    const bool cutLine = cutLineDue(path);
    std::int64_t length = -1;
    if (!stream_.open(path, room, &length)) {
        ++failedOpens_;
        fileLock_.release();
        return false;
    }
    if (length < kShortestBannered && !fileLock_.held() &&
        fileLock_.acquire(path, kAppendWaitMilliseconds) == LockResult::kLocked)
        length = platform::fileSize(path);  // another process may have begun the log meanwhile
    const Target target{&stream_, nullptr};
    if (cutLine) (void)target.put("\n", 1);
    if (length < kShortestBannered || firstBanner_) {
        firstBanner_ = false;
        writeBanner(target);
    }
    reportFailedOpens(target);
    return true;
}

bool MessageLog::openKept(const char* path) {
    const LockResult lock = fileLock_.acquire(path, kAppendWaitMilliseconds);
    const bool opened = openKeptLocked(path, lock);
    fileLock_.release();
    return opened;
}

bool MessageLog::openKeptLocked(const char* path, LockResult lock) {
    std::int64_t size = kept_.sizeBeforeOpen(path);
    if (size >= settings_.maxFileSize && limitUnlessLocked(path, lock)) {
        kept_.startEmpty();
        size = 0;
    }
    if (!kept_.open(path, (settings_.keepLogFileOpen & kRuntimesBuffering) != 0)) {
        ++failedOpens_;
        return false;
    }
    const Target target{nullptr, &kept_};
    const int failedOpens = failedOpens_;
    kept_.begin();
    if (size == 0) writeLines(false, " -- Halverd Linkup Log File --\n\n", target);
    reportFailedOpens(target);
    if (!kept_.end(false)) failedOpens_ = failedOpens;
    return true;
}

// Applies the size limit. False when another process holds the log's lock: rotating would disturb
// that process, and the next message tries again.
bool MessageLog::limitUnlessLocked(const char* path, LockResult lock) {
    if (lock == LockResult::kTimedOut) return false;
    limitSize(path);
    return true;
}

bool MessageLog::close(const Target& target) {
    if (target.kept != nullptr) return target.kept->end(settings_.flushesEveryMessage() || ending_);
    if (target.stream == nullptr) return true;
    const bool written = stream_.close();
    fileLock_.release();
    return written;
}

// --- Buffers ------------------------------------------------------------------------------------

void MessageLog::resizeRetro(int size) noexcept {
    const Lock lock(*this);
    if (lock) retro_.resize(size);
}

void MessageLog::flushRetro() noexcept {
    if (retro_.size() == 0) return;
    const Lock lock(*this);
    if (!lock || !retro_.takeTraces()) return;
    retro_.setFlushing(true);
    Target target;
    if (open(2 * static_cast<std::size_t>(retro_.size()) + 2, target)) {
        retro_.drain([&](const char* text) { writeLines(true, text, target); });
        if (!close(target)) endLookedUp_ = nullptr;
    }
    retro_.setFlushing(false);
}

void MessageLog::flushKept() noexcept {
    const Lock lock(*this);
    if (lock) kept_.flush();
}

void MessageLog::finish() noexcept {
    const Lock lock(*this);
    if (!lock) return;
    kept_.flush();
    ending_ = true;
}

// --- Forks --------------------------------------------------------------------------------------

void MessageLog::beforeFork() noexcept {
    heldForFork_ = platform::lockTraceMutex(kWaitMilliseconds) == LockResult::kLocked;
}

void MessageLog::afterForkInParent() noexcept {
    if (heldForFork_) platform::unlockTraceMutex();
}

void MessageLog::afterForkInChild() noexcept {
    fileLock_.abandon();
    kept_.forget();
    retro_.clear();
    if (heldForFork_) {
        if (depth_ > 0) writer_.store(platform::threadId(), std::memory_order_relaxed);
        platform::unlockTraceMutex();
        return;
    }
    // The thread that was in the middle of a message is not in this process.
    depth_ = 0;
    writer_.store(0, std::memory_order_relaxed);
    stream_.forget();
}

// --- Rotation -----------------------------------------------------------------------------------

int MessageLog::limitSize(const char* path) noexcept {
    const std::int64_t size = std::max<std::int64_t>(0, platform::fileSize(path));
    if (size >= settings_.maxFileSize) return rotateLocked(path, settings_.effectiveBackupCount);
    return size != 0 ? -1 : 0;
}

int MessageLog::rotateLocked(const char* path, int count) noexcept {
    if (!canRotate(path)) return -1;
    const Lock lock(*this);
    if (!lock) return -1;
    // Inside a message the log may be locked already.
    platform::PathLock ownLock;
    if (!fileLock_.held() && ownLock.acquire(path, kWaitMilliseconds) == LockResult::kTimedOut)
        return -1;
    kept_.closeBeforeRotation(path);
    return rotate(path, count);
}

}  // namespace qel::trace
