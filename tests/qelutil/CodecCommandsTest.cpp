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
