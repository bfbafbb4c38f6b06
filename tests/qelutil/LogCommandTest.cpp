// qelutil log: paths, options read and written, and the end of the log.
#include "Qelutil.h"

namespace {

using qel::test::contains;
using qel::test::ProcessOptions;
using qel::test::ProcessResult;
using qel::test::QelutilTest;

class LogCommandTest : public QelutilTest {
  protected:
    ProcessOptions at(const std::string& name) const {
        ProcessOptions options;
        options.environment["BX_ERR_LOG_FILE_PATH"] = state_.file(name);
        return options;
    }
};

TEST_F(LogCommandTest, ShowsAndSetsTheOptions) {
    ProcessResult shown = run({"log", "--json"}, at("trace"));
    ASSERT_EQ(shown.exitCode, 0) << shown.err;
    auto facts = nlohmann::ordered_json::parse(shown.out);
    EXPECT_EQ(facts["log"], state_.file("trace.log"));
    EXPECT_EQ(facts["optionsFile"], state_.file("BxOptions.opt"));
    EXPECT_EQ(facts["bytes"], nullptr);
    EXPECT_EQ(facts["options"]["MaxFileSize"], "5000000");
    EXPECT_EQ(facts["options"].size(), 10U);

    EXPECT_EQ(
        run({"log", "--set", "vtraceverbosity=-3", "--set", "TracingOptions=8000000F"}, at("trace"))
            .exitCode,
        0);
    shown = run({"log", "--json"}, at("trace"));
    facts = nlohmann::ordered_json::parse(shown.out);
    EXPECT_EQ(facts["options"]["VTraceVerbosity"], "-3");
    EXPECT_EQ(facts["options"]["TracingOptions"], "8000000f");
    EXPECT_TRUE(contains(run({"log"}, at("trace")).out, "TracingOptions               8000000f"));
}

TEST_F(LogCommandTest, ShowsTheEndOfTheLog) {
    std::string log;
    for (int i = 1; i <= 50; ++i) log += "line " + std::to_string(i) + "\r\n";
    log += std::string("last \x1b[31m \xFF") + std::string(100000, 'x');
    qel::test::writeFile(state_.file("trace.log"), log);
    const auto facts =
        nlohmann::ordered_json::parse(run({"log", "--json", "--tail", "3"}, at("trace.log")).out);
    EXPECT_EQ(facts["bytes"], log.size());
    ASSERT_EQ(facts["tail"].size(), 3U);
    EXPECT_EQ(facts["tail"][1], "line 50");
    const ProcessResult text = run({"log", "--tail", "2"}, at("trace.log"));
    EXPECT_EQ(text.out.find('\x1b'), std::string::npos);
    EXPECT_TRUE(contains(text.out, "\nline 50\nlast \\x1b[31m \\xffxxx"));
    EXPECT_FALSE(contains(run({"log", "--tail", "0"}, at("trace.log")).out, "line"));
}

TEST_F(LogCommandTest, SaysWhenTheOptionsCannotBeWritten) {
    ProcessOptions options = at("trace");
    options.environment["BX_OPTIONS_FILE_PATH"] = state_.path().string();
    const ProcessResult result = run({"log", "--set", "MaxBackupCount=4"}, options);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.err, "cannot be written"));
    // A directory where the log should be: nothing to show, nothing to crash on.
    std::filesystem::create_directory(state_.file("dir.log"));
    EXPECT_EQ(run({"log"}, at("dir")).exitCode, 0);
}

}  // namespace
