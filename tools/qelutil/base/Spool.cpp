#include "base/Spool.h"

#include <algorithm>

namespace qel::cli {

namespace {

constexpr std::size_t kPiece = 65536;

}  // namespace

Spool::Spool(InputFile& input) : input_(input) {
    head_.resize(kPiece);
    std::size_t size = 0;
    while (size < kPiece) {
        const std::size_t got = input_.read(head_.data() + size, kPiece - size);
        if (got == 0) break;
        size += got;
    }
    head_.resize(size);
}

bool Spool::keepAll() {
    std::string piece(kPiece, '\0');
    for (;;) {
        const std::size_t got = input_.read(piece.data(), kPiece);
        if (got == 0) break;
        if (file_ == nullptr) {
            file_.reset(std::tmpfile());
            // Without a buffer a full disk shows at once, piece by piece.
            if (file_ != nullptr) std::setvbuf(file_.get(), nullptr, _IONBF, 0);
        }
        const std::size_t written =
            file_ == nullptr ? 0 : std::fwrite(piece.data(), 1, got, file_.get());
        inFile_ += written;
        if (written == got) continue;
        rest_ = piece.substr(written, got - written);
        break;
    }
    rewind();
    return rest_.empty();
}

std::size_t Spool::read(char* bytes, std::size_t room) {
    const auto copy = [&](std::string_view text, std::uint64_t from) {
        const std::size_t size = text.copy(bytes, room, static_cast<std::size_t>(from));
        at_ += size;
        return size;
    };
    if (at_ < head_.size()) return copy(head_, at_);
    const std::uint64_t behindHead = at_ - head_.size();
    if (behindHead < inFile_) {
        const auto wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(room, inFile_ - behindHead));
        const std::size_t got = std::fread(bytes, 1, wanted, file_.get());
        if (got == 0) throw InputError(input_.name() + ": its temporary file cannot be read");
        at_ += got;
        return got;
    }
    if (behindHead - inFile_ < rest_.size()) return copy(rest_, behindHead - inFile_);
    return input_.read(bytes, room);
}

void Spool::rewind() {
    at_ = 0;
    if (file_ != nullptr) std::rewind(file_.get());
}

}  // namespace qel::cli
