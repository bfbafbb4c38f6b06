// How the bytes of each kind of character set become text. Any thread.
#ifndef QEL_CALENDAR_CHARSETS_DECODERS_H
#define QEL_CALENDAR_CHARSETS_DECODERS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qel::calendar {

enum class Decoder : std::uint8_t {
    SingleByte,
    Utf8,
    Utf7,
    Utf16LittleEndian,  // a byte-order mark overrides the order of this one and the next three
    Utf16BigEndian,
    Utf32LittleEndian,
    Utf32BigEndian,
    ShiftJis,
    EucJp,
    Iso2022Jp,
    Gb18030,
    Hz,
    Big5,
    EucKr,
    ShiftOut  // ISO-2022-KR and ISO-2022-CN: pairs of 7 bits between SO and SI
};

// Appends the text in UTF-8, as decode() of CharacterSet.h does. `upperHalf` has the 128 characters
// of the bytes from 0x80 on for SingleByte, 0 for a byte without one.
std::size_t decodeBytes(Decoder decoder, const char16_t* upperHalf, std::string_view bytes,
                        std::string& text);

}  // namespace qel::calendar

#endif
