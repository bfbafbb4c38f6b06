#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "StreamTestSupport.h"

namespace {

using qel::test::contentOf;
using qel::test::initialize;
using qel::test::thrownBy;
using qel::test::withSeparators;

// Writes one value and reads it back as the same type.
template <class T>
void checkNumber(T value, const char* text) {
    CBxDataStream stream;
    stream << value << "end";
    EXPECT_EQ(contentOf(stream), std::string(text) + "|end");
    stream.SeekToBegin();
    T back{};
    VStr end;
    stream >> back >> end;
    EXPECT_EQ(back, value);
    EXPECT_STREQ(end, "end");
}

TEST(DataStream, NumbersInTheirWidths) {
    checkNumber<char>('A', "41");
    checkNumber<char>('\377', "-");
    checkNumber<unsigned char>(0xFF, "-");
    checkNumber<short>(-2, "fffe");
    checkNumber<short>(-1, "-");
    checkNumber<short>(SHRT_MIN, "8000");
    checkNumber<unsigned short>(0xFFFF, "-");
    checkNumber<int>(26, "1a");
    checkNumber<int>(-2, "fffffffe");
    checkNumber<int>(0, "");
    checkNumber<int>(INT_MIN, "80000000");
    checkNumber<unsigned int>(UINT_MAX, "-");
    checkNumber<long>(-1, "-");
    checkNumber<long>(INT_MIN, "80000000");
    checkNumber<long>(INT_MAX, "7fffffff");
    checkNumber<unsigned long>(0xFFFFFFFFUL, "-");
    checkNumber<long long>(-1, "-");
    checkNumber<long long>(-2, "fffffffffffffffe");
    checkNumber<long long>(0xFFFFFFFFLL, "ffffffff");
    checkNumber<unsigned long long>(0x8000000000000000ULL, "8000000000000000");
    checkNumber<bool>(false, "");
    checkNumber<bool>(true, "1");
}

TEST(DataStream, LongsBeyond32BitsAreRefused) {
    // Where a `long` has 32 bits these are cut to values that can be written.
    const int expected = sizeof(long) > 4 ? 2015 : 0;
    for (const long long value : {INT_MAX + 1LL, INT_MIN - 1LL}) {
        CBxDataStream stream;
        EXPECT_EQ(thrownBy([&] { stream << static_cast<long>(value); }), expected);
        EXPECT_EQ(thrownBy([&] { stream << static_cast<unsigned long>(1LL << 32); }), expected);
        EXPECT_EQ(stream.Len() == 0, expected != 0);
    }
}

TEST(DataStream, Texts) {
    CBxDataStream stream;
    char separated[] = "a\037b\037c";
    stream << separated;
    EXPECT_STREQ(separated, "a~b\037c");
    const VStr text("v");
    unsigned char pointer[] = "bytes";
    stream << text << pointer << static_cast<const char*>(nullptr) << "";
    EXPECT_EQ(contentOf(stream), "a~b|c|v|bytes|1f|");
    // A text that lies in the stream itself, long enough to make it grow.
    CBxDataStream own;
    own << VStr('o', 200);
    own << own.Storage();
    EXPECT_EQ(contentOf(own), std::string(200, 'o') + "|" + std::string(200, 'o'));
}

TEST(DataStream, Lists) {
    VStrArray words;
    words.Add("one");
    words.Add("");
    words.Add(static_cast<const char*>(nullptr));
    CBxIntList numbers;
    numbers.Add(255);
    numbers.Add(-1);
    VStrArray none;
    const VStrArray& fixed = words;
    CBxDataStream stream;
    stream << fixed << none << numbers << "end";
    EXPECT_EQ(contentOf(stream), "3|one||||2|ff|-|end");

    stream.SeekToBegin();
    VStrArray readWords;
    readWords.Add("before");
    CBxIntList readNumbers;
    readNumbers.Add(7);
    VStr end;
    stream >> readWords >> none >> readNumbers >> end;
    ASSERT_EQ(readWords.GetSize(), 4);
    EXPECT_STREQ(readWords[0], "before");
    EXPECT_STREQ(readWords[1], "one");
    EXPECT_EQ(readWords.ElementAt(3).Compare(""), 0);
    EXPECT_EQ(none.GetSize(), 0);
    ASSERT_EQ(readNumbers.GetSize(), 3);
    EXPECT_EQ(readNumbers[1], 255);
    EXPECT_EQ(readNumbers[2], -1);
    EXPECT_STREQ(end, "end");
}

TEST(DataStream, NestedStreams) {
    CBxDataStream inner;
    inner << 1 << "two";
    const CBxDataStream empty;
    CBxDataStream outer;
    outer << inner << empty << 9;
    EXPECT_EQ(contentOf(outer), "5|1|two|||9");

    outer.SeekToBegin();
    CBxDataStream readInner;
    CBxDataStream readEmpty;
    int one = 0;
    int nine = 0;
    VStr two;
    outer >> readInner >> readEmpty >> nine;
    readInner >> one >> two;
    EXPECT_EQ(one, 1);
    EXPECT_STREQ(two, "two");
    EXPECT_EQ(readEmpty.Len(), 1U);
    EXPECT_EQ(nine, 9);

    // A stream written into itself, and read into itself.
    inner << inner;
    EXPECT_EQ(contentOf(inner), "1|two|5|1|two");
    inner.SeekToBegin();
    inner >> one >> two >> inner;
    EXPECT_EQ(contentOf(inner), "1|two");
    inner >> one;
    EXPECT_EQ(one, 1);
    // A part of the stream's own storage, which moves when the count is written.
    CBxDataStream full;
    full << VStr('a', 100) << VStr('b', 152);
    EXPECT_EQ(full.Capacity(), 256U);
    CBxDataStream part;
    part.SetExtBuf(const_cast<unsigned char*>(full.Storage()), 100, 100);
    full << part;
    EXPECT_EQ(full.Capacity(), 1024U);
    EXPECT_EQ(contentOf(full).substr(253), "|63|" + std::string(99, 'a'));
    // Past a nested stream that is the last value there is nothing.
    outer.Reset();
    outer << readInner;
    outer.SeekToBegin();
    outer >> readEmpty;
    EXPECT_EQ(thrownBy([&] { outer >> one; }), 2023);
}

TEST(DataStream, BinaryData) {
    unsigned char data[] = {0x00, 0x41, 0x1F, 0xFE};
    CBxDataStream stream;
    EXPECT_EQ(stream.Write(data, 4), 0);
    EXPECT_EQ(contentOf(stream), "4|\377\101\3761f\376fe");
    for (const long none : {0L, -5L}) EXPECT_EQ(CBxDataStream().Write(data, none), 0);
    stream.Write(nullptr, 5);
    stream << 3;
    EXPECT_EQ(contentOf(stream), "4|\377\101\3761f\376fe||3");

    stream.SeekToBegin();
    unsigned char* block = nullptr;
    long size = 77;
    EXPECT_EQ(stream.Read(block, size), 0);
    ASSERT_EQ(size, 4);
    EXPECT_EQ(std::memcmp(block, data, 5 - 1), 0);
    EXPECT_EQ(block[4], 0);
    std::free(block);
    block = nullptr;
    size = 77;
    EXPECT_EQ(stream.Read(block, size), 0);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(size, 77);
    int three = 0;
    stream >> three;
    EXPECT_EQ(three, 3);

    // Every byte, into the caller's own room.
    unsigned char all[256];
    for (int i = 0; i < 256; ++i) all[i] = static_cast<unsigned char>(i);
    stream.Reset();
    stream.Write(all, 256);
    EXPECT_EQ(std::strlen(reinterpret_cast<const char*>(stream.Storage())) + 1, stream.Len());
    stream.SeekToBegin();
    unsigned char room[256];
    unsigned char* target = room;
    EXPECT_EQ(stream.Read(target, size), 0);
    EXPECT_EQ(target, room);
    EXPECT_EQ(std::memcmp(room, all, 256), 0);
}

}  // namespace
