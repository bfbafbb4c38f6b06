// What this process holds of the machine, for tests that it does not grow. Any thread.
#ifndef QEL_TESTS_SUPPORT_RESOURCES_H
#define QEL_TESTS_SUPPORT_RESOURCES_H

#include <cstddef>

namespace qel::test {

// Private memory in bytes, and open files, handles and the like; 0 where the system does not say.
[[nodiscard]] std::size_t memoryInUse();
[[nodiscard]] std::size_t openHandles();

}  // namespace qel::test

#endif
