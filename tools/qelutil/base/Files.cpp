#include "base/Files.h"

#include <cerrno>
#include <fstream>
#include <istream>
#include <sstream>
#include <system_error>

#include "base/Text.h"
#include "platform/Console.h"

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

// The file that a link leads to, there or not.
fs::path behindLinks(fs::path path) {
    constexpr int kMostLinks = 40;  // as the system allows
    std::error_code failure;
    for (int links = 0; links < kMostLinks && fs::is_symlink(path, failure); ++links)
        path = path.parent_path() / fs::read_symlink(path, failure);
    return path;
}

// `folder`, or the nearest folder above it that is there: where files for it can be made before it.
fs::path presentFolder(fs::path folder) {
    std::error_code failure;
    while (!folder.empty() && !fs::exists(folder, failure) && folder != folder.parent_path())
        folder = folder.parent_path();
    return folder;
}

bool isSpecial(const fs::path& path) {
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    return fs::exists(status) && !fs::is_regular_file(status);
}

}  // namespace

fs::path pathOf(const std::string& utf8Name) {
    return fs::path(std::u8string(utf8Name.begin(), utf8Name.end()));
}

std::string nameOf(const fs::path& path) {
    const std::u8string text = path.generic_u8string();
    return {text.begin(), text.end()};
}

bool isStandardInput(const std::string& name) {
    return name == "-";
}

bool isStandardOutput(const std::string& name) {
    return name == "-" || name == "/dev/stdout";
}

bool isOneFile(const std::string& name, const std::string& other) {
    if (isStandardOutput(name) || isStandardOutput(other)) return false;
    const fs::path one = behindLinks(pathOf(name));
    const fs::path two = behindLinks(pathOf(other));
    const auto file = platform::identityOf(one);
    if (file || platform::identityOf(two)) return file == platform::identityOf(two);
    // Neither is there yet, or they are special.
    std::error_code failure;
    if (fs::exists(one, failure) || fs::exists(two, failure)) return false;
    const auto folderOf = [](const fs::path& path) {
        return path.has_parent_path() ? path.parent_path() : fs::path(".");
    };
    return one.filename() == two.filename() &&
           fs::equivalent(folderOf(one), folderOf(two), failure);
}

InputFile::InputFile(Context& context, const std::string& name) : name_(name) {
    if (isStandardInput(name)) {
        if (platform::inputIsTerminal())
            context.say("reading what is typed here; " + std::string(platform::endOfInputKeys()) +
                        " ends it");
        stream_ = &context.in;
        name_ = kStandardInput;
        return;
    }
    if (name.empty()) throw InputError(kEmptyName);
    const fs::path path = pathOf(name);
    std::error_code failure;
    if (fs::is_directory(path, failure))
        throw InputError(name + ": is a directory; name the files in it");
    errno = 0;
    owned_ = std::make_unique<std::ifstream>(platform::openable(path), std::ios::binary);
    stream_ = owned_.get();
    if (!*owned_) throw InputError(name + ": cannot be read: " + lastReadError());
    context.setInput(platform::identityOf(path));
    if (!fs::is_regular_file(path, failure)) return;
    const std::uintmax_t size = fs::file_size(path, failure);
    if (!failure) size_ = static_cast<std::uint64_t>(size);
}

InputFile InputFile::ofText(const std::string& text) {
    return ofStream("the text given", std::make_unique<std::istringstream>(text), text.size());
}

InputFile InputFile::ofStream(const std::string& name, std::unique_ptr<std::istream> stream,
                              std::uint64_t size) {
    InputFile file;
    file.owned_ = std::move(stream);
    file.stream_ = file.owned_.get();
    file.name_ = name;
    file.size_ = size;
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

OutputError writeError(const std::string& name, const std::error_code& code) {
    std::string reason = code.default_error_condition().message();
    if (code == std::errc::no_such_file_or_directory) reason += "; make its folder first";
    if (code == std::errc::permission_denied || code == std::errc::read_only_file_system)
        reason += "; see that you may write there";
    if (code == std::errc::no_space_on_device) reason += "; make room on the disk";
    return OutputError(name + ": cannot be written: " + reason);
}

// Hands what is written to a file of the platform's, in blocks.
class OutputFile::Buffer : public std::streambuf {
  public:
    Buffer(const std::string& name, platform::WritableFile file)
        : name_(name), file_(std::move(file)), block_(kBlock) {
        setp(block_.data(), block_.data() + block_.size());
    }

    // REQUIRES: sync() was called.
    [[nodiscard]] platform::WritableFile& file() { return file_; }

    // Throws OutputError, which the stream passes on.
    int sync() override {
        const std::size_t size = static_cast<std::size_t>(pptr() - pbase());
        setp(block_.data(), block_.data() + block_.size());
        try {
            file_.write(block_.data(), size);
        } catch (const std::system_error& failure) {
            throw writeError(name_, failure.code());
        }
        return 0;
    }

  protected:
    int_type overflow(int_type c) override {
        sync();
        if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
        return traits_type::not_eof(c);
    }

  private:
    static constexpr std::size_t kBlock = std::size_t{64} << 10;

    const std::string& name_;
    platform::WritableFile file_;
    std::vector<char> block_;
};

OutputFile::OutputFile(Context& context, const std::string& name) : context_(context), name_(name) {
    if (isStandardOutput(name)) {
        stream_ = &context.out;
        return;
    }
    if (name.empty()) throw OutputError(kEmptyName);
    target_ = behindLinks(pathOf(name));
    std::error_code failure;
    if (fs::is_directory(target_, failure))
        throw OutputError(name + ": is a directory; name a file to write");
    if (context.isInput(target_))
        throw OutputError(name + ": is the file that is read; name another file to write");
    special_ = isSpecial(target_);
    create(target_.parent_path());
}

std::unique_ptr<OutputFile> OutputFile::inFolder(Context& context, const std::string& likely) {
    std::unique_ptr<OutputFile> file(new OutputFile(context));
    file->name_ = likely;
    file->target_ = behindLinks(pathOf(likely));
    file->create(presentFolder(file->target_.parent_path()));
    return file;
}

void OutputFile::create(const fs::path& folder) {
    try {
        buffer_ = std::make_unique<Buffer>(
            name_, special_ ? platform::WritableFile::open(target_)
                            : platform::WritableFile::createIn(folder, target_));
    } catch (const std::system_error& failure) {
        throw writeError(name_, failure.code());
    }
    owned_ = std::make_unique<std::ostream>(buffer_.get());
    owned_->exceptions(std::ios::badbit | std::ios::failbit);
    stream_ = owned_.get();
}

OutputFile::OutputFile(Context& context) : context_(context) {}

OutputFile::~OutputFile() = default;

fs::path OutputFile::folder() const {
    return special_ || buffer_ == nullptr ? fs::temp_directory_path() : target_.parent_path();
}

void OutputFile::commit() {
    stream_->flush();
    if (buffer_ == nullptr) return;
    try {
        if (special_)
            buffer_->file().close();
        else
            replace();
    } catch (const std::system_error& failure) {
        throw writeError(name_, failure.code());
    }
}

void OutputFile::replace() {
    if (isSpecial(target_))
        throw OutputError(name_ + ": is not a file that can be replaced; name another one");
    if (context_.isWritten(target_))
        throw OutputError(name_ + ": has just been written by this run; name another file");
    context_.setWritten(buffer_->file().replace(target_));
}

void OutputFile::sync() {
    stream_->flush();
    try {
        buffer_->file().sync();
    } catch (const std::system_error& failure) {
        throw writeError(name_, failure.code());
    }
}

void OutputFile::commitAs(const std::string& name) {
    if (name != name_) {
        name_ = name;
        target_ = behindLinks(pathOf(name));
    }
    commit();
}

}  // namespace qel::cli
