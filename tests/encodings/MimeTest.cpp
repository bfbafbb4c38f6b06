// Folded header lines and MIME boundaries, quirks of mixed line ends included.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "QelUtility/BxMime.h"
#include "support/Tables.h"

namespace {

using qel::test::list;
using qel::test::number;
using qel::test::Row;

TEST(FoldedLineEnd, FollowsTheFolds) {
    for (Row& row : list("encodings/folds.txt")) {
        SCOPED_TRACE(row["text"]);
        std::string text = row["text"];
        char* next = nullptr;
        EXPECT_EQ(GetFoldedLineEnd(text.data(), &next) - text.data(), number(row, "end"));
        EXPECT_EQ(next - text.data(), number(row, "next"));
        EXPECT_EQ(GetFoldedLineEnd(text.data(), nullptr) - text.data(), number(row, "end"));
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
    for (Row& row : list("encodings/boundaries.txt")) {
        SCOPED_TRACE(row["value"]);
        std::string value = row["value"];
        VStr out("kept");
        const char* result = GetMIMEDelimiter(value.data(), out);
        const bool found = row["found"] == "yes";
        EXPECT_EQ(result, found ? static_cast<const char*>(out) : nullptr);
        EXPECT_EQ(std::string(out), found ? row["boundary"] : "kept");
        EXPECT_EQ(value, row["value"]);
    }
    VStr out("multipart/mixed; boundary=itself");
    EXPECT_STREQ(GetMIMEDelimiter(out.GetBuffer(0), out), "itself");
    EXPECT_EQ(GetMIMEDelimiter(nullptr, out), nullptr);
}

}  // namespace
