// Runs every registered target over its corpus, one test for each target; then all of them again
// and again, with memory and handles watched: for a second, or for QEL_SOAK_SECONDS (`./dev load`).
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "Fuzz.h"
#include "support/Resources.h"

namespace {

struct Sample {
    std::string name;
    std::string bytes;
};

std::vector<Sample> corpusOf(const char* target) {
    std::vector<Sample> samples{{"nothing", ""}};
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(QEL_FUZZ_CORPUS) / target)) {
        std::ifstream file(entry.path(), std::ios::binary);
        samples.push_back(
            {entry.path().filename().string(), {std::istreambuf_iterator<char>(file), {}}});
    }
    return samples;
}

void run(const qel::fuzz::Registered& target, const Sample& sample) {
    qel::fuzz::Input in(reinterpret_cast<const std::uint8_t*>(sample.bytes.data()),
                        sample.bytes.size());
    target.run(in);
}

class Corpus : public testing::TestWithParam<qel::fuzz::Registered> {};

TEST_P(Corpus, RunsClean) {
    const std::vector<Sample> samples = corpusOf(GetParam().name);
    EXPECT_GT(samples.size(), 1U);
    for (const Sample& each : samples) {
        SCOPED_TRACE(each.name);
        run(GetParam(), each);
    }
}

INSTANTIATE_TEST_SUITE_P(Every, Corpus, testing::ValuesIn(qel::fuzz::targets()),
                         [](const auto& each) { return std::string(each.param.name); });

TEST(Soak, MixedCallsHoldNoMoreFromRoundToRound) {
    using Clock = std::chrono::steady_clock;
    const char* const wanted = std::getenv("QEL_SOAK_SECONDS");
    const std::chrono::seconds length(wanted == nullptr ? 1 : std::atoi(wanted));
    std::vector<std::vector<Sample>> corpora;
    for (const auto& target : qel::fuzz::targets()) corpora.push_back(corpusOf(target.name));
    unsigned long long calls = 0;
    const auto runFor = [&](Clock::duration time) {
        const Clock::time_point end = Clock::now() + time;
        do {
            for (std::size_t i = 0; i < corpora.size(); ++i)
                for (const Sample& each : corpora[i]) {
                    run(qel::fuzz::targets()[i], each);
                    ++calls;
                }
        } while (Clock::now() < end);
    };
    // A tenth of the time fills what is allocated once: caches, buffers, the allocator's own.
    runFor(length / 10);
    const std::size_t memory = qel::test::memoryInUse();
    const std::size_t handles = qel::test::openHandles();
    runFor(length);
    [[maybe_unused]] constexpr std::size_t kNoise = 4U << 20;  // of the allocator
    std::printf("%llu runs; memory %zu KiB, then %zu KiB; handles %zu, then %zu\n", calls,
                memory / 1024, qel::test::memoryInUse() / 1024, handles, qel::test::openHandles());
#ifndef QEL_FUZZ_SANITIZED
    EXPECT_LE(qel::test::memoryInUse(), memory + kNoise);
#endif
    EXPECT_LE(qel::test::openHandles(), handles);
}

}  // namespace
