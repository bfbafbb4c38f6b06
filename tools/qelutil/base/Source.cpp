#include "base/Source.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace qel::cli {

void SourceOptions::addInputTo(CLI::App& command) {
    CLI::Option* fileOption =
        command.add_option("FILE", file, "what to read; \"-\" or nothing is standard input")
            ->type_name("");
    command.add_option("-t,--text", text, "the text itself, instead of a file")
        ->excludes(fileOption);
}

void SourceOptions::addTo(CLI::App& command) {
    addInputTo(command);
    command.add_option("-o,--output", output, "where to write; standard output by default")
        ->type_name("FILE");
}

InputFile SourceOptions::open(Context& context) const {
    return text ? InputFile::ofText(*text) : InputFile(context, file);
}

Pieces::Pieces(InputFile& input, std::size_t usual, std::size_t longest)
    : input_(input), usual_(usual), wanted_(usual), longest_(longest) {}

void Pieces::fill() {
    if (ended_ || buffer_.size() >= wanted_) return;
    if (wanted_ > longest_)
        throw InputError(input_.name(), nextLine_,
                         "there is no place to divide the text within " + std::to_string(longest_) +
                             " bytes; is this the right kind of file?");
    const std::size_t before = buffer_.size();
    buffer_.resize(wanted_);
    const std::size_t got = input_.read(buffer_.data() + before, wanted_ - before);
    ended_ = got < wanted_ - before;
    buffer_.resize(before + got);
}

void Pieces::take(std::string& piece, std::size_t length) {
    piece.assign(buffer_, 0, length);
    buffer_.erase(0, length);
    wanted_ = usual_;
    line_ = nextLine_;
    nextLine_ += static_cast<std::size_t>(std::count(piece.begin(), piece.end(), '\n'));
    taken_ += length;
}

}  // namespace qel::cli
