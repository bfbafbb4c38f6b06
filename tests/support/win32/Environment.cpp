#include "support/Environment.h"

#include <stdlib.h>

namespace qel::test {

// Sets the C library's copy and, through it, the system's.
void setEnvironment(const std::string& name, const std::string& value) {
    ::_putenv_s(name.c_str(), value.c_str());
}

}  // namespace qel::test
