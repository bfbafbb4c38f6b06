// Files as the system keeps them: what makes two names one file, and files that stand under no name
// of the caller's until they are whole. Any thread, each file in one at a time.
#ifndef QELUTIL_PLATFORM_FILES_H
#define QELUTIL_PLATFORM_FILES_H

#include <compare>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace qel::cli::platform {

// What a file is by, whatever its names.
struct FileId {
    std::uint64_t volume = 0;
    std::uint64_t file = 0;
    auto operator<=>(const FileId&) const = default;
};

// Of the ordinary file that `path` leads to, or that a standard stream reads or writes; nothing
// when there is none, or it is a device or a pipe.
[[nodiscard]] std::optional<FileId> identityOf(const std::filesystem::path& path);
[[nodiscard]] std::optional<FileId> identityOfInput();
[[nodiscard]] std::optional<FileId> identityOfOutput();

// The path under which the system opens the file, however long it is.
[[nodiscard]] std::filesystem::path openable(const std::filesystem::path& path);

// What is in a folder.
struct FolderItem {
    std::filesystem::path name;  // without its folder
    bool isFolder = false;       // or a link to one
    bool isLink = false;
    bool isOther = false;  // a pipe or a device
    std::uint64_t size = 0;
};

// All that is in a folder, in the order of the system, whose path may be of any length. `failure`
// is set when not all of it can be read.
[[nodiscard]] std::vector<FolderItem> itemsOf(const std::filesystem::path& folder,
                                              std::error_code& failure);

// A file open for writing. Everything that can fail throws std::system_error.
class WritableFile {
  public:
    // A new file of a random name in `folder`. What may read and write it is what may the file
    // `like`, where that exists; else it is open as new files of this user are. Until replace() it
    // is removed by the destructor, and when a signal or the console ends the program.
    [[nodiscard]] static WritableFile createIn(const std::filesystem::path& folder,
                                               const std::filesystem::path& like);
    // A new file in `folder` that has no name, or none for long: it is gone when the program is.
    [[nodiscard]] static WritableFile createNameless(const std::filesystem::path& folder);
    // What is there, a device or a pipe.
    [[nodiscard]] static WritableFile open(const std::filesystem::path& path);

    WritableFile() = default;
    WritableFile(WritableFile&& other) noexcept;
    WritableFile& operator=(WritableFile&& other) noexcept;
    ~WritableFile();

    [[nodiscard]] bool isOpen() const { return handle_ != kClosed; }
    void write(const char* bytes, std::size_t size);
    // From the beginning on; 0 at the end. REQUIRES: of createNameless.
    void rewind();
    [[nodiscard]] std::size_t read(char* bytes, std::size_t room);
    void close();
    // Writes everything to the disk; so replace() need not wait for it. REQUIRES: of createIn.
    void sync();
    // Writes everything to the disk and gives the file the name `target`, in its folder; an older
    // file of that name is replaced, and decides who may read and write the new one. Gives its
    // identity. REQUIRES: of createIn.
    FileId replace(const std::filesystem::path& target);

  private:
    static constexpr std::intptr_t kClosed = -1;

    explicit WritableFile(std::intptr_t handle) : handle_(handle) {}
    void discard() noexcept;

    std::intptr_t handle_ = kClosed;
    bool onDisk_ = false;         // all that was written
    std::size_t slot_ = 0;        // of `path_` in the list of what is removed at the end
    std::filesystem::path path_;  // of createIn; empty otherwise
};

// The folder of the user's settings: $XDG_CONFIG_HOME or ~/.config, on Windows %APPDATA%. Empty
// when the environment does not name it.
[[nodiscard]] std::filesystem::path settingsFolder();

// Ends the program as a write to a pipe that nobody reads ends one, after removing its unfinished
// files.
[[noreturn]] void endByClosedPipe();

}  // namespace qel::cli::platform

#endif
