// A ZIP archive as its directory describes it, and its files unpacked as they are read. What is not
// exactly as its directory says, or unpacks to a size that no calendar has, is refused. One thread.
#ifndef QELUTIL_BASE_ZIPARCHIVE_H
#define QELUTIL_BASE_ZIPARCHIVE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qel::cli {

class ZipArchive {
  public:
    struct Member {
        std::string name;        // UTF-8, with "/" between folders
        std::uint64_t size = 0;  // unpacked
        std::string problem;     // why it cannot be read; empty when it can
        std::uint64_t at = 0;    // of its own header in the archive
        std::uint64_t packedSize = 0;
        std::uint32_t checksum = 0;
        bool isPacked = false;
    };

    // Opens the archive to be read anywhere; each call gives a stream of its own.
    using Opener = std::function<std::unique_ptr<std::istream>()>;

    // Reads the directory of the archive called `name`. Throws InputError when it cannot be read,
    // is damaged, or is made to fill a disk. Names that are not in UTF-8 are in the character set
    // `charset`; empty: code page 437, that of the first archives.
    ZipArchive(const std::string& name, const std::string& charset);
    // The same for an archive that `opener` gives, such as one inside another.
    ZipArchive(std::string name, Opener opener, const std::string& charset);

    [[nodiscard]] const std::string& name() const { return name_; }
    // In the order of the directory, folders left out.
    [[nodiscard]] const std::vector<Member>& members() const { return members_; }

    // The bytes of a member without a problem. What fails later throws InputError out of the
    // stream; at the end that is a checksum which does not agree.
    [[nodiscard]] std::unique_ptr<std::istream> open(const Member& member) const;

  private:
    void readDirectory(std::string_view directory, const std::string& charset);
    void checkSizes(std::uint64_t archiveSize);

    std::string name_;
    Opener opener_;
    std::uint64_t shift_ = 0;  // of all positions, by what is before the archive in its file
    std::vector<Member> members_;
};

// True when the file begins as archives do.
[[nodiscard]] bool isZipArchive(const std::filesystem::path& path);

}  // namespace qel::cli

#endif
