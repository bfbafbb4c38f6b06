// qelutil without memory: it does all of its work, or ends with exit code 1 and one line that says
// why; never with output that is only nearly right.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/Process.h"
#include "support/Tables.h"
#include "support/TempDir.h"

namespace qel::test {

namespace {

struct Command {
    const char* name;
    std::vector<std::string> arguments;
    std::string input;
};

const Command kCommands[] = {
    {"Convert",
     {"convert", "-"},
     "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nTZ:+01\r\nBEGIN:VEVENT\r\n"
     "SUMMARY;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:Caf=C3=A9\r\n"
     "DTSTART:20050615T083000\r\nDTEND:20050615T093000\r\nRRULE:W2 MO WE FR #10\r\n"
     "END:VEVENT\r\nEND:VCALENDAR\r\n"},
    {"Expand", {"expand", "FREQ=DAILY;COUNT=3", "--start", "20050615"}, ""},
    {"Encode", {"encode", "base64"}, "text"},
    {"Zone", {"zone", "list"}, ""},
};

// Lines but for those in which the profile of a build for coverage says that it had no memory.
int linesOf(const std::string& text) {
    int count = 0;
    for (const std::string& line : split(text, '\n')) count += !line.starts_with("LLVM Profile");
    return count;
}

class ProgramFaults : public testing::TestWithParam<Command> {};

TEST_P(ProgramFaults, EndInOneLine) {
    constexpr int kMost = 100000;
    const Command& command = GetParam();
    ProcessOptions options;
    options.input = command.input;
    const ProcessResult whole = runProcess(QELUTIL_PROGRAM, command.arguments, options);
    ASSERT_EQ(whole.exitCode, 0) << whole.err;
    options.environment["LD_PRELOAD"] = QEL_TEST_GATE;
    int runs = 0;
    for (const bool rest : {false, true}) {
        if (rest) options.environment["QEL_TEST_REFUSE_REST"] = "1";
        // Every one of the first; then in steps, for a run allocates some thousand times.
        int inARow = 0;
        for (int n = 1; n < kMost && inARow < 3; n += 1 + n / 15, ++runs) {
            options.environment["QEL_TEST_REFUSE"] = std::to_string(n);
            const ProcessResult result = runProcess(QELUTIL_PROGRAM, command.arguments, options);
            if (result.exitCode == 0) {
                EXPECT_EQ(result.out, whole.out) << "allocation " << n;
                ++inARow;
                continue;
            }
            inARow = 0;
            EXPECT_EQ(result.exitCode, 1) << "allocation " << n << ": " << result.err;
            EXPECT_EQ(linesOf(result.err), 1) << "allocation " << n << ": " << result.err;
            if (HasFailure()) return;
        }
    }
    std::printf("%d runs\n", runs);
}

INSTANTIATE_TEST_SUITE_P(Qelutil, ProgramFaults, testing::ValuesIn(kCommands),
                         [](const auto& tested) { return std::string(tested.param.name); });

// One file that there was no memory for costs its own result alone.
TEST(ProgramFaultsOfFiles, TheOthersAreConverted) {
    const TempDir state;
    std::vector<std::string> words = {"convert"};
    for (const char* name : {"a.vcs", "b.vcs", "c.vcs"}) {
        words.push_back(state.file(name));
        writeFile(words.back(), kCommands[0].input);
    }
    words.insert(words.end(), {"-d", state.file("out"), "--overwrite"});
    ProcessOptions options;
    options.environment["LD_PRELOAD"] = QEL_TEST_GATE;
    const auto refusing = [&](int n) {
        std::filesystem::remove_all(state.path() / "out");
        options.environment["QEL_TEST_REFUSE"] = std::to_string(n);
        return runProcess(QELUTIL_PROGRAM, words, options);
    };
    // How many come before the files is another number in every build.
    constexpr int kSteps = 37;
    int first = kSteps;
    while (first < 10000 && refusing(first).err.find("3 files") == std::string::npos)
        first += kSteps;
    int named = 0;
    for (int n = first - 2 * kSteps; n < first + 10 * kSteps; n += 4) {
        const ProcessResult result = refusing(n);
        EXPECT_LE(result.exitCode, 1) << n << ": " << result.err;
        if (result.err.find("b.vcs: memory is exhausted") == std::string::npos) continue;
        ++named;
        EXPECT_EQ(result.exitCode, 1) << n;
        EXPECT_NE(result.err.find("3 files (1 left out), "), std::string::npos) << result.err;
        for (const auto& [name, there] : {std::pair("a", true), {"b", false}, {"c", true}})
            EXPECT_EQ(std::filesystem::exists(state.file("out/" + std::string(name) + ".ics")),
                      there)
                << n << ": " << name;
    }
    EXPECT_GT(named, 0);
}

}  // namespace

}  // namespace qel::test
