// Whether a text holds a part of it, with both shown when it does not. Any thread.
#ifndef QEL_TESTS_SUPPORT_CONTAINS_H
#define QEL_TESTS_SUPPORT_CONTAINS_H

#include <gtest/gtest.h>

#include <string>

namespace qel::test {

[[nodiscard]] inline testing::AssertionResult contains(const std::string& text,
                                                       const std::string& part) {
    if (text.find(part) != std::string::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "\"" << part << "\" is not in:\n" << text;
}

}  // namespace qel::test

#endif
