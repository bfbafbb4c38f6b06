// Runs every registered target over its corpus, one test for each target.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "Fuzz.h"

namespace {

class Corpus : public testing::TestWithParam<qel::fuzz::Registered> {};

TEST_P(Corpus, RunsClean) {
    const auto folder = std::filesystem::path(QEL_FUZZ_CORPUS) / GetParam().name;
    std::size_t inputs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        SCOPED_TRACE(entry.path().filename().string());
        qel::fuzz::Input in(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        GetParam().run(in);
        ++inputs;
    }
    qel::fuzz::Input nothing(nullptr, 0);
    GetParam().run(nothing);
    EXPECT_GT(inputs, 0U);
}

INSTANTIATE_TEST_SUITE_P(Every, Corpus, testing::ValuesIn(qel::fuzz::targets()),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
