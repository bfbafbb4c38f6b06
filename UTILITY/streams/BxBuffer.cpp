// CBxBuffer and CBxIntList.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "QelUtility/BxDataStream.h"
#include "streams/BxDataStreamInternal.h"

namespace {

constexpr std::uint64_t kMostRequired = 0x3FFFFFFF;

// The capacity that storage of `capacity` bytes grows to when it needs `required`; at least twice
// what it needs, below 2^32.
constexpr std::uint64_t grownCapacity(std::uint64_t capacity, std::uint64_t required) {
    if (required > kMostRequired) return capacity;
    const std::uint64_t wanted = 2 * required;
    if (capacity == 0) {
        for (const std::uint64_t first : {256U, 1024U, 4096U, 16384U, 65536U})
            if (wanted < first) return first;
        return std::max<std::uint64_t>(wanted, 262144);
    }
    std::uint64_t grown = 2 * capacity;
    while (grown < wanted) grown *= 2;
    return grown;
}

static_assert(grownCapacity(0, 100) == 256 && grownCapacity(0, 128) == 1024);
static_assert(grownCapacity(0, 40000) == 262144 && grownCapacity(0, 200000) == 400000);
static_assert(grownCapacity(256, 256) == 512 && grownCapacity(256, 300) == 1024);
static_assert(grownCapacity(kMostRequired, kMostRequired) <= 0xFFFFFFFF);
static_assert(grownCapacity(100, kMostRequired + 1) == 100);

}  // namespace

CBxBuffer::CBxBuffer()
    : m_storage(nullptr), m_position(nullptr), m_length(0), m_capacity(0), m_external(0) {}

CBxBuffer::CBxBuffer(const CBxBuffer& o) = default;
CBxBuffer& CBxBuffer::operator=(const CBxBuffer& o) = default;

CBxBuffer::~CBxBuffer() {
    CBxBuffer::Dispose();
}

void CBxBuffer::GrowBuf(int needed) {
    needed = std::max(needed, 0);
    if (m_external != 0)
        qel::streams::failWithSize(__LINE__, static_cast<unsigned>(needed), QEL_STORAGE_NOT_OWNED);
    // Without storage the numbers are those of storage that is gone.
    if (m_storage == nullptr) m_length = m_capacity = 0;

    const auto offset = static_cast<std::uint64_t>(m_position - m_storage);
    const std::uint64_t required = offset + static_cast<unsigned>(needed);
    if (required < m_capacity) return;
    const std::uint64_t capacity = grownCapacity(m_capacity, required);
    if (capacity < required) qel::streams::failWithSize(__LINE__, required, QEL_OUT_OF_MEMORY);
    // Zero-filled: whatever is read of it before it is written must not be what others left there.
    auto* grown = static_cast<unsigned char*>(std::calloc(static_cast<std::size_t>(capacity), 1));
    if (grown == nullptr) qel::streams::failWithSize(__LINE__, capacity, QEL_OUT_OF_MEMORY);
    if (offset > 0) std::memcpy(grown, m_storage, static_cast<std::size_t>(offset));
    Dispose();
    m_storage = grown;
    m_position = grown + offset;
    m_capacity = static_cast<unsigned int>(capacity);
}

void CBxBuffer::Dispose() {
    if (m_external == 0) std::free(m_storage);
    m_storage = nullptr;
    m_position = nullptr;
    m_external = 0;
}

void CBxBuffer::SetExtBuf(void* data, int length, int capacity) {
    // Its own storage given back to it stays alive: it is the caller's from now on.
    if (!qel::streams::pointsInto(data, m_storage, m_capacity)) Dispose();
    m_storage = static_cast<unsigned char*>(data);
    m_position = m_storage;
    m_length = data == nullptr ? 0 : static_cast<unsigned int>(std::max(length, 0));
    m_capacity = data == nullptr ? 0 : static_cast<unsigned int>(std::max(capacity, 0));
    m_external = 1;
}

void CBxBuffer::DisownBuffer() {
    m_external = 1;
}

unsigned int CBxBuffer::ContentSize() const {
    return m_storage == nullptr ? 0 : std::min(m_length, m_capacity);
}

// --- CBxIntList ----------------------------------------------------------------------------------

CBxIntList::CBxIntList() = default;
CBxIntList::CBxIntList(const CBxIntList& o) {
    *this = o;
}
CBxIntList::~CBxIntList() = default;

CBxIntList& CBxIntList::operator=(const CBxIntList& o) {
    try {
        m_values = o.m_values;
    } catch (const std::bad_alloc&) {
        m_values.clear();
    }
    return *this;
}

int CBxIntList::GetSize() const {
    return static_cast<int>(m_values.size());
}

int CBxIntList::operator[](int i) const {
    return i < 0 || i >= GetSize() ? -1 : m_values[static_cast<std::size_t>(i)];
}

int CBxIntList::Add(int value) {
    if (GetSize() == INT_MAX) return -1;
    try {
        m_values.push_back(value);
    } catch (const std::bad_alloc&) {
        return -1;
    }
    return GetSize() - 1;
}
