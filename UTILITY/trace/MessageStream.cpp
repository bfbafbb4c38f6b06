#include "trace/MessageStream.h"

#include <cstdlib>

#include "platform/Files.h"

namespace qel::trace {

namespace {

constexpr std::size_t kBannerRoom = 4096;  // more than all that comes before the message itself

}  // namespace

std::FILE* MessageStream::open(const char* path, std::size_t room, std::int64_t* size) noexcept {
    std::FILE* stream = platform::openForMessage(path, size);
    if (stream == nullptr) return nullptr;
    if (room > kBuffer - kBannerRoom)
        longBuffer_ = static_cast<char*>(std::malloc(room + kBannerRoom));
    const bool ownBlock = longBuffer_ != nullptr;
    std::setvbuf(stream, ownBlock ? longBuffer_ : buffer_, _IOFBF,
                 ownBlock ? room + kBannerRoom : kBuffer);
    return stream;
}

bool MessageStream::close(std::FILE* stream) noexcept {
    const bool written = std::ferror(stream) == 0;
    const bool closed = std::fclose(stream) == 0;
    std::free(longBuffer_);
    longBuffer_ = nullptr;
    return written && closed;
}

}  // namespace qel::trace
