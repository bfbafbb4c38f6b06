// Extraction, editing, search, comparison and formatting of VStr.
#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "QelUtility/VStr.h"
#include "platform/AsciiText.h"
#include "platform/Format.h"
#include "strings/VStrInternal.h"

namespace {

using qel::strings::kMaxLength;
using qel::strings::textLength;

constexpr std::size_t kFormatSize = 4096;

constexpr std::size_t bytes(std::int64_t count) {
    return static_cast<std::size_t>(count);
}

constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

constexpr int folded(char c) {
    return static_cast<unsigned char>(qel::platform::asciiToLower(c));
}

// -1 for no match, which is what a null `found` stands for.
int indexOf(const char* text, const char* found) {
    return found == nullptr ? -1 : static_cast<int>(found - text);
}

}  // namespace

// --- Extraction ----------------------------------------------------------------------------------

VStr& VStr::Substr(const VStr& src, int start, int count) {
    unsigned int capacity = 0;
    char* block = nullptr;
    if (src.m_length > 0 && src.m_buffer != nullptr) {
        // A start past the end selects the last character.
        start = std::clamp(start, 0, src.m_length - 1);
        count = std::min(count, src.m_length - start);
        if (count > 0) block = ModAlloc(count + 1, &capacity);
    }
    if (block == nullptr) {
        Empty();
        return *this;
    }
    std::memcpy(block, src.m_buffer + start, bytes(count));
    Adopt(block, count, capacity);
    return *this;
}

VStr& VStr::Substr(int start, int count) {
    return Substr(*this, start, count);
}

VStr VStr::Mid(int start, int count) {
    VStr result;
    result.Substr(*this, start, count);
    return result;
}

VStr VStr::Mid(int start) {
    start = std::clamp(start, 0, std::max(m_length - 1, 0));
    return Mid(start, m_length - start);
}

VStr VStr::operator()(int start, int count) {
    return Mid(start, count);
}

VStr VStr::Left(int n) {
    return Mid(0, n);
}

VStr VStr::Right(int n) {
    n = std::clamp(n, 0, m_length);
    return Mid(m_length - n, n);
}

VStr VStr::SpanIncluding(const char* set) {
    if (m_buffer == nullptr || set == nullptr) return {};
    return Left(static_cast<int>(std::strspn(m_buffer, set)));
}

VStr VStr::SpanExcluding(const char* set) {
    if (m_buffer == nullptr) return {};
    return Left(static_cast<int>(std::strcspn(m_buffer, set == nullptr ? "" : set)));
}

// --- Editing -------------------------------------------------------------------------------------

VStr& VStr::Cutstr(VStr& src, int start, int count) {
    unsigned int capacity = 0;
    char* block = nullptr;
    std::int64_t newLength = 0;
    std::int64_t cut = std::max(count, 0);
    if (src.m_length > 0 && src.m_buffer != nullptr) {
        start = std::min(start, src.m_length - 1);
        cut = std::min<std::int64_t>(cut, std::int64_t{src.m_length} - start);
        newLength = src.m_length - cut;
        if (newLength > 0) block = ModAlloc(static_cast<int>(newLength) + 1, &capacity);
    }
    if (block == nullptr) {
        Empty();
        return *this;
    }
    const int head = std::max(start, 0);
    const char* rest = src.m_buffer + head + cut;
    std::memcpy(block, src.m_buffer, bytes(head));
    std::memcpy(block + head, rest, bytes(textLength(rest, bytes(src.m_length - head - cut))));
    Adopt(block, static_cast<int>(newLength), capacity);
    return *this;
}

VStr& VStr::Cutstr(int start, int count) {
    return Cutstr(*this, start, count);
}

VStr& VStr::Insert(VStr& src, int pos, VStr& ins) {
    if (ins.m_length == 0 || ins.m_buffer == nullptr) return *this;
    if (src.m_length == 0) {
        src = ins;
        return *this;
    }
    // The end of the text is no place to insert at: the last character stays last.
    pos = std::clamp(pos, 0, src.m_length - 1);
    const std::int64_t total = std::int64_t{src.m_length} + ins.m_length;
    unsigned int capacity = 0;
    char* block = total > kMaxLength ? nullptr : ModAlloc(static_cast<int>(total) + 1, &capacity);
    if (block == nullptr) {
        Empty();
        return *this;
    }
    const int insLength = textLength(ins.m_buffer, bytes(ins.m_length));
    const char* rest = src.m_buffer + pos;
    std::memcpy(block, src.m_buffer, bytes(pos));
    std::memcpy(block + pos, ins.m_buffer, bytes(insLength));
    std::memcpy(block + pos + insLength, rest, bytes(textLength(rest, bytes(src.m_length - pos))));
    Adopt(block, static_cast<int>(total), capacity);
    return *this;
}

VStr& VStr::Insert(int pos, VStr s) {
    return Insert(*this, pos, s);
}

void VStr::TrimRight() {
    if (m_buffer == nullptr) return;
    while (m_length > 0 && isBlank(m_buffer[m_length - 1])) m_buffer[--m_length] = '\0';
}

void VStr::TrimLeft() {
    if (m_length < 1) return;
    int blanks = 0;
    while (blanks < m_length && isBlank(m_buffer[blanks])) ++blanks;
    if (blanks == 0) return;
    m_length -= blanks;
    if (m_length < 1) {
        Empty();
        return;
    }
    std::memmove(m_buffer, m_buffer + blanks, bytes(m_length));
    m_buffer[m_length] = '\0';
}

// --- Search --------------------------------------------------------------------------------------

int VStr::Find(char c) const {
    return m_buffer == nullptr ? -1 : indexOf(m_buffer, std::strchr(m_buffer, c));
}

int VStr::Find(const char* s) const {
    return m_buffer == nullptr || s == nullptr ? -1 : indexOf(m_buffer, std::strstr(m_buffer, s));
}

int VStr::ReverseFind(char c) const {
    return m_buffer == nullptr ? -1 : indexOf(m_buffer, std::strrchr(m_buffer, c));
}

int VStr::FindOneOf(const char* set) const {
    if (m_buffer == nullptr || set == nullptr) return -1;
    return indexOf(m_buffer, std::strpbrk(m_buffer, set));
}

// --- Comparison ----------------------------------------------------------------------------------

int VStr::Compare(const char* s) const {
    if (s == nullptr) return m_buffer != nullptr ? 1 : 0;
    return m_buffer == nullptr ? -1 : std::strcmp(m_buffer, s);
}

int VStr::CompareNoCase(const char* s) const {
    if (s == nullptr) return m_buffer != nullptr ? 1 : 0;
    if (m_buffer == nullptr) return -1;
    const char* own = m_buffer;
    while (*own != '\0' && folded(*own) == folded(*s)) {
        ++own;
        ++s;
    }
    return folded(*own) - folded(*s);
}

int VStr::ComputeTrimmedLength() {
    if (m_buffer == nullptr) return 0;
    int length = m_length;
    while (length > 0 && isBlank(m_buffer[length - 1])) --length;
    return length;
}

bool VStr::IdenticalWhenTrimmed(VStr& o) {
    const int length = ComputeTrimmedLength();
    if (o.ComputeTrimmedLength() != length) return false;
    return length == 0 || std::strncmp(m_buffer, o.m_buffer, bytes(length)) == 0;
}

// --- Formatting ----------------------------------------------------------------------------------

void VStr::Format(const char* fmt, ...) {
    if (fmt == nullptr) {
        Empty();
        return;
    }
    char text[kFormatSize] = "";
    va_list arguments;
    va_start(arguments, fmt);
    qel::platform::formatTextV(text, sizeof text, fmt, arguments);
    va_end(arguments);
    Copy(text);
}
