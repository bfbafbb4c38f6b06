#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "QelUtility/BxDataStream.h"
#include "streams/BxDataStreamInternal.h"
#include "strings/VStrInternal.h"

namespace {

using qel::streams::Excerpt;
using qel::streams::kStreamSourceName;

constexpr int kDecodeNoMemory = 7004;
constexpr int kDecodeMalformed = 7011;

// What encodedBytes made of `*size` bytes, in a new block with a zero after it for the caller to
// free; `*size` becomes their number. Else null, and `code` says why.
unsigned char* decodedBytes(const unsigned char* text, int length, long& size, int& code) {
    auto* block = static_cast<unsigned char*>(std::malloc(static_cast<std::size_t>(length) + 1));
    if (block == nullptr) {
        code = kDecodeNoMemory;
        return nullptr;
    }
    long count = 0;
    for (int i = 0; i < length; ++i) {
        unsigned char byte = text[i];
        if (byte == 0xFF) {
            byte = 0;
        } else if (byte == 0xFE) {
            const int high =
                i + 2 < length ? qel::platform::hexValue(static_cast<char>(text[i + 1])) : -1;
            const int low =
                i + 2 < length ? qel::platform::hexValue(static_cast<char>(text[i + 2])) : -1;
            if (high < 0 || low < 0) {
                std::free(block);
                code = kDecodeMalformed;
                return nullptr;
            }
            byte = static_cast<unsigned char>(high * 16 + low);
            i += 2;
        }
        block[count++] = byte;
    }
    block[count] = 0;
    size = count;
    return block;
}

}  // namespace

// The number at the position in 64 bits, -1 for "-", and the position past it and its separator.
unsigned long long CBxDataStream::ReadNumber() {
    const unsigned char* end = ContentEnd();
    if (m_position < end && *m_position == '-' &&
        (m_position + 1 == end || qel::streams::endsValue(m_position[1]))) {
        if (m_position + 1 == end) FailPastEnd(__LINE__);
        // Past what follows too, be it the terminator: what comes after "-" at the end is the end.
        m_position += 2;
        return ~0ULL;
    }
    unsigned long long value = 0;
    unsigned char* p = m_position;
    for (; p < end; ++p) {
        const int digit = qel::streams::kHexValues[*p];
        if (digit < 0) {
            if (qel::streams::endsValue(*p)) break;
            throw static_cast<int>(QEL_MALFORMED);
        }
        value = value << 4 | static_cast<unsigned>(digit);
    }
    if (p >= end || p - m_position > INT_MAX) FailPastEnd(__LINE__);
    m_position = *p == static_cast<unsigned char>(qel::streams::kSeparator) ? p + 1 : p;
    return value;
}

// The length of the text at the position, 0 where nothing ends it before the end of the storage.
int CBxDataStream::ValueLength(int line) {
    const int length = m_position < ContentEnd() ? CBxstrlen(m_position) : 0;
    if (length >= ContentEnd() - m_position) FailPastEnd(line);
    return length;
}

// Logs and throws 2023 for the value at the position, which does not end inside the content.
void CBxDataStream::FailPastEnd(int line) {
    const unsigned char* end = ContentEnd();
    const auto length = m_position < end ? end - m_position : 0;
    throw BxTrace_Error_SL(kStreamSourceName, line, Excerpt(m_storage, ContentSize()).text,
                           static_cast<long>(std::min<std::ptrdiff_t>(length, INT_MAX)),
                           QEL_READ_PAST_END);
}

// Moves past a value of that length and past its separator; the terminator stays.
void CBxDataStream::PassValue(int length) {
    m_position += length;
    if (m_position < ContentEnd() &&
        *m_position == static_cast<unsigned char>(qel::streams::kSeparator))
        ++m_position;
}

// The count of a list's elements, each of which takes a byte at least.
int CBxDataStream::ReadCount() {
    unsigned char* start = m_position;
    long count = 0;
    *this >> count;
    const auto left = std::max<std::ptrdiff_t>(ContentEnd() - m_position, 0);
    if (count > left) {
        m_position = start;
        throw BxTrace_Error(kStreamSourceName, __LINE__, static_cast<int>(count),
                            QEL_READ_PAST_END);
    }
    return static_cast<int>(std::max(count, 0L));
}

CBxDataStream& CBxDataStream::operator>>(char& value) {
    value = static_cast<char>(ReadNumber());
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(unsigned char& value) {
    value = static_cast<unsigned char>(ReadNumber());
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(bool& value) {
    value = ReadNumber() != 0;
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(short& value) {
    value = static_cast<short>(ReadNumber());
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(unsigned short& value) {
    value = static_cast<unsigned short>(ReadNumber());
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(int& value) {
    value = static_cast<int>(ReadNumber());
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(unsigned int& value) {
    value = static_cast<unsigned int>(ReadNumber());
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(long& value) {
    value = static_cast<std::int32_t>(ReadNumber());
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(unsigned long& value) {
    value = static_cast<std::uint32_t>(ReadNumber());
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(long long& value) {
    value = static_cast<long long>(ReadNumber());
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(unsigned long long& value) {
    value = ReadNumber();
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(char* text) {
    const int length = ValueLength(__LINE__);
    if (text != nullptr) {
        std::memmove(text, m_position, static_cast<std::size_t>(length));
        text[length] = '\0';
    }
    PassValue(length);
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(VStr& text) {
    const int length = ValueLength(__LINE__);
    qel::strings::Writer::assign(text, reinterpret_cast<const char*>(m_position), length);
    // Without memory even an empty text is null, which has the shared text of all null strings.
    const bool missing =
        length == 0 && static_cast<const char*>(text) == static_cast<const char*>(VStr());
    if (text.GetLength() != length || missing)
        qel::streams::failWithSize(__LINE__, static_cast<unsigned>(length), QEL_OUT_OF_MEMORY);
    PassValue(length);
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(VStrArray& list) {
    const int count = ReadCount();
    // One change of size for all elements: each one copies the whole array.
    const int old = list.GetSize();
    if (count > INT_MAX - old)
        qel::streams::failWithSize(__LINE__, static_cast<unsigned>(count), QEL_OUT_OF_MEMORY);
    int read = 0;
    if (count > 0) list.SetSize(old + count);
    try {
        // An array without memory has a size but no elements: all of them are the same.
        if (count > 0 && &list.ElementAt(old) == &list.ElementAt(-1))
            qel::streams::failWithSize(__LINE__, static_cast<unsigned>(count), QEL_OUT_OF_MEMORY);
        for (; read < count; ++read) *this >> list.ElementAt(old + read);
    } catch (int) {
        list.SetSize(old + read);
        throw;
    }
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(CBxIntList& list) {
    const int count = ReadCount();
    for (int i = 0; i < count; ++i) {
        unsigned char* start = m_position;
        int value = 0;
        *this >> value;
        if (list.Add(value) < 0) {
            m_position = start;
            qel::streams::failWithSize(__LINE__, sizeof value, QEL_OUT_OF_MEMORY);
        }
    }
    return *this;
}

CBxDataStream& CBxDataStream::operator>>(CBxDataStream& nested) {
    unsigned char* start = m_position;
    long count = 0;
    *this >> count;
    // The content and at least its separator or terminator.
    if (count < 0 || count >= ContentEnd() - m_position) {
        m_position = start;
        throw BxTrace_Error(kStreamSourceName, __LINE__, static_cast<int>(count),
                            QEL_READ_PAST_END);
    }
    const auto size = static_cast<std::size_t>(count);
    auto* block = static_cast<unsigned char*>(std::malloc(size + 1));
    if (block == nullptr) {
        m_position = start;
        qel::streams::failWithSize(__LINE__, size + 1, QEL_OUT_OF_MEMORY);
    }
    std::memcpy(block, m_position, size);
    block[size] = 0;
    try {
        nested.ReplaceBuffer(block, static_cast<unsigned long>(size + 1));
    } catch (int) {
        std::free(block);
        m_position = start;
        throw;
    }
    // A stream read into itself starts afresh, as the nested one.
    if (&nested != this) m_position += size + 1;
    std::free(block);
    return *this;
}

int CBxDataStream::Read(unsigned char*& data, long& size) {
    long count = 0;
    *this >> count;
    if (count == 0) return QEL_OK;
    const int length = ValueLength(__LINE__);
    long decodedSize = 0;
    int code = QEL_OK;
    unsigned char* decoded = decodedBytes(m_position, length, decodedSize, code);
    if (decoded == nullptr) {
        const Excerpt shown(m_position, static_cast<std::size_t>(length));
        return BxTrace_Error_SL(kStreamSourceName, __LINE__, shown.text, length, code);
    }
    PassValue(length);
    if (decodedSize != count) {
        std::free(decoded);
        return BxTrace_Error(kStreamSourceName, __LINE__, static_cast<int>(count), QEL_MALFORMED);
    }
    size = decodedSize;
    if (data == nullptr) {
        data = decoded;
        return QEL_OK;
    }
    std::memcpy(data, decoded, static_cast<std::size_t>(decodedSize));
    std::free(decoded);
    return QEL_OK;
}
