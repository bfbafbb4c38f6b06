#include "trace/KeptLog.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "platform/Files.h"

namespace qel::trace {

bool KeptLog::current(std::int64_t limit, std::uint32_t now) noexcept {
    if (file_ != kNoFile && size_ != -1 && size_ >= limit) close();
    // Someone may have renamed or removed the log. It is looked up once in a tick, because that
    // costs a system call: until the next tick, a message shares the fate of the one before it.
    if (file_ != kNoFile && now != checked_) {
        checked_ = now;
        if (!platform::stillNamed(file_, path_)) {
            close();
            size_ = -1;
        }
    }
    return file_ != kNoFile;
}

std::int64_t KeptLog::sizeBeforeOpen(const char* path) noexcept {
    if (size_ == -1) size_ = std::max<std::int64_t>(0, platform::fileSize(path));
    return size_;
}

bool KeptLog::open(const char* path, bool runtimesBuffer) noexcept {
    const bool cut = !platform::endsInLine(path);
    file_ = platform::openHeld(path);
    if (file_ == kNoFile) return false;
    std::snprintf(path_, sizeof path_, "%s", path);
    room_ = runtimesBuffer ? std::min<std::size_t>(BUFSIZ, kBuffer) : kBuffer;
    cut_ = cut;
    return true;
}

void KeptLog::begin() noexcept {
    taken_ = used_;
    partOut_ = 0;
    refused_ = false;
    sizeBefore_ = size_;
    if (cut_) (void)put("\n", 1);
}

bool KeptLog::put(const char* text, std::size_t length) noexcept {
    while (length > 0 && !refused_) {
        if (used_ >= room_) {
            // What was taken goes first, so that as little as possible is written of a message that
            // may yet be refused.
            refused_ = !writeOut(taken_ > 0 ? taken_ : used_);
            continue;
        }
        const std::size_t count = std::min(length, room_ - used_);
        std::memcpy(buffer_ + used_, text, count);
        used_ += count;
        text += count;
        length -= count;
    }
    return !refused_;
}

bool KeptLog::end(bool flush) noexcept {
    if (flush && !refused_) refused_ = !writeOut(used_);
    if (!refused_) {
        cut_ = false;
    } else {
        used_ = taken_;
        size_ = sizeBefore_;
        if (partOut_ > 0) cut_ = last_ != '\n';
    }
    taken_ = used_;
    return !refused_;
}

// Writes the first `count` bytes of the buffer; those that the file did not take stay.
bool KeptLog::writeOut(std::size_t count) noexcept {
    if (count == 0) return true;
    const std::size_t done =
        file_ != kNoFile ? platform::appendTo(file_, buffer_, count) : std::size_t{0};
    if (done > 0) last_ = buffer_[done - 1];
    const std::size_t ofTaken = std::min(done, taken_);
    taken_ -= ofTaken;
    partOut_ += done - ofTaken;
    used_ -= done;
    std::memmove(buffer_, buffer_ + done, used_);
    return done == count;
}

bool KeptLog::flush() noexcept {
    return file_ == kNoFile || writeOut(used_);
}

void KeptLog::closeBeforeRotation(const char* path) noexcept {
    if (file_ == kNoFile || std::strcmp(path_, path) != 0) return;
    close();
    size_ = -1;
}

// What cannot be written now goes to the log that is opened next.
void KeptLog::close() noexcept {
    if (file_ == kNoFile) return;
    (void)flush();
    platform::closeAppended(file_);
    file_ = kNoFile;
}

void KeptLog::forget() noexcept {
    used_ = 0;
    taken_ = 0;
    close();
    size_ = -1;
}

}  // namespace qel::trace
