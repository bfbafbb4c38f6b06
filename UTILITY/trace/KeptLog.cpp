#include "trace/KeptLog.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/Files.h"

namespace qel::trace {

namespace {

constexpr std::size_t kBuffer = 32768;

}  // namespace

KeptLog::~KeptLog() {
    close();
    std::free(buffer_);
}

std::FILE* KeptLog::current(std::int64_t limit, std::uint32_t now) noexcept {
    if (stream_ != nullptr && size_ != -1 && size_ >= limit) close();
    // Someone may have renamed or removed the log. It is looked up once in a tick, because that
    // costs a system call: until the next tick, a message shares the fate of the one before it.
    if (stream_ != nullptr && now != checked_) {
        checked_ = now;
        if (!platform::stillNamed(stream_, path_)) {
            close();
            size_ = -1;
        }
    }
    return stream_;
}

std::int64_t KeptLog::sizeBeforeOpen(const char* path) noexcept {
    if (size_ == -1) size_ = std::max<std::int64_t>(0, platform::fileSize(path));
    return size_;
}

std::FILE* KeptLog::open(const char* path, bool runtimesBuffer) noexcept {
    stream_ = platform::openForAppend(path, platform::NameWhileOpen::kHeld);
    if (stream_ == nullptr) return nullptr;
    std::snprintf(path_, sizeof path_, "%s", path);
    if (runtimesBuffer) return stream_;
    // From the heap, and kept when the log is closed: the run-time library may still write the
    // buffer out when the process ends, after this library has been unloaded.
    if (buffer_ == nullptr) buffer_ = static_cast<char*>(std::malloc(kBuffer));
    if (buffer_ != nullptr) std::setvbuf(stream_, buffer_, _IOFBF, kBuffer);
    return stream_;
}

bool KeptLog::flush() noexcept {
    return stream_ == nullptr || std::fflush(stream_) == 0;
}

void KeptLog::closeBeforeRotation(const char* path) noexcept {
    if (stream_ == nullptr || std::strcmp(path_, path) != 0) return;
    close();
    size_ = -1;
}

void KeptLog::close() noexcept {
    if (stream_ == nullptr) return;
    std::fclose(stream_);
    stream_ = nullptr;
}

}  // namespace qel::trace
