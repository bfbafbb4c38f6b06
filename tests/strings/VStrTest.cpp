#include "QelUtility/VStr.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

namespace {

// Whether the string has a block: only this tells null from allocated empty.
bool isNull(const VStr& s) {
    return s.Compare(nullptr) == 0;
}

TEST(VStr, BlocksAreAlwaysAboveTheRequest) {
    const struct {
        int request;
        unsigned int size;
    } rows[] = {{0, 64}, {1, 64}, {63, 64}, {64, 128}, {100, 128}, {127, 128}, {128, 192}};
    for (const auto& row : rows) {
        unsigned int size = 0;
        VStr owner;
        owner <<= VStr::ModAlloc(row.request, &size);
        EXPECT_EQ(size, row.size) << row.request;
    }
    unsigned int size = 7;
    EXPECT_EQ(VStr::ModAlloc(-1, &size), nullptr);
    EXPECT_EQ(size, 0U);
}

TEST(VStr, NullAndAllocatedEmpty) {
    EXPECT_TRUE(isNull(VStr()));
    EXPECT_TRUE(isNull(VStr("")));
    EXPECT_TRUE(isNull(VStr("abc", 0)));
    EXPECT_TRUE(isNull(VStr(static_cast<const char*>(nullptr), 3)));

    VStr empty;
    empty.Copy("");
    EXPECT_FALSE(isNull(empty));
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_EQ(empty.Compare(""), 0);
    EXPECT_LT(VStr().Compare(""), 0);
    EXPECT_TRUE(isNull(VStr(empty)));
    EXPECT_FALSE(isNull(VStr("x").Copy("abc", 0)));
    VStr zero("x");
    zero = '\0';
    EXPECT_FALSE(isNull(zero));
    VStr released;
    released.ReleaseBuffer(0);
    EXPECT_FALSE(isNull(released));
    zero = static_cast<const char*>(nullptr);
    EXPECT_TRUE(isNull(zero));
    empty += "";
    EXPECT_TRUE(isNull(empty));
}

TEST(VStr, CopiesKeepTheLengthAndAssignmentsMeasureTheText) {
    const VStr padded("ab", 5);
    EXPECT_EQ(padded.GetLength(), 5);
    EXPECT_STREQ(padded, "ab");
    EXPECT_EQ(VStr(padded).GetLength(), 5);
    EXPECT_EQ(VStr('\0', 3).GetLength(), 3);
    EXPECT_STREQ(VStr('z', 0), "z");
    EXPECT_STREQ(VStr('z', -4), "z");
    VStr measured;
    measured = padded;
    EXPECT_EQ(measured.GetLength(), 2);
    EXPECT_STREQ(VStr("abc", 2), "ab");

    // An overwritten terminator: the copy ends where the length says.
    VStr open("abc");
    open[3] = 'X';
    const VStr closed(open);
    EXPECT_EQ(closed.GetLength(), 3);
    EXPECT_STREQ(closed, "abc");
    // With the block full to its last byte there need be no terminator anywhere.
    char* block = VStr::ModAlloc(0);
    std::memset(block, 'f', 63);
    VStr full;
    full <<= block;
    full[63] = 'f';
    EXPECT_STREQ(VStr(full), std::string(63, 'f').c_str());
    measured = full;
    EXPECT_GE(measured.GetLength(), 64);
    VStr appended("+");
    appended += full;
    EXPECT_EQ(appended.GetLength(), measured.GetLength() + 1);
}

TEST(VStr, CopiesOfItsOwnText) {
    VStr s("abcdef");
    s.Copy(static_cast<const char*>(s) + 2);
    EXPECT_STREQ(s, "cdef");
    s = static_cast<const char*>(s) + 1;
    s.Copy(s, 2);
    EXPECT_STREQ(s, "de");
    const VStr& same = s;
    s = same;
    s <<= s;
    EXPECT_STREQ(s, "de");
    s.Format("%s-%s", static_cast<const char*>(s), static_cast<const char*>(s));
    EXPECT_STREQ(s, "de-de");
    s += s;
    EXPECT_STREQ(s, "de-dede-de");
    s += static_cast<const char*>(s) + 8;
    EXPECT_STREQ(s, "de-dede-dede");
    s.Catstr(s);
    EXPECT_EQ(s.GetLength(), 24);

    // Appending makes a block smaller that GetBuffer had enlarged, the appended text's place too.
    VStr shrunk("abc");
    const std::string tail(80, 't');
    std::strcpy(shrunk.GetBuffer(4000) + 3900, tail.c_str());
    shrunk += static_cast<const char*>(shrunk) + 3900;
    EXPECT_EQ(std::string(shrunk), "abc" + tail);

    // Doubling moves the block.
    VStr grown('x', 60);
    for (int length = 60; length < 4000; length *= 2) {
        ASSERT_EQ(grown.GetLength(), length);
        grown += grown;
    }
    EXPECT_EQ(std::strlen(grown), 60U << 7);
}

TEST(VStr, MovesAndAdoption) {
    VStr source("abc");
    const char* block = source;
    VStr target("old");
    target <<= source;
    EXPECT_EQ(static_cast<const char*>(target), block);
    EXPECT_TRUE(isNull(source));

    target <<= static_cast<char*>(nullptr);
    EXPECT_TRUE(isNull(target));
    char* own = VStr::ModAlloc(10);
    std::strcpy(own, "adopted");
    target <<= own;
    EXPECT_EQ(target.GetLength(), 7);
    target <<= target.GetBuffer(0);
    EXPECT_STREQ(target, "adopted");
    // The text that a null string shows must not become anybody's block.
    source <<= source.GetBuffer(0);
    EXPECT_TRUE(isNull(source));

    block = target;
    target.Remove();
    EXPECT_TRUE(isNull(target));
    source <<= const_cast<char*>(block);
    EXPECT_STREQ(source, "adopted");
}

TEST(VStr, FullBlocksGrowBeforeTheNextAppend) {
    // 63 characters fill a block of 64 to its last byte, however they came there.
    const std::string most(63, 'm');
    char* block = VStr::ModAlloc(0);
    std::strcpy(block, most.c_str());
    VStr adopted;
    adopted <<= block;
    adopted += "++";
    EXPECT_EQ(std::string(adopted), most + "++");

    VStr released("a");
    std::memcpy(released.GetBuffer(63), most.data(), most.size());
    released.ReleaseBuffer(63);
    released += '+';
    EXPECT_EQ(std::string(released), most + "+");
    released.Truncate(63);
    released.Catstr(released, VStr("12"));
    EXPECT_EQ(std::string(released), most + "12");
}

TEST(VStr, BufferIsWrittenAndReleased) {
    VStr s;
    EXPECT_STREQ(s.GetBuffer(0), "");
    EXPECT_TRUE(isNull(s));
    std::strcpy(s.GetBuffer(100), "hello");
    EXPECT_EQ(s.GetLength(), 0);
    s.ReleaseBuffer();
    EXPECT_EQ(s.GetLength(), 5);
    // New bytes are zero, those of an earlier larger block included.
    std::memset(s.GetBuffer(300), 'y', 300);
    s.ReleaseBuffer(5);
    s.GetBuffer(64);
    const char* grown = s.GetBuffer(1000);
    EXPECT_EQ(grown[5], '\0');
    EXPECT_EQ(grown[200], '\0');
    EXPECT_EQ(grown[1000], '\0');

    s.ReleaseBuffer(INT_MAX);
    EXPECT_GE(s.GetLength(), 1000);
    s.ReleaseBuffer(-7);
    EXPECT_EQ(s.GetLength(), 0);
    EXPECT_STREQ(s.GetBuffer(INT_MAX), "");
    EXPECT_TRUE(isNull(s));
    EXPECT_EQ(s.ModGrow(-1), nullptr);
    s.ReleaseBuffer(200);
    EXPECT_EQ(s.GetLength(), 200);
    EXPECT_STREQ(s, "");

    VStr cut("abc");
    cut.Truncate(10);
    EXPECT_STREQ(cut, "abc");
    cut.Truncate(1);
    EXPECT_STREQ(cut, "a");
    cut.Truncate(0);
    EXPECT_TRUE(isNull(cut));
}

TEST(VStr, CharactersAndTheSpareOne) {
    VStr s("a");
    s.SetAt(0, 'x');
    EXPECT_STREQ(s, "x");
    s.SetAt(5, 'y');
    EXPECT_EQ(s.GetAt(5), 'y');
    EXPECT_EQ(s.GetLength(), 1);
    s.SetAt(1 << 20, 'z');
    s.SetAt(-1, 'z');
    EXPECT_EQ(s.GetAt(1 << 20), '\0');

    VStr null;
    VStr other;
    EXPECT_EQ(null.GetAt(3), '\0');
    null[3] = 'q';
    EXPECT_EQ(other.GetAt(0), 'q');
    EXPECT_STREQ(other, "");
    null[0] = '\0';
    try {
        null.SetAt(0, 'x');
        FAIL() << "SetAt of a null string returned";
    } catch (char* message) {
        EXPECT_STREQ(message, "VStr null-value error");
    }
}

TEST(VStr, Concatenation) {
    VStr a("left ");
    VStr b("right");
    VStr c("something longer than both of them together, which is overwritten from its start on");
    EXPECT_STREQ(c.Catstr(a, b), "left right");
    EXPECT_EQ(c.GetLength(), 10);
    EXPECT_STREQ(a.Catstr(b), "left right");
    EXPECT_STREQ(b.Catstr(c, b), "left rightright");
    VStr null;
    EXPECT_STREQ(c.Catstr(null, b), "left rightright");
    EXPECT_TRUE(isNull(c.Catstr(null, null)));
    c += null;
    EXPECT_TRUE(isNull(c));
    c += 'x';
    c += '\0';
    c += static_cast<const char*>(nullptr);
    EXPECT_STREQ(c, "x");
    VStr empty;
    empty.Copy("");
    empty += '\0';
    EXPECT_TRUE(isNull(empty));
    // The lengths add up even where a text ends early.
    VStr padded("ab", 4);
    padded += "cd";
    EXPECT_STREQ(padded, "abcd");
    EXPECT_EQ(padded.GetLength(), 6);
}

TEST(VStr, SubstringsAreClamped) {
    VStr abc("abc");
    VStr s;
    EXPECT_STREQ(s.Substr(abc, 10, 5), "c");
    EXPECT_STREQ(s.Substr(abc, -2, 2), "ab");
    EXPECT_STREQ(s.Substr(abc, 1, INT_MAX), "bc");
    EXPECT_TRUE(isNull(s.Substr(abc, 1, 0)));
    EXPECT_TRUE(isNull(s.Substr(abc, 1, INT_MIN)));
    EXPECT_TRUE(isNull(s.Substr(VStr(), 0, 3)));
    EXPECT_STREQ(abc.Mid(5), "c");
    EXPECT_STREQ(abc.Mid(1), "bc");
    EXPECT_STREQ(abc.Mid(INT_MIN), "abc");
    EXPECT_STREQ(abc(1, 1), "b");
    EXPECT_TRUE(isNull(VStr().Mid(0)));
    EXPECT_TRUE(isNull(abc.Left(0)));
    EXPECT_TRUE(isNull(abc.Right(0)));
    EXPECT_TRUE(isNull(abc.Right(INT_MIN)));
    EXPECT_STREQ(abc.Left(7), "abc");
    EXPECT_STREQ(abc.Right(7), "abc");
    EXPECT_STREQ(abc.Right(2), "bc");
    EXPECT_STREQ(VStr("aabbc").SpanIncluding("ab"), "aabb");
    EXPECT_TRUE(isNull(abc.SpanIncluding("x")));
    EXPECT_STREQ(abc.SpanExcluding("c"), "ab");
    EXPECT_STREQ(abc.SpanExcluding(nullptr), "abc");
    EXPECT_STREQ(abc.Substr(1, 2), "bc");
    const VStr padded("a", 4);
    EXPECT_EQ(s.Substr(padded, 1, 2).GetLength(), 2);
}

TEST(VStr, Cutting) {
    const struct {
        const char* text;
        int start;
        int count;
        const char* expected;
        int length;
    } rows[] = {
        {"abcdef", 1, 10, "a", 1},
        {"abcdef", 1, INT_MAX, "a", 1},
        {"abc", 10, 1, "ab", 2},
        {"abcdef", 2, 2, "abef", 4},
        {"abc", 1, 0, "abc", 3},
        {"abc", 1, -5, "abc", 3},
        {"abc", 0, 3, "", 0},
        // A negative start counts in the clamp and is 0 for the text.
        {"abcdef", -2, 3, "def", 3},
        {"abcdef", -2, 5, "f", 1},
        {"abcdef", -2, 20, "", 0},
        {"abc", INT_MIN, INT_MAX, "", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " " + std::to_string(row.start) + " " +
                     std::to_string(row.count));
        VStr s(row.text);
        VStr apart("old");
        apart.Cutstr(s, row.start, row.count);
        s.Cutstr(row.start, row.count);
        EXPECT_STREQ(s, row.expected);
        EXPECT_EQ(s.GetLength(), row.length);
        EXPECT_STREQ(apart, row.expected);
    }
}

TEST(VStr, Insertion) {
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

TEST(VStr, Trimming) {
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

TEST(VStr, Searching) {
    const VStr s("abcabc");
    EXPECT_EQ(s.Find('c'), 2);
    EXPECT_EQ(s.Find('\0'), 6);
    EXPECT_EQ(s.Find('x'), -1);
    EXPECT_EQ(s.Find("ca"), 2);
    EXPECT_EQ(s.Find(""), 0);
    EXPECT_EQ(s.Find(static_cast<const char*>(nullptr)), -1);
    EXPECT_EQ(s.ReverseFind('a'), 3);
    EXPECT_EQ(s.FindOneOf("xcb"), 1);
    EXPECT_EQ(s.FindOneOf(nullptr), -1);
    EXPECT_EQ(VStr("\xE9").Find('\xE9'), 0);
    const VStr null;
    EXPECT_EQ(null.Find('\0'), -1);
    EXPECT_EQ(null.Find(""), -1);
    EXPECT_EQ(null.ReverseFind('a'), -1);
    EXPECT_EQ(null.FindOneOf("a"), -1);
}

TEST(VStr, ComparisonIsByUnsignedBytesAndAsciiAlone) {
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

TEST(VStr, FormattingStopsAtItsBuffer) {
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
