// What holds for the whole program: help, usage errors, exit codes, outputs that cannot be written.
#include <filesystem>

#include "Qelutil.h"

namespace {

using qel::test::ProcessOptions;
using qel::test::ProcessResult;
using qel::test::QelutilTest;

TEST_F(QelutilTest, HelpAndVersionGoToStandardOutput) {
    const ProcessResult version = run({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out, "qelutil " QELUTIL_VERSION "\n");
    const ProcessResult help = run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("Usage: qelutil"), std::string::npos);
    EXPECT_EQ(help.err, "");
}

TEST_F(QelutilTest, UsageErrorsAreExitCodeTwoAndPointToTheHelp) {
    const struct {
        std::vector<std::string> words;
        const char* says;
    } kCases[] = {
        {{}, "A subcommand is required; see `qelutil --help`"},
        {{"frobnicate"}, "there is no command `frobnicate`; see `qelutil --help`"},
        {{"a\x1b[31m"}, "there is no command `a\\x1b[31m`"},
        {{"--frobnicate"}, "see `qelutil --help`"},
        {{"/version"}, "there is no command `/version`"},
        {{std::string(20000, 'x')}, "there is no command `xxxxx"},
    };
    for (const auto& each : kCases) {
        const ProcessResult result = run(each.words);
        EXPECT_EQ(result.exitCode, 2) << each.says;
        EXPECT_EQ(result.out, "") << each.says;
        EXPECT_EQ(result.err.find("qelutil: "), 0U) << result.err;
        EXPECT_NE(result.err.find(each.says), std::string::npos) << result.err;
        EXPECT_LT(result.err.size(), 5000U) << each.says;
    }
}

TEST_F(QelutilTest, OutputThatCannotBeWrittenIsAnError) {
    ProcessOptions closed;
    closed.closeOutput = true;
    const ProcessResult result = run({"--help"}, closed);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("the output cannot be written"), std::string::npos) << result.err;
    if (!std::filesystem::exists("/dev/full")) return;
    ProcessOptions full;
    full.outputTo = "/dev/full";
    const ProcessResult noRoom = run({"--help"}, full);
    EXPECT_EQ(noRoom.exitCode, 1);
    EXPECT_NE(noRoom.err.find("the output cannot be written"), std::string::npos) << noRoom.err;
}

}  // namespace
