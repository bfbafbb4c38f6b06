#include "base/ZipArchive.h"

#include <zlib.h>

#include <algorithm>
#include <fstream>
#include <istream>
#include <optional>
#include <streambuf>

#include "QelCalendar/Texts.h"
#include "base/Command.h"
#include "base/Files.h"
#include "base/Text.h"
#include "platform/Files.h"

namespace qel::cli {

namespace {

// A directory of more bytes is refused; a hundred thousand files take some ten million.
constexpr std::uint64_t kMostDirectory = std::uint64_t{64} << 20;
// What unpacks to more than this must be packed to a fair part of it. Calendars shrink to a tenth,
// alike entries to a hundredth.
constexpr std::uint64_t kUnsuspected = std::uint64_t{64} << 20;
constexpr std::uint64_t kMostShrunk = 200;

[[noreturn]] void refuse(const std::string& name, const std::string& why) {
    throw InputError(name + ": " + why);
}

[[noreturn]] void refuseDamaged(const std::string& name) {
    refuse(name, "this ZIP archive is damaged or incomplete; copy it again");
}

// A number as archives have them, the low byte first.
std::uint64_t numberAt(std::string_view bytes, std::size_t at, std::size_t size) {
    std::uint64_t number = 0;
    for (std::size_t i = size; i-- > 0;)
        number = number << 8U | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

std::string readAt(std::istream& file, std::uint64_t at, std::uint64_t size) {
    std::string bytes(static_cast<std::size_t>(size), '\0');
    file.clear();
    file.seekg(static_cast<std::streamoff>(at));
    file.read(bytes.data(), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return bytes;
}

struct Directory {
    std::uint64_t entries = 0;
    std::uint64_t size = 0;
    std::uint64_t at = 0;    // as the archive says
    std::uint64_t end = 0;   // in the file
    std::uint64_t disk = 0;  // of an archive in several parts
};

// The record at the end that says where the directory is.
std::optional<Directory> findDirectory(std::istream& file, std::uint64_t fileSize) {
    constexpr std::size_t kRecord = 22;
    constexpr std::size_t kLongestComment = 65535;
    const std::uint64_t tailSize = std::min<std::uint64_t>(fileSize, kRecord + kLongestComment);
    const std::string tail = readAt(file, fileSize - tailSize, tailSize);
    for (std::size_t at = tail.rfind("PK\5\6"); at != std::string::npos && tail.size() >= kRecord;
         at = at == 0 ? std::string::npos : tail.rfind("PK\5\6", at - 1)) {
        if (at + kRecord > tail.size() || at + kRecord + numberAt(tail, at + 20, 2) > tail.size())
            continue;
        return Directory{numberAt(tail, at + 10, 2), numberAt(tail, at + 12, 4),
                         numberAt(tail, at + 16, 4), fileSize - tailSize + at,
                         numberAt(tail, at + 4, 2)};
    }
    return std::nullopt;
}

// The same in the larger numbers of archives beyond 4 GB or 65535 files, where it has them.
void readLargeRecord(std::istream& file, Directory& directory) {
    constexpr std::uint64_t kLocator = 20;
    constexpr std::uint64_t kRecord = 56;
    if (directory.end < kLocator) return;
    const std::string locator = readAt(file, directory.end - kLocator, kLocator);
    if (!locator.starts_with("PK\6\7") || locator.size() < kLocator) return;
    const std::string record = readAt(file, numberAt(locator, 8, 8), kRecord);
    if (!record.starts_with("PK\6\6") || record.size() < kRecord) return;
    directory = {numberAt(record, 32, 8), numberAt(record, 40, 8), numberAt(record, 48, 8),
                 numberAt(locator, 8, 8), numberAt(record, 16, 4)};
}

constexpr std::size_t kEntry = 46;        // a member's record in the directory, and
constexpr std::size_t kLocalHeader = 30;  // its header, both without the texts that follow

// The data of the extra field `wanted`; empty when the member does not have it.
std::string_view extraField(std::string_view fields, std::uint64_t wanted) {
    while (fields.size() >= 4) {
        const std::size_t size = static_cast<std::size_t>(numberAt(fields, 2, 2));
        if (numberAt(fields, 0, 2) == wanted) return fields.substr(4, size);
        fields.remove_prefix(std::min(fields.size(), 4 + size));
    }
    return {};
}

// The upper half of code page 437.
constexpr char16_t kPage437[] =
    u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒáíóúñÑªº¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄"
    u"▌▐▀"
    u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0";
static_assert(sizeof(kPage437) / sizeof(char16_t) == 129);

std::string fromPage437(std::string_view text) {
    std::string utf8;
    for (const char each : text) {
        const auto byte = static_cast<unsigned char>(each);
        if (byte < 0x80) {
            utf8 += each;
            continue;
        }
        const unsigned c = kPage437[byte - 0x80];
        if (c < 0x800) {
            utf8 += static_cast<char>(0xC0U | c >> 6U);
        } else {
            utf8 += static_cast<char>(0xE0U | c >> 12U);
            utf8 += static_cast<char>(0x80U | (c >> 6U & 0x3FU));
        }
        utf8 += static_cast<char>(0x80U | (c & 0x3FU));
    }
    return utf8;
}

std::string nameInUtf8(std::string_view name, std::string_view extra, const std::string& charset) {
    constexpr std::uint64_t kUnicodeName = 0x7075;
    const std::string_view field = extraField(extra, kUnicodeName);
    std::string text;
    // A name in UTF-8 counts where it was made for this very name.
    if (field.size() > 5 &&
        numberAt(field, 1, 4) ==
            crc32(0, reinterpret_cast<const Bytef*>(name.data()), static_cast<uInt>(name.size())) &&
        isUtf8(field.substr(5)))
        text = field.substr(5);
    else if (isUtf8(name))
        text = name;  // flagged as such, or so well formed that it can be nothing else
    else if (!charset.empty())
        text = qelcal::toUtf8(charset, std::string(name));
    else
        text = fromPage437(name);
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

// Unpacks one member block by block.
class MemberBuffer : public std::streambuf {
  public:
    // `archive` stands where the member's bytes begin.
    MemberBuffer(std::unique_ptr<std::istream> archive, std::string name, ZipArchive::Member member)
        : file_(std::move(archive)),
          name_(std::move(name)),
          member_(std::move(member)),
          packedLeft_(member_.packedSize),
          packed_(kBlock),
          unpacked_(kBlock) {
        constexpr int kNoHeader = -15;
        if (inflateInit2(&stream_, kNoHeader) != Z_OK) throw std::bad_alloc();
    }
    ~MemberBuffer() override { inflateEnd(&stream_); }
    MemberBuffer(const MemberBuffer&) = delete;
    MemberBuffer& operator=(const MemberBuffer&) = delete;

  protected:
    int_type underflow() override {
        const std::size_t got = ended_ ? 0 : member_.isPacked ? unpack() : copy();
        if (got == 0) {
            finish();
            return traits_type::eof();
        }
        checksum_ = crc32(checksum_, reinterpret_cast<const Bytef*>(unpacked_.data()),
                          static_cast<uInt>(got));
        done_ += got;
        if (done_ > member_.size) refuseDamaged(name_);
        setg(unpacked_.data(), unpacked_.data(), unpacked_.data() + got);
        return traits_type::to_int_type(*gptr());
    }

  private:
    static constexpr std::size_t kBlock = std::size_t{64} << 10;

    std::size_t readPacked(char* bytes) {
        const auto wanted =
            static_cast<std::streamsize>(std::min<std::uint64_t>(kBlock, packedLeft_));
        file_->read(bytes, wanted);
        if (file_->gcount() != wanted) refuseDamaged(name_);
        packedLeft_ -= static_cast<std::uint64_t>(wanted);
        return static_cast<std::size_t>(wanted);
    }

    std::size_t copy() { return packedLeft_ == 0 ? 0 : readPacked(unpacked_.data()); }

    std::size_t unpack() {
        stream_.next_out = reinterpret_cast<Bytef*>(unpacked_.data());
        stream_.avail_out = static_cast<uInt>(unpacked_.size());
        while (stream_.avail_out != 0 && !ended_) {
            if (stream_.avail_in == 0 && packedLeft_ != 0) {
                stream_.avail_in = static_cast<uInt>(readPacked(packed_.data()));
                stream_.next_in = reinterpret_cast<Bytef*>(packed_.data());
            }
            const int result = inflate(&stream_, Z_NO_FLUSH);
            if (result == Z_MEM_ERROR) throw std::bad_alloc();
            if (result != Z_OK && result != Z_STREAM_END) refuseDamaged(name_);
            ended_ = result == Z_STREAM_END;
        }
        return unpacked_.size() - stream_.avail_out;
    }

    void finish() {
        ended_ = true;
        if (done_ != member_.size || checksum_ != member_.checksum || packedLeft_ != 0)
            refuseDamaged(name_);
    }

    std::unique_ptr<std::istream> file_;
    std::string name_;
    ZipArchive::Member member_;
    std::uint64_t packedLeft_;
    std::vector<char> packed_;
    std::vector<char> unpacked_;
    z_stream stream_{};
    std::uint64_t done_ = 0;
    uLong checksum_ = 0;
    bool ended_ = false;
};

// A stream that owns its buffer.
class MemberStream : public std::istream {
  public:
    explicit MemberStream(std::unique_ptr<MemberBuffer> buffer)
        : std::istream(buffer.get()), buffer_(std::move(buffer)) {
        exceptions(std::ios::badbit);  // what the buffer throws comes out
    }

  private:
    std::unique_ptr<MemberBuffer> buffer_;
};

}  // namespace

ZipArchive::ZipArchive(const std::string& name, const std::string& charset)
    : ZipArchive(
          name,
          [path = platform::openable(pathOf(name))] {
              return std::make_unique<std::ifstream>(path, std::ios::binary);
          },
          charset) {}

ZipArchive::ZipArchive(std::string name, Opener opener, const std::string& charset)
    : name_(std::move(name)), opener_(std::move(opener)) {
    const std::unique_ptr<std::istream> opened = opener_();
    std::istream& file = *opened;
    file.seekg(0, std::ios::end);
    const std::streamoff end = file.tellg();
    if (!file || end < 0) refuse(name_, "this ZIP archive cannot be read");
    const auto fileSize = static_cast<std::uint64_t>(end);
    std::optional<Directory> directory = findDirectory(file, fileSize);
    if (!directory) refuseDamaged(name_);
    readLargeRecord(file, *directory);
    if (directory->disk != 0)
        refuse(name_, "is one part of a ZIP archive in several parts; unpack it first");
    if (directory->size > kMostDirectory) refuse(name_, "this ZIP archive has too many files");
    if (directory->size > directory->end || directory->at > directory->end - directory->size)
        refuseDamaged(name_);
    shift_ = directory->end - directory->size - directory->at;
    const std::string bytes = readAt(file, directory->at + shift_, directory->size);
    if (bytes.size() != directory->size) refuseDamaged(name_);
    readDirectory(bytes, charset);
    checkSizes(fileSize);
}

void ZipArchive::readDirectory(std::string_view directory, const std::string& charset) {
    constexpr std::uint64_t kIsLarge = 0xFFFFFFFF;
    constexpr std::uint64_t kLargeField = 1;
    while (!directory.empty()) {
        if (directory.size() < kEntry || !directory.starts_with("PK\1\2")) refuseDamaged(name_);
        const auto nameSize = static_cast<std::size_t>(numberAt(directory, 28, 2));
        const auto extraSize = static_cast<std::size_t>(numberAt(directory, 30, 2));
        const std::size_t size =
            kEntry + nameSize + extraSize + static_cast<std::size_t>(numberAt(directory, 32, 2));
        if (directory.size() < size) refuseDamaged(name_);
        const std::string_view extra = directory.substr(kEntry + nameSize, extraSize);
        Member member;
        member.name = nameInUtf8(directory.substr(kEntry, nameSize), extra, charset);
        member.checksum = static_cast<std::uint32_t>(numberAt(directory, 16, 4));
        // Numbers that do not fit are in an extra field, in this order.
        std::string_view large = extraField(extra, kLargeField);
        const auto number = [&](std::size_t at) {
            const std::uint64_t small = numberAt(directory, at, 4);
            if (small != kIsLarge || large.size() < 8) return small;
            const std::uint64_t value = numberAt(large, 0, 8);
            large.remove_prefix(8);
            return value;
        };
        member.size = number(24);
        member.packedSize = number(20);
        member.at = number(42);
        const std::uint64_t flags = numberAt(directory, 8, 2);
        const std::uint64_t method = numberAt(directory, 10, 2);
        member.isPacked = method == Z_DEFLATED;
        if ((flags & 1U) != 0)
            member.problem = "is encrypted; unpack the archive with its password first";
        else if (method != 0 && !member.isPacked)
            member.problem = "is packed in a way that is not read here; unpack the archive first";
        directory.remove_prefix(size);
        if (!member.name.ends_with('/')) members_.push_back(std::move(member));
    }
}

// Files that share their bytes, or shrink beyond all reason, are there to fill a disk.
void ZipArchive::checkSizes(std::uint64_t archiveSize) {
    constexpr char kBomb[] =
        " would unpack to far more than any calendar has, as archives do that are made to fill a "
        "disk; unpack it yourself if you trust it";
    const auto isTooMuch = [](std::uint64_t size, std::uint64_t packed) {
        return size > kUnsuspected && size / kMostShrunk > packed;
    };
    std::uint64_t all = 0;
    std::vector<const Member*> inOrder;
    for (Member& each : members_) {
        if (each.at > archiveSize || each.packedSize > archiveSize - each.at) refuseDamaged(name_);
        if (isTooMuch(each.size, each.packedSize))
            each.problem = std::string("this file") + kBomb;
        else
            all += each.size;
        inOrder.push_back(&each);
    }
    std::sort(inOrder.begin(), inOrder.end(),
              [](const Member* one, const Member* other) { return one->at < other->at; });
    bool overlap = false;
    for (std::size_t i = 1; i < inOrder.size(); ++i)
        overlap |= inOrder[i]->at - inOrder[i - 1]->at < kLocalHeader + inOrder[i - 1]->packedSize;
    if (overlap || isTooMuch(all, archiveSize)) refuse(name_, std::string("this archive") + kBomb);
}

std::unique_ptr<std::istream> ZipArchive::open(const Member& member) const {
    const std::string name = name_ + "/" + member.name;
    if (!member.problem.empty()) refuse(name, member.problem);
    std::unique_ptr<std::istream> file = opener_();
    const std::string header = readAt(*file, member.at + shift_, kLocalHeader);
    if (header.size() < kLocalHeader || !header.starts_with("PK\3\4")) refuseDamaged(name);
    const std::uint64_t at =
        member.at + shift_ + kLocalHeader + numberAt(header, 26, 2) + numberAt(header, 28, 2);
    file->seekg(static_cast<std::streamoff>(at));
    return std::make_unique<MemberStream>(
        std::make_unique<MemberBuffer>(std::move(file), name, member));
}

bool isZipArchive(const std::filesystem::path& path) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure)) return false;
    std::ifstream file(platform::openable(path), std::ios::binary);
    const std::string head = readAt(file, 0, 4);
    return head == "PK\3\4" || head == "PK\5\6";
}

}  // namespace qel::cli
