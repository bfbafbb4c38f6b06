// A line's text, which stays a view of the input until something must change it. One thread.
#ifndef QEL_CALENDAR_LINES_LINETEXT_H
#define QEL_CALENDAR_LINES_LINETEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace qel::calendar {

class LineText {
  public:
    LineText() = default;
    LineText(const LineText&) = delete;
    LineText& operator=(const LineText&) = delete;

    [[nodiscard]] std::string_view view() const { return text_; }
    [[nodiscard]] std::size_t size() const { return text_.size(); }
    [[nodiscard]] char operator[](std::size_t at) const { return text_[at]; }

    // `text` must stay as long as this refers to it.
    void refer(std::string_view text) { text_ = text; }
    // Copies the text, so that the input may go.
    void keep() {
        if (text_.data() == own_.data()) return;
        own_ = text_;
        text_ = own_;
    }
    // The same bytes to be changed in place.
    [[nodiscard]] char* change() {
        keep();
        return own_.data();
    }
    void append(std::string_view more) {
        keep();
        own_.resize(text_.size());
        own_ += more;
        text_ = own_;
    }
    void truncate(std::size_t length) { text_ = text_.substr(0, length); }

  private:
    std::string_view text_;
    std::string own_;  // begins with text_ where that is no longer a view of the input
};

}  // namespace qel::calendar

#endif
