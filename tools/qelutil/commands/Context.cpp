#include <ostream>

#include "Progress.h"
#include "Text.h"
#include "commands/Command.h"

namespace qel::cli {

Context::Context(std::istream& inStream, std::ostream& outStream, std::ostream& errStream)
    : in(inStream), out(outStream), err_(errStream) {}

void Context::error(std::string_view file, std::size_t line, std::string_view text) {
    exitCode_ = kExitBadInput;
    message({}, file, line, text);
}

void Context::warning(std::string_view file, std::size_t line, std::string_view text) {
    message("warning: ", file, line, text);
}

void Context::note(std::string_view file, std::size_t line, std::string_view text) {
    message("note: ", file, line, text);
}

void Context::message(std::string_view kind, std::string_view file, std::size_t line,
                      std::string_view text) {
    // On a terminal the two streams share the screen: facts come before what is said about them.
    out.flush();
    if (progress_ != nullptr) progress_->hide();
    err_ << "qelutil: ";
    if (!file.empty()) err_ << printable(file) << ':';
    if (line != 0) err_ << line << ':';
    if (!file.empty() || line != 0) err_ << ' ';
    err_ << kind << printable(text) << '\n';
    err_.flush();
}

}  // namespace qel::cli
