#include <ostream>

#include "base/Command.h"
#include "base/Progress.h"
#include "base/Terminal.h"
#include "base/Text.h"

namespace qel::cli {

Context::Context(std::istream& inStream, std::ostream& outStream, std::ostream& errStream)
    : in(inStream), out(outStream), err_(errStream) {}

void Context::setInput(const std::optional<platform::FileId>& file) {
    if (!file) return;
    const std::lock_guard lock(inputsLock_);
    inputs_.insert(*file);
}

bool Context::isInput(const std::filesystem::path& path) const {
    return isInput(platform::identityOf(path));
}

bool Context::outputIsInput() const {
    return isInput(platform::identityOfOutput());
}

bool Context::isInput(const std::optional<platform::FileId>& file) const {
    const std::lock_guard lock(inputsLock_);
    return file && inputs_.contains(*file);
}

bool Context::isWritten(const std::filesystem::path& path) const {
    const auto file = platform::identityOf(path);
    return file && written_.contains(*file);
}

struct Context::Kind {
    std::string_view word;
    std::string_view color;  // the sequence that switches it on
};

void Context::error(std::string_view file, std::size_t line, std::string_view text) {
    exitCode_ = kExitBadInput;
    message({"", "\x1b[1;31m"}, file, line, text);
}

void Context::warning(std::string_view file, std::size_t line, std::string_view text) {
    message({"warning: ", "\x1b[1;33m"}, file, line, text);
}

void Context::note(std::string_view file, std::size_t line, std::string_view text) {
    message({"note: ", "\x1b[1;36m"}, file, line, text);
}

void Context::say(std::string_view text) {
    message({"", "\x1b[1m"}, {}, 0, text);
}

void Context::message(const Kind& kind, std::string_view file, std::size_t line,
                      std::string_view text) {
    // On a terminal the two streams share the screen: facts come before what is said about them.
    out.flush();
    if (progress_ != nullptr) progress_->hide();
    const bool highlight = errorHighlights();
    const auto put = [&](std::string_view word) {
        if (highlight) err_ << kind.color;
        err_ << word;
        if (highlight) err_ << "\x1b[0m";
    };
    put("qelutil: ");
    if (!file.empty()) err_ << printable(file) << ':';
    if (line != 0) err_ << line << ':';
    if (!file.empty() || line != 0) err_ << ' ';
    if (!kind.word.empty()) put(kind.word);
    err_ << printable(text) << '\n';
    err_.flush();
}

}  // namespace qel::cli
