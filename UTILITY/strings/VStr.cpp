// Blocks, construction, buffer access and concatenation; the rest of the class is in VStrText.cpp.
#include "QelUtility/VStr.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "platform/Memory.h"
#include "strings/VStrInternal.h"

namespace {

using qel::platform::stringAlloc;
using qel::platform::stringBlockSize;
using qel::platform::stringFree;
using qel::platform::stringRealloc;
using qel::strings::kMaxLength;
using qel::strings::textLength;

// What a null string shows as its text.
char emptyText[1] = {'\0'};
// What a null string shows as its characters.
char spareCharacter = '\0';
char nullValueError[] = "VStr null-value error";

constexpr std::uint32_t kGrain = 64;

// Always above the request: a multiple of 64 gets a whole further 64 bytes.
constexpr std::uint32_t grainSize(std::uint32_t n) {
    return (n & ~(kGrain - 1)) + kGrain;
}

static_assert(grainSize(0) == 64 && grainSize(63) == 64 && grainSize(64) == 128);
static_assert(grainSize(100) == 128 && grainSize(127) == 128 && grainSize(128) == 192);
static_assert(grainSize(0x7FFFFFFF) == 0x80000000);

constexpr std::uint32_t asUnsigned(int n) {
    return static_cast<std::uint32_t>(n);
}

// Whether a text begins inside a block (null: in none). Most texts lie farther behind it, or before
// it, than any block is long, and the block's size, which costs a call, is not asked.
bool liesIn(const char* text, const char* block) {
    const std::uintptr_t distance =
        reinterpret_cast<std::uintptr_t>(text) - reinterpret_cast<std::uintptr_t>(block);
    return block != nullptr && distance <= grainSize(qel::strings::kMaxLength) &&
           distance < stringBlockSize(block);
}

template <typename Word>
void copyEnds(char* to, const char* from, std::size_t count) {
    Word first = 0;
    Word last = 0;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&last, from + count - sizeof last, sizeof last);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + count - sizeof last, &last, sizeof last);
}

// A copy of a piece, mostly a short one that has just been written. It is read in words as it was
// written, where a longer read would wait for the memory.
void copyPiece(char* to, const char* from, std::size_t count) {
    if (count > 16 || count < 4)
        std::memcpy(to, from, count);
    else if (count >= 8)
        copyEnds<std::uint64_t>(to, from, count);
    else
        copyEnds<std::uint32_t>(to, from, count);
}

}  // namespace

char* VStr::ModAlloc(int n, unsigned int* capacityOut) {
    const std::uint32_t size = grainSize(asUnsigned(n));
    char* block = n < 0 ? nullptr : stringAlloc(size);
    if (capacityOut != nullptr) *capacityOut = block == nullptr ? 0 : size;
    return block;
}

char* VStr::ModGrow(int n) {
    if (n < 0) return m_buffer;
    const std::uint32_t size = grainSize(asUnsigned(n));
    if (m_buffer == nullptr) {
        unsigned int capacity = 0;
        m_buffer = ModAlloc(n, &capacity);
        if (m_buffer != nullptr) m_capacity = capacity;
        return m_buffer;
    }
    // The test uses the block that a string of this length would have been given. A block that
    // is filled to its last byte is smaller than that, so the block itself is asked as well.
    const std::uint32_t current = grainSize(asUnsigned(m_length) + 1U);
    // No block is shorter than a grain, so for a short text the block's size need not be asked.
    if (size > current || (asUnsigned(n) > kGrain && stringBlockSize(m_buffer) < asUnsigned(n))) {
        char* grown = stringRealloc(m_buffer, size);
        if (grown == nullptr) {
            Empty();
        } else {
            m_buffer = grown;
            m_capacity = size;
        }
    }
    return m_buffer;
}

// --- Construction and assignment -----------------------------------------------------------------

VStr::VStr() : m_buffer(nullptr), m_length(0), m_capacity(0) {
    static_assert(offsetof(VStr, m_buffer) == 0 && offsetof(VStr, m_length) == sizeof(char*) &&
                  offsetof(VStr, m_capacity) == sizeof(char*) + 4 &&
                  sizeof(VStr) == sizeof(char*) + 8);
}

VStr::VStr(const char* s) : VStr() {
    const std::size_t length = s == nullptr ? 0 : std::strlen(s);
    if (length > 0 && length <= static_cast<std::size_t>(kMaxLength))
        Make(s, static_cast<int>(length), static_cast<int>(length));
}

VStr::VStr(const char* s, int n) : VStr() {
    if (s != nullptr && n > 0) Make(s, textLength(s, static_cast<std::size_t>(n)), n);
}

VStr::VStr(const VStr& o) : VStr() {
    if (o.m_buffer != nullptr && o.m_length > 0)
        Make(o.m_buffer, textLength(o.m_buffer, static_cast<std::size_t>(o.m_length)), o.m_length);
}

VStr::VStr(char c, int n) : VStr() {
    n = std::clamp(n, 1, kMaxLength);
    unsigned int capacity = 0;
    char* block = ModAlloc(n + 1, &capacity);
    if (block == nullptr) return;
    std::memset(block, c, static_cast<std::size_t>(n));
    Adopt(block, n, capacity);
}

VStr::~VStr() {
    if (m_buffer != nullptr) stringFree(m_buffer);
}

const VStr& VStr::operator=(const VStr& o) {
    if (this == &o) return *this;
    if (o.m_buffer == nullptr) {
        Empty();
        return *this;
    }
    // The text is measured and the length not asked; a text whose terminator was overwritten ends
    // with its block.
    Copy(o.m_buffer, textLength(o.m_buffer, stringBlockSize(o.m_buffer)));
    return *this;
}

const VStr& VStr::operator=(const char* s) {
    return Copy(s);
}

const VStr& VStr::operator=(char c) {
    const char text[2] = {c, '\0'};
    return Copy(text);
}

VStr& VStr::Copy(const char* s) {
    const std::size_t length = s == nullptr ? 0 : std::strlen(s);
    if (s == nullptr || length > static_cast<std::size_t>(kMaxLength)) {
        Empty();
        return *this;
    }
    return Assign(s, static_cast<int>(length), static_cast<int>(length));
}

VStr& VStr::Copy(const char* s, int n) {
    n = std::max(n, 0);
    return Assign(s, s == nullptr ? 0 : textLength(s, static_cast<std::size_t>(n)), n);
}

// The first `count` bytes of s, padded to `length`, in the block that is there; false when it has
// not the size that the text needs.
bool VStr::Rewrite(const char* s, int count, int length) {
    const std::size_t size = grainSize(asUnsigned(length) + 1U);
    const std::size_t present = stringBlockSize(m_buffer);
    if (present < size || present - size >= kGrain) return false;
    const auto bytes = static_cast<std::size_t>(count);
    std::memmove(m_buffer, s, bytes);
    std::memset(m_buffer + bytes, 0, present - bytes);
    m_length = length;
    m_capacity = static_cast<unsigned int>(size);
    return true;
}

// A null string becomes the first `count` bytes of s, padded to `length`.
void VStr::Make(const char* s, int count, int length) {
    if (length > kMaxLength) return;
    const std::uint32_t size = grainSize(asUnsigned(length) + 1U);
    m_buffer = stringAlloc(size);
    if (m_buffer == nullptr) return;
    // The block is zero-filled, which is the padding and the terminator.
    std::memcpy(m_buffer, s, static_cast<std::size_t>(count));
    m_length = length;
    m_capacity = size;
}

// The first `count` bytes of s, padded to `length`.
VStr& VStr::Assign(const char* s, int count, int length) {
    if (m_buffer != nullptr && s != nullptr && Rewrite(s, count, length)) return *this;
    VStr made;
    if (s != nullptr) made.Make(s, count, length);
    std::swap(m_buffer, made.m_buffer);
    m_length = made.m_length;
    m_capacity = made.m_capacity;
    return *this;
}

const VStr& VStr::operator<<=(VStr& o) {
    if (this == &o) return *this;
    Empty();
    m_buffer = o.m_buffer;
    m_length = o.m_length;
    o.Remove();
    return *this;
}

const VStr& VStr::operator<<=(char* s) {
    if (s != m_buffer) Empty();
    // The text that null strings show is nobody's to own.
    if (s == nullptr || s == emptyText) return *this;
    m_buffer = s;
    m_length = textLength(s, static_cast<std::size_t>(kMaxLength));
    return *this;
}

void VStr::Adopt(char* block, int length, unsigned int capacity) {
    if (m_buffer != nullptr) stringFree(m_buffer);
    m_buffer = block;
    m_length = length;
    m_capacity = capacity;
}

// --- Buffer access -------------------------------------------------------------------------------

VStr::operator const char*() const {
    return m_buffer != nullptr ? m_buffer : emptyText;
}

char* VStr::GetBuffer(int n) {
    if (n > kMaxLength)
        Empty();
    else if (m_length < n)
        ModGrow(n + 1);
    return m_buffer != nullptr ? m_buffer : emptyText;
}

void VStr::ReleaseBuffer(int n) {
    if (m_buffer == nullptr) {
        n = std::max(n, 0);
        m_buffer = n > kMaxLength ? nullptr : ModAlloc(n + 1, &m_capacity);
        m_length = m_buffer == nullptr ? 0 : n;
        return;
    }
    const std::size_t last = std::max<std::size_t>(stringBlockSize(m_buffer), 1) - 1;
    if (n == -1) n = textLength(m_buffer, last);
    n = std::max(n, 0);
    if (static_cast<std::size_t>(n) > last) n = static_cast<int>(last);
    m_buffer[n] = '\0';
    m_length = n;
}

int VStr::GetLength() const {
    return m_length;
}

bool VStr::IsEmpty() const {
    return m_length == 0;
}

bool VStr::operator!() const {
    return m_length == 0;
}

void VStr::Empty() {
    if (m_buffer != nullptr) stringFree(m_buffer);
    Remove();
}

void VStr::Remove() {
    m_buffer = nullptr;
    m_length = 0;
}

void VStr::Truncate(int n) {
    if (n < 1) {
        Empty();
    } else if (n < m_length) {
        m_buffer[n] = '\0';
        m_length = n;
    }
}

char& VStr::operator[](int i) {
    const bool inside = m_buffer != nullptr && i >= 0 &&
                        (i <= m_length || static_cast<std::size_t>(i) < stringBlockSize(m_buffer));
    return inside ? m_buffer[i] : spareCharacter;
}

char VStr::GetAt(int i) const {
    return const_cast<VStr&>(*this)[i];
}

void VStr::SetAt(int i, char c) {
    if (m_buffer == nullptr) throw static_cast<char*>(nullValueError);
    char& place = (*this)[i];
    if (&place != &spareCharacter) place = c;
}

// --- Concatenation -------------------------------------------------------------------------------

VStr& VStr::Catstr(VStr& a, const VStr& b) {
    if (this == &b && this != &a) {
        // A copy it must be: b is this string, which is about to change.
        // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
        const VStr tail(b);
        if (tail.m_length == b.m_length) return Catstr(a, tail);
        Empty();
        return *this;
    }
    const std::int64_t total = std::int64_t{a.m_length} + b.m_length;
    const int headLength = textLength(a, static_cast<std::size_t>(a.m_length));
    const int tailLength = textLength(b, static_cast<std::size_t>(b.m_length));
    if (total == 0 || total > kMaxLength || ModGrow(static_cast<int>(total) + 1) == nullptr) {
        Empty();
        return *this;
    }
    if (this != &a) std::memcpy(m_buffer, a, static_cast<std::size_t>(headLength));
    // When b is this string, growing may have moved it: its text is taken from where it is now.
    const char* tail = this == &b ? m_buffer : static_cast<const char*>(b);
    std::memcpy(m_buffer + headLength, tail, static_cast<std::size_t>(tailLength));
    m_buffer[headLength + tailLength] = '\0';
    m_length = static_cast<int>(total);
    m_buffer[m_length] = '\0';
    return *this;
}

VStr& VStr::Catstr(const VStr& b) {
    return Catstr(*this, b);
}

VStr& VStr::Catstr(const char* s) {
    const std::size_t count = s == nullptr ? 0 : std::strlen(s);
    if (count > static_cast<std::size_t>(kMaxLength)) {
        Empty();
        return *this;
    }
    return Append(s, static_cast<int>(count));
}

VStr& VStr::Append(const char* s, int count) {
    if (count > 0 && liesIn(s, m_buffer)) {
        // A text inside this string is copied first: growing may move the block, and make one that
        // GetBuffer had enlarged smaller.
        const VStr copy(s, count);
        if (copy.m_buffer != nullptr) return Append(copy.m_buffer, count);
        Empty();
        return *this;
    }
    const std::int64_t total = std::int64_t{m_length} + count;
    const int headLength = textLength(*this, static_cast<std::size_t>(m_length));
    if (total == 0 || total > kMaxLength || ModGrow(static_cast<int>(total) + 1) == nullptr) {
        Empty();
        return *this;
    }
    char* end = m_buffer + headLength;
    if (count > 0) copyPiece(end, s, static_cast<std::size_t>(count));
    end[count] = '\0';
    m_length = static_cast<int>(total);
    m_buffer[m_length] = '\0';
    return *this;
}

const VStr& VStr::operator+=(const VStr& o) {
    return Append(o, textLength(o, stringBlockSize(o.m_buffer)));
}

const VStr& VStr::operator+=(const char* s) {
    return Catstr(s);
}

const VStr& VStr::operator+=(char c) {
    const char text[2] = {c, '\0'};
    return Catstr(text);
}

VStr* QELUTILITY_CALL VStr_Create(const char* text) {
    VStr* string = new (std::nothrow) VStr(text);
    if (string != nullptr && string->IsEmpty() && text != nullptr && text[0] != '\0') {
        delete string;
        string = nullptr;
    }
    return string;
}

const char* QELUTILITY_CALL VStr_Text(const VStr* string) {
    return string == nullptr ? emptyText : static_cast<const char*>(*string);
}

void QELUTILITY_CALL VStr_Destroy(VStr* string) {
    delete string;
}
