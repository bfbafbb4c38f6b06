#include "calendar/charsets/Guess.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <iterator>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/Text.h"
#include "calendar/charsets/CharacterSet.h"

namespace qel::calendar {

namespace {

#include "calendar/charsets/GuessModels.inc"

// Costs are half bits: how surprising a text is in a language. Those of pairs of letters, both in
// ASCII, are the same in all sets and are left out.
using Cost = std::uint32_t;
constexpr Cost kImpossible = 1U << 30;
constexpr Cost kCapitalWithin = 12;  // a capital after a small letter
constexpr Cost kMarkWithin = 10;     // a punctuation mark between letters
constexpr Cost kInvalid = 60;
// A set must be so much better than windows-1252, and by so much more for each byte beyond ASCII.
constexpr Cost kMargin = 24;
constexpr Cost kMarginOfByte = 1;

struct Letters {
    std::u16string_view small;
    std::u16string_view capital;
    std::string_view costs;  // of each letter after each, '0' for nothing
    bool latin;
};

struct Characters {
    std::u16string_view often;  // the most frequent ones first
};

struct Candidate {
    std::string_view set;
    std::string_view words;
    const Letters* letters;
    const Characters* characters;
};

constexpr Letters kWestern{kWesternSmall, kWesternCapital, kWesternCosts, true};
constexpr Letters kCentral{kCentralSmall, kCentralCapital, kCentralCosts, true};
constexpr Letters kTurkish{kTurkishSmall, kTurkishCapital, kTurkishCosts, true};
constexpr Letters kCyrillic{kCyrillicSmall, kCyrillicCapital, kCyrillicCosts, false};
constexpr Letters kGreek{kGreekSmall, kGreekCapital, kGreekCosts, false};
constexpr Letters kHebrew{kHebrewSmall, kHebrewCapital, kHebrewCosts, false};
constexpr Letters kArabic{kArabicSmall, kArabicCapital, kArabicCosts, false};
constexpr Characters kJapanese{kJapaneseOften};
constexpr Characters kSimplified{kSimplifiedOften};
constexpr Characters kTraditional{kTraditionalOften};
constexpr Characters kKorean{kKoreanOften};

// The first one is what texts are read in when none of the others stands out.
constexpr Candidate kCandidates[] = {
    {"windows-1252", "", &kWestern, nullptr},
    {"windows-1250", "letters of Central Europe", &kCentral, nullptr},
    {"windows-1254", "Turkish", &kTurkish, nullptr},
    {"windows-1251", "Cyrillic letters", &kCyrillic, nullptr},
    {"KOI8-R", "Cyrillic letters", &kCyrillic, nullptr},
    {"windows-1253", "Greek letters", &kGreek, nullptr},
    {"windows-1255", "Hebrew letters", &kHebrew, nullptr},
    {"windows-1256", "Arabic letters", &kArabic, nullptr},
    {"Shift_JIS", "Japanese", nullptr, &kJapanese},
    {"EUC-JP", "Japanese", nullptr, &kJapanese},
    {"GBK", "simplified Chinese", nullptr, &kSimplified},
    {"Big5", "traditional Chinese", nullptr, &kTraditional},
    {"EUC-KR", "Korean", nullptr, &kKorean}};

std::u32string decoded(std::string_view set, std::string_view bytes) {
    std::string text;
    decode(*findCharacterSet(set), bytes, text);
    std::u32string characters;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = std::max<std::size_t>(utf8CharacterLength(rest), 1);
        char32_t code =
            static_cast<unsigned char>(rest[0]) & (length == 1 ? 0x7FU : 0x7FU >> length);
        for (std::size_t each = 1; each < length; ++each)
            code = code << 6 | (static_cast<unsigned char>(rest[each]) & 0x3FU);
        characters += code;
        rest.remove_prefix(length);
    }
    return characters;
}

struct Kind {
    std::uint8_t letter = 0;  // its place in the alphabet; 0 for all that is not in there
    bool capital = false;
    Cost mark = 0;  // of what is no letter
};

Kind kindOf(char32_t code, const Letters& letters) {
    if (code < 0x80 && !isAlpha(static_cast<char>(code))) return {};
    if (code < 0x80 && !letters.latin) return {1, false, 0};
    if (code < 0x10000) {
        const auto unit = static_cast<char16_t>(code);
        if (const auto at = letters.small.find(unit); at != std::u16string_view::npos)
            return {static_cast<std::uint8_t>(at), false, 0};
        if (const auto at = letters.capital.find(unit); at != std::u16string_view::npos)
            return {static_cast<std::uint8_t>(at), true, 0};
    }
    constexpr std::u16string_view kUsual =
        u"\u2018\u2019\u201C\u201D\u201E\u2013\u2026\u00AB\u00BB\u00A0";
    constexpr std::u16string_view kMarks =
        u"\u2014\u20AC\u00B0\u00A7\u00B7\u00BF\u00A1\u2116\u2039\u203A\u00AE\u00A9\u00B4\u00B2";
    const auto unit = static_cast<char16_t>(code & 0xFFFF);
    if (kUsual.find(unit) != std::u16string_view::npos) return {0, false, 10};
    if (kMarks.find(unit) != std::u16string_view::npos) return {0, false, 14};
    return {0, false, code < 0xA0 || code == 0xFFFD ? Cost{44} : Cost{30}};
}

Cost costOfLetters(std::u32string_view text, const Letters& letters) {
    // A byte means one of 256 characters: each is looked for once.
    std::array<char32_t, 512> known{};
    std::array<Kind, 512> kinds{};
    Cost cost = 0;
    Kind before;
    bool counts = false;  // the one before is a letter beyond ASCII
    bool smallBefore = false;
    std::size_t run = 0;
    std::size_t longest = 0;
    for (const char32_t code : text) {
        const std::size_t slot = code * 0x9E3779B1U >> 23 & 511;
        if (known[slot] != code) {
            known[slot] = code;
            kinds[slot] = kindOf(code, letters);
        }
        const Kind kind = code == 0 ? Kind{} : kinds[slot];
        const bool beyond = code >= 0x80;
        if (kind.mark != 0) {
            cost += kind.mark + (before.letter != 0 && code != 0x2019 ? kMarkWithin : 0);
        } else if (beyond || counts) {
            const std::size_t pair = before.letter * letters.small.size() + kind.letter;
            cost += static_cast<Cost>(letters.costs[pair] - '0');
            if (kind.letter != 0 && kind.capital && smallBefore) cost += kCapitalWithin;
        }
        counts = beyond && kind.mark == 0;
        smallBefore = kind.letter != 0 && !kind.capital;
        run = counts && kind.letter != 0 ? run + 1 : 0;
        longest = std::max(longest, run);
        before = kind;
    }
    // Words of another script are whole words; a single letter is an accented one in Latin text.
    return letters.latin || longest >= 3 ? cost : kImpossible;
}

Cost costOfCharacters(std::u32string_view text, const Characters& characters) {
    Cost cost = 0;
    std::size_t all = 0;
    std::size_t usual = 0;
    bool halfWidthBefore = false;
    for (const char32_t code : text) {
        const bool halfWidth = code >= 0xFF61 && code <= 0xFF9F;
        const bool follows = std::exchange(halfWidthBefore, halfWidth);
        if (code < 0x80) continue;
        ++all;
        const auto rank = code < 0x10000 ? characters.often.find(static_cast<char16_t>(code))
                                         : std::u16string_view::npos;
        if (rank != std::u16string_view::npos) {
            // A word's frequency falls with its rank.
            cost += 2 * static_cast<Cost>(std::bit_width(rank + 8)) + 1;
            ++usual;
        } else if (halfWidth) {
            cost += follows ? 14 : 22;
            usual += follows ? 1 : 0;
        } else if (code == 0xFFFD) {
            cost += kInvalid;
        } else {
            const bool script =
                (code >= 0x4E00 && code <= 0x9FA5) || (code >= 0xAC00 && code <= 0xD7A3);
            cost += script ? 28 : 34;
        }
    }
    return usual * 5 >= all * 2 ? cost : kImpossible;
}

Cost costOf(const Candidate& candidate, std::string_view sample) {
    const std::u32string text = decoded(candidate.set, sample);
    return candidate.letters != nullptr ? costOfLetters(text, *candidate.letters)
                                        : costOfCharacters(text, *candidate.characters);
}

}  // namespace

void CharsetGuess::add(std::string_view text, std::size_t line) {
    if (sample_.empty()) line_ = line;
    const std::size_t room = kSample - std::min(sample_.size(), kSample);
    if (room == 0) return;
    sample_ += text.substr(0, room);
    sample_ += '\n';
}

std::optional<GuessedSet> CharsetGuess::result() const {
    if (sample_.empty()) return std::nullopt;
    std::array<Cost, std::size(kCandidates)> costs{};
    std::transform(std::begin(kCandidates), std::end(kCandidates), costs.begin(),
                   [this](const Candidate& each) { return costOf(each, sample_); });
    const auto best =
        static_cast<std::size_t>(std::min_element(costs.begin(), costs.end()) - costs.begin());
    const auto beyond = static_cast<Cost>(
        std::count_if(sample_.begin(), sample_.end(), [](char c) { return (c & 0x80) != 0; }));
    if (costs[best] + kMargin + kMarginOfByte * beyond > costs[0]) return std::nullopt;
    for (std::size_t each = 1; each < costs.size(); ++each)
        if (each != best && costs[each] < costs[best] + kMargin / 3) return std::nullopt;
    return GuessedSet{kCandidates[best].set, kCandidates[best].words, line_};
}

}  // namespace qel::calendar
