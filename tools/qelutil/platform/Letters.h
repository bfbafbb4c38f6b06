// Letters of all scripts, as the operating system knows them. Any thread.
#ifndef QELUTIL_PLATFORM_LETTERS_H
#define QELUTIL_PLATFORM_LETTERS_H

#include <string>

namespace qel::cli::platform {

// The text with each capital letter replaced by its small one, to find words in it; in any locale.
// Bytes that are not UTF-8 stay as they are. A system without that knowledge changes A to Z alone.
[[nodiscard]] std::string smallLetters(const std::string& text);

}  // namespace qel::cli::platform

#endif
