#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "StreamTestSupport.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::contentOf;
using qel::test::initialize;
using qel::test::initializeRaw;
using qel::test::thrownBy;

unsigned char* bytes(const char* text) {
    return reinterpret_cast<unsigned char*>(const_cast<char*>(text));
}

TEST(Buffer, CapacitiesFollowTheNeed) {
    const std::pair<int, unsigned int> rows[] = {
        {0, 256},      {100, 256},     {127, 256},      {128, 1024},     {2047, 4096},
        {8191, 16384}, {32767, 65536}, {32768, 262144}, {40000, 262144}, {200000, 400000}};
    for (const auto& [need, capacity] : rows) {
        CBxBuffer buffer;
        buffer.GrowBuf(need);
        EXPECT_EQ(buffer.Capacity(), capacity) << need;
    }
    CBxBuffer buffer;
    buffer.GrowBuf(100);
    const unsigned char* storage = buffer.Storage();
    buffer.GrowBuf(255);
    EXPECT_EQ(buffer.Storage(), storage);
    buffer.GrowBuf(256);
    EXPECT_EQ(buffer.Capacity(), 512U);
    buffer.GrowBuf(INT_MIN);
    EXPECT_EQ(buffer.Capacity(), 512U);
    // Copies share the storage, and one alone may free it.
    CBxBuffer copy(buffer);
    CBxBuffer assigned;
    assigned = copy;
    EXPECT_EQ(assigned.Storage(), buffer.Storage());
    copy.DisownBuffer();
    assigned.DisownBuffer();
}

TEST(Buffer, SizesBeyondTheLimitAreRefused) {
    const qel::test::TraceCapture trace;
    CBxBuffer buffer;
    buffer.GrowBuf(10);
    EXPECT_EQ(thrownBy([&] { buffer.GrowBuf(0x40000000); }), 2001);
    EXPECT_EQ(thrownBy([&] { buffer.GrowBuf(INT_MAX); }), 2001);
    EXPECT_EQ(buffer.Capacity(), 256U);
    EXPECT_TRUE(trace.hasError("1073741824.2001", "BxDataStream"));
}

TEST(Buffer, ExternalStorageNeverGrows) {
    const qel::test::TraceCapture trace;
    unsigned char room[64] = "12";
    CBxDataStream stream;
    stream.SetExtBuf(room, 3, sizeof room);
    EXPECT_EQ(thrownBy([&] { stream << 7; }), 2013);
    EXPECT_EQ(thrownBy([&] { stream.Write(room, 2); }), 2013);
    EXPECT_TRUE(trace.hasError("3.2013", "BxDataStream"));
    int value = 0;
    stream >> value;
    EXPECT_EQ(value, 0x12);
    stream.Dispose();
    EXPECT_FALSE(stream.IsExternal());

    // Owned storage that was let go of, and storage given back to the buffer that owns it.
    CBxDataStream disowned;
    disowned << "abc";
    disowned.DisownBuffer();
    EXPECT_EQ(thrownBy([&] { disowned << "d"; }), 2013);
    CBxDataStream copy(disowned);
    copy.SeekToBegin();
    VStr text;
    copy >> text;
    EXPECT_STREQ(text, "abc");
    std::free(const_cast<unsigned char*>(disowned.Storage()));

    CBxDataStream own;
    own << "own";
    own.SetExtBuf(const_cast<unsigned char*>(own.Storage()), 4, 256);
    own >> text;
    EXPECT_STREQ(text, "own");
    std::free(const_cast<unsigned char*>(own.Storage()));

    CBxDataStream none;
    none.SetExtBuf(nullptr, 10, 10);
    EXPECT_EQ(thrownBy([&] { none >> text; }), 2023);
    none.SetExtBuf(room, -1, -1);
    EXPECT_EQ(thrownBy([&] { none >> text; }), 2023);
}

TEST(Buffer, AfterDisposeNothingStaleIsBelieved) {
    CBxDataStream stream;
    stream << "abc" << 5;
    stream.Dispose();
    VStr text;
    EXPECT_EQ(thrownBy([&] { stream >> text; }), 2023);
    CBxDataStream nested;
    nested << stream;
    EXPECT_EQ(contentOf(nested), "|");
    stream << 26;
    EXPECT_EQ(contentOf(stream), "1a");

    const qel::test::TraceCapture trace;
    EXPECT_EQ(stream.Initialize(nullptr, 5, true), 2001);
    EXPECT_TRUE(trace.hasError(".5.2001", "BxDataStream"));
    EXPECT_EQ(stream.Len(), 0U);
    EXPECT_EQ(stream.Capacity(), 0U);
    stream << 27;
    EXPECT_EQ(contentOf(stream), "1b");
    if constexpr (sizeof(unsigned long) > 4) {
        EXPECT_EQ(stream.Initialize(bytes("x"), static_cast<unsigned long>(1ULL << 33), true),
                  2001);
    }
}

// Nothing is read of what is too long, and nothing changed.
TEST(DataStream, WhatIsLongerThanAStreamIsRefused) {
    const qel::test::TraceCapture trace;
    CBxDataStream stream;
    stream << "abc";
    constexpr unsigned long kLong = 0x80000000UL;
    char text[] = "x";
    EXPECT_EQ(thrownBy([&] { stream.ReplaceBuffer(bytes("x"), kLong); }), 2001);
    EXPECT_EQ(thrownBy([&] { stream.AppendRawBytes(bytes("x"), kLong); }), 2001);
    EXPECT_EQ(thrownBy([&] { stream.AddToBuf(text, INT_MAX); }), 2001);
    EXPECT_TRUE(trace.hasError("2147483647.2001", "BxDataStream"));
    stream.AddToBuf(text, -1);
    stream.AddToBuf(nullptr, 1);
    EXPECT_EQ(contentOf(stream), "abc");
    EXPECT_EQ(stream.Write(const_cast<unsigned char*>(stream.Storage()), 0), 0);
    EXPECT_EQ(contentOf(stream), "abc|");
}

TEST(DataStream, InitializeReadsOrAppends) {
    CBxDataStream stream;
    EXPECT_EQ(stream.Initialize("12"), 0);
    EXPECT_EQ(stream.Len(), 3U);
    EXPECT_EQ(stream.Capacity(), 3U);
    EXPECT_EQ(stream.Position(), stream.Storage());
    EXPECT_EQ(stream.Initialize(bytes("12"), 2, false), 0);
    EXPECT_EQ(stream.Position(), stream.Storage() + 2);
    stream << 3;
    EXPECT_EQ(std::memcmp(stream.Storage(), "12\0373", 5), 0);
    // The stream's own text as the source.
    stream.Initialize(reinterpret_cast<const char*>(stream.Storage()) + 1);
    VStr text;
    stream >> text;
    EXPECT_STREQ(text, "2");
    stream.Initialize(static_cast<const char*>(nullptr));
    EXPECT_EQ(stream.Len(), 1U);
    EXPECT_EQ(stream.Initialize(nullptr, 0, true), 0);
    EXPECT_EQ(thrownBy([&] { stream >> text; }), 2023);
}

TEST(DataStream, ReplacingAndAppendingRawBytes) {
    CBxDataStream stream;
    stream << "abc";
    stream.ReplaceBuffer(const_cast<unsigned char*>(stream.Storage()) + 1, 3);
    EXPECT_EQ(contentOf(stream), "bc");
    EXPECT_EQ(stream.Position(), stream.Storage());
    EXPECT_EQ(stream.Capacity(), 256U);

    CBxDataStream raw;
    raw.AppendRawBytes(bytes("xyz"), 0);
    EXPECT_EQ(raw.Len(), 0U);
    raw.AppendRawBytes(bytes("xyz"), 2);
    EXPECT_EQ(raw.Len(), 3U);
    raw.AppendRawBytes(const_cast<unsigned char*>(raw.Storage()), 2);
    char one[] = "1";
    raw.AddToBuf(one, 1);
    EXPECT_EQ(contentOf(raw), "xyxy|1");
    // The byte after the data is not looked at.
    std::vector<unsigned char> exact(300, 'e');
    raw.AppendRawBytes(exact.data(), 300);
    EXPECT_EQ(raw.Len(), 307U);

    CBxDataStream copy;
    copy = raw;
    EXPECT_EQ(contentOf(copy), contentOf(raw));
    CBxDataStream& same = copy;
    copy = same;
    EXPECT_EQ(contentOf(copy), contentOf(raw));
    copy.Reset();
    EXPECT_EQ(copy.Len(), 0U);
    EXPECT_NE(copy.Storage(), nullptr);
    copy.Empty();
    EXPECT_EQ(copy.Storage(), nullptr);
    EXPECT_EQ(copy.Capacity(), 0U);
}

TEST(DataStream, RewritingFromTheStartNeverCountsPastTheStorage) {
    CBxDataStream stream;
    for (int i = 0; i < 10; ++i) {
        stream.SeekToBegin();
        stream << VStr('x', 100);
    }
    EXPECT_GT(stream.Len(), stream.Capacity());
    CBxDataStream copy;
    copy = stream;
    EXPECT_LE(copy.Len(), 256U);
    ::testing::internal::CaptureStdout();
    stream.PrintAllBytes();
    EXPECT_EQ(::testing::internal::GetCapturedStdout().size(), 257U);
}

TEST(DataStream, TextHelpers) {
    CBxDataStream stream;
    initialize(stream, "ab|c");
    EXPECT_EQ(stream.CBxstrlen(const_cast<unsigned char*>(stream.Storage())), 2);
    EXPECT_EQ(stream.CBxstrlen(const_cast<unsigned char*>(stream.Storage()) + 3), 1);
    EXPECT_EQ(stream.CBxstrlen(bytes("abcdefgh")), 0);
    EXPECT_EQ(stream.CBxstrlen(nullptr), 0);
    initializeRaw(stream, "abc");
    EXPECT_EQ(stream.CBxstrlen(const_cast<unsigned char*>(stream.Storage()) + 1), 0);

    char text[16] = "........";
    stream.CBxstrcpy(text, "a\037b");
    EXPECT_STREQ(text, "a\037......");
    stream.CBxstrcpy(text, "12345\037");
    EXPECT_STREQ(text, "123.....");
    stream.CBxstrcpy(text, "whole");
    EXPECT_STREQ(text, "whole");
    char separated[] = "a\037b\037c";
    stream.Replace1FWithNull(separated);
    EXPECT_STREQ(separated, "a");
    EXPECT_STREQ(separated + 2, "b\037c");
    stream.Replace1FWithNull(separated);
    stream.Replace1FWithNull(nullptr);
    EXPECT_EQ(stream.CBxstrcpy(nullptr, "whole"), nullptr);
    EXPECT_EQ(stream.CBxstrcpy(text, nullptr), text);
    EXPECT_STREQ(text, "whole");

    initialize(stream, "ab|c|d");
    stream >> text >> static_cast<char*>(nullptr) >> separated;
    EXPECT_STREQ(text, "ab");
    EXPECT_STREQ(separated, "d");
    stream.Empty();
    ::testing::internal::CaptureStdout();
    stream.PrintAllBytes();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "\n");
}

TEST(IntList, ReadsMinusOneOutside) {
    CBxIntList list;
    EXPECT_EQ(list.Add(5), 0);
    EXPECT_EQ(list.Add(INT_MIN), 1);
    EXPECT_EQ(list.GetSize(), 2);
    EXPECT_EQ(list[1], INT_MIN);
    EXPECT_EQ(list[2], -1);
    EXPECT_EQ(list[-1], -1);
    CBxIntList other(list);
    other.Add(7);
    list = other;
    EXPECT_EQ(list.GetSize(), 3);
    EXPECT_EQ(list[2], 7);
}

}  // namespace
