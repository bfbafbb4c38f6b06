#include "support/Resources.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iterator>

namespace qel::test {

std::size_t memoryInUse() {
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr) return 0;
    unsigned long whole = 0;
    unsigned long resident = 0;
    unsigned long shared = 0;
    const int read = std::fscanf(file, "%lu %lu %lu", &whole, &resident, &shared);
    std::fclose(file);
    return read == 3 ? (resident - shared) * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) : 0;
}

std::size_t openHandles() {
    std::error_code none;
    const std::filesystem::directory_iterator files("/proc/self/fd", none);
    return none ? 0 : static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

}  // namespace qel::test
