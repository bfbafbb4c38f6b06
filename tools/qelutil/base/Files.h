// Files as the command line names them: "-" is a standard stream, names are UTF-8 on every
// platform, bytes are never translated. One thread.
#ifndef QELUTIL_BASE_FILES_H
#define QELUTIL_BASE_FILES_H

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iosfwd>
#include <memory>
#include <string>

#include "base/Command.h"

namespace qel::cli {

// What an InputFile on standard input is called in messages.
inline constexpr char kStandardInput[] = "standard input";

[[nodiscard]] std::filesystem::path pathOf(const std::string& utf8Name);

// A file or standard input, open for reading. The constructor throws InputError, which names the
// file and says why it cannot be read, when there is no such file or it is a directory.
class InputFile {
  public:
    InputFile(Context& context, const std::string& name);
    // A text of the command line itself.
    static InputFile ofText(const std::string& text);

    [[nodiscard]] std::istream& stream() { return *stream_; }
    // For messages.
    [[nodiscard]] const std::string& name() const { return name_; }
    // In bytes; 0 when it is not known (a pipe).
    [[nodiscard]] std::uint64_t size() const { return size_; }
    // The next at most `room` bytes; 0 at the end. Throws InputError when the medium fails.
    [[nodiscard]] std::size_t read(char* bytes, std::size_t room);
    // All that is left. Throws InputError when it is more than `most` bytes or the medium fails.
    [[nodiscard]] std::string readAll(std::size_t most);

  private:
    InputFile() = default;

    std::unique_ptr<std::istream> owned_;
    std::istream* stream_ = nullptr;
    std::string name_;
    std::uint64_t size_ = 0;
};

// Standard output ("-" or an empty name), or a file that is complete or not there: the text goes to
// a new file beside it, which takes its name in commit(). Without commit() the old file stands as
// it was. Both throw InputError with the name and the reason.
class OutputFile {
  public:
    OutputFile(Context& context, const std::string& name);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Throws std::ios_base::failure when a write fails.
    [[nodiscard]] std::ostream& stream() { return *stream_; }
    void commit();
    // The same under another name in the same folder, when that is known only now. REQUIRES: not a
    // standard stream.
    void commitAs(const std::string& name);

  private:
    std::ofstream file_;
    std::ostream* stream_;
    std::string name_;
    std::filesystem::path target_;
    std::filesystem::path temporary_;
};

}  // namespace qel::cli

#endif
