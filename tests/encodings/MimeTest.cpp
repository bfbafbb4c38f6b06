// Folded header lines and MIME boundaries, quirks of mixed line ends included.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "QelUtility/BxMime.h"

namespace {

TEST(FoldedLineEnd, FollowsTheFolds) {
    const struct {
        const char* text;
        int end;
        int next;
    } rows[] = {
        {"", 0, 0},
        {"no break", 8, 8},
        {"A: b\r\n c\r\nD: e", 8, 10},
        {"A: b\r\nD: e", 4, 6},
        {"A\r\n\tb\r\n c\r\n\r\nbody", 9, 11},
        {"A\nB", 1, 2},      // an unfolded LF line ends at its LF
        {"A\n b\nC", 5, 5},  // a folded one behind it
        {"A\n b\n c\nD", 8, 8},
        {"A\n b\n\nC", 5, 6},  // the empty line goes with it
        {"A\n b", 4, 4},
        {"A\r\n b", 5, 5},
        {"A\r\n b\nC", 6, 6},
        {"A\nB\r\nC", 3, 5},  // a CR anywhere comes before any LF
        {"A\n b\rC", 4, 5},
        {"A\r\n b\nC\r\nD", 7, 9},
        {"A\r\rB", 1, 2},
        {"A\n\r b\nC", 6, 6},
        {"A\r\n ", 4, 4},
        {"\r\n", 0, 2},
        {"\n", 0, 1},
    };
    for (const auto& row : rows) {
        std::string text = row.text;
        char* next = nullptr;
        EXPECT_EQ(GetFoldedLineEnd(text.data(), &next) - text.data(), row.end) << row.text;
        EXPECT_EQ(next - text.data(), row.next) << row.text;
        EXPECT_EQ(GetFoldedLineEnd(text.data(), nullptr) - text.data(), row.end);
    }
    char* next = const_cast<char*>("");
    EXPECT_EQ(GetFoldedLineEnd(nullptr, &next), nullptr);
    EXPECT_EQ(next, nullptr);
}

TEST(FoldedLineEnd, AMillionFoldsTakeLinearTime) {
    const auto start = std::chrono::steady_clock::now();
    for (const char* fold : {"\n x", "\r\n x", "\r x"}) {
        std::string text = "A";
        for (int i = 0; i < 1000000; ++i) text += fold;
        EXPECT_EQ(GetFoldedLineEnd(text.data(), nullptr), text.data() + text.size());
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(MimeDelimiter, FindsTheBoundary) {
    const struct {
        const char* value;
        const char* boundary;  // null: none
    } rows[] = {
        {"multipart/mixed; boundary=\"abc\"", "abc"},
        {"Multipart/Related;boundary=xyz", "xyz"},
        {" \r\n\tMULTIPART/x;\r\n BOUNDARY=\"a b;c\"; charset=x\r\n", "a b;c"},
        {"multipart/mixed; boundary=abc; x=y\r\nSubject: z", "abc; x=y"},
        {"multipart/mixed; boundary= abc", " abc"},
        {"multipart/mixed; boundary= \"abc\"", "abc"},
        {"multipart/mixed; boundary=a\"b", "a"},
        {"multipart/mixed; boundary=a\tb", "a"},
        {"multipart/mixed; boundary=\"ab", "ab"},
        {"multipart/mixed; boundary=", ""},
        {"multipart/mixed; boundary=\"\"", ""},
        {"multipart/mixed; boundary=\r\n\"abc\"", ""},
        {"multipart/mixed; boundary= \r\nX: y", ""},
        {"multipart/mixed; boundary\r\nX: y=z", nullptr},
        {"multipart/mixed; charset=utf-8; boundary=x", nullptr},
        {"multipart/mixed; encoding=\r\n boundary=x", "x"},  // another name of eight
        {"multipart/mixed; encoding=8; boundary=x", nullptr},
        {"multipart/mixed; boundary =x", nullptr},
        {"multipart/mixed; boundary", nullptr},
        {"multipart/mixed;", nullptr},
        {"multipart/mixed; \r\nboundary=x", nullptr},
        {"multipart/mixed", nullptr},
        {"multipart; boundary=x", nullptr},
        {"multiparts/mixed; boundary=x", nullptr},
        {"text/plain; boundary=x", nullptr},
        {"textplain/x; boundary=x", nullptr},
        {"  \r\n ", nullptr},
        {"", nullptr},
    };
    for (const auto& row : rows) {
        std::string value = row.value;
        VStr out("kept");
        const char* result = GetMIMEDelimiter(value.data(), out);
        if (row.boundary == nullptr) {
            EXPECT_EQ(result, nullptr) << row.value;
            EXPECT_STREQ(out, "kept");
        } else {
            EXPECT_EQ(result, static_cast<const char*>(out)) << row.value;
            EXPECT_STREQ(out, row.boundary) << row.value;
        }
        EXPECT_EQ(value, row.value);
    }
    VStr out("multipart/mixed; boundary=itself");
    EXPECT_STREQ(GetMIMEDelimiter(out.GetBuffer(0), out), "itself");
    EXPECT_EQ(GetMIMEDelimiter(nullptr, out), nullptr);
}

}  // namespace
