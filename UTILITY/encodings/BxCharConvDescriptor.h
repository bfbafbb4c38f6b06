// What the two halves of the converter share: the descriptor level's error codes and failure
// values. No state.
#ifndef QEL_ENCODINGS_BXCHARCONVDESCRIPTOR_H
#define QEL_ENCODINGS_BXCHARCONVDESCRIPTOR_H

#include <cstdint>

#include "QelUtility/BxCharConv.h"

namespace qel::encodings {

// The values of one C runtime's errno, and these values on every platform.
constexpr int kErrorTooBig = 7;
constexpr int kErrorBadDescriptor = 9;
constexpr int kErrorNoMemory = 12;
constexpr int kErrorInvalidArgument = 22;
constexpr int kErrorInvalidSequence = 42;

constexpr unsigned int kIconvFailed = 0xFFFFFFFF;

inline _iconv_info* failedOpen() {
    return reinterpret_cast<_iconv_info*>(UINTPTR_MAX);
}

// A malloc copy, which the caller frees; null for null and when memory is exhausted.
[[nodiscard]] char* duplicate(const char* text);

// Frees a descriptor with all that belongs to it.
void releaseDescriptor(_iconv_info* cd);

}  // namespace qel::encodings

#endif
