// Memory exhaustion at every allocation of an operation. An operation is an entry of a table:
//
//   {"Catstr", [](Attempt& attempt) {
//        VStr text("left");
//        attempt.armed([&] { text.Catstr("right"); });
//        EXPECT_STREQ(text, attempt.starved() ? "" : "leftright");
//    }},
//
// It is run with its first allocation refused, then with its second and so on, until it completes
// without a refusal; once with that allocation alone refused and once with all that follow too.
// Each run is on a thread of its own, so that what a thread keeps is made and freed in it. After
// each run as many blocks are in use as before it.
#ifndef QEL_TESTS_FAULTS_EXHAUSTION_H
#define QEL_TESTS_FAULTS_EXHAUSTION_H

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "faults/AllocationGate.h"

namespace qel::test {

class Attempt {
  public:
    Attempt(int n, Refusal refusal) : n_(n), refusal_(refusal) {}

    // Calls the library with the gate armed; once in an attempt. An `int` that it throws is kept,
    // any other exception is a failure of the test.
    void armed(const std::function<void()>& call);

    // Whether an allocation was refused.
    [[nodiscard]] bool starved() const { return refused_ > 0; }
    [[nodiscard]] int refused() const { return refused_; }
    [[nodiscard]] int thrown() const { return thrown_; }

  private:
    int n_;
    Refusal refusal_;
    int refused_ = 0;
    int thrown_ = 0;
};

struct Operation {
    const char* name;  // letters, digits and "_"
    void (*run)(Attempt& attempt);
};

// One test for each operation of a table:
//   INSTANTIATE_TEST_SUITE_P(Strings, Exhaustion, testing::ValuesIn(kOperations), operationName);
class Exhaustion : public testing::TestWithParam<Operation> {};

[[nodiscard]] std::string operationName(const testing::TestParamInfo<Operation>& info);

}  // namespace qel::test

#endif
