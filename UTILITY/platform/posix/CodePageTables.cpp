#include "platform/posix/CodePageTables.h"

#include <iconv.h>

#include <bit>

#include "platform/Immortal.h"

namespace qel::platform {
namespace {

constexpr const char* kUtf16 = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

// An open iconv descriptor, or none.
class Descriptor {
  public:
    Descriptor(const char* to, const char* from) : descriptor_(iconv_open(to, from)) {}
    ~Descriptor() {
        if (isOpen()) iconv_close(descriptor_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] bool isOpen() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

    // Converts one character: the bytes written, or 0 when `size` bytes are not exactly one.
    std::size_t convert(const void* in, std::size_t size, void* out, std::size_t room) const {
        char* from = static_cast<char*>(const_cast<void*>(in));
        char* to = static_cast<char*>(out);
        const std::size_t roomBefore = room;
        iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
        const bool done = iconv(descriptor_, &from, &size, &to, &room) != std::size_t(-1);
        return done && size == 0 ? roomBefore - room : 0;
    }

  private:
    iconv_t descriptor_;
};

}  // namespace

bool Page::fillUnits(int lead, Rows<char16_t>::Row& row) const {
    const Descriptor decoder(kUtf16, name_);
    if (!decoder.isOpen()) return false;
    for (std::size_t byte = 0; byte < row.size(); ++byte) {
        const auto second = static_cast<unsigned char>(byte);
        const unsigned char in[2] = {lead >= 0 ? static_cast<unsigned char>(lead) : second, second};
        char16_t unit[2] = {};
        const bool one = decoder.convert(in, lead >= 0 ? 2 : 1, unit, sizeof unit) == 2;
        row[byte] = one ? unit[0] : char16_t{0};
    }
    return true;
}

bool Page::fillCodes(std::size_t high, Rows<std::uint16_t>::Row& row) const {
    const Descriptor encoder(name_, kUtf16);
    if (!encoder.isOpen()) return false;
    for (std::size_t low = 0; low < row.size(); ++low) {
        const auto unit = static_cast<char16_t>(high << 8 | low);
        unsigned char out[4];
        const std::size_t size = encoder.convert(&unit, sizeof unit, out, sizeof out);
        row[low] = size == 1   ? out[0]
                   : size == 2 ? static_cast<std::uint16_t>(out[0] << 8 | out[1])
                               : std::uint16_t{0};
    }
    return true;
}

Page* pageOf(std::uint32_t codePage) {
    // Not destroyed: other objects' destructors may still convert.
    struct Pages {
        Page western{"CP1252"};
        Page simplifiedChinese{"CP936"};
        Page traditionalChinese{"CP950"};
    };
    static Immortal<Pages> pages;
    switch (codePage) {
        case 0:
            return &pages.get().western;
        case 936:
            return &pages.get().simplifiedChinese;
        case 950:
            return &pages.get().traditionalChinese;
        default:
            return nullptr;
    }
}

}  // namespace qel::platform
