// Blocks, buffers and characters of VStr; what its operations give is in OperationsTest.cpp.
#include "QelUtility/VStr.h"

#include <gtest/gtest.h>

#include <climits>

#include "Shown.h"

namespace {

using qel::test::isNull;
using qel::test::shown;

TEST(VStr, BlocksAreAlwaysAboveTheRequest) {
    const std::pair<int, unsigned int> rows[] = {{0, 64},    {1, 64},    {63, 64},  {64, 128},
                                                 {100, 128}, {127, 128}, {128, 192}};
    for (const auto& [request, expected] : rows) {
        unsigned int size = 0;
        VStr owner;
        owner <<= VStr::ModAlloc(request, &size);
        EXPECT_EQ(size, expected) << request;
    }
    unsigned int size = 7;
    EXPECT_EQ(VStr::ModAlloc(-1, &size), nullptr);
    EXPECT_EQ(size, 0U);
}

TEST(VStr, TextsWithoutTheirTerminator) {
    VStr open("abc");
    open[3] = 'X';
    EXPECT_EQ(shown(VStr(open)), "abc");
    // With the block full to its last byte there need be no terminator anywhere.
    char* block = VStr::ModAlloc(0);
    std::memset(block, 'f', 63);
    VStr full;
    full <<= block;
    full[63] = 'f';
    EXPECT_EQ(shown(VStr(full)), std::string(63, 'f'));
    VStr measured;
    measured = full;
    EXPECT_GE(measured.GetLength(), 64);
    VStr appended("+");
    appended += full;
    EXPECT_EQ(appended.GetLength(), measured.GetLength() + 1);
}

TEST(VStr, ItsOwnTextAsTheArgument) {
    VStr s("cdef");
    s = static_cast<const char*>(s) + 1;
    const VStr& same = s;
    s = same;
    s <<= s;
    EXPECT_STREQ(s, "def");
    s.Format("%s-%s", static_cast<const char*>(s), static_cast<const char*>(s));
    EXPECT_STREQ(s, "def-def");
    // Appending makes a block smaller that GetBuffer had enlarged, the appended text's place too.
    VStr shrunk("abc");
    const std::string tail(80, 't');
    std::strcpy(shrunk.GetBuffer(4000) + 3900, tail.c_str());
    shrunk += static_cast<const char*>(shrunk) + 3900;
    EXPECT_EQ(shown(shrunk), "abc" + tail);
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
    target <<= target.GetBuffer(0);
    EXPECT_EQ(shown(target), "adopted");
    // The text that a null string shows must not become anybody's block.
    source <<= source.GetBuffer(0);
    EXPECT_TRUE(isNull(source));
    block = target;
    target.Remove();
    EXPECT_TRUE(isNull(target));
    source <<= const_cast<char*>(block);
    EXPECT_EQ(shown(source), "adopted");
    VStr_Destroy(nullptr);
}

// 63 characters fill a block of 64 to its last byte, however they came there.
TEST(VStr, FullBlocksGrowBeforeTheNextAppend) {
    const std::string most(63, 'm');
    char* block = VStr::ModAlloc(0);
    std::strcpy(block, most.c_str());
    VStr adopted;
    adopted <<= block;
    EXPECT_EQ(shown(adopted += "++"), most + "++");
    VStr released("a");
    std::memcpy(released.GetBuffer(63), most.data(), most.size());
    released.ReleaseBuffer(63);
    EXPECT_EQ(shown(released += '+'), most + "+");
    released.Truncate(63);
    EXPECT_EQ(shown(released.Catstr(released, VStr("12"))), most + "12");
    // A text that ends before its length: its length counts.
    VStr cut("cdef");
    cut.SetAt(2, '\0');
    VStr joined("ab");
    joined.Catstr(cut);
    EXPECT_STREQ(joined, "abcd");
    EXPECT_EQ(joined.GetLength(), 6);
    EXPECT_STREQ(VStr().Catstr(cut, VStr("gh")), "cdgh");
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
    for (const int i : {5, 200, 1000}) EXPECT_EQ(grown[i], '\0') << i;
    s.ReleaseBuffer(INT_MAX);
    EXPECT_GE(s.GetLength(), 1000);
    EXPECT_STREQ(s.GetBuffer(INT_MAX), "");
    EXPECT_TRUE(isNull(s));
    EXPECT_EQ(s.ModGrow(-1), nullptr);
}

TEST(VStr, CharactersAndTheSpareOne) {
    VStr s("a");
    s.SetAt(0, 'x');
    EXPECT_EQ(shown(s), "x");
    s.SetAt(5, 'y');
    EXPECT_EQ(s.GetAt(5), 'y');
    EXPECT_EQ(s.GetLength(), 1);
    s.SetAt(1 << 20, 'z');
    s.SetAt(-1, 'z');
    EXPECT_EQ(s.GetAt(1 << 20), '\0');
    VStr null;
    null[3] = 'q';
    EXPECT_EQ(VStr().GetAt(0), 'q');
    EXPECT_STREQ(VStr(), "");
    null[0] = '\0';
    EXPECT_THROW(null.SetAt(0, 'x'), char*);
}

TEST(VStr, FormattingStopsAtItsBuffer) {
    VStr s;
    const std::string most(4095, 'f');
    s.Format("%s", most.c_str());
    EXPECT_EQ(s.GetLength(), 4095);
    s.Format("%s%d", most.c_str(), 7);
    EXPECT_EQ(shown(s), most);
    const char* format = "%I64d %04d";  // compilers do not know it
    s.Format(format, LLONG_MIN, 7);
    EXPECT_EQ(shown(s), "-9223372036854775808 0007");
    s.Format("%s", "");
    EXPECT_EQ(shown(s), "(empty)");
    s.Format(nullptr);
    EXPECT_TRUE(isNull(s));
}

}  // namespace
