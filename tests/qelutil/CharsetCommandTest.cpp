// qelutil charset: conversions both ways, and everything that cannot be converted said.
#include "Qelutil.h"

namespace {

using qel::test::contains;
using qel::test::ProcessResult;
using qel::test::QelutilTest;
using namespace std::string_literals;

class CharsetCommandTest : public QelutilTest {};

TEST_F(CharsetCommandTest, WhatCannotBeConvertedIsNamedByItsLine) {
    const std::string input = state_.file("in.txt");
    const std::string output = state_.file("out.txt");
    // A stray byte, a pair, the first byte of a pair alone at the end of a line, a good line.
    qel::test::writeFile(input, "a\x81\x30\xC4\xE3\n\x81\nok\n");
    const ProcessResult decoded = run({"charset", "--from", "936", input, "-o", output});
    EXPECT_EQ(decoded.exitCode, 1);
    EXPECT_EQ(qel::test::readFile(output), "a?0\xE4\xBD\xA0\n?\nok\n");
    EXPECT_TRUE(contains(decoded.err, "in.txt:1: holds bytes that are not 936"));
    EXPECT_TRUE(contains(decoded.err, "in.txt:2: "));

    // More than is read at once.
    std::string pairs;
    std::string characters;
    for (int i = 0; i < 100000; ++i) {
        pairs += "\xC4\xE3\n";
        characters += "\xE4\xBD\xA0\n";
    }
    const ProcessResult large = runWithInput({"charset", "--from", "936"}, pairs);
    EXPECT_TRUE(large.out == characters) << large.err;

    // The other way, a byte that is not UTF-8 and a character that has no place there.
    const ProcessResult encoded =
        runWithInput({"charset", "--to", "936"}, "a\xFF\xF0\x9F\x98\x80\xE4\xBD\xA0\n");
    EXPECT_EQ(encoded.out, "a??\xC4\xE3\n");
    EXPECT_TRUE(contains(encoded.err, "byte 2, \"\\xff\": is not UTF-8"));
    EXPECT_TRUE(contains(encoded.err, "has no place in 936"));

    // Many faults are counted, not all told.
    std::string broken;
    for (int i = 0; i < 5000; ++i) broken += "\x81\n";
    const ProcessResult many = runWithInput({"charset", "--from", "936"}, broken);
    EXPECT_LT(many.err.size(), 4000U);
    EXPECT_TRUE(contains(many.err, "4990 more of the same kind"));
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
        EXPECT_FALSE(contains(entry.path().filename().string(), ".qelutil"));
}

}  // namespace
