// Memory exhaustion at every allocation of an operation. An operation is an entry of a table: its
// name, what a field of its outcome may be when memory was refused, and the call, on things that
// are made anew for each attempt and shown after it:
//
//   on<Texts>("Catstr", {kNull}, [](Texts& made) { made.text.Catstr("right"); }),
//
// It is run once as it is, which gives its whole outcome. Then it is run with its first allocation
// refused, then with its second and so on, until it completes without a refusal; once with that
// allocation alone refused and once with all that follow too. Each field of what it leaves is as in
// the whole outcome, or one of those that were named. Each run is on a thread of its own, so that
// what a thread keeps is made and freed in it. After each run as many blocks are in use, and as
// many files open, as before.
//
// The same is done to the system calls about files that it makes. One that is interrupted, and not
// refused, leaves the whole outcome.
#ifndef QEL_TESTS_FAULTS_EXHAUSTION_H
#define QEL_TESTS_FAULTS_EXHAUSTION_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "QelUtility/VStr.h"
#include "faults/AllocationGate.h"

namespace qel::test {

// What is refused in a run.
struct Plan {
    Fault fault;
    int n;
    Refusal refusal;
};

class Attempt {
  public:
    explicit Attempt(const Plan& plan) : plan_(plan) {}

    // Calls the library with the gate armed; once in an attempt. An `int` that it throws is kept,
    // any other exception is a failure of the test.
    void armed(const std::function<void()>& call);

    // How many allocations or calls were refused.
    [[nodiscard]] int refused() const { return refused_; }
    [[nodiscard]] int thrown() const { return thrown_; }

  private:
    Plan plan_;
    int refused_ = 0;
    int thrown_ = 0;
};

using Outcome = std::vector<std::string>;

struct Operation {
    const char* name;  // letters, digits and "_"
    Outcome starved;
    std::function<Outcome(Attempt& attempt)> run;
    Outcome broken = {};  // more that a field may be when a call was refused

    [[nodiscard]] Operation orBroken(const Outcome& outcome) const {
        return {name, starved, run, outcome};
    }
};

// A null string, which an empty one is not.
constexpr char kNull[] = "(null)";

template <typename Value>
std::string shown(const Value& value) {
    if constexpr (std::is_same_v<Value, VStr>)
        return value.Compare(nullptr) == 0 ? kNull : static_cast<const char*>(value);
    else if constexpr (std::is_arithmetic_v<Value>)
        return std::to_string(value);
    else
        return value;
}

// Each value is a field of its own: one may be as it should while another is not.
template <typename... Values>
Outcome seen(const Values&... values) {
    return {shown(values)...};
}

// Values that hold together only: "0 text".
template <typename... Values>
std::string together(const Values&... values) {
    std::string all;
    ((all += (all.empty() ? "" : " ") + shown(values)), ...);
    return all;
}

// `Things` has what the call needs, made by its constructor and by `prepare`, and
// `Outcome left(const Attempt&)`, which also uses those things again.
template <typename Things>
Operation on(const char* name, const Outcome& starved, void (*call)(Things& made),
             void (*prepare)(Things& made) = nullptr) {
    return {name, starved,
            [call, prepare](Attempt& attempt) {
                Things made;
                if (prepare != nullptr) prepare(made);
                attempt.armed([&] { call(made); });
                return made.left(attempt);
            }};
}

// One test for each operation of a table:
//   INSTANTIATE_TEST_SUITE_P(Strings, Exhaustion, testing::ValuesIn(kOperations), operationName);
class Exhaustion : public testing::TestWithParam<Operation> {};

[[nodiscard]] std::string operationName(const testing::TestParamInfo<Operation>& info);

}  // namespace qel::test

#endif
