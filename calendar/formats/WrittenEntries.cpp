#include "calendar/formats/WrittenEntries.h"

#include <bit>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

namespace {

constexpr std::uint64_t kOne = 0x9E3779B97F4A7C15U;
constexpr std::uint64_t kTwo = 0xC2B2AE3D27D4EB4FU;

void mix(ContentDigest& digest, std::uint64_t word) {
    digest.low = std::rotl((digest.low ^ word) * kOne, 29);
    digest.high = std::rotl(digest.high + word, 31) * kTwo;
}

std::uint64_t finished(std::uint64_t word) {
    word = (word ^ (word >> 32U)) * kTwo;
    word = (word ^ (word >> 29U)) * kOne;
    return word ^ (word >> 32U);
}

// The bytes in the same order on every processor.
std::uint64_t lastBytes(std::string_view text) {
    std::uint64_t word = 0;
    for (const char c : text) word = (word << 8U) | static_cast<unsigned char>(c);
    return word;
}

std::uint64_t wordAt(const char* text) {
    std::uint64_t word = eightBytes(text);
    if constexpr (std::endian::native == std::endian::big) {
        std::uint64_t turned = 0;
        for (int each = 0; each < 8; ++each, word >>= 8U) turned = (turned << 8U) | (word & 0xFFU);
        word = turned;
    }
    return word;
}

}  // namespace

ContentDigest contentDigest(std::initializer_list<std::string_view> texts) {
    ContentDigest digest{kOne, kTwo};
    for (std::string_view text : texts) {
        // Where one text ends counts too.
        mix(digest, text.size());
        for (; text.size() >= 8; text.remove_prefix(8)) mix(digest, wordAt(text.data()));
        if (!text.empty()) mix(digest, lastBytes(text));
    }
    return {finished(digest.low), finished(digest.high ^ digest.low)};
}

WrittenEntries::Found WrittenEntries::add(const ContentDigest& key, const ContentDigest& content) {
    if (contents_.contains(content)) return Found::Same;
    const bool known = keys_.contains(key);
    if (contents_.size() < kMost) {
        contents_.insert(content);
        keys_.insert(key);
    }
    return known ? Found::OtherContent : Found::Nothing;
}

}  // namespace qel::calendar
