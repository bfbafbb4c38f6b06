#include "QelUtility/BxQuotedPrintable.h"

#include <cstdint>
#include <limits>

namespace qel {
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

// 0..15, or -1 for what is no hexadecimal digit.
int hexValue(unsigned char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    return -1;
}

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
            } else {
                putUnit();
            }
        }
        return sink_.length();
    }

  private:
    // The number of bytes of a line break that stays one, or 0.
    std::size_t hardBreakAt(std::size_t at) const {
        if (breaks_ == LineBreaks::kData || at >= length_) return 0;
        if (text_[at] == '\n') return 1;
        return text_[at] == '\r' && at + 1 < length_ && text_[at + 1] == '\n' ? 2 : 0;
    }

    bool lineEndsAt(std::size_t at) const { return at >= length_ || hardBreakAt(at) != 0; }

    // The number of bytes that must stay on one line: a UTF-8 character, CR LF, or a single byte.
    std::size_t unitSize() const {
        const unsigned char first = text_[position_];
        std::size_t size = 1;
        if (first >= 0xF0 && first <= 0xF4) {
            size = 4;
        } else if (first >= 0xE0 && first < 0xF0) {
            size = 3;
        } else if (first >= 0xC2 && first < 0xE0) {
            size = 2;
        } else if (first == '\r' && length_ - position_ > 1 && text_[position_ + 1] == '\n') {
            return 2;
        }
        if (size > length_ - position_) return 1;
        for (std::size_t i = 1; i < size; ++i) {
            if ((text_[position_ + i] & 0xC0) != 0x80) return 1;
        }
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

std::uint64_t decodeTo(const char* source, std::size_t length, char* out) {
    const auto* text = reinterpret_cast<const unsigned char*>(source);
    Sink sink(out);
    std::size_t i = 0;
    while (i < length) {
        const unsigned char byte = text[i];
        if (byte != '=' && !isBlank(byte)) {
            sink.put(byte);
            ++i;
            continue;
        }
        if (byte == '=' && length - i > 2) {
            const int high = hexValue(text[i + 1]);
            const int low = hexValue(text[i + 2]);
            if (high >= 0 && low >= 0) {
                sink.put(static_cast<unsigned char>(high * 16 + low));
                i += 3;
                continue;
            }
        }
        std::size_t end = i + 1;  // of the run of blanks
        while (end < length && isBlank(text[end])) ++end;
        const std::size_t breakSize = lineBreakAt(text, length, end);
        if (breakSize == 0) {
            for (; i < end; ++i) sink.put(text[i]);
        } else {
            i = byte == '=' ? end + breakSize : end;
        }
    }
    return sink.length();
}

// Measures with a null buffer, reports, and writes when the result fits: `code(buffer)` returns the
// length of the result.
template <typename Code>
int produce(const char* text, std::size_t length, char* out, std::size_t outSize,
            std::size_t* resultLength, Code code) {
    if (resultLength != nullptr) *resultLength = 0;
    if (text == nullptr && length != 0) return QEL_NOT_INITIALIZED;
    const std::uint64_t needed = code(nullptr);
    if (needed >= std::numeric_limits<std::size_t>::max()) return QEL_OUT_OF_MEMORY;
    if (resultLength != nullptr) *resultLength = static_cast<std::size_t>(needed);
    if (out == nullptr) return QEL_OK;
    if (outSize <= needed) return QEL_OUTPUT_TOO_SMALL;
    code(out);
    out[needed] = '\0';
    return QEL_OK;
}

}  // namespace
}  // namespace qel

int QELUTILITY_CALL encodeQP(const char* text, size_t length, size_t startColumn, char* out,
                             size_t outSize, size_t* resultLength) {
    return qel::produce(text, length, out, outSize, resultLength, [&](char* buffer) {
        return qel::Encoder(text, length, startColumn, qel::LineBreaks::kData, buffer).run();
    });
}

int QELUTILITY_CALL encodeQuotedPrintable(const char* text, size_t length, char* out,
                                          size_t outSize, size_t* resultLength) {
    return qel::produce(text, length, out, outSize, resultLength, [&](char* buffer) {
        return qel::Encoder(text, length, 0, qel::LineBreaks::kLineBreaks, buffer).run();
    });
}

int QELUTILITY_CALL decodeQP(const char* text, size_t length, char* out, size_t outSize,
                             size_t* resultLength) {
    return qel::produce(text, length, out, outSize, resultLength,
                        [&](char* buffer) { return qel::decodeTo(text, length, buffer); });
}
