// Content and position of CBxDataStream; BxDataStreamWriters.cpp and BxDataStreamReaders.cpp hold
// the operators.
#include "QelUtility/BxDataStream.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "streams/BxDataStreamInternal.h"

namespace {

using qel::streams::failWithSize;
using qel::streams::kSeparator;
using qel::streams::pointsInto;

// Bytes to be written into storage that they may themselves lie in: then a copy of them.
class Source {
  public:
    Source(const void* data, std::size_t size, const void* storage, std::size_t capacity)
        : data_(data) {
        if (size == 0 || !pointsInto(data, storage, capacity)) return;
        const auto* bytes = static_cast<const unsigned char*>(data);
        try {
            copy_.assign(bytes, bytes + size);
        } catch (const std::bad_alloc&) {
            failWithSize(__LINE__, size, QEL_OUT_OF_MEMORY);
        }
        data_ = copy_.data();
    }
    void copyTo(void* target, std::size_t size) const {
        if (size > 0) std::memcpy(target, data_, size);
    }

  private:
    const void* data_;
    std::vector<unsigned char> copy_;
};

}  // namespace

CBxDataStream::CBxDataStream() = default;
CBxDataStream::CBxDataStream(const CBxDataStream& o) = default;
CBxDataStream::~CBxDataStream() = default;

CBxDataStream& CBxDataStream::operator=(CBxDataStream& other) {
    ReplaceBuffer(other.m_storage, other.ContentSize());
    return *this;
}

int CBxDataStream::Initialize(unsigned char* data, unsigned long size, bool forReading) {
    // The copy is made before the old storage goes: `data` may lie in it.
    const bool sane = size <= UINT_MAX && (data != nullptr || size == 0);
    auto* storage =
        sane ? static_cast<unsigned char*>(std::malloc(std::max<std::size_t>(size, 1))) : nullptr;
    if (storage == nullptr) {
        const qel::streams::Excerpt excerpt(data, size);
        Empty();
        return BxTrace_Error_SL(qel::streams::kStreamSourceName, __LINE__, excerpt.text,
                                static_cast<long>(std::min<unsigned long>(size, INT_MAX)),
                                QEL_OUT_OF_MEMORY);
    }
    if (size > 0) std::memcpy(storage, data, size);
    Dispose();
    m_storage = storage;
    m_length = m_capacity = static_cast<unsigned int>(size);
    m_position = forReading ? m_storage : m_storage + m_length;
    return QEL_OK;
}

int CBxDataStream::Initialize(const char* text) {
    if (text == nullptr) text = "";
    auto* bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(text));
    return Initialize(bytes, static_cast<unsigned long>(std::strlen(text) + 1), true);
}

void CBxDataStream::ReplaceBuffer(unsigned char* data, unsigned long size) {
    if (size > INT_MAX) failWithSize(__LINE__, size, QEL_OUT_OF_MEMORY);
    if (data == nullptr) size = 0;
    const Source source(data, size, m_storage, m_capacity);
    Empty();
    GrowBuf(static_cast<int>(size));
    source.copyTo(m_position, size);
    m_length = static_cast<unsigned int>(size);
}

void CBxDataStream::AppendRawBytes(unsigned char* data, unsigned long size) {
    if (size == 0 || data == nullptr) return;
    if (size > INT_MAX - 1) failWithSize(__LINE__, size, QEL_OUT_OF_MEMORY);
    const Source source(data, size, m_storage, m_capacity);
    GrowBuf(static_cast<int>(size) + 1);
    source.copyTo(m_position, size);
    m_position += size;
    *m_position = 0;
    m_length = std::max(m_length, 1U) + static_cast<unsigned int>(size);
}

unsigned long CBxDataStream::Len() const {
    return m_length;
}

void CBxDataStream::SeekToBegin() {
    m_position = m_storage;
}

void CBxDataStream::Reset() {
    m_position = m_storage;
    m_length = 0;
}

void CBxDataStream::Empty() {
    Dispose();
    m_capacity = 0;
    m_length = 0;
}

void CBxDataStream::AddToBuf(char* text, int size) {
    if (size < 0 || (text == nullptr && size > 0)) return;
    if (size > INT_MAX - 2) failWithSize(__LINE__, static_cast<unsigned>(size), QEL_OUT_OF_MEMORY);
    const auto count = static_cast<std::size_t>(size);
    const Source source(text, count, m_storage, m_capacity);
    GrowBuf(size + 2);
    // The byte is that of the separator, or for the first value that of the terminator.
    if (m_length > 0) *m_position++ = kSeparator;
    source.copyTo(m_position, count);
    m_position += count;
    *m_position = 0;
    m_length += 1U + static_cast<unsigned int>(size);
}

int CBxDataStream::CBxstrlen(unsigned char* p) {
    if (p == nullptr) return 0;
    std::size_t room = m_capacity;
    if (pointsInto(p, m_storage, m_capacity)) room -= static_cast<std::size_t>(p - m_storage);
    const std::size_t length = qel::streams::lengthOfValue(p, room);
    return length == room || length > INT_MAX ? 0 : static_cast<int>(length);
}

void* CBxDataStream::CBxstrcpy(char* dst, const char* src) {
    if (dst == nullptr || src == nullptr) return dst;
    const char* separator = std::strchr(src, kSeparator);
    const std::size_t count =
        separator == nullptr
            ? std::strlen(src) + 1
            : std::min<std::size_t>(static_cast<std::size_t>(separator - src) + 1, m_capacity);
    std::memmove(dst, src, count);
    return dst;
}

void CBxDataStream::Replace1FWithNull(char* text) {
    char* separator = text == nullptr ? nullptr : std::strchr(text, kSeparator);
    if (separator != nullptr) *separator = '\0';
}

void CBxDataStream::PrintAllBytes() {
    if (ContentSize() > 0) std::fwrite(m_storage, 1, ContentSize(), stdout);
    std::putchar('\n');
}
