#include <algorithm>
#include <bit>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "QelUtility/VStrArray.h"
#include "strings/VStrArrayInternal.h"

namespace {

constexpr int kStep = 128;

// Up to here a block holds exactly the elements that the array claims room for. Past it the block
// is rounded up to a power of two, so that a list of a million items is not moved eight thousand
// times; the array still claims its room in steps.
constexpr int kExactBlock = 4096;
constexpr int kMostElements = 1 << 30;

constexpr int blockFor(int room) {
    return room <= kExactBlock ? room
                               : static_cast<int>(std::bit_ceil(static_cast<unsigned>(room)));
}

static_assert(blockFor(128) == 128 && blockFor(4096) == 4096 && blockFor(4224) == 8192);

// `n` null strings, which are nothing but zeros: made and left one by one they would cost more than
// the items of an ordinary line. Null when memory is exhausted. An element's life begins when it is
// counted; freeBlock ends it for the `used` first ones.
VStr* newBlock(int n) {
    constexpr std::size_t kMost = PTRDIFF_MAX / sizeof(VStr);
    if (static_cast<std::size_t>(n) > kMost) return nullptr;
    const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(VStr);
    void* block = ::operator new(bytes, std::nothrow);
    return block == nullptr ? nullptr : static_cast<VStr*>(std::memset(block, 0, bytes));
}

void freeBlock(VStr* block, int used) {
    std::destroy_n(block, used);
    ::operator delete(block);
}

}  // namespace

CBxArray<VStr>::CBxArray() : m_lastIndex(-1), m_size(0), m_data(nullptr) {
    static_assert(offsetof(CBxArray<VStr>, m_lastIndex) == 0 &&
                  offsetof(CBxArray<VStr>, m_size) == 4 && offsetof(CBxArray<VStr>, m_data) == 8);
}

CBxArray<VStr>::CBxArray(const CBxArray& o) : CBxArray() {
    *this = o;
}

CBxArray<VStr>::~CBxArray() {
    RemoveAll();
}

CBxArray<VStr>& CBxArray<VStr>::operator=(const CBxArray& o) {
    if (this == &o) return *this;
    RemoveAll();
    if (o.m_data == nullptr) return *this;
    m_data = newBlock(blockFor(o.m_lastIndex + 1));
    if (m_data == nullptr) return *this;
    m_lastIndex = o.m_lastIndex;
    m_size = o.m_size;
    std::uninitialized_default_construct_n(m_data, m_size);
    std::copy_n(o.m_data, m_size, m_data);
    return *this;
}

int CBxArray<VStr>::GetSize() {
    return m_size;
}

VStr* CBxArray<VStr>::GetPtr() {
    return m_data;
}

bool CBxArray<VStr>::GrowForOne(bool moving) {
    if (m_size <= m_lastIndex) return true;
    const int room = m_lastIndex + 1 + kStep;
    if (room > kMostElements) return false;
    if (m_data == nullptr || blockFor(room) != blockFor(m_lastIndex + 1)) {
        VStr* block = newBlock(blockFor(room));
        if (block == nullptr) return false;
        std::uninitialized_default_construct_n(block, m_size);
        for (int i = 0; m_data != nullptr && i < m_size; ++i)
            if (moving)
                block[i] <<= m_data[i];
            else
                qel::strings::takeText(block[i], m_data[i]);
        if (m_data != nullptr) freeBlock(m_data, m_size);
        m_data = block;
    }
    m_lastIndex = room - 1;
    return true;
}

// The interface takes its strings by value, so that its own elements may be given.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
int CBxArray<VStr>::Add(VStr v) {
    if (!GrowForOne(false)) return -1;
    VStr* element = new (m_data + m_size) VStr;
    *element = v;
    // A null string stays null; any other one that arrives as null found no memory.
    if (element->Compare(nullptr) == 0 && v.Compare(nullptr) != 0) return -1;
    return m_size++;
}

VStr& CBxArray<VStr>::operator[](int i) {
    if (i < 0 || i >= m_size) throw -1;
    return m_data[i];
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
int CBxArray<VStr>::FindItem(VStr v) {
    for (int i = 0; i < m_size; ++i)
        if (std::strcmp(m_data[i], v) == 0) return i;
    return -1;
}

void CBxArray<VStr>::RemoveAll() {
    if (m_data != nullptr) freeBlock(m_data, m_size);
    m_data = nullptr;
    m_lastIndex = -1;
    m_size = 0;
}

Bx_VStrArray::Bx_VStrArray() = default;
Bx_VStrArray::Bx_VStrArray(const Bx_VStrArray& o) = default;
Bx_VStrArray::~Bx_VStrArray() = default;
Bx_VStrArray& Bx_VStrArray::operator=(const Bx_VStrArray& o) = default;

int Bx_VStrArray::AddVStr(VStr& v) {
    if (m_size > m_lastIndex) {
        // Taken before the block grows: `v` may be one of its elements.
        VStr taken;
        taken <<= v;
        const bool grown = GrowForOne(true);
        VStr& place = grown ? *new (m_data + m_size) VStr : v;
        place <<= taken;
        return grown ? m_size++ : -1;
    }
    *new (m_data + m_size) VStr <<= v;
    return m_size++;
}

int Bx_VStrArray::FindItemNoCase(const char* s) {
    for (int i = 0; i < m_size; ++i)
        if (m_data[i].CompareNoCase(s) == 0) return i;
    return -1;
}
