#include "base/Files.h"

#include <cerrno>
#include <istream>
#include <sstream>
#include <system_error>

#include "base/Text.h"

namespace qel::cli {

namespace fs = std::filesystem;

namespace {

std::string reasonOf(int number) {
    return number == 0 ? "the system gives no reason"
                       : std::error_code(number, std::generic_category()).message();
}

std::string lastReadError() {
    const int number = errno;
    std::string reason = reasonOf(number);
    if (number == ENOENT) reason += "; see that the name is right";
    if (number == EACCES) reason += "; see that you may read it";
    return reason;
}

std::string lastWriteError() {
    const int number = errno;
    std::string reason = reasonOf(number);
    if (number == ENOENT) reason += "; make its folder first";
    if (number == EACCES || number == EROFS) reason += "; see that you may write there";
    if (number == ENOSPC) reason += "; make room on the disk";
    return reason;
}

bool isStandardStream(const std::string& name) {
    return name.empty() || name == "-";
}

}  // namespace

fs::path pathOf(const std::string& utf8Name) {
    return fs::path(std::u8string(utf8Name.begin(), utf8Name.end()));
}

InputFile::InputFile(Context& context, const std::string& name) : name_(name) {
    if (isStandardStream(name)) {
        stream_ = &context.in;
        name_ = kStandardInput;
        return;
    }
    const fs::path path = pathOf(name);
    std::error_code failure;
    if (fs::is_directory(path, failure))
        throw InputError(name + ": is a directory; name the files in it");
    errno = 0;
    owned_ = std::make_unique<std::ifstream>(path, std::ios::binary);
    stream_ = owned_.get();
    if (!*owned_) throw InputError(name + ": cannot be read: " + lastReadError());
    if (!fs::is_regular_file(path, failure)) return;
    const std::uintmax_t size = fs::file_size(path, failure);
    if (!failure) size_ = static_cast<std::uint64_t>(size);
}

InputFile InputFile::ofText(const std::string& text) {
    InputFile file;
    file.owned_ = std::make_unique<std::istringstream>(text);
    file.stream_ = file.owned_.get();
    file.name_ = "the text given";
    file.size_ = text.size();
    return file;
}

std::size_t InputFile::read(char* bytes, std::size_t room) {
    errno = 0;
    stream_->read(bytes, static_cast<std::streamsize>(room));
    if (stream_->bad()) throw InputError(name_ + ": reading failed: " + lastReadError());
    return static_cast<std::size_t>(stream_->gcount());
}

std::string InputFile::readAll(std::size_t most) {
    constexpr std::size_t kPiece = 65536;
    std::string all;
    for (;;) {
        const std::size_t before = all.size();
        all.resize(before + kPiece);
        const std::size_t got = read(all.data() + before, kPiece);
        all.resize(before + got);
        if (all.size() > most)
            throw InputError(name_ + ": is larger than " + std::to_string(most) +
                             " bytes, the most that is taken here; split it");
        if (got < kPiece) return all;
    }
}

OutputFile::OutputFile(Context& context, const std::string& name) : stream_(&file_), name_(name) {
    if (isStandardStream(name)) {
        stream_ = &context.out;
        return;
    }
    target_ = pathOf(name);
    std::error_code failure;
    if (fs::is_directory(target_, failure))
        throw InputError(name + ": is a directory; name a file to write");
    // A device or a pipe cannot be replaced: it is written as it is.
    const bool special = fs::exists(target_, failure) && !fs::is_regular_file(target_, failure);
    // A link keeps pointing at its file, which is what is replaced.
    const fs::path real = special ? fs::path() : fs::canonical(target_, failure);
    if (!special && !failure) target_ = real;
    fs::path opened = target_;
    if (!special) {
        temporary_ = target_;
        temporary_ += ".qelutil-new";
        opened = temporary_;
    }
    errno = 0;
    file_.open(opened, std::ios::binary | std::ios::trunc);
    if (!file_) {
        temporary_.clear();
        throw InputError(name + ": cannot be written: " + lastWriteError());
    }
    file_.exceptions(std::ios::badbit | std::ios::failbit);
}

OutputFile::~OutputFile() {
    if (temporary_.empty()) return;
    std::error_code ignored;
    file_.exceptions(std::ios::goodbit);
    file_.close();
    fs::remove(temporary_, ignored);
}

void OutputFile::commit() {
    if (stream_ != &file_) {
        stream_->flush();
        return;
    }
    errno = 0;
    try {
        file_.close();
    } catch (const std::ios_base::failure&) {
        throw InputError(name_ + ": cannot be written: " + lastWriteError());
    }
    if (temporary_.empty()) return;
    std::error_code failure;
    const auto oldMode = fs::status(target_, failure);
    if (!failure && fs::exists(oldMode))
        fs::permissions(temporary_, oldMode.permissions(), failure);
    fs::rename(temporary_, target_, failure);
    if (failure) throw InputError(name_ + ": cannot be replaced: " + failure.message());
    temporary_.clear();
}

void OutputFile::commitAs(const std::string& name) {
    if (name != name_) {
        name_ = name;
        target_ = pathOf(name);
    }
    commit();
}

}  // namespace qel::cli
