#include "calendar/charsets/Index.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>

namespace qel::calendar {

namespace {

// A stretch of places without a hole. Half of all characters ascend over thousands of places: these
// are kept as the set of them, which takes a tenth of the space.
struct Segment {
    std::uint16_t first;
    std::uint16_t count;
    std::uint16_t base;    // the first character of a set; 0 when the values are kept one by one
    std::uint16_t offset;  // in the values, or in the words of the sets
    std::uint16_t words;
};

// Pointers from this one on are the code points from `code` on.
struct Range {
    std::uint32_t pointer;
    std::uint32_t code;
};

// The characters that no tool changes are in there as they are.
// clang-format off
#include "calendar/charsets/IndexTables.inc"
// clang-format on

struct Index {
    std::span<const Segment> segments;
    const char16_t* values;
    const std::uint64_t* words;  // a bit for each character from a segment's base on
    const std::uint16_t* ranks;  // how many are in the segment before each word
};

constexpr Index kJis0208{kJis0208Segments, kJis0208Values, kJis0208Words, kJis0208Ranks};
constexpr Index kJis0212{kJis0212Segments, kJis0212Values, kJis0212Words, kJis0212Ranks};
constexpr Index kGb18030{kGb18030Segments, kGb18030Values, kGb18030Words, kGb18030Ranks};
constexpr Index kEucKr{kEucKrSegments, kEucKrValues, kEucKrWords, kEucKrRanks};
constexpr Index kBig5{kBig5Segments, kBig5Values, nullptr, nullptr};

const Segment* segmentOf(const Index& index, unsigned place) {
    const auto after = std::upper_bound(
        index.segments.begin(), index.segments.end(), place,
        [](unsigned wanted, const Segment& segment) { return wanted < segment.first; });
    if (after == index.segments.begin()) return nullptr;
    const Segment& segment = *std::prev(after);
    return place - segment.first < segment.count ? &segment : nullptr;
}

// The member of a segment's set that `before` smaller ones come before.
char32_t member(const Index& index, const Segment& segment, unsigned before) {
    const std::uint16_t* const ranks = index.ranks + segment.offset;
    const std::size_t at =
        static_cast<std::size_t>(std::upper_bound(ranks, ranks + segment.words, before) - ranks) -
        1;
    std::uint64_t word = index.words[segment.offset + at];
    for (unsigned each = before - ranks[at]; each > 0; --each) word &= word - 1;
    return static_cast<char32_t>(segment.base + at * 64 +
                                 static_cast<unsigned>(std::countr_zero(word)));
}

char32_t lookUp(const Index& index, unsigned place) {
    const Segment* const segment = segmentOf(index, place);
    if (segment == nullptr) return 0;
    const unsigned in = place - segment->first;
    return segment->base == 0 ? index.values[segment->offset + in] : member(index, *segment, in);
}

constexpr unsigned kRow = 190;        // places of a row in the pointers of gb18030 and EUC-KR
constexpr unsigned kNational = 94;    // of those the last, which are the older national set's
constexpr unsigned kRowsBefore = 32;  // rows that the national set does not reach

// gb18030 and EUC-KR are a national set of 94 by 94 and, before and beside it, all other characters
// of the script in ascending order. The table has these together, then the national set.
unsigned nationalPlace(unsigned row, unsigned column, unsigned width) {
    const unsigned beside = width - kNational;
    if (row < kRowsBefore) return row * width + column;
    const unsigned after = kRowsBefore * width;
    if (column < beside) return after + (row - kRowsBefore) * beside + column;
    return after + kNational * beside + (row - kRowsBefore) * kNational + column - beside;
}

}  // namespace

char32_t jis0208(unsigned pointer) {
    return lookUp(kJis0208, pointer);
}

char32_t jis0212(unsigned pointer) {
    return lookUp(kJis0212, pointer);
}

char32_t gb18030(unsigned pointer) {
    return lookUp(kGb18030, nationalPlace(pointer / kRow, pointer % kRow, kRow));
}

char32_t eucKr(unsigned pointer) {
    // Second bytes are capitals, small letters, and those from 0x81 on; between them is nothing.
    unsigned column = pointer % kRow;
    if ((column >= 26 && column < 32) || (column >= 58 && column < 64)) return 0;
    column -= column >= 64 ? 12 : column >= 32 ? 6 : 0;
    return lookUp(kEucKr, nationalPlace(pointer / kRow, column, kRow - 12));
}

char32_t big5(unsigned pointer) {
    const Segment* const segment = segmentOf(kBig5, pointer);
    if (segment == nullptr) return 0;
    const unsigned at = segment->offset + pointer - segment->first;
    const bool inPlane2 = (kBig5Plane2[at / 64] >> (at % 64) & 1) != 0;
    return kBig5Values[at] + (inPlane2 ? 0x20000U : 0U);
}

char32_t gb18030Range(unsigned pointer) {
    if ((pointer > 39419 && pointer < 189000) || pointer > 1237575) return 0;
    if (pointer == 7457) return 0xE7C7;
    const auto after = std::upper_bound(
        std::begin(kGb18030Ranges), std::end(kGb18030Ranges), pointer,
        [](unsigned wanted, const Range& range) { return wanted < range.pointer; });
    const Range& range = *std::prev(after);
    return range.code + pointer - range.pointer;
}

}  // namespace qel::calendar
