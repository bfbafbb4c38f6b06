// Extraction, editing, search, comparison and formatting of VStr.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "QelUtility/VStr.h"

namespace {

bool isNull(const VStr& s) {
    return s.Compare(nullptr) == 0;
}

// What is inside a text is left to the random operations.
TEST(VStrText, SubstringsAreClamped) {
    VStr abc("abc");
    VStr s;
    EXPECT_STREQ(s.Substr(abc, -2, 2), "ab");
    EXPECT_STREQ(s.Substr(abc, 1, INT_MAX), "bc");
    EXPECT_STREQ(abc.Mid(5), "c");
    EXPECT_STREQ(abc.Mid(INT_MIN), "abc");
    EXPECT_STREQ(abc.Left(7), "abc");
    EXPECT_STREQ(abc.Right(7), "abc");
    for (const VStr& none :
         {VStr(s.Substr(abc, 1, 0)), VStr(s.Substr(abc, 1, INT_MIN)), VStr(s.Substr(VStr(), 0, 3)),
          VStr().Mid(0), abc.Left(0), abc.Right(0), abc.Right(INT_MIN), abc.SpanIncluding("x")})
        EXPECT_TRUE(isNull(none));
    EXPECT_STREQ(abc.SpanExcluding(nullptr), "abc");
    EXPECT_EQ(s.Substr(VStr("a", 4), 1, 2).GetLength(), 2);
}

TEST(VStrText, Cutting) {
    const struct {
        int start;
        int count;
        const char* expected;
    } rows[] = {
        {1, INT_MAX, "a"},
        {1, -5, "abcdef"},
        {0, 6, ""},
        // A negative start counts in the clamp and is 0 for the text.
        {-2, 3, "def"},
        {-2, 5, "f"},
        {-2, 20, ""},
        {INT_MIN, INT_MAX, ""},
    };
    for (const auto& row : rows) {
        VStr s("abcdef");
        VStr apart("old");
        apart.Cutstr(s, row.start, row.count);
        s.Cutstr(row.start, row.count);
        EXPECT_STREQ(s, row.expected) << row.start << " " << row.count;
        EXPECT_EQ(s.GetLength(), static_cast<int>(std::strlen(row.expected)));
        EXPECT_STREQ(apart, row.expected);
    }
}

TEST(VStrText, Insertion) {
    VStr abc("abc");
    VStr x("X");
    VStr out("old");
    EXPECT_STREQ(out.Insert(abc, 3, x), "abXc");
    EXPECT_STREQ(out.Insert(abc, -3, x), "Xabc");
    EXPECT_EQ(out.GetLength(), 4);
    EXPECT_STREQ(out.Insert(out, 1, out), "XXabcabc");
    VStr null;
    EXPECT_STREQ(out.Insert(abc, 1, null), "XXabcabc");
    // An empty source takes the text itself; the destination stays.
    EXPECT_STREQ(out.Insert(null, 1, x), "XXabcabc");
    EXPECT_STREQ(null, "X");
    EXPECT_STREQ(abc.Insert(1, "--"), "a--bc");
}

TEST(VStrText, Trimming) {
    VStr left("  \t\r\n");
    VStr right(left);
    left.TrimLeft();
    right.TrimRight();
    EXPECT_TRUE(isNull(left));
    EXPECT_TRUE(right.IsEmpty());
    EXPECT_FALSE(isNull(right));
    VStr s(" \v ab\xA0 \r\n");
    EXPECT_EQ(s.ComputeTrimmedLength(), 6);
    s.TrimRight();
    s.TrimLeft();
    EXPECT_STREQ(s, "\v ab\xA0");
    s.TrimLeft();
    EXPECT_EQ(s.GetLength(), 5);

    VStr ab("ab");
    VStr abBlank("ab  ");
    VStr abLine("ab\r\n");
    VStr blankAb(" ab");
    VStr blanks("  ");
    VStr null;
    EXPECT_TRUE(abBlank.IdenticalWhenTrimmed(abLine));
    EXPECT_FALSE(blankAb.IdenticalWhenTrimmed(ab));
    EXPECT_TRUE(blanks.IdenticalWhenTrimmed(null));
    EXPECT_FALSE(blanks.IdenticalWhenTrimmed(ab));
}

TEST(VStrText, Searching) {
    const VStr s("abcabc");
    EXPECT_EQ(s.Find('\0'), 6);
    EXPECT_EQ(s.Find(static_cast<const char*>(nullptr)), -1);
    EXPECT_EQ(s.FindOneOf(nullptr), -1);
    EXPECT_EQ(VStr("\xE9").Find('\xE9'), 0);
    const VStr null;
    EXPECT_EQ(null.Find('\0'), -1);
    EXPECT_EQ(null.Find(""), -1);
    EXPECT_EQ(null.ReverseFind('a'), -1);
    EXPECT_EQ(null.FindOneOf("a"), -1);
}

TEST(VStrText, ComparisonIsByUnsignedBytesAndAsciiAlone) {
    EXPECT_LT(VStr("abc").Compare("abd"), 0);
    EXPECT_GT(VStr("\xE9").Compare("z"), 0);
    EXPECT_EQ(VStr("ABCxyz[").CompareNoCase("abcXYZ["), 0);
    // "_" (0x5F) is below "a", though it is above "A".
    EXPECT_LT(VStr("_").CompareNoCase("A"), 0);
    EXPECT_NE(VStr("\xC9").CompareNoCase("\xE9"), 0);
    EXPECT_GT(VStr("\xC9").CompareNoCase("z"), 0);
    EXPECT_GT(VStr("abc").CompareNoCase("AB"), 0);
    EXPECT_LT(VStr("ab").CompareNoCase("ABC"), 0);
    EXPECT_LT(VStr().CompareNoCase(""), 0);
    EXPECT_EQ(VStr().CompareNoCase(nullptr), 0);
    EXPECT_EQ(VStr("x").CompareNoCase(nullptr), 1);
}

TEST(VStrText, FormattingStopsAtItsBuffer) {
    VStr s;
    const std::string most(4095, 'f');
    s.Format("%s", most.c_str());
    EXPECT_EQ(s.GetLength(), 4095);
    s.Format("%s%d", most.c_str(), 7);
    EXPECT_EQ(std::string(s), most);
    s.Format("%04d-%02x %c", 2005, 0xABU, 'z');
    EXPECT_STREQ(s, "2005-ab z");
    s.Format("%I64d %I32d", LLONG_MIN, 7);
    EXPECT_STREQ(s, "-9223372036854775808 7");
    s.Format("%s", "");
    EXPECT_FALSE(isNull(s));
    s.Format(nullptr);
    EXPECT_TRUE(isNull(s));
}

}  // namespace
