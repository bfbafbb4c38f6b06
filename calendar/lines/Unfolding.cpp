#include "calendar/lines/Unfolding.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

namespace {

// Takes the characters at `folds`, ascending, out of `text`.
void eraseFolds(LineText& text, const std::vector<std::size_t>& folds) {
    if (folds.empty()) return;
    char* const bytes = text.change();
    std::size_t write = folds.front();
    auto fold = folds.begin();
    for (std::size_t read = write; read < text.size(); ++read) {
        if (fold != folds.end() && *fold == read) {
            ++fold;
            continue;
        }
        bytes[write++] = bytes[read];
    }
    text.truncate(write);
}

bool isHexDigit(char c) {
    return isDigit(c) || (toUpper(c) >= 'A' && toUpper(c) <= 'F');
}

// What the folds of a line tell about the program that made them.
class Folding {
  public:
    explicit Folding(const RawLine& raw) : raw_(raw) {
        std::size_t last = 0;
        for (std::size_t each = 0; each < raw.folds.size(); ++each) {
            const std::size_t fold = raw.folds[each];
            measure(raw.text.view().substr(last, fold - last));
            afterBlank_ = afterBlank_ || (fold > 0 && isFoldBlank(raw.text[fold - 1]));
            beforeBlank_ =
                beforeBlank_ || (fold + 1 < raw.text.size() && isFoldBlank(raw.text[fold + 1]));
            last = fold;
        }
    }

    // All lines before a fold are of one width, however long the words are. A character is not
    // divided, so a line may lack the rest of one.
    [[nodiscard]] bool byWidth() const {
        if (raw_.folds.size() == 1) return widest_ >= 74 && widest_ <= 76;
        const bool one = widest_ == narrowest_ || widestText_ == narrowestText_ ||
                         (widest_ - narrowest_ <= 3 && widest_ != widestText_);
        return one && (widest_ >= 70 || (raw_.folds.size() >= kSeveral && widest_ >= kNarrow));
    }

    // A fold beside a blank is not where the text has its blank.
    [[nodiscard]] bool besideBlank() const { return afterBlank_ || beforeBlank_; }

    // No word would have fitted into the line before it, and the lines are of many widths: each
    // fold is the blank between two words.
    [[nodiscard]] bool betweenWords() const {
        if (raw_.folds.size() < 2 || afterBlank_ || beforeBlank_ || widest_ - narrowest_ <= 3 ||
            widestText_ - narrowestText_ <= 3 || widest_ < 40)
            return false;
        std::size_t last = 0;
        for (const std::size_t fold : raw_.folds) {
            std::size_t end = fold + 1;
            while (end < raw_.text.size() && end - fold <= kLongestWord + 1 &&
                   !isFoldBlank(raw_.text[end]))
                ++end;
            const std::size_t word = end - fold - 1;
            if (word > kLongestWord || fold - last + 1 + word <= widest_) return false;
            last = fold;
        }
        return true;
    }

  private:
    static constexpr std::size_t kLongestWord = 40;
    // Lines that are broken between words are hardly ever all of one width.
    static constexpr std::size_t kSeveral = 3;
    static constexpr std::size_t kNarrow = 20;

    void measure(std::string_view line) {
        const auto bytes =
            static_cast<std::size_t>(std::count_if(line.begin(), line.end(), [](char c) {
                return (static_cast<unsigned char>(c) & 0xC0U) != 0x80;
            }));
        widest_ = std::max(widest_, line.size());
        narrowest_ = std::min(narrowest_, line.size());
        widestText_ = std::max(widestText_, bytes);
        narrowestText_ = std::min(narrowestText_, bytes);
    }

    const RawLine& raw_;
    // Of the physical lines before a fold, in octets and in characters of UTF-8.
    std::size_t widest_ = 0;
    std::size_t narrowest_ = kLongestLine;
    std::size_t widestText_ = 0;
    std::size_t narrowestText_ = kLongestLine;
    bool afterBlank_ = false;
    bool beforeBlank_ = false;
};

// True where `width` blanks at `at` would be within a character: between bytes of one in UTF-8, or
// within the code of one in quoted-printable. No text has a blank there.
bool dividesCharacter(const RawLine& raw, std::size_t at, std::size_t width = 1) {
    const std::string_view text = raw.text.view();
    const std::size_t next = at + width;
    if (at == 0 || next >= text.size()) return false;
    const auto isRest = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80; };
    if (isRest(text[next]) && static_cast<unsigned char>(text[at - 1]) >= 0x80) return true;
    if (!raw.quotedPrintable) return false;
    const bool hexFollows = isHexDigit(text[next]);
    if (hexFollows && next + 1 < text.size() && isHexDigit(text[next + 1]) && text[at - 1] == '=')
        return true;
    if (hexFollows && at >= 2 && text[at - 2] == '=' && isHexDigit(text[at - 1])) return true;
    const auto isHigh = [](char c) { return c > '7' && isHexDigit(c); };
    return at >= 3 && next + 1 < text.size() && text[at - 3] == '=' && isHigh(text[at - 2]) &&
           text[next] == '=' && text[next + 1] >= '8' && toUpper(text[next + 1]) <= 'B';
}

bool hasBlankBesidesFolds(const RawLine& raw, std::size_t from) {
    auto fold = std::lower_bound(raw.folds.begin(), raw.folds.end(), from);
    for (std::size_t at = from; at < raw.text.size(); ++at)
        if (fold != raw.folds.end() && *fold == at)
            ++fold;
        else if (isFoldBlank(raw.text[at]))
            return true;
    return false;
}

bool keepsBlanks(const RawLine& raw, FoldStyle style, std::size_t colon, bool& byWords) {
    const auto divides = [&](std::size_t at) { return dividesCharacter(raw, at); };
    if (!hasBlankBesidesFolds(raw, colon) ||
        std::any_of(raw.folds.begin(), raw.folds.end(), divides))
        return false;
    const Folding folding(raw);
    if (style == FoldStyle::ICalendar) return byWords = folding.betweenWords();
    return !folding.byWidth() && !folding.besideBlank();
}

// Blanks after soft line breaks are the text's, unless they follow each of several, or divide a
// character, or double the blank between two words.
bool isIndent(const RawLine& raw) {
    constexpr std::size_t kSeveral = 3;
    const auto divides = [&](std::size_t at) { return dividesCharacter(raw, at, raw.indentWidth); };
    return raw.indents.size() >= kSeveral || raw.indentShown ||
           std::any_of(raw.indents.begin(), raw.indents.end(), divides);
}

// How many blanks each fold is of: one, or as many as all have where that many divide a character.
std::size_t foldWidth(const RawLine& raw) {
    constexpr std::size_t kMost = 8;
    std::size_t width = kMost;
    for (const std::size_t at : raw.folds) {
        std::size_t length = 1;
        while (length < width && at + length < raw.text.size() &&
               isFoldBlank(raw.text[at + length]))
            ++length;
        if (length == 1) return 1;
        width = length;
    }
    const auto divides = [&](std::size_t at) { return dividesCharacter(raw, at, width); };
    return std::any_of(raw.folds.begin(), raw.folds.end(), divides) ? width : 1;
}

// The places of `width` blanks at each place.
std::vector<std::size_t> blanksAt(std::vector<std::size_t> places, std::size_t width) {
    if (width == 1) return places;
    std::vector<std::size_t> blanks;
    for (const std::size_t at : places)
        for (std::size_t each = 0; each < width; ++each) blanks.push_back(at + each);
    return blanks;
}

}  // namespace

bool unfold(RawLine& raw, FoldStyle style) {
    const bool indents = !raw.indents.empty() && isIndent(raw);
    if (raw.folds.empty() && !indents) return false;
    const std::size_t colon = std::min(raw.colon, raw.text.size());
    bool byWords = false;
    const std::size_t width = raw.folds.empty() ? 1 : foldWidth(raw);
    const bool keeps = !raw.folds.empty() && width == 1 && keepsBlanks(raw, style, colon, byWords);
    std::vector<std::size_t> erased = blanksAt(std::move(raw.folds), width);
    if (keeps) {
        for (const std::size_t fold : erased)
            if (fold >= colon) raw.text.change()[fold] = ' ';
        std::erase_if(erased, [&](std::size_t fold) { return fold >= colon; });
    }
    if (indents) {
        const std::vector<std::size_t> blanks = blanksAt(std::move(raw.indents), raw.indentWidth);
        const auto middle = erased.insert(erased.end(), blanks.begin(), blanks.end());
        std::inplace_merge(erased.begin(), middle, erased.end());
    }
    eraseFolds(raw.text, erased);
    raw.folds.clear();
    raw.indents.clear();
    raw.colon = findColon(raw.text.view());
    return byWords;
}

}  // namespace qel::calendar
