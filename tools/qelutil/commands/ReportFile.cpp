#include "commands/ReportFile.h"

#include <ostream>
#include <vector>

namespace qel::cli {

namespace {

constexpr std::size_t kBlock = std::size_t{64} << 10;

}  // namespace

ReportFile::ReportFile(Context& context, const std::string& name)
    : name_(name), page_(context, name) {
    try {
        body_ = platform::WritableFile::createNameless(page_.folder());
    } catch (const std::system_error& failure) {
        throw writeError(name, failure.code());
    }
}

void ReportFile::addToBody(std::string_view text) {
    block_ += text;
    if (block_.size() >= kBlock) writeBlock();
}

void ReportFile::writeBlock() {
    try {
        if (!failure_) body_.write(block_.data(), block_.size());
    } catch (const std::system_error& failure) {
        failure_ = failure.code();
    }
    block_.clear();
}

void ReportFile::commit() {
    writeBlock();
    if (failure_) throw writeError(name_, failure_);
    std::vector<char> buffer(kBlock);
    try {
        body_.rewind();
        while (const std::size_t got = body_.read(buffer.data(), buffer.size()))
            page_.stream().write(buffer.data(), static_cast<std::streamsize>(got));
    } catch (const std::system_error& failure) {
        throw OutputError(
            name_ + ": what was gathered for it cannot be read back: " + failure.code().message());
    }
    page_.commit();
}

}  // namespace qel::cli
