// Files as the command line names them: "-" is a standard stream, names are UTF-8 on every
// platform, bytes are never translated. One thread, but for files that are read by name and those
// of OutputFile::inFolder: each of them may be in a thread of its own.
#ifndef QELUTIL_BASE_FILES_H
#define QELUTIL_BASE_FILES_H

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "base/Command.h"
#include "platform/Files.h"

namespace qel::cli {

// What an InputFile on standard input is called in messages.
inline constexpr char kStandardInput[] = "standard input";
inline constexpr char kEmptyName[] = "the name of a file is empty";

[[nodiscard]] std::filesystem::path pathOf(const std::string& utf8Name);
// As the program writes names: UTF-8, with "/".
[[nodiscard]] std::string nameOf(const std::filesystem::path& path);

// True for "-".
[[nodiscard]] bool isStandardInput(const std::string& name);
// The same, and the system's own name of standard output.
[[nodiscard]] bool isStandardOutput(const std::string& name);

// True when both names lead to one file, whether it exists or not. False for devices and pipes.
[[nodiscard]] bool isOneFile(const std::string& name, const std::string& other);

// A file or standard input, open for reading. The constructor throws InputError, which names the
// file and says why it cannot be read, when there is no such file, its name is empty, or it is a
// directory.
class InputFile {
  public:
    InputFile(Context& context, const std::string& name);
    // A text of the command line itself.
    static InputFile ofText(const std::string& text);
    // What is read in another way than from a file; `size` in bytes.
    static InputFile ofStream(const std::string& name, std::unique_ptr<std::istream> stream,
                              std::uint64_t size);

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

// A result cannot be written: an InputError about the output.
class OutputError : public InputError {
    using InputError::InputError;
};

// Standard output, or a file that is complete or not there: the text goes to a new file of another
// name in its folder, which takes its name in commit(). Without commit() the old file stands as it
// was. A device or a pipe is written as it is; of a link the file that it leads to is replaced.
// Everything throws OutputError with the name and the reason; a standard stream throws
// std::ios_base::failure.
class OutputFile {
  public:
    // A file that the command line names. It must not be one that has been opened by an InputFile.
    OutputFile(Context& context, const std::string& name);
    // A result in a folder of results, which need not be there yet: commitAs() says its name,
    // `likely` is what it will mostly be. A device or a pipe in its place is left alone.
    [[nodiscard]] static std::unique_ptr<OutputFile> inFolder(Context& context,
                                                              const std::string& likely);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    [[nodiscard]] std::ostream& stream() { return *stream_; }
    // Where temporary files for it may be: the folder of the file.
    [[nodiscard]] std::filesystem::path folder() const;
    void commit();
    // Waits until all that was written is on the disk; so commitAs() need not. REQUIRES: of
    // inFolder.
    void sync();
    // REQUIRES: of inFolder; the folder is there.
    void commitAs(const std::string& name);

  private:
    class Buffer;

    explicit OutputFile(Context& context);
    void create(const std::filesystem::path& folder);
    void replace();

    Context& context_;
    std::string name_;
    std::filesystem::path target_;
    std::unique_ptr<Buffer> buffer_;  // null for standard output
    std::unique_ptr<std::ostream> owned_;
    std::ostream* stream_ = nullptr;
    bool special_ = false;
};

// Why a file cannot be written, with what to do about it: "NAME: cannot be written: no space
// left on device; make room on the disk".
[[nodiscard]] OutputError writeError(const std::string& name, const std::error_code& code);

}  // namespace qel::cli

#endif
