#include <cstdio>
#include <exception>
#include <new>
#include <thread>

#include "QelUtility/BxTrace.h"
#include "faults/Exhaustion.h"

namespace qel::test {

namespace {

// No operation here comes near it: one that does never completes.
constexpr int kMostAllocations = 20000;

long operations = 0;
long refusals = 0;

// Prints what the whole program has tried.
class Totals : public testing::Environment {
  public:
    // The log's paths and options are found at its first use and kept.
    void SetUp() override { BxTrace_Error("faults_test", __LINE__, 0, QEL_FAILED); }
    void TearDown() override {
        std::printf("[ exhaustion ] %ld operations, %ld allocations refused\n", operations,
                    refusals);
    }
};

const testing::Environment* const totals = testing::AddGlobalTestEnvironment(new Totals);

// Returns the number of allocations that were refused.
int runOnce(const Operation& operation, int n, Refusal refusal) {
    int refused = 0;
    std::thread([&] {
        SCOPED_TRACE("allocation " + std::to_string(n) +
                     (refusal == Refusal::kOne ? " refused" : " and all after it refused"));
        Attempt attempt(n, refusal);
        operation.run(attempt);
        refused = attempt.refused();
    }).join();
    return refused;
}

}  // namespace

void Attempt::armed(const std::function<void()>& call) {
    const char* escaped = nullptr;
    armAllocations(n_, refusal_);
    try {
        call();
    } catch (int code) {
        thrown_ = code;
    } catch (const std::bad_alloc&) {
        escaped = "std::bad_alloc";
    } catch (const std::exception&) {
        escaped = "std::exception";
    }
    refused_ = disarmAllocations();
    if (escaped != nullptr) ADD_FAILURE() << escaped << " escaped";
}

std::string operationName(const testing::TestParamInfo<Operation>& info) {
    return info.param.name;
}

TEST_P(Exhaustion, IsSurvived) {
    ++operations;
    // What a process keeps for its life is made before blocks are counted.
    runOnce(GetParam(), kMostAllocations, Refusal::kOne);
    for (const Refusal refusal : {Refusal::kOne, Refusal::kRest}) {
        for (int n = 1;; ++n) {
            ASSERT_LT(n, kMostAllocations);
            const long before = liveBlocks();
            const int refused = runOnce(GetParam(), n, refusal);
            if (liveBlocks() != before) {
                // What is made once and kept does not grow a second time.
                const long after = liveBlocks();
                runOnce(GetParam(), n, refusal);
                ASSERT_EQ(liveBlocks(), after) << "blocks left behind by allocation " << n;
            }
            if (HasFailure()) return;
            if (refused == 0) break;
            refusals += refused;
        }
    }
}

}  // namespace qel::test
