#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "QelUtility/BxDataStream.h"
#include "streams/BxDataStreamInternal.h"

namespace {

using qel::streams::kSeparator;

// Bytes as text without a separator or a zero byte.
std::string encodedBytes(const unsigned char* data, long size) {
    std::string text;
    text.reserve(static_cast<std::size_t>(size));
    for (long i = 0; i < size; ++i) {
        const unsigned char byte = data[i];
        if (byte >= 0x20 && byte <= 0xFD) {
            text += static_cast<char>(byte);
        } else if (byte == 0) {
            text += '\xFF';
        } else {
            text += '\xFE';
            text += qel::platform::kHexDigits[byte >> 4];
            text += qel::platform::kHexDigits[byte & 0xF];
        }
    }
    return text;
}

}  // namespace

// `bits` beyond the digits must be clear.
void CBxDataStream::AddNumber(unsigned long long bits, int digits) {
    constexpr int kMostDigits = 16;
    const bool minusOne = bits == ~0ULL >> (4 * (kMostDigits - digits));
    const int size = minusOne ? 1 : static_cast<int>(std::bit_width(bits) + 3) / 4;
    // As AddToBuf, with the digits written where they belong.
    GrowBuf(size + 2);
    if (m_length > 0) *m_position++ = kSeparator;
    unsigned char* const text = m_position;
    unsigned char* const end = text + size;
    if (minusOne) *text = '-';
    for (unsigned char* p = end; !minusOne && p != text; bits >>= 4)
        *--p = static_cast<unsigned char>(qel::platform::kHexDigits[bits & 0xF]);
    *end = 0;
    m_position = end;
    m_length += 1U + static_cast<unsigned int>(size);
}

void CBxDataStream::AddLong(long long value) {
    if (value < INT32_MIN || value > INT32_MAX) throw static_cast<int>(QEL_MALFORMED);
    AddNumber(static_cast<std::uint32_t>(value), 8);
}

CBxDataStream& CBxDataStream::operator<<(char value) {
    return *this << static_cast<unsigned char>(value);
}

CBxDataStream& CBxDataStream::operator<<(unsigned char value) {
    AddNumber(value, 2);
    return *this;
}

CBxDataStream& CBxDataStream::operator<<(short value) {
    return *this << static_cast<unsigned short>(value);
}

CBxDataStream& CBxDataStream::operator<<(unsigned short value) {
    AddNumber(value, 4);
    return *this;
}

CBxDataStream& CBxDataStream::operator<<(int value) {
    return *this << static_cast<unsigned int>(value);
}

CBxDataStream& CBxDataStream::operator<<(unsigned int value) {
    AddNumber(value, 8);
    return *this;
}

CBxDataStream& CBxDataStream::operator<<(long value) {
    AddLong(value);
    return *this;
}

CBxDataStream& CBxDataStream::operator<<(unsigned long value) {
    const unsigned long long wide = value;
    if (wide > UINT32_MAX) throw static_cast<int>(QEL_MALFORMED);
    AddNumber(wide, 8);
    return *this;
}

CBxDataStream& CBxDataStream::operator<<(long long value) {
    return *this << static_cast<unsigned long long>(value);
}

CBxDataStream& CBxDataStream::operator<<(unsigned long long value) {
    AddNumber(value, 16);
    return *this;
}

CBxDataStream& CBxDataStream::operator<<(bool value) {
    return *this << (value ? 1 : 0);
}

CBxDataStream& CBxDataStream::operator<<(const char* text) {
    if (text == nullptr) return *this << kSeparator;
    char* own = const_cast<char*>(text);
    char* separator = std::strchr(own, kSeparator);
    // The first alone: the caller's text is changed, and what follows another one is a value of its
    // own to the reader.
    if (separator != nullptr) *separator = '~';
    const std::size_t length = std::strlen(own);
    if (length > INT_MAX) qel::streams::failWithSize(__LINE__, length, QEL_OUT_OF_MEMORY);
    AddToBuf(own, static_cast<int>(length));
    return *this;
}

CBxDataStream& CBxDataStream::operator<<(const unsigned char* text) {
    return *this << reinterpret_cast<const char*>(text);
}

CBxDataStream& CBxDataStream::operator<<(const VStrArray& list) {
    const int count = list.GetSize();
    AddLong(count);
    // By reference: a copy might be lost to exhausted memory and be written as an empty text.
    auto& elements = const_cast<VStrArray&>(list);
    for (int i = 0; i < count; ++i) *this << static_cast<const char*>(elements.ElementAt(i));
    return *this;
}

CBxDataStream& CBxDataStream::operator<<(VStrArray& list) {
    return *this << static_cast<const VStrArray&>(list);
}

CBxDataStream& CBxDataStream::operator<<(CBxIntList& list) {
    const int count = list.GetSize();
    AddLong(count);
    for (int i = 0; i < count; ++i) *this << list[i];
    return *this;
}

CBxDataStream& CBxDataStream::operator<<(const CBxDataStream& nested) {
    const unsigned int content = nested.ContentSize();
    const unsigned int count = content > 0 ? content - 1 : 0;
    if (count > INT_MAX) qel::streams::failWithSize(__LINE__, count, QEL_OUT_OF_MEMORY);
    std::string copy;
    char* bytes = reinterpret_cast<char*>(nested.m_storage);
    // Writing the count changes or moves the content where the two share it.
    if (qel::streams::pointsInto(bytes, m_storage, m_capacity) && count > 0) {
        try {
            copy.assign(bytes, count);
        } catch (const std::bad_alloc&) {
            qel::streams::failWithSize(__LINE__, count, QEL_OUT_OF_MEMORY);
        }
        bytes = copy.data();
    }
    AddLong(count);
    AddToBuf(bytes, static_cast<int>(count));
    return *this;
}

CBxDataStream& CBxDataStream::operator<<(CBxDataStream& nested) {
    return *this << static_cast<const CBxDataStream&>(nested);
}

int CBxDataStream::Write(unsigned char* data, long size) {
    if (data == nullptr || size < 0) size = 0;
    std::string text;
    try {
        text = encodedBytes(data, size);
    } catch (const std::exception&) {
        const int detail = static_cast<int>(std::min<long>(size, INT_MAX));
        return BxTrace_Error(qel::streams::kStreamSourceName, __LINE__, detail, QEL_OUT_OF_MEMORY);
    }
    if (text.size() > INT_MAX) qel::streams::failWithSize(__LINE__, text.size(), QEL_OUT_OF_MEMORY);
    *this << size;
    if (size > 0) AddToBuf(text.data(), static_cast<int>(text.size()));
    return QEL_OK;
}
