// The data stream, the catalogue and the names through the shared library alone.
#include <gtest/gtest.h>

#include <cstdlib>

#include "QelUtility/QelUtility.h"

namespace {

TEST(InterfaceStream, EveryWriterHasItsReader) {
    CBxDataStream out;
    VStrArray texts;
    texts.Add("t");
    const VStrArray& fixedTexts = texts;
    CBxIntList ints;
    ints.Add(7);
    CBxIntList moreInts(ints);
    moreInts = ints;
    CBxDataStream nested;
    nested << 5;
    const CBxDataStream& fixedNested = nested;
    unsigned char data[] = {0, 0x1F, 0xFE};
    const unsigned char bytes[] = "u";
    out << 'c' << static_cast<unsigned char>(1) << static_cast<short>(2)
        << static_cast<unsigned short>(3) << 4 << 5U << 6L << 7UL << 8LL << 9ULL << true << "text"
        << bytes << texts << fixedTexts << moreInts << nested << fixedNested;
    EXPECT_EQ(out.Write(data, 3), 0);

    CBxDataStream in;
    ASSERT_EQ(in.Initialize(reinterpret_cast<const char*>(out.Storage())), 0);
    char c = 0;
    unsigned char uc = 0;
    short s = 0;
    unsigned short us = 0;
    int i = 0;
    unsigned u = 0;
    long l = 0;
    unsigned long ul = 0;
    long long ll = 0;
    unsigned long long ull = 0;
    bool b = false;
    char text[8];
    VStr string;
    VStrArray list;
    CBxIntList numbers;
    CBxDataStream inner;
    in >> c >> uc >> s >> us >> i >> u >> l >> ul >> ll >> ull >> b >> text >> string >> list >>
        list >> numbers >> inner >> inner;
    EXPECT_EQ(c, 'c');
    EXPECT_EQ(uc + s + us + i + static_cast<int>(u) + l, 21);
    EXPECT_EQ(ul + static_cast<unsigned long long>(ll) + ull, 24U);
    EXPECT_TRUE(b);
    EXPECT_STREQ(text, "text");
    EXPECT_STREQ(string, "u");
    EXPECT_EQ(list.GetSize() + numbers.GetSize() + numbers[0], 10);
    EXPECT_EQ(inner.Len(), 2U);
    unsigned char* read = nullptr;
    long size = 0;
    ASSERT_EQ(in.Read(read, size), 0);
    EXPECT_EQ(size, 3);
    std::free(read);
    ASSERT_EQ(in.Initialize("zz"), 0);
    EXPECT_THROW(in >> i, int);
}

TEST(InterfaceStream, BuffersAreFilledMovedAndShared) {
    unsigned char content[] =
        "a\x1f"
        "b";
    CBxDataStream stream;
    ASSERT_EQ(stream.Initialize(content, sizeof(content), true), 0);
    EXPECT_EQ(stream.CBxstrlen(content), 1);
    char copied[8] = {};
    stream.CBxstrcpy(copied, "x\x1fy");
    stream.Replace1FWithNull(copied);
    EXPECT_STREQ(copied, "x");
    stream.ReplaceBuffer(content, sizeof(content));
    CBxDataStream other;
    other = stream;
    other.SeekToBegin();
    other.Reset();
    other.AppendRawBytes(content, 3);
    char value[] = "v";
    other.AddToBuf(value, 1);
    EXPECT_STREQ(reinterpret_cast<const char*>(other.Storage()),
                 "a\x1f"
                 "b\x1fv");
    other.Empty();
    other.PrintAllBytes();
    CBxDataStream shared(stream);
    shared.DisownBuffer();

    CBxBuffer buffer;
    buffer.GrowBuf(100);
    EXPECT_EQ(buffer.Capacity(), 256U);
    CBxBuffer twin(buffer);
    twin.DisownBuffer();
    CBxBuffer third;
    third = twin;
    third.SetExtBuf(content, 3, 3);
    EXPECT_TRUE(third.IsExternal());
    EXPECT_THROW(third.GrowBuf(1), int);
    third.Dispose();
}

TEST(InterfaceStream, CatalogueAndNames) {
    FieldData field{};
    ASSERT_EQ(BxUtil_GetFieldDataByID(0x34000007UL, &field), 0);
    EXPECT_STREQ(field.name, "Adr_Work_1_PO");
    EXPECT_STREQ(StatusText(7), "Status=Busy");
    unsigned long code = 0;
    EXPECT_EQ(OperationFromTag("<add>", code), 0);
    EXPECT_STREQ(OperationName(code), "ADD");
}

}  // namespace
