#include "commands/ReportFile.h"

#include <ostream>
#include <system_error>

namespace qel::cli {

ReportFile::ReportFile(Context& context, const std::string& name)
    : name_(name), page_(context, name) {
    bodyPath_ = pathOf(name);
    bodyPath_ += ".qelutil-body";
    body_.open(bodyPath_, std::ios::in | std::ios::out | std::ios::binary | std::ios::trunc);
    if (!body_) throw InputError(name + ": cannot be written there; make its folder first");
}

ReportFile::~ReportFile() {
    body_.close();
    std::error_code ignored;
    std::filesystem::remove(bodyPath_, ignored);
}

void ReportFile::addToBody(std::string_view text) {
    body_.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void ReportFile::addToHead(std::string_view text) {
    page_.stream() << text;
}

void ReportFile::commit() {
    body_.flush();
    if (!body_) throw InputError(name_ + ": cannot be written; is the disk full?");
    body_.seekg(0);
    // An empty body would count as a failure of the stream.
    if (body_.peek() != std::fstream::traits_type::eof()) page_.stream() << body_.rdbuf();
    if (!body_) throw InputError(name_ + ": what was gathered for it cannot be read back");
    page_.commit();
}

}  // namespace qel::cli
