#include "trace/MessageStream.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/Files.h"

namespace qel::trace {

namespace {

constexpr std::size_t kBannerRoom = 4096;  // more than all that comes before the message itself

}  // namespace

bool MessageStream::open(const char* path, std::size_t room, std::int64_t* size) noexcept {
    // What a thread that ended in the middle of a message has left.
    if (file_ != kNoFile) (void)close();
    file_ = platform::openForMessage(path, size);
    if (file_ == kNoFile) return false;
    if (room > kBuffer - kBannerRoom)
        longBuffer_ = static_cast<char*>(std::malloc(room + kBannerRoom));
    text_ = longBuffer_ != nullptr ? longBuffer_ : buffer_;
    room_ = longBuffer_ != nullptr ? room + kBannerRoom : kBuffer;
    used_ = 0;
    failed_ = false;
    return true;
}

bool MessageStream::put(const char* data, std::size_t length) noexcept {
    while (length > 0 && !failed_) {
        const std::size_t count = std::min(length, room_ - used_);
        std::memcpy(text_ + used_, data, count);
        used_ += count;
        data += count;
        length -= count;
        if (length > 0) writeOut();
    }
    return !failed_;
}

void MessageStream::writeOut() noexcept {
    if (platform::appendTo(file_, text_, used_) < used_) failed_ = true;
    used_ = 0;
}

bool MessageStream::close() noexcept {
    if (!failed_) writeOut();
    platform::closeAppended(file_);
    std::free(longBuffer_);
    forget();
    return !failed_;
}

void MessageStream::forget() noexcept {
    file_ = kNoFile;
    longBuffer_ = nullptr;
    used_ = 0;
}

}  // namespace qel::trace
