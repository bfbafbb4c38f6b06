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

// A customer's folder: backups before their log, processes merged, a new year, errors in words, and
// nothing is written there.
TEST_F(LogCommandTest, ReadsTheLogsOfOthers) {
    const std::string folder = state_.file("customer");
    std::filesystem::create_directory(folder);
    const auto put = [&](const std::string& name, const std::string& text) {
        qel::test::writeFile(folder + "/" + name, text);
    };
    put("a_1.bk1", "[0001] 12/31 23:59:59.000 000: first\r\n");
    put("a_1.bk0", "[0001] 01/01 00:00:01.000 000: third\r\n");
    put("a_1.log",
        "[0001] 01/01 02:00:00.000 001: 01/01 02:00:00.000 000: Error 5.x.y.2005 at Host line 3\r\n"
        "[0001] 01/01 02:00:01.000 000: cut");
    put("b_2.log", "[00A2] 01/01 00:00:00.500 000: not before January\n  more of it\n");
    put("BxOptions.opt", "[LogSettings]\r\nMaxFileSize=77\r\n");
    const ProcessResult all = run({"log", folder + "/a_1.log"});
    EXPECT_EQ(
        all.out,
        "12/31 23:59:59.000 [0001] first\n01/01 00:00:01.000 [0001] third\n"
        "01/01 02:00:00.000 [0001] Error 2005 (a file cannot be opened or created): 5.x.y, at "
        "Host line 3\n01/01 02:00:01.000 [0001] cut\n");
    EXPECT_TRUE(
        contains(run({"log", folder, "--since", "01/01", "--through", "01/01 00:00"}).out,
                 "b_2.log  01/01 00:00:00.500 [00A2] not before January\nb_2.log    more of "
                 "it\na_1.bk0  01/01 00:00:01.000 [0001] third\n"));
    const ProcessResult none = run({"log", folder, "--errors", "--thread", "a2"});
    EXPECT_EQ(none.out + none.err, "qelutil: no line of the log fits\n");
    EXPECT_TRUE(contains(run({"log", folder + "/a_1.log", "--tail", "1", "--search", "THIRD"}).out,
                         "third"));
    const std::string summary = run({"log", folder + "/a_1.log", "--summary"}).out;
    EXPECT_TRUE(contains(summary, "error 2005  1 time  a file"));
    EXPECT_TRUE(contains(summary, "nothing from 01/01 00:00:01.000 to 01/01 02:00:00.000"));
    EXPECT_TRUE(contains(summary, "option MaxFileSize = 77"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 5);
    fails(1, {"log", folder + "/none.log"}, "cannot be read");
    fails(2, {"log", folder, "--thread", "zz"}, "not a thread's number");
    fails(2, {"log", folder, "--set", "MaxFileSize=1"}, "leave FILE out");
}

// The lines have no year: what several logs have in common, and the range, follow their order.
TEST_F(LogCommandTest, CountsFromTheBeginningOfTheLogs) {
    const std::string folder = state_.file("logs");
    std::filesystem::create_directories(folder + "/phones/old");
    qel::test::writeFile(folder + "/a.log",
                         "[0001] 12/30 10:00:00.000 000: one\n[0001] 12/31 23:59:59.000 000: two\n"
                         "[0001] 01/02 00:00:01.000 000: six\n");
    qel::test::writeFile(folder + "/phones/old/b.log",
                         "[00A2] 01/01 00:00:00.500 000: three\n"
                         "[00A2] 01/01 02:00:00.000 000: 01/01 02:00:00.000 000: Error 9.7 at X\n");
    qel::test::writeFile(folder + "/s.log", "01/01 00:00:02.000 000: SyncML Input:\n<SyncML/>\n");
    const std::string middle =
        "a.log  12/31 23:59:59.000 [0001] two\nb.log  01/01 00:00:00.500 [00A2] three\n"
        "s.log  01/01 00:00:02.000 SyncML Input:\ns.log  <SyncML/>\n"
        "b.log  01/01 02:00:00.000 [00A2] Error 7: 9, at X\n";
    // Twice, and read once.
    const std::vector<std::string> both = {"log", folder, folder + "/./phones/old/b.log"};
    const auto with = [&](std::vector<std::string> more) {
        more.insert(more.begin(), both.begin(), both.end());
        return run(more).out;
    };
    EXPECT_EQ(with({"--since", "12/31", "--through", "01/01"}), middle);
    EXPECT_EQ(with({"--since", "12/31"}), middle + "a.log  01/02 00:00:01.000 [0001] six\n");
    EXPECT_TRUE(contains(run({"log", folder, "--since", "01/02", "--through", "12/31"}).err,
                         "--through is before --since"));
    EXPECT_EQ(runWithInput({"log", "-", "--since", "01/01"},
                           "[0001] 12/31 00:00:00.000 000: a\n[0001] 01/02 00:00:00.000 000: b\n")
                  .out,
              "01/02 00:00:00.000 [0001] b\n");
    fails(1, {"log", "-"}, "a calendar, not a trace log", "BEGIN:VCALENDAR\nEND:VCALENDAR\n");
    fails(1, {"log", "-"}, "a page with a calendar in it", "<p>\nBEGIN:VCALENDAR\nEND:VCALENDAR\n");
    fails(1, {"log", "-"}, "the options of a trace log", "[LogSettings]\nMaxFileSize=7\n");
    // Without a name, this computer's log.
    EXPECT_TRUE(contains(run({"log", "--errors"}, at("logs/phones/old/b.log")).out, "Error 7"));
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
