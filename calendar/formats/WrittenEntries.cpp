#include "calendar/formats/WrittenEntries.h"

#include <algorithm>
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

std::size_t WrittenEntries::Digests::placeOf(const ContentDigest& digest) const {
    const std::size_t last = places_.size() - 1;
    std::size_t place = static_cast<std::size_t>(digest.low) & last;
    while (places_[place] != digest && places_[place] != ContentDigest{})
        place = (place + 1) & last;
    return place;
}

bool WrittenEntries::Digests::insert(const ContentDigest& digest) {
    if (2 * (size_ + 1) > places_.size()) grow();
    ContentDigest& place = places_[placeOf(digest)];
    if (place == digest) return false;
    place = digest;
    ++size_;
    return true;
}

void WrittenEntries::Digests::grow() {
    constexpr std::size_t kFirst = 16;
    std::vector<ContentDigest> old(std::max(2 * places_.size(), kFirst));
    old.swap(places_);
    for (const ContentDigest& each : old)
        if (each != ContentDigest{}) places_[placeOf(each)] = each;
}

WrittenEntries::Found WrittenEntries::add(const ContentDigest& key, const ContentDigest& content) {
    const bool full = contents_.size() >= kMost;
    if (full ? contents_.contains(content) : !contents_.insert(content)) return Found::Same;
    const bool known = full ? keys_.contains(key) : !keys_.insert(key);
    return known ? Found::OtherContent : Found::Nothing;
}

}  // namespace qel::calendar
