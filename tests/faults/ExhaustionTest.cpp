#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <thread>
#include <utility>

#include "QelUtility/BxTrace.h"
#include "faults/Exhaustion.h"
#include "support/Resources.h"

namespace qel::test {

namespace {

// No operation here comes near it: one that does never completes.
constexpr int kMostAllocations = 20000;

long operations = 0;
long refusals = 0;
long refusedCalls = 0;

// Prints what the whole program has tried.
class Totals : public testing::Environment {
  public:
    // The log's paths and options are found at its first use and kept.
    void SetUp() override { BxTrace_Error("faults_test", __LINE__, 0, QEL_FAILED); }
    void TearDown() override {
        std::printf("[ exhaustion ] %ld operations, %ld allocations and %ld calls refused\n",
                    operations, refusals, refusedCalls);
    }
};

const testing::Environment* const totals = testing::AddGlobalTestEnvironment(new Totals);

// Returns the number of allocations that were refused. Without a `whole` outcome to be held
// against, the outcome is put there.
int runOnce(const Operation& operation, const Plan& plan, Outcome& whole) {
    int refused = 0;
    std::thread([&] {
        const char* const what[] = {"allocation ", "call ", "interrupted call "};
        SCOPED_TRACE(what[static_cast<int>(plan.fault)] + std::to_string(plan.n) +
                     (plan.refusal == Refusal::kOne ? " refused" : " and all after it refused"));
        Attempt attempt(plan);
        const Outcome outcome = operation.run(attempt);
        refused = attempt.refused();
        if (whole.empty()) {
            whole = outcome;
            return;
        }
        ASSERT_EQ(outcome.size(), whole.size());
        for (std::size_t i = 0; i < whole.size(); ++i) {
            Outcome other = operation.starved;
            if (plan.fault == Fault::kCalls)
                other.insert(other.end(), operation.broken.begin(), operation.broken.end());
            EXPECT_TRUE(outcome[i] == whole[i] ||
                        (refused > 0 && plan.fault != Fault::kInterrupted &&
                         std::find(other.begin(), other.end(), outcome[i]) != other.end()))
                << "field " << i << ": \"" << outcome[i] << "\" for \"" << whole[i] << "\"";
        }
    }).join();
    return refused;
}

}  // namespace

void Attempt::armed(const std::function<void()>& call) {
    const char* escaped = nullptr;
    arm(plan_.fault, plan_.n, plan_.refusal);
    try {
        call();
    } catch (int code) {
        thrown_ = code;
    } catch (const std::bad_alloc&) {
        escaped = "std::bad_alloc";
    } catch (const std::exception&) {
        escaped = "std::exception";
    }
    refused_ = disarm();
    if (escaped != nullptr) ADD_FAILURE() << escaped << " escaped";
}

std::string operationName(const testing::TestParamInfo<Operation>& info) {
    return info.param.name;
}

TEST_P(Exhaustion, IsSurvived) {
    const Operation& operation = GetParam();
    ++operations;
    // This also makes, before blocks are counted, what a process keeps for its life.
    Outcome whole;
    ASSERT_EQ(runOnce(operation, {Fault::kMemory, kMostAllocations, Refusal::kOne}, whole), 0);
    for (const auto& [fault, refusal] : {std::pair(Fault::kMemory, Refusal::kOne),
                                         {Fault::kMemory, Refusal::kRest},
                                         {Fault::kCalls, Refusal::kOne},
                                         {Fault::kCalls, Refusal::kRest},
                                         {Fault::kInterrupted, Refusal::kOne}}) {
        for (int n = 1;; ++n) {
            ASSERT_LT(n, kMostAllocations);
            const long before = liveBlocks();
            const std::size_t files = openHandles();
            const int refused = runOnce(operation, {fault, n, refusal}, whole);
            if (liveBlocks() != before) {
                // What is made once and kept does not grow a second time.
                const long after = liveBlocks();
                runOnce(operation, {fault, n, refusal}, whole);
                ASSERT_EQ(liveBlocks(), after) << "blocks left behind by number " << n;
            }
            ASSERT_EQ(openHandles(), files) << "files left open by number " << n;
            if (HasFailure()) return;
            if (refused == 0) break;
            (fault == Fault::kMemory ? refusals : refusedCalls) += refused;
        }
    }
}

}  // namespace qel::test
