// Streams in tests are written as texts in which "|" stands for the separator.
#ifndef QEL_TESTS_STREAMS_STREAMTESTSUPPORT_H
#define QEL_TESTS_STREAMS_STREAMTESTSUPPORT_H

#include <algorithm>
#include <string>

#include "QelUtility/BxDataStream.h"
#include "support/Throws.h"

namespace qel::test {

inline std::string withSeparators(std::string text) {
    std::replace(text.begin(), text.end(), '|', '\x1F');
    return text;
}

// The content without its terminator.
inline std::string contentOf(const CBxDataStream& stream) {
    if (stream.Storage() == nullptr || stream.Len() == 0) return {};
    std::string text(reinterpret_cast<const char*>(stream.Storage()), stream.Len() - 1);
    std::replace(text.begin(), text.end(), '\x1F', '|');
    return text;
}

// The bytes of `text` alone, without a terminator, ready to read.
inline void initializeRaw(CBxDataStream& stream, const std::string& text) {
    std::string bytes = withSeparators(text);
    stream.Initialize(reinterpret_cast<unsigned char*>(bytes.data()),
                      static_cast<unsigned long>(bytes.size()), true);
}

inline void initialize(CBxDataStream& stream, const std::string& text) {
    initializeRaw(stream, text + '\0');
}

}  // namespace qel::test

#endif
