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
    s.Catstr(s);
    EXPECT_STREQ(s, "de-dede-de");

    // Appending makes a block smaller that GetBuffer had enlarged, the appended text's place too.
    VStr shrunk("abc");
    const std::string tail(80, 't');
    std::strcpy(shrunk.GetBuffer(4000) + 3900, tail.c_str());
    shrunk += static_cast<const char*>(shrunk) + 3900;
    EXPECT_EQ(std::string(shrunk), "abc" + tail);
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

}  // namespace
