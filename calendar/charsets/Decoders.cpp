#include "calendar/charsets/Decoders.h"

#include <algorithm>

#include "calendar/base/Text.h"
#include "calendar/charsets/CharacterSet.h"
#include "calendar/charsets/Index.h"

namespace qel::calendar {

namespace {

constexpr bool within(unsigned byte, unsigned first, unsigned last) {
    return byte >= first && byte <= last;
}

// Bytes on their way to text. One decoder reads them from front to back.
class Decoding {
  public:
    Decoding(std::string_view bytes, std::string& text) : bytes_(bytes), text_(text) {}

    [[nodiscard]] bool atEnd() const { return at_ >= bytes_.size(); }
    // Beyond the end 0, which no set has in a sequence of several bytes.
    [[nodiscard]] unsigned peek(std::size_t ahead = 0) const {
        return at_ + ahead < bytes_.size() ? static_cast<unsigned char>(bytes_[at_ + ahead]) : 0;
    }
    [[nodiscard]] std::size_t left() const { return bytes_.size() - at_; }
    [[nodiscard]] std::size_t invalid() const { return invalid_; }
    void skip(std::size_t count) { at_ += std::min(count, left()); }

    // Most text has long stretches of ASCII.
    bool takesAscii() {
        const std::size_t begin = at_;
        while (!atEnd() && static_cast<signed char>(bytes_[at_]) >= 0) ++at_;
        text_ += bytes_.substr(begin, at_ - begin);
        return at_ != begin;
    }

    // The character of `length` bytes, which is invalid when `code` is 0: then an ASCII byte at the
    // end of them is left for itself.
    void put(std::size_t length, char32_t code) {
        addOrBad(code);
        const bool keepsLast =
            code == 0 && length > 1 && length <= left() && peek(length - 1) < 0x80;
        skip(keepsLast ? length - 1 : length);
    }
    // Text besides, whose bytes are not passed yet.
    void add(char32_t code) { appendUtf8(text_, code); }
    void bad() {
        text_ += kReplacement;
        ++invalid_;
    }
    void addOrBad(char32_t code) {
        if (code != 0)
            add(code);
        else
            bad();
    }
    void addUtf16(std::string_view units) {
        invalid_ += decodeBytes(Decoder::Utf16BigEndian, nullptr, units, text_);
    }
    // One byte that is a character where it is ASCII.
    void putAscii() {
        if (peek() < 0x80)
            add(peek());
        else
            bad();
        skip(1);
    }

  private:
    std::string_view bytes_;
    std::string& text_;
    std::size_t at_ = 0;
    std::size_t invalid_ = 0;
};

void decodeSingleByte(Decoding& in, const char16_t* upperHalf) {
    while (!in.atEnd())
        if (!in.takesAscii()) in.put(1, upperHalf[in.peek() - 0x80]);
}

void decodeUtf8(std::string_view bytes, Decoding& in) {
    while (!in.atEnd()) {
        if (in.takesAscii()) continue;
        const std::string_view rest = bytes.substr(bytes.size() - in.left());
        const std::size_t length = utf8CharacterLength(rest);
        char32_t code = rest[0] & (0x7F >> length);
        for (std::size_t each = 1; each < length; ++each)
            code = code << 6 | (static_cast<unsigned char>(rest[each]) & 0x3FU);
        in.put(std::max<std::size_t>(length, 1), length == 0 ? 0 : code);
    }
}

void decodeShiftJis(Decoding& in) {
    while (!in.atEnd()) {
        if (in.takesAscii()) continue;
        const unsigned lead = in.peek();
        const unsigned trail = in.peek(1);
        if (lead == 0x80) {
            in.put(1, lead);
        } else if (within(lead, 0xA1, 0xDF)) {
            in.put(1, 0xFF61 - 0xA1 + lead);
        } else if (lead == 0xA0 || lead > 0xFC) {
            in.put(1, 0);
        } else if (!within(trail, 0x40, 0x7E) && !within(trail, 0x80, 0xFC)) {
            in.put(2, 0);
        } else {
            const unsigned row = lead - (lead < 0xA0 ? 0x81 : 0xC1);
            const unsigned pointer = row * 188 + trail - (trail < 0x7F ? 0x40 : 0x41);
            // Rows for characters of one's own are private use.
            in.put(2, within(pointer, 8836, 10715) ? 0xE000 - 8836 + pointer : jis0208(pointer));
        }
    }
}

void decodeEucJp(Decoding& in) {
    while (!in.atEnd()) {
        if (in.takesAscii()) continue;
        const unsigned lead = in.peek();
        const unsigned second = in.peek(1);
        const unsigned third = in.peek(2);
        if (lead == 0x8E && within(second, 0xA1, 0xDF)) {
            in.put(2, 0xFF61 - 0xA1 + second);
        } else if (lead == 0x8F && within(second, 0xA1, 0xFE)) {
            const bool pair = within(third, 0xA1, 0xFE);
            in.put(3, pair ? jis0212((second - 0xA1) * 94 + third - 0xA1) : 0);
        } else if (lead == 0x8E || lead == 0x8F || within(lead, 0xA1, 0xFE)) {
            const bool pair = lead >= 0xA1 && within(second, 0xA1, 0xFE);
            in.put(2, pair ? jis0208((lead - 0xA1) * 94 + second - 0xA1) : 0);
        } else {
            in.put(1, 0);
        }
    }
}

void decodeGb18030(Decoding& in) {
    while (!in.atEnd()) {
        if (in.takesAscii()) continue;
        const unsigned lead = in.peek();
        const unsigned second = in.peek(1);
        if (lead == 0x80) {
            in.put(1, 0x20AC);
        } else if (lead == 0xFF) {
            in.put(1, 0);
        } else if (within(second, '0', '9')) {
            const unsigned third = in.peek(2);
            const unsigned fourth = in.peek(3);
            const bool whole = within(third, 0x81, 0xFE) && within(fourth, '0', '9');
            const char32_t code = whole ? gb18030Range(((lead - 0x81) * 10 + second - '0') * 1260 +
                                                       (third - 0x81) * 10 + fourth - '0')
                                        : 0;
            // Of one that breaks off the lead is lost alone: what follows may well be right.
            in.put(whole ? 4 : 1, code);
        } else if (within(second, 0x40, 0x7E) || within(second, 0x80, 0xFE)) {
            in.put(2, gb18030((lead - 0x81) * 190 + second - (second < 0x7F ? 0x40 : 0x41)));
        } else {
            in.put(2, 0);
        }
    }
}

void decodeBig5(Decoding& in) {
    while (!in.atEnd()) {
        if (in.takesAscii()) continue;
        const unsigned lead = in.peek();
        const unsigned trail = in.peek(1);
        if (!within(lead, 0x81, 0xFE)) {
            in.put(1, 0);
            continue;
        }
        if (!within(trail, 0x40, 0x7E) && !within(trail, 0xA1, 0xFE)) {
            in.put(2, 0);
            continue;
        }
        const unsigned pointer = (lead - 0x81) * 157 + trail - (trail < 0x7F ? 0x40 : 0x62);
        if (pointer == 1133 || pointer == 1135 || pointer == 1164 || pointer == 1166) {
            // Letters with two accents, for which Unicode has no single character.
            in.put(2, pointer < 1150 ? 0xCA : 0xEA);
            in.add(pointer == 1133 || pointer == 1164 ? 0x304 : 0x30C);
        } else {
            in.put(2, big5(pointer));
        }
    }
}

void decodeEucKr(Decoding& in) {
    while (!in.atEnd()) {
        if (in.takesAscii()) continue;
        const unsigned lead = in.peek();
        const unsigned trail = in.peek(1);
        if (!within(lead, 0x81, 0xFE))
            in.put(1, 0);
        else
            in.put(2, within(trail, 0x41, 0xFE) ? eucKr((lead - 0x81) * 190 + trail - 0x41) : 0);
    }
}

enum class JpSet { Ascii, Roman, Katakana, Kanji };

// Takes an escape sequence that changes the set.
bool takesJpEscape(Decoding& in, JpSet& set) {
    static constexpr struct {
        std::string_view bytes;  // after ESC
        JpSet set;
    } kEscapes[] = {{"(B", JpSet::Ascii}, {"(J", JpSet::Roman}, {"(I", JpSet::Katakana},
                    {"$@", JpSet::Kanji}, {"$B", JpSet::Kanji}, {"$(B", JpSet::Kanji}};
    if (in.peek() != 0x1B) return false;
    for (const auto& [bytes, next] : kEscapes) {
        unsigned same = 0;
        while (same < bytes.size() && in.peek(same + 1) == static_cast<unsigned char>(bytes[same]))
            ++same;
        if (same != bytes.size()) continue;
        set = next;
        in.skip(1 + same);
        return true;
    }
    return false;
}

// Takes a character of a set that is not ASCII; false for what is the same there.
bool takesJpCharacter(Decoding& in, JpSet set) {
    const unsigned byte = in.peek();
    if (set == JpSet::Kanji && within(byte, 0x21, 0x7E)) {
        const unsigned next = in.peek(1);
        const bool pair = within(next, 0x21, 0x7E);
        in.addOrBad(pair ? jis0208((byte - 0x21) * 94 + next - 0x21) : 0);
        in.skip(pair ? 2 : 1);
    } else if (set == JpSet::Katakana && within(byte, 0x21, 0x7E)) {
        in.put(1, byte < 0x60 ? 0xFF61 - 0x21 + byte : 0);
    } else if (set == JpSet::Roman && (byte == '\\' || byte == '~')) {
        in.put(1, byte == '~' ? 0x203E : 0xA5);
    } else {
        return false;
    }
    return true;
}

void decodeIso2022Jp(Decoding& in) {
    JpSet set = JpSet::Ascii;
    while (!in.atEnd()) {
        if (takesJpEscape(in, set)) continue;
        const unsigned byte = in.peek();
        // Each line begins in ASCII, whatever the last one forgot.
        if (byte == '\n' || byte == '\r') set = JpSet::Ascii;
        if (takesJpCharacter(in, set)) continue;
        if (byte == 0x0E || byte == 0x0F || byte == 0x1B)
            in.put(1, 0);
        else
            in.putAscii();
    }
}

// The tilde begins what HZ has beside ASCII: "~{" pairs "~}", "~~" a tilde, "~" and a line end
// nothing.
void decodeHz(Decoding& in) {
    bool pairs = false;
    while (!in.atEnd()) {
        const unsigned byte = in.peek();
        const unsigned next = in.peek(1);
        if (byte == '~' && (next == '{' || next == '}')) {
            pairs = next == '{';
            in.skip(2);
        } else if (byte == '~' && (next == '~' || next == '\n')) {
            if (next == '~') in.add(U'~');
            in.skip(2);
        } else if (pairs && within(byte, 0x21, 0x7E)) {
            const bool pair = within(next, 0x21, 0x7E);
            in.put(2, pair ? gb18030((byte + 0x80 - 0x81) * 190 + next + 0x80 - 0x41) : 0);
        } else {
            pairs = pairs && byte != '\n';
            in.putAscii();
        }
    }
}

void decodeShiftOut(Decoding& in) {
    bool pairs = false;
    unsigned designated = 'C';
    while (!in.atEnd()) {
        const unsigned byte = in.peek();
        const unsigned next = in.peek(1);
        if (byte == 0x1B && next == '$' && in.left() >= 4) {
            designated = in.peek(3);
            in.skip(4);
        } else if (byte == 0x0E || byte == 0x0F) {
            pairs = byte == 0x0E;
            in.skip(1);
        } else if (pairs && within(byte, 0x21, 0x7E) && within(next, 0x21, 0x7E)) {
            const unsigned pointer = (byte + 0x80 - 0x81) * 190 + next + 0x80 - 0x41;
            const char32_t code = designated == 'A'   ? gb18030(pointer)
                                  : designated == 'C' ? eucKr(pointer)
                                                      : 0;
            in.addOrBad(code);
            in.skip(2);
        } else {
            pairs = pairs && byte != '\n';
            in.putAscii();
        }
    }
}

class Units {
  public:
    Units(Decoding& in, std::size_t size, bool bigEndian)
        : in_(in), size_(size), bigEndian_(bigEndian) {
        if (at(0) == 0xFEFF)
            in_.skip(size_);
        else if (at(0) == (size_ == 2 ? 0xFFFEU : 0xFFFE0000U))
            turn();
    }
    [[nodiscard]] char32_t at(std::size_t index) const {
        char32_t unit = 0;
        for (std::size_t each = 0; each < size_; ++each)
            unit = unit << 8 | in_.peek(index * size_ + (bigEndian_ ? each : size_ - 1 - each));
        return unit;
    }

  private:
    void turn() {
        bigEndian_ = !bigEndian_;
        in_.skip(size_);
    }

    Decoding& in_;
    std::size_t size_;
    bool bigEndian_;
};

void decodeUtf16(Decoding& in, bool bigEndian) {
    const Units units(in, 2, bigEndian);
    while (in.left() >= 2) {
        const char32_t unit = units.at(0);
        const char32_t low = units.at(1);
        const bool pair = unit >= 0xD800 && unit < 0xDC00 && low >= 0xDC00 && low < 0xE000;
        if (pair)
            in.add(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
        else if (unit >= 0xD800 && unit < 0xE000)
            in.bad();
        else
            in.add(unit);
        in.skip(pair ? 4 : 2);
    }
    if (!in.atEnd()) in.bad();
}

void decodeUtf32(Decoding& in, bool bigEndian) {
    const Units units(in, 4, bigEndian);
    while (in.left() >= 4) {
        const char32_t unit = units.at(0);
        if (unit > 0x10FFFF || (unit >= 0xD800 && unit < 0xE000))
            in.bad();
        else
            in.add(unit);
        in.skip(4);
    }
    if (!in.atEnd()) in.bad();
}

unsigned base64Value(unsigned byte) {
    if (within(byte, 'A', 'Z')) return byte - 'A';
    if (within(byte, 'a', 'z')) return byte - 'a' + 26;
    if (within(byte, '0', '9')) return byte - '0' + 52;
    return byte == '+' ? 62 : byte == '/' ? 63 : 64;
}

// "+", UTF-16 in Base64, "-" (RFC 2152).
void decodeUtf7(Decoding& in) {
    while (!in.atEnd()) {
        if (in.peek() != '+') {
            in.putAscii();
            continue;
        }
        in.skip(1);
        if (in.peek() == '-') {
            in.add(U'+');
            in.skip(1);
            continue;
        }
        std::string units;
        unsigned bits = 0;
        unsigned have = 0;
        for (; base64Value(in.peek()) < 64 && !in.atEnd(); in.skip(1)) {
            bits = (bits << 6 | base64Value(in.peek())) & 0xFFFFFF;
            have += 6;
            if (have < 8) continue;
            have -= 8;
            units += static_cast<char>(bits >> have & 0xFF);
        }
        if (in.peek() == '-') in.skip(1);
        if (units.size() % 2 != 0) units.pop_back();
        if (units.empty()) in.bad();
        in.addUtf16(units);
    }
}

}  // namespace

std::size_t decodeBytes(Decoder decoder, const char16_t* upperHalf, std::string_view bytes,
                        std::string& text) {
    text.reserve(text.size() + bytes.size() + bytes.size() / 2);
    Decoding in(bytes, text);
    switch (decoder) {
        case Decoder::SingleByte:
            decodeSingleByte(in, upperHalf);
            break;
        case Decoder::Utf8:
            decodeUtf8(bytes, in);
            break;
        case Decoder::Utf7:
            decodeUtf7(in);
            break;
        case Decoder::Utf16LittleEndian:
        case Decoder::Utf16BigEndian:
            decodeUtf16(in, decoder == Decoder::Utf16BigEndian);
            break;
        case Decoder::Utf32LittleEndian:
        case Decoder::Utf32BigEndian:
            decodeUtf32(in, decoder == Decoder::Utf32BigEndian);
            break;
        case Decoder::ShiftJis:
            decodeShiftJis(in);
            break;
        case Decoder::EucJp:
            decodeEucJp(in);
            break;
        case Decoder::Iso2022Jp:
            decodeIso2022Jp(in);
            break;
        case Decoder::Gb18030:
            decodeGb18030(in);
            break;
        case Decoder::Hz:
            decodeHz(in);
            break;
        case Decoder::Big5:
            decodeBig5(in);
            break;
        case Decoder::EucKr:
            decodeEucKr(in);
            break;
        case Decoder::ShiftOut:
            decodeShiftOut(in);
            break;
    }
    return in.invalid();
}

}  // namespace qel::calendar
