#include "trace/TraceState.h"

#include <cassert>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#include "platform/Immortal.h"

namespace qel::trace {

namespace {

// Every text that was ever a path. There are a handful in the life of a process, so they are looked
// for one after another and are never freed: a pointer to one stays good.
struct PathText {
    char text[kPathRoom];
    PathText* next;
};

constinit PathText emptyPath{"", nullptr};
constinit PathText* knownPaths = &emptyPath;
constinit std::array<std::atomic<char*>, 7> paths{emptyPath.text, emptyPath.text, emptyPath.text,
                                                  emptyPath.text, emptyPath.text, emptyPath.text,
                                                  emptyPath.text};

std::mutex& knownPathsMutex() {
    static platform::Immortal<std::mutex> mutex;
    return mutex.get();
}

constinit Settings theSettings;
constinit std::atomic<std::uint32_t> writerThread{0};  // 0: none
constinit int writerDepth = 0;  // how often that thread holds the mutex; its own alone

using TickSource = std::uint32_t (*)();
constinit std::atomic<TickSource> tickSource{nullptr};

// The last stamp: its millisecond in the upper half, its number in the lower. 1000 is no
// millisecond.
constinit std::atomic<std::uint64_t> lastStamp{std::uint64_t{1000} << 32};

}  // namespace

Settings& settings() noexcept {
    return theSettings;
}

char* path(Path which) noexcept {
    return paths[static_cast<std::size_t>(which)].load(std::memory_order_acquire);
}

bool publish(Path which, const char* text) noexcept {
    std::atomic<char*>& slot = paths[static_cast<std::size_t>(which)];
    if (text == slot.load(std::memory_order_relaxed)) return true;
    const std::lock_guard lock(knownPathsMutex());
    const std::size_t length = strnlen(text, kPathRoom - 1);
    PathText* known = knownPaths;
    while (known != nullptr &&
           (std::strncmp(known->text, text, length) != 0 || known->text[length] != '\0'))
        known = known->next;
    if (known == nullptr) {
        known = new (std::nothrow) PathText;
        if (known == nullptr) return false;
        std::memcpy(known->text, text, length);
        known->text[length] = '\0';
        known->next = knownPaths;
        knownPaths = known;
    }
    slot.store(known->text, std::memory_order_release);
    return true;
}

WriterLock::WriterLock() noexcept : result_(platform::lockTraceMutex(kWaitMilliseconds)) {
    if (result_ != platform::LockResult::kLocked) return;
    if (heldHere()) {
        ++writerDepth;
        return;
    }
    // A thread that ended while it held the mutex has left its depth behind, and its message
    // unfinished.
    writerDepth = 1;
    writerThread.store(platform::threadId(), std::memory_order_relaxed);
    Writer& w = writer();
    w.lock.release();
    w.redirectedTo = nullptr;
    w.flushing = false;
}

WriterLock::~WriterLock() {
    if (result_ != platform::LockResult::kLocked) return;
    if (--writerDepth == 0) writerThread.store(0, std::memory_order_relaxed);
    platform::unlockTraceMutex();
}

bool WriterLock::heldHere() noexcept {
    return writerThread.load(std::memory_order_relaxed) == platform::threadId();
}

Writer& writer() noexcept {
    assert(WriterLock::heldHere());
    static platform::Immortal<Writer> theWriter;
    return theWriter.get();
}

int retroSize() noexcept {
    const int size = theSettings.retroBufferSize.load(std::memory_order_relaxed);
    return writer().flushing ? -size : size;
}

void resizeRetroBuffers(int size) noexcept {
    Writer& w = writer();
    for (char*& buffer : w.retro) {
        if (size < 0) break;
        char* resized = static_cast<char*>(
            std::realloc(buffer, static_cast<std::size_t>(size) + std::size_t{1}));
        if (resized == nullptr)
            size = -1;
        else
            buffer = resized;
    }
    if (size < 0) size = 0;
    theSettings.retroBufferSize.store(size);
    if (size == 0) return;
    w.retroCurrent = 0;
    w.retroFill = 0;
    for (char* buffer : w.retro) buffer[0] = '\0';
}

const char* activeLogPath() noexcept {
    const char* redirected = writer().redirectedTo;
    return redirected != nullptr ? redirected : path(Path::kLog);
}

char* putStamp(char* out) noexcept {
    const platform::LocalClock now = platform::localClock();
    const auto millisecond = static_cast<std::uint64_t>(now.millisecond);
    std::uint64_t last = lastStamp.load(std::memory_order_relaxed);
    std::uint64_t mine = 0;
    do {
        mine = last >> 32 == millisecond ? (millisecond << 32) | ((last + 1) & 0xFFFFFFFF)
                                         : millisecond << 32;
    } while (!lastStamp.compare_exchange_weak(last, mine, std::memory_order_relaxed));
    // Digit by digit: a format would cost half of a line.
    const auto put2 = [&out](int number, char after) {
        *out++ = static_cast<char>('0' + number / 10);
        *out++ = static_cast<char>('0' + number % 10);
        *out++ = after;
    };
    put2(now.month, '/');
    put2(now.day, ' ');
    put2(now.hour, ':');
    put2(now.minute, ':');
    put2(now.second, '.');
    *out++ = static_cast<char>('0' + now.millisecond / 100);
    put2(now.millisecond % 100, ' ');
    char digits[10];
    int count = 0;
    for (auto number = static_cast<std::uint32_t>(mine); number != 0 || count < 3; number /= 10)
        digits[count++] = static_cast<char>('0' + number % 10);
    while (count != 0) *out++ = digits[--count];
    *out++ = '\0';
    return out - 1;
}

Stamp makeStamp() noexcept {
    Stamp stamp;
    putStamp(stamp.text);
    return stamp;
}

std::uint32_t ticks() noexcept {
    const TickSource source = tickSource.load(std::memory_order_relaxed);
    return source != nullptr ? source() : platform::tickCount();
}

void resetForTest(std::uint32_t (*ticks)()) noexcept {
    const WriterLock lock;
    if (!lock) return;
    Writer& w = writer();
    if (w.keptStream != nullptr) std::fclose(w.keptStream);
    std::free(w.keptBuffer);
    for (char* buffer : w.retro) std::free(buffer);
    w.~Writer();
    new (&w) Writer;
    theSettings.~Settings();
    new (&theSettings) Settings;
    for (std::atomic<char*>& slot : paths) slot.store(emptyPath.text);
    forgetLoad();
    tickSource.store(ticks);
}

}  // namespace qel::trace
