#include "QelUtility/VStrArray.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <new>

#include "platform/Immortal.h"
#include "platform/ThreadEnd.h"
#include "strings/VStrArrayInternal.h"

namespace {

// What an access to an element that does not exist refers to: null whenever it is handed out.
VStr& nowhere() {
    static const qel::platform::ThreadEnd end(
        [](void* text) noexcept { static_cast<VStr*>(text)->Empty(); });
    thread_local qel::platform::Immortal<VStr> spare;
    end.watch(&spare.get());
    spare.get().Empty();
    return spare.get();
}

}  // namespace

VStr VStrArray::m_EmptyVStr;

VStrArray::VStrArray() : m_data(nullptr), m_size(0) {
    static_assert(offsetof(VStrArray, m_data) == 0 && offsetof(VStrArray, m_size) == sizeof(void*));
}

VStrArray::VStrArray(const VStrArray& o) : VStrArray() {
    Append(o);
}

VStrArray::~VStrArray() {
    RemoveAll();
}

int VStrArray::GetSize() const {
    return m_size;
}

int VStrArray::GetUpperBound() const {
    return m_size - 1;
}

void VStrArray::SetSize(int n) {
    if (n < 0) return;
    VStr* block = n == 0 ? nullptr : VStrArrNew(n);
    const int kept = block != nullptr && m_data != nullptr ? std::min(m_size, n) : 0;
    for (int i = 0; i < kept; ++i) qel::strings::takeText(block[i], m_data[i]);
    VStrArrDel(m_data, m_size);
    m_data = block;
    m_size = n;
}

void VStrArray::RemoveAll() {
    SetSize(0);
}

VStr VStrArray::GetAt(int i) {
    return ElementAt(i);
}

VStr VStrArray::operator[](int i) const {
    return const_cast<VStrArray*>(this)->ElementAt(i);
}

VStr& VStrArray::ElementAt(int i) {
    return m_data == nullptr || i < 0 || i >= m_size ? nowhere() : m_data[i];
}

VStr& VStrArray::operator[](int i) {
    return ElementAt(i);
}

void VStrArray::SetAt(int i, const char* s) {
    ElementAt(i) = s;
}

void VStrArray::SetAt(int i, const char* s, int n) {
    ElementAt(i) = VStr(s, n);
}

int VStrArray::Add(const char* s) {
    // The text is copied before the block that may hold it goes away.
    VStr value;
    value.Copy(s);
    return AddValue(value);
}

int VStrArray::Add(const char* s, int n) {
    VStr value;
    value = VStr(s, n);
    return AddValue(value);
}

int VStrArray::AddValue(VStr& value) {
    const int i = m_size;
    if (i == INT_MAX) return -1;
    SetSize(i + 1);
    ElementAt(i) <<= value;
    return i;
}

int VStrArray::Append(const VStrArray& o) {
    const int first = m_size;
    const int count = o.m_size;
    if (count == 0 || count > INT_MAX - first) return -1;
    SetSize(first + count);
    if (m_data == nullptr) return first;
    // Where `o` is this array, its elements are still the first ones after the change of size.
    for (int k = 0; k < count; ++k) {
        const VStr* source = o.m_data == nullptr ? nullptr : o.m_data + k;
        ElementAt(first + k).Copy(source == nullptr ? "" : static_cast<const char*>(*source));
    }
    return first;
}

void VStrArray::Copy(const VStrArray& o) {
    RemoveAll();
    Append(o);
}

VStrArray& VStrArray::operator=(const VStrArray& o) {
    Copy(o);
    return *this;
}

void VStrArray::InsertAt(int i, const char* s, int count) {
    if (i < 0 || count < 0 || std::int64_t{std::max(i, m_size)} + count > INT_MAX) return;
    VStr value;
    value.Copy(s);
    const int old = m_size;
    SetSize(std::max(i, old) + count);
    if (m_data == nullptr) return;
    for (int k = old - 1; k >= i; --k) m_data[k + count] <<= m_data[k];
    for (int k = 0; k < count; ++k) m_data[i + k] = value;
}

void VStrArray::RemoveAt(int i, int count) {
    if (i < 0 || count < 0 || i > m_size - 1 || count > m_size - i) return;
    for (int k = i + count; m_data != nullptr && k < m_size; ++k) m_data[k - count] <<= m_data[k];
    SetSize(m_size - count);
}

VStr* VStrArray::VStrArrNew(int n) {
    // The room for the count that the compiler keeps before an array is left aside.
    constexpr std::size_t kMost = (PTRDIFF_MAX - 64) / sizeof(VStr);
    if (n < 0 || static_cast<std::size_t>(n) > kMost) return nullptr;
    return new (std::nothrow) VStr[static_cast<std::size_t>(n)];
}

void VStrArray::VStrArrDel(VStr* p, int /*n*/) {
    delete[] p;
}
