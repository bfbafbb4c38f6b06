// The groups of Base64 alone, three bytes to four digits and back, in long runs: no padding, no
// white space, no terminator. For the library's own use, from any thread.
#ifndef QEL_ENCODINGS_BASE64GROUPS_H
#define QEL_ENCODINGS_BASE64GROUPS_H

#include <cstddef>

namespace qel::encodings {

// Encodes `groups` whole groups: 3 * groups bytes to 4 * groups digits.
void encodeGroups(const unsigned char* src, std::size_t groups, char* dst);

// Decodes at most `groups` groups of four digits, up to the first one that holds something else:
// 4 * groups characters to 3 * groups bytes, exactly. The number of groups that were decoded.
[[nodiscard]] std::size_t decodeGroups(const char* src, std::size_t groups, unsigned char* dst);

}  // namespace qel::encodings

#endif
