// What the commands over one text have in common: the text is FILE, "-" or nothing for standard
// input, or --text TEXT; the result goes to standard output or to --output FILE. One thread.
#ifndef QELUTIL_BASE_SOURCE_H
#define QELUTIL_BASE_SOURCE_H

#include <optional>
#include <string>

#include "base/Command.h"
#include "base/Files.h"

namespace qel::cli {

struct SourceOptions {
    std::string file = "-";
    std::optional<std::string> text;
    std::string output = "-";

    // Adds FILE and --text to the command; addTo adds --output too.
    void addInputTo(CLI::App& command);
    void addTo(CLI::App& command);
    // Throws InputError as InputFile does.
    [[nodiscard]] InputFile open(Context& context) const;
};

// Reads an input in pieces that may be worked on one by one, whatever the input's size. A piece
// ends where `cut` says: it is given what has been read, returns how much of it makes a piece, 0
// for "read more", and is asked again with twice as much.
class Pieces {
  public:
    // Throws InputError when a piece would be longer than `longest`.
    Pieces(InputFile& input, std::size_t usual, std::size_t longest);

    // False at the end. The last piece is all that is left, uncut.
    template <typename Cut>
    [[nodiscard]] bool next(std::string& piece, Cut cut) {
        for (;;) {
            fill();
            if (buffer_.empty()) return false;
            std::size_t length = ended_ ? buffer_.size() : cut(std::string_view(buffer_));
            if (length != 0) {
                take(piece, length);
                return true;
            }
            wanted_ *= 2;
        }
    }

    // The line of the input, 1 first, on which the piece given last begins.
    [[nodiscard]] std::size_t line() const { return line_; }
    [[nodiscard]] std::uint64_t bytesTaken() const { return taken_; }

  private:
    void fill();
    void take(std::string& piece, std::size_t length);

    InputFile& input_;
    std::string buffer_;
    std::size_t usual_;
    std::size_t wanted_;
    std::size_t longest_;
    std::size_t line_ = 1;
    std::size_t nextLine_ = 1;
    std::uint64_t taken_ = 0;
    bool ended_ = false;
};

}  // namespace qel::cli

#endif
