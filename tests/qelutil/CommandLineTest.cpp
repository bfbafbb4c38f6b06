// What holds for the whole program: help, usage errors, exit codes, outputs that cannot be written.
#include <filesystem>

#include "Qelutil.h"

namespace {

using qel::test::contains;
using qel::test::ProcessOptions;
using qel::test::ProcessResult;
using qel::test::QelutilTest;

TEST_F(QelutilTest, VersionGoesToStandardOutput) {
    const ProcessResult version = run({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_TRUE(contains(version.out, "qelutil " QELUTIL_VERSION "\ntime zones 2")) << version.out;
}

TEST_F(QelutilTest, EveryCommandHasHelpWithExamples) {
    const std::string help = run({"--help"}).out;
    const std::string heading = "\nSubcommands:\n";
    ASSERT_NE(help.find(heading), std::string::npos);
    std::istringstream lines(help.substr(help.find(heading) + heading.size()));
    int commands = 0;
    for (std::string line; std::getline(lines, line) && !line.empty();) {
        const std::string name = line.substr(2, line.find(' ', 2) - 2);
        if (name.empty()) continue;  // a description's second line
        ++commands;
        const ProcessResult result = run({name, "--help"});
        EXPECT_EQ(result.exitCode, 0) << name;
        EXPECT_TRUE(contains(result.out, "\n  qelutil " + name + " "));
        fails(2, {name, "--frobnicate"}, "see `qelutil " + name + " --help`");
    }
    EXPECT_GE(commands, 4);
}

TEST_F(QelutilTest, ALongWordIsCutInItsMessage) {
    const ProcessResult result =
        fails(2, {std::string(20000, 'x')}, "there is no command or file `xxxxx");
    EXPECT_LT(result.err.size(), 5000U);
}

TEST_F(QelutilTest, OutputThatCannotBeWrittenIsAnError) {
    ProcessOptions closed;
    closed.closeOutput = true;
    const ProcessResult result = run({"--help"}, closed);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.err, "the output cannot be written"));
    // A command that would go on for long stops at the first failure.
    closed.input.assign(3 << 20, 'x');
    EXPECT_EQ(run({"encode", "base64"}, closed).exitCode, 1);
    if (!std::filesystem::exists("/dev/full")) return;
    ProcessOptions full;
    full.outputTo = "/dev/full";
    const ProcessResult noRoom = run({"--help"}, full);
    EXPECT_EQ(noRoom.exitCode, 1);
    EXPECT_TRUE(contains(noRoom.err, "the output cannot be written"));
}

}  // namespace
