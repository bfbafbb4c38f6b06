// Changes this process's environment, for the library and for the programs that a test starts. No
// other thread may look at the environment meanwhile.
#ifndef QEL_TESTS_SUPPORT_ENVIRONMENT_H
#define QEL_TESTS_SUPPORT_ENVIRONMENT_H

#include <string>

namespace qel::test {

// An empty value removes the variable.
void setEnvironment(const std::string& name, const std::string& value);

}  // namespace qel::test

#endif
