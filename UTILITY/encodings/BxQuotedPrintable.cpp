#include "QelUtility/BxQuotedPrintable.h"
#include "platform/AsciiText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>

namespace qel::encodings {
namespace {

constexpr std::size_t kMaxLine = 76;  // RFC 2045 §6.7 rule 5, line break not counted
constexpr char kUpperHex[] = "0123456789ABCDEF";

// Takes the result's bytes: counts them all, and stores them when there is a buffer.
class Sink {
  public:
    explicit Sink(char* buffer) : buffer_(buffer) {}

    void put(unsigned char byte) {
        if (buffer_ != nullptr) buffer_[length_] = static_cast<char>(byte);
        ++length_;
    }
    // The bytes may lie where they are put, or behind it.
    void put(const unsigned char* bytes, std::size_t count) {
        if (buffer_ != nullptr) std::memmove(buffer_ + length_, bytes, count);
        length_ += count;
    }
    std::uint64_t length() const { return length_; }

  private:
    char* buffer_;
    std::uint64_t length_ = 0;
};

bool isBlank(unsigned char byte) {
    return byte == ' ' || byte == '\t';
}

bool isLiteral(unsigned char byte) {
    return byte >= 0x21 && byte <= 0x7E && byte != '=';
}

// What is written unchanged wherever it does not begin or end a line: literals and blanks.
constexpr auto kPlain = [] {
    std::array<bool, 256> plain{};
    for (std::size_t byte = 0x20; byte <= 0x7E; ++byte) plain[byte] = byte != '=';
    plain['\t'] = true;
    return plain;
}();

enum class LineBreaks { kData, kLineBreaks };

class Encoder {
  public:
    Encoder(const char* text, std::size_t length, std::size_t column, LineBreaks breaks, char* out)
        : text_(reinterpret_cast<const unsigned char*>(text)),
          length_(length),
          column_(column < kMaxLine ? column : kMaxLine),
          breaks_(breaks),
          sink_(out) {}

    std::uint64_t run() {
        while (position_ < length_) {
            const std::size_t breakSize = hardBreakAt(position_);
            if (breakSize != 0) {
                endLine();
                position_ += breakSize;
            } else if (const std::size_t size = plainRun(); size != 0) {
                sink_.put(text_ + position_, size);
                column_ += size;
                position_ += size;
            } else {
                putUnit();
            }
        }
        return sink_.length();
    }

  private:
    // The number of bytes of a line break that stays one, or 0. REQUIRES: at < length_
    std::size_t hardBreakAt(std::size_t at) const {
        if (breaks_ == LineBreaks::kData) return 0;
        if (text_[at] == '\n') return 1;
        return text_[at] == '\r' && at + 1 < length_ && text_[at + 1] == '\n' ? 2 : 0;
    }

    bool lineEndsAt(std::size_t at) const { return at >= length_ || hardBreakAt(at) != 0; }

    // The number of bytes from here that are written unchanged without a test of each: plain
    // ones that fit before the soft break's column, without blanks at a line's end. What follows a
    // soft break has been written together with it.
    std::size_t plainRun() const {
        if (column_ >= kMaxLine - 1) return 0;
        const unsigned char* const first = text_ + position_;
        const std::size_t most = std::min(kMaxLine - 1 - column_, length_ - position_);
        std::size_t size = 0;
        while (size < most && kPlain[first[size]]) ++size;
        while (size != 0 && isBlank(first[size - 1])) --size;
        return size;
    }

    // The number of bytes that must stay on one line: a UTF-8 character, CR LF, or a single byte.
    std::size_t unitSize() const {
        const unsigned char first = text_[position_];
        std::size_t size = 1;
        if (first >= 0xF0 && first <= 0xF4)
            size = 4;
        else if (first >= 0xE0 && first < 0xF0)
            size = 3;
        else if (first >= 0xC2 && first < 0xE0)
            size = 2;
        else if (first == '\r' && length_ - position_ > 1 && text_[position_ + 1] == '\n')
            return 2;
        if (size > length_ - position_) return 1;
        for (std::size_t i = 1; i < size; ++i)
            if ((text_[position_ + i] & 0xC0) != 0x80) return 1;
        return size;
    }

    bool isWrittenLiterally(std::size_t at) const {
        if (isBlank(text_[at])) return !lineEndsAt(at + 1) && !afterSoftBreak_;
        return isLiteral(text_[at]);
    }

    void putUnit() {
        const std::size_t size = unitSize();
        const std::size_t width = isWrittenLiterally(position_) ? 1 : 3 * size;
        // The last column is free for a unit that ends the line, else it is the soft break's.
        const std::size_t limit = lineEndsAt(position_ + size) ? kMaxLine : kMaxLine - 1;
        if (column_ + width > limit) {
            sink_.put('=');
            endLine();
            afterSoftBreak_ = true;
        }
        for (std::size_t i = 0; i < size; ++i) {
            const unsigned char byte = text_[position_ + i];
            if (isWrittenLiterally(position_ + i)) {
                sink_.put(byte);
                column_ += 1;
            } else {
                sink_.put('=');
                sink_.put(static_cast<unsigned char>(kUpperHex[byte >> 4]));
                sink_.put(static_cast<unsigned char>(kUpperHex[byte & 0x0F]));
                column_ += 3;
            }
        }
        afterSoftBreak_ = false;
        position_ += size;
    }

    void endLine() {
        sink_.put('\r');
        sink_.put('\n');
        column_ = 0;
    }

    const unsigned char* text_;
    std::size_t length_;
    std::size_t position_ = 0;
    std::size_t column_;
    bool afterSoftBreak_ = false;
    LineBreaks breaks_;
    Sink sink_;
};

// The number of bytes of the line break at `at` (CR LF, LF, CR), or 0.
std::size_t lineBreakAt(const unsigned char* text, std::size_t length, std::size_t at) {
    if (at >= length) return 0;
    if (text[at] == '\n') return 1;
    if (text[at] != '\r') return 0;
    return at + 1 < length && text[at + 1] == '\n' ? 2 : 1;
}

// What ends a run of bytes that are copied: "=" and the line breaks.
constexpr auto kEndsRun = [] {
    std::array<unsigned char, 256> ends{};
    ends['='] = ends['\r'] = ends['\n'] = 1;
    return ends;
}();

// The first byte from `at` on that ends a run, or the length.
std::size_t runEnd(const unsigned char* text, std::size_t length, std::size_t at) {
    // Four at once, so that the loop costs less than its look-ups.
    for (; length - at >= 4; at += 4) {
        const unsigned char* four = text + at;
        if (kEndsRun[four[0]] | kEndsRun[four[1]] | kEndsRun[four[2]] | kEndsRun[four[3]]) break;
    }
    while (at < length && !kEndsRun[text[at]]) ++at;
    return at;
}

// Where the text after the "=" at `at` goes on, and what the "=" means into `sink`.
std::size_t decodeEscape(const unsigned char* text, std::size_t length, std::size_t at,
                         Sink& sink) {
    if (length - at > 2) {
        const int high = platform::hexValue(static_cast<char>(text[at + 1]));
        const int low = platform::hexValue(static_cast<char>(text[at + 2]));
        if (high >= 0 && low >= 0) {
            sink.put(static_cast<unsigned char>(high * 16 + low));
            return at + 3;
        }
    }
    std::size_t end = at + 1;  // of the run of blanks
    while (end < length && isBlank(text[end])) ++end;
    const std::size_t breakSize = lineBreakAt(text, length, end);
    if (breakSize != 0) return end + breakSize;
    sink.put(text + at, end - at);
    return end;
}

std::uint64_t decodeTo(const char* source, std::size_t length, char* out) {
    const auto* text = reinterpret_cast<const unsigned char*>(source);
    Sink sink(out);
    std::size_t i = 0;
    while (i < length) {
        const std::size_t first = i;
        i = runEnd(text, length, i);
        std::size_t kept = i;
        // Blanks before a line break are transport padding.
        if (i < length && text[i] != '=')
            while (kept > first && isBlank(text[kept - 1])) --kept;
        sink.put(text + first, kept - first);
        if (i == length) break;
        if (text[i] == '=')
            i = decodeEscape(text, length, i, sink);
        else
            sink.put(text[i++]);
    }
    return sink.length();
}

// Measures with a null buffer, reports, and writes when the result fits: `code(buffer)` returns the
// length of the result. Where there is more room than `most`, which no result is longer than, the
// text is gone through once.
template <typename Code>
int produce(const char* text, std::size_t length, std::uint64_t most, char* out,
            std::size_t outSize, std::size_t* resultLength, Code code) {
    if (resultLength != nullptr) *resultLength = 0;
    if (text == nullptr && length != 0) return QEL_NOT_INITIALIZED;
    const bool fits = out != nullptr && outSize > most;
    const std::uint64_t needed = code(fits ? out : nullptr);
    if (needed >= std::numeric_limits<std::size_t>::max()) return QEL_OUT_OF_MEMORY;
    if (resultLength != nullptr) *resultLength = static_cast<std::size_t>(needed);
    if (out == nullptr) return QEL_OK;
    if (outSize <= needed) return QEL_OUTPUT_TOO_SMALL;
    if (!fits) code(out);
    out[needed] = '\0';
    return QEL_OK;
}

// What `length` bytes are never longer than when encoded: three characters for each, in lines of at
// least 64 (no unit takes more than 12), each with three for its break, and a first break.
std::uint64_t longestCode(std::size_t length) {
    const std::uint64_t characters = 3 * std::uint64_t{length};
    return characters + 3 * (characters / 64 + 2);
}

}  // namespace
}  // namespace qel::encodings

int QELUTILITY_CALL encodeQP(const char* text, size_t length, size_t startColumn, char* out,
                             size_t outSize, size_t* resultLength) {
    return qel::encodings::produce(
        text, length, qel::encodings::longestCode(length), out, outSize, resultLength,
        [&](char* buffer) {
            return qel::encodings::Encoder(text, length, startColumn,
                                           qel::encodings::LineBreaks::kData, buffer)
                .run();
        });
}

int QELUTILITY_CALL encodeQuotedPrintable(const char* text, size_t length, char* out,
                                          size_t outSize, size_t* resultLength) {
    return qel::encodings::produce(
        text, length, qel::encodings::longestCode(length), out, outSize, resultLength,
        [&](char* buffer) {
            return qel::encodings::Encoder(text, length, 0, qel::encodings::LineBreaks::kLineBreaks,
                                           buffer)
                .run();
        });
}

int QELUTILITY_CALL decodeQP(const char* text, size_t length, char* out, size_t outSize,
                             size_t* resultLength) {
    return qel::encodings::produce(
        text, length, length, out, outSize, resultLength,
        [&](char* buffer) { return qel::encodings::decodeTo(text, length, buffer); });
}
