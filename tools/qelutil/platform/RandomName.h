// Names that nobody can foresee. Any thread.
#ifndef QELUTIL_PLATFORM_RANDOMNAME_H
#define QELUTIL_PLATFORM_RANDOMNAME_H

#include <cstddef>
#include <random>
#include <string>

namespace qel::cli::platform {

// ".qelutil-" and 20 letters, shorter than any system's longest name. The dot hides it from lists,
// and from `qelutil convert` itself, should the power fail.
[[nodiscard]] inline std::string randomName() {
    constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz234567";
    constexpr std::size_t kLength = 20;
    std::random_device random;
    std::string name = ".qelutil-";
    for (std::size_t i = 0; i < kLength; ++i) name += kLetters[random() % (sizeof(kLetters) - 1)];
    return name;
}

}  // namespace qel::cli::platform

#endif
