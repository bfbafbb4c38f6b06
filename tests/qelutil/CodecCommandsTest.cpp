// qelutil encode and decode: there and back, whatever the size, and every kind of bad code.
#include "Qelutil.h"

namespace {

using qel::test::contains;
using qel::test::ProcessResult;
using qel::test::QelutilTest;
using namespace std::string_literals;

class CodecCommandsTest : public QelutilTest {};

// Bytes of all values in no order that helps.
std::string noise(std::size_t size) {
    std::string bytes(size, '\0');
    unsigned state = 12345;
    for (char& each : bytes) {
        state = state * 1664525U + 1013904223U;
        each = static_cast<char>(state >> 24U);
    }
    return bytes;
}

TEST_F(CodecCommandsTest, EachCodeOfAShortText) {
    const std::pair<std::vector<std::string>, std::string> kCases[] = {
        {{"encode", "base64", "--wrap", "4", "--text", "Manic!"}, "TWFu\naWMh\n"},
        {{"decode", "base64", "--text", " TW\nE= "}, "Ma"},
        {{"encode", "qp", "--text", "Caf\xC3\xA9 = 1"}, "Caf=C3=A9 =3D 1\n"},
        {{"encode", "qp", "--value", "--text", "a\nb"}, "a=0Ab\n"},
        {{"decode", "qp", "--text", "a=3db=\nc "}, "a=bc "},
        {{"encode", "md5", "--text", ""}, "d41d8cd98f00b204e9800998ecf8427e\n"},
    };
    for (const auto& [words, out] : kCases) {
        const ProcessResult result = run(words);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, out) << words[1];
    }
    const ProcessResult cipher = run({"encode", "cipher", "--text", "a secret of Zo\xC3\xAB"});
    EXPECT_EQ(cipher.out.size(), 33U);
    EXPECT_EQ(runWithInput({"decode", "cipher"}, "\n " + cipher.out).out,
              "a secret of Zo\xC3\xAB\n");
}

TEST_F(CodecCommandsTest, LargeInputsComeBackAsTheyWere) {
    const std::string file = state_.file("in");
    const std::string coded = state_.file("coded");
    std::string wide;
    for (int i = 0; i < 400000; ++i) wide += "\xC3\xA9 \xE4\xBD\xA0";
    const std::pair<const char*, std::string> kCases[] = {
        {"base64", noise(3 * 1048576 + 1)},
        {"base64", noise(2)},
        {"qp", wide},                             // one line of 2.4 million bytes
        {"qp", std::string(2200000, 'y')},        // whose pieces fill their last lines
        {"qp", std::string(1200000, ' ') + "x"},  // blanks, which must not end a line
        {"qp", std::string(1048575, 'y') + "\r\nz\r\n"},
    };
    for (const auto& [kind, bytes] : kCases) {
        qel::test::writeFile(file, bytes);
        ASSERT_EQ(run({"encode", kind, file, "-o", coded}).exitCode, 0);
        const ProcessResult back = run({"decode", kind, coded});
        EXPECT_EQ(back.exitCode, 0) << back.err;
        EXPECT_TRUE(back.out == bytes) << kind << ' ' << back.out.size();
        std::istringstream lines(qel::test::readFile(coded));
        for (std::string line; std::getline(lines, line);) ASSERT_LE(line.size(), 77U) << kind;
    }
}

TEST_F(CodecCommandsTest, BadCodesAreNamedByLine) {
    const struct {
        std::vector<std::string> words;
        std::string input;
        const char* says;
    } kCases[] = {
        {{"decode", "base64"}, "TQ=", "input:1: the code is cut off"},
        {{"decode", "base64"}, "TWFu\nT~==", "input:2: \"~\" is no Base64 character"},
        {{"decode", "base64"}, "TWFu\n\nT\0=="s, "input:3: 0x00 is no Base64 character"},
        {{"decode", "base64"}, "TQ==\nTQ==", "input:2: there is more after"},
        {{"decode", "base64"}, "TWF", "input:1: the code is cut off"},
        {{"decode", "base64"}, "TR==", "input:1: the code is cut off or badly padded"},
        {{"decode", "cipher"}, "0123456789abcdeg", "character 16 is no hexadecimal digit"},
        {{"decode", "cipher"}, "0123456789abcde", "holds 15 hexadecimal digits"},
        {{"encode", "md5"}, "a\0b"s, "NUL byte at offset 1"},
        {{"encode", "cipher"}, "\0"s, "NUL byte at offset 0"},
    };
    for (const auto& [words, input, says] : kCases) fails(1, words, says, input);
    // What is no escape is kept, and said; nothing is wrong with the rest.
    const ProcessResult kept = runWithInput({"decode", "qp"}, "a=3D\nb=zz\n=");
    EXPECT_EQ(kept.exitCode, 0);
    EXPECT_EQ(kept.out, "a=\nb=zz\n=");
    EXPECT_TRUE(contains(kept.err, "input:2: warning: "));
    EXPECT_TRUE(contains(kept.err, "input:3: warning: "));

    for (const std::vector<std::string>& words : {std::vector<std::string>{"encode"},
                                                  {"encode", "rot13"},
                                                  {"decode", "md5"},
                                                  {"encode", "qp", "--column", "4"},
                                                  {"encode", "base64", "--wrap", "-1", "-t", "a"}})
        EXPECT_EQ(run(words).exitCode, 2) << words.back();
}

// Some texts have an enciphered block with a NUL byte in it, which no reader gets back: the program
// must not hand out such a code.
TEST_F(CodecCommandsTest, ACodeThatCannotBeReadBackIsRefused) {
    int refused = 0;
    for (int i = 36; i < 150 && refused == 0; ++i) {
        const std::string text = "text " + std::to_string(i);
        const ProcessResult code = run({"encode", "cipher", "--text", text});
        if (code.exitCode == 0) continue;
        ++refused;
        EXPECT_EQ(code.out, "");
        EXPECT_TRUE(contains(code.err, "has no enciphered code"));
    }
    EXPECT_EQ(refused, 1);
}

}  // namespace
