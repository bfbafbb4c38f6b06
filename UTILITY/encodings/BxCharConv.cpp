// The converter's set-up and its convenience level; the descriptor level is in
// BxCharConvDescriptor.cpp.
#include "QelUtility/BxCharConv.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "encodings/BxCharConvDescriptor.h"
#include "platform/AsciiText.h"
#include "platform/CodePages.h"
#include "platform/Memory.h"

namespace qel::encodings {
namespace {

constexpr std::array<const char*, 18> kCharSetNames{
    "UTF-8",  "8859-1", "936",    "950",     "8859-2", "8859-3", "8859-4", "8859-5", "8859-6",
    "8859-7", "8859-8", "8859-9", "8859-10", "eucJP",  "KOI8-R", "PCK",    "SJIS",   ""};
static_assert(kCharSetNames.size() == 18);

// The table's own entry, or null for a null, empty or unknown name.
const char* findCharSet(const char* name) {
    if (name == nullptr || *name == '\0') return nullptr;
    const auto found =
        std::find_if(kCharSetNames.begin(), kCharSetNames.end(),
                     [name](const char* entry) { return platform::equalNoCase(entry, name); });
    return found == kCharSetNames.end() ? nullptr : *found;
}

// Gives up a conversion and its names: these fields are as a fresh converter has them.
void giveUp(_iconv_info*& handle, bool& initialized, char*& toName, char*& fromName) {
    if (handle != nullptr) releaseDescriptor(handle);
    handle = nullptr;
    initialized = false;
    std::free(toName);
    std::free(fromName);
    toName = nullptr;
    fromName = nullptr;
}

}  // namespace
}  // namespace qel::encodings

using qel::encodings::duplicate;

CBxCharConvSvcs::CBxCharConvSvcs()
    : m_handle(nullptr),
      m_initialized(false),
      m_toName(nullptr),
      m_fromName(nullptr),
      m_lastError(0) {}

CBxCharConvSvcs::CBxCharConvSvcs(const CBxCharConvSvcs& o) : CBxCharConvSvcs() {
    *this = const_cast<CBxCharConvSvcs&>(o);  // which it only reads
}

CBxCharConvSvcs::~CBxCharConvSvcs() {
    qel::encodings::giveUp(m_handle, m_initialized, m_toName, m_fromName);
}

CBxCharConvSvcs& CBxCharConvSvcs::operator=(CBxCharConvSvcs& o) {
    if (&o == this) return *this;
    qel::encodings::giveUp(m_handle, m_initialized, m_toName, m_fromName);
    _iconv_info* opened = iconv_open(o.m_toName, o.m_fromName);
    if (opened != qel::encodings::failedOpen()) {
        m_handle = opened;
        m_initialized = o.m_initialized;
    }
    m_toName = duplicate(o.m_toName);
    m_fromName = duplicate(o.m_fromName);
    // A conversion has both its names.
    if (m_initialized && (m_toName == nullptr || m_fromName == nullptr))
        qel::encodings::giveUp(m_handle, m_initialized, m_toName, m_fromName);
    return *this;
}

int CBxCharConvSvcs::Initialize(const char* to, const char* from) {
    const char* toEntry = qel::encodings::findCharSet(to);
    const char* fromEntry = qel::encodings::findCharSet(from);
    if (toEntry == nullptr || fromEntry == nullptr || toEntry == fromEntry)
        return QEL_NOT_INITIALIZED;
    qel::encodings::giveUp(m_handle, m_initialized, m_toName, m_fromName);
    m_toName = duplicate(toEntry);
    m_fromName = duplicate(fromEntry);
    if (m_toName == nullptr || m_fromName == nullptr) return QEL_OUT_OF_MEMORY;
    _iconv_info* opened = iconv_open(m_toName, m_fromName);
    if (opened == qel::encodings::failedOpen()) return QEL_NOT_INITIALIZED;
    m_handle = opened;
    m_initialized = true;
    return QEL_OK;
}

int CBxCharConvSvcs::InitializeFrom(const char* set) {
    return Initialize("UTF-8", set);
}

int CBxCharConvSvcs::InitializeTo(const char* set) {
    return Initialize(set, "UTF-8");
}

const char** CBxCharConvSvcs::GetCharSetNames() {
    // A copy of the table: a caller who writes into it changes no look-up.
    static std::array<const char*, qel::encodings::kCharSetNames.size()> names =
        qel::encodings::kCharSetNames;
    return names.data();
}

int CBxCharConvSvcs::BxConvChar_guts(const char*& in, unsigned int& inLeft, char*& out,
                                     unsigned int& outLeft) {
    if (!m_initialized) return QEL_NOT_INITIALIZED;
    if (iconv(m_handle, &in, &inLeft, &out, &outLeft) != qel::encodings::kIconvFailed)
        return QEL_OK;
    switch (m_lastError) {
        case qel::encodings::kErrorTooBig:
            return QEL_OUTPUT_TOO_SMALL;
        case qel::encodings::kErrorBadDescriptor:
            return BX_CONV_REFUSED;
        case qel::encodings::kErrorInvalidSequence:
            return BX_CONV_INVALID_SEQUENCE;
        case qel::encodings::kErrorInvalidArgument:
            return BX_CONV_INCOMPLETE_INPUT;
        default:
            return BX_CONV_OTHER;
    }
}

int CBxCharConvSvcs::BxConvChar(const char*& in, unsigned int& inLeft, char*& out,
                                unsigned int& outLeft) {
    for (;;) {
        const int result = BxConvChar_guts(in, inLeft, out, outLeft);
        if (result == QEL_OK || result == QEL_OUTPUT_TOO_SMALL) return result;
        if (result != BX_CONV_INVALID_SEQUENCE && result != BX_CONV_INCOMPLETE_INPUT)
            return BX_CONV_FAILED;
        if (inLeft < 2) return QEL_OK;
        // Byte by byte in effect; the bytes whose trial is known to fail are skipped at once.
        const std::uint32_t skipped =
            qel::platform::undecodablePrefix(m_handle->fromCodePage, in, inLeft);
        in += skipped;
        inLeft -= skipped;
    }
}

int CBxCharConvSvcs::BxConvChar(VStr& text) {
    const int length = text.GetLength();
    if (length <= 0) return QEL_OK;
    if (length > (std::numeric_limits<int>::max() - 1) / 2) return QEL_OUT_OF_MEMORY;
    const int room = 2 * length + 1;
    char* block = VStr::ModAlloc(room, nullptr);
    if (block == nullptr) return QEL_OUT_OF_MEMORY;

    const char* in = text;
    auto inLeft = static_cast<unsigned int>(length);
    char* out = block;
    auto outLeft = static_cast<unsigned int>(room);
    const int result = BxConvChar(in, inLeft, out, outLeft);
    if (result != QEL_OK) {
        qel::platform::stringFree(block);
        return result;
    }
    *out = '\0';  // a block is always larger than what was asked for
    text <<= block;
    return QEL_OK;
}
