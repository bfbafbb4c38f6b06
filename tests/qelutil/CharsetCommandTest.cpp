// qelutil charset: conversions both ways, and everything that cannot be converted said.
#include "Qelutil.h"

namespace {

using qel::test::contains;
using qel::test::ProcessResult;
using qel::test::QelutilTest;
using namespace std::string_literals;

class CharsetCommandTest : public QelutilTest {};

TEST_F(CharsetCommandTest, ConvertsBothWays) {
    const struct {
        const char* set;
        std::string bytes;
        std::string utf8;
    } kPairs[] = {
        {"936", "\xC4\xE3\xBA\xC3\r\nabc", "\xE4\xBD\xA0\xE5\xA5\xBD\r\nabc"},
        {"950", "\xA7\x41\xA6\x6E", "\xE4\xBD\xA0\xE5\xA5\xBD"},
        {"8859-1", "Caf\xE9 \x80", "Caf\xC3\xA9 \xE2\x82\xAC"},
        {"8859-1", "nul\0inside\n\n"s, "nul\0inside\n\n"s},
    };
    for (const auto& [set, bytes, utf8] : kPairs) {
        const ProcessResult decoded = runWithInput({"charset", "--from", set}, bytes);
        EXPECT_EQ(decoded.exitCode, 0) << decoded.err;
        EXPECT_EQ(decoded.out, utf8);
        const ProcessResult encoded = runWithInput({"charset", "--to", set, "-"}, utf8);
        EXPECT_EQ(encoded.exitCode, 0) << encoded.err;
        EXPECT_EQ(encoded.out, bytes);
    }
    // Between two sets of phones; and a byte-order mark, which is no text.
    EXPECT_EQ(runWithInput({"charset", "--from", "936", "--to", "950"}, "\xC4\xE3").out,
              "\xA7\x41");
    EXPECT_EQ(runWithInput({"charset", "--to", "936"}, "\xEF\xBB\xBF\xE4\xBD\xA0").out, "\xC4\xE3");
}

TEST_F(CharsetCommandTest, WhatCannotBeConvertedIsNamedByItsLine) {
    const std::string input = state_.file("in.txt");
    const std::string output = state_.file("out.txt");
    // A stray byte, a pair, the first byte of a pair alone at the end of a line, a good line.
    qel::test::writeFile(input, "a\x81\x30\xC4\xE3\n\x81\nok\n");
    const ProcessResult decoded = run({"charset", "--from", "936", input, "-o", output});
    EXPECT_EQ(decoded.exitCode, 1);
    EXPECT_EQ(qel::test::readFile(output), "a?0\xE4\xBD\xA0\n?\nok\n");
    EXPECT_TRUE(contains(decoded.err, "in.txt:1: byte 2, \"\\x81\": is not 936"));
    EXPECT_TRUE(contains(decoded.err, "in.txt:2: byte 1, "));

    const ProcessResult encoded = runWithInput(
        {"charset", "--to", "8859-1"}, "x\n\xE4\xBD\xA0\xC3\n\xEF\xBB\xBF\xC3\xA9? \xC4\x81");
    EXPECT_EQ(encoded.exitCode, 1);
    EXPECT_EQ(encoded.out, "x\n??\n?\xE9? ?");
    EXPECT_TRUE(contains(encoded.err,
                         "standard input:2: byte 1, \"\xE4\xBD\xA0\": has no place in 8859-1"));
    EXPECT_TRUE(contains(encoded.err, "standard input:2: byte 4, \"\\xc3\": is not UTF-8"));

    // Many faults are counted, not all told.
    std::string broken;
    for (int i = 0; i < 5000; ++i) broken += "\x81\n";
    const ProcessResult many = runWithInput({"charset", "--from", "936"}, broken);
    EXPECT_LT(many.err.size(), 4000U);
    EXPECT_TRUE(contains(many.err, "4990 more of the same kind"));
}

TEST_F(CharsetCommandTest, SetsUnderTheirUsualNamesAndThoseOfTheSystem) {
    EXPECT_EQ(runWithInput({"charset", "--from", "gb2312", "--to", "Big5"}, "\xC4\xE3").out,
              "\xA7\x41");
    for (const auto& [set, bytes] : {std::pair{"KOI8-R", "\xCD\xC9\xD2\n"},
                                     {"8859-5", "\xDC\xD8\xE0\n"},
                                     {"windows-1251", "\xEC\xE8\xF0\n"}}) {
        const ProcessResult result = runWithInput({"charset", "--from", set}, bytes);
        EXPECT_EQ(result.out, "\xD0\xBC\xD0\xB8\xD1\x80\n") << result.err;
        EXPECT_EQ(result.exitCode, 0) << set;
        EXPECT_NE(result.err.find("note: "), std::string::npos) << result.err;
    }
}

TEST_F(CharsetCommandTest, TheListSaysWhichSetsConvert) {
    const auto sets = runJson({"charset", "--list", "--json"});
    ASSERT_EQ(sets.size(), 17U);
    EXPECT_EQ(sets[2]["name"], "936");
    EXPECT_EQ(sets[2]["converts"], true);
    EXPECT_EQ(sets[7]["name"], "8859-5");
    EXPECT_EQ(sets[7]["converts"], false);
    for (const std::vector<std::string>& words : {std::vector<std::string>{"charset"},
                                                  {"charset", "--from", "no-such-set"},
                                                  {"charset", "--from", "utf-16"},
                                                  {"charset", "--json"},
                                                  {"charset", "--text", "a", "file", "--to", "936"},
                                                  {"charset", "a", "b", "--to", "936"}})
        EXPECT_EQ(run(words).exitCode, 2) << words.back();
}

TEST_F(CharsetCommandTest, FilesThatCannotBeUsed) {
    const std::string folder = state_.path().string();
    fails(1, {"charset", "--to", "936", state_.file("none.txt")}, "none.txt: cannot be read");
    fails(1, {"charset", "--to", "936", folder}, "is a directory");
    fails(1, {"charset", "--to", "936", "-t", "a", "-o", state_.file("no/dir/x")},
          "cannot be written");
    fails(1, {"charset", "--to", "936", "-t", "a", "-o", folder}, "is a directory");
    // A conversion that fails leaves the old file alone, and no other file behind.
    const std::string output = state_.file("old.txt");
    qel::test::writeFile(output, "old");
    EXPECT_EQ(run({"charset", "--to", "8859-5", "-t", "a", "-o", output}).exitCode, 1);
    EXPECT_EQ(qel::test::readFile(output), "old");
    EXPECT_EQ(run({"charset", "--to", "936", "-t", "new", "-o", output}).exitCode, 0);
    EXPECT_EQ(qel::test::readFile(output), "new");
    for (const auto& entry : std::filesystem::directory_iterator(state_.path()))
        EXPECT_FALSE(contains(entry.path().filename().string(), "qelutil-new"));
}

}  // namespace
