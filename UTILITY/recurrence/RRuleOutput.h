// A rule's text under construction, on the writer's stack: no block is allocated before the text is
// whole. For the rule writers alone.
#ifndef QELUTILITY_RRULEOUTPUT_H
#define QELUTILITY_RRULEOUTPUT_H

#include <array>
#include <cassert>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace qel::recurrence {

namespace detail {

// The characters of the numbers 1 .. `last` and their negatives, each with a sign and a separator.
constexpr std::size_t roomOfNumbers(int last) {
    std::size_t room = 0;
    for (int n = 1; n <= last; ++n) room += 2U * ((n < 10 ? 1 : n < 100 ? 2 : 3) + 2);
    return room;
}

}  // namespace detail

class RRuleOutput {
  public:
    void add(char c) {
        assert(length_ < kRoom);
        text_[length_++] = c;
    }

    void add(std::string_view text) {
        assert(text.size() <= kRoom - length_);
        std::memcpy(text_.data() + length_, text.data(), text.size());
        length_ += text.size();
    }

    void add(int number) {
        // Counts, intervals and days are short.
        if (0 <= number && number <= 9) return add(static_cast<char>('0' + number));
        char* const end = text_.data() + text_.size();
        length_ = static_cast<std::size_t>(std::to_chars(text_.data() + length_, end, number).ptr -
                                           text_.data());
    }

    void dropLast() { --length_; }
    [[nodiscard]] bool endsWith(char c) const { return length_ > 0 && text_[length_ - 1] == c; }
    [[nodiscard]] std::string_view text() const { return {text_.data(), length_}; }

  private:
    // Every list at its fullest; the keywords, the weekdays, four positions, the end date, COUNT
    // and INTERVAL take less than 256 characters.
    static constexpr std::size_t kRoom = 256 + detail::roomOfNumbers(31) +
                                         detail::roomOfNumbers(366) + detail::roomOfNumbers(53) +
                                         detail::roomOfNumbers(12);

    std::array<char, kRoom> text_;
    std::size_t length_ = 0;
};

}  // namespace qel::recurrence

#endif
