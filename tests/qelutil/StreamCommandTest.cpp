// qelutil stream on more than it reads at once.
#include "Qelutil.h"

namespace {

using qel::test::contains;
using qel::test::ProcessResult;
using qel::test::QelutilTest;
using namespace std::string_literals;
using Json = nlohmann::ordered_json;

class StreamCommandTest : public QelutilTest {};

TEST_F(StreamCommandTest, ReadsMoreThanItHolds) {
    // A value longer than what is read at once, up to a NUL byte.
    std::string large;
    for (int i = 0; i < 100'000; ++i) large += "1a2b\x1fhello\x1f";
    const std::size_t longAt = large.size();
    large += std::string(1'000'000, 'x') + "\x1f";
    const std::size_t end = large.size();
    const ProcessResult cut = runWithInput({"stream", "--json"}, large + "\0more"s);
    EXPECT_TRUE(contains(cut.err, "at offset " + std::to_string(end) + "; 4 bytes"));
    const Json values = Json::parse(cut.out)["values"];
    ASSERT_EQ(values.size(), 200'002U);
    EXPECT_EQ(
        values[199'999],
        (Json{{"value", 200'000}, {"offset", longAt - 6}, {"text", "hello"}, {"number", nullptr}}));
    EXPECT_EQ(values[200'000]["text"].get<std::string>().size(), 1'000'000U);
    EXPECT_EQ(values[200'001],
              (Json{{"value", 200'002}, {"offset", end}, {"text", ""}, {"number", 0}}));
}

}  // namespace
