// Streams that are cut, that lie about their counts or that end nowhere.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "StreamTestSupport.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::initialize;
using qel::test::initializeRaw;
using qel::test::thrownBy;

// The code that reading one `T` throws.
template <class T>
int readCode(CBxDataStream& stream) {
    T value{};
    return thrownBy([&] { stream >> value; });
}

TEST(HostileStream, WithoutATerminatorNothingIsReadPastTheEnd) {
    const char* texts[] = {"", "abc", "12", "-", "1|", "2|a", "3|abc", "4|\3761"};
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        CBxDataStream stream;
        initializeRaw(stream, text);
        int code = 0;
        for (int i = 0; i < 3 && code == 0; ++i) code = readCode<VStr>(stream);
        EXPECT_EQ(code, 2023);
    }
    const qel::test::TraceCapture trace;
    CBxDataStream stream;
    initializeRaw(stream, "12");
    EXPECT_EQ(readCode<int>(stream), 2023);
    EXPECT_EQ(readCode<VStrArray>(stream), 2023);
    EXPECT_EQ(stream.Position(), stream.Storage());
    EXPECT_TRUE(trace.hasError("12.2.2023", "BxDataStream"));
    initializeRaw(stream, "-");
    EXPECT_EQ(readCode<int>(stream), 2023);
    initializeRaw(stream, "-1");
    EXPECT_EQ(readCode<int>(stream), 2015);
    initializeRaw(stream, "4|\3761");
    unsigned char* block = nullptr;
    long size = 0;
    EXPECT_EQ(thrownBy([&] { stream.Read(block, size); }), 2023);
    // "-" at the end takes the terminator with it.
    initialize(stream, "-");
    EXPECT_EQ(readCode<int>(stream), 0);
    EXPECT_EQ(readCode<int>(stream), 2023);
}

TEST(HostileStream, CountsAreMeasuredAgainstWhatIsLeft) {
    CBxDataStream stream;
    const qel::test::TraceCapture trace;
    initialize(stream, "77359400|a|b");
    EXPECT_EQ(readCode<VStrArray>(stream), 2023);
    EXPECT_EQ(readCode<CBxIntList>(stream), 2023);
    EXPECT_EQ(readCode<CBxDataStream>(stream), 2023);
    EXPECT_TRUE(trace.hasError("2000000000.2023", "BxDataStream"));
    // A failed list leaves the position where its count starts.
    VStr text;
    stream >> text;
    EXPECT_STREQ(text, "77359400");

    initialize(stream, "-|x");
    VStrArray list;
    stream >> list >> text;
    EXPECT_EQ(list.GetSize(), 0);
    EXPECT_STREQ(text, "x");
    stream.SeekToBegin();
    EXPECT_EQ(readCode<CBxDataStream>(stream), 2023);
    initialize(stream, "3|abc");
    EXPECT_EQ(readCode<CBxDataStream>(stream), 0);
    initialize(stream, "4|abc");
    EXPECT_EQ(readCode<CBxDataStream>(stream), 2023);

    // What stands before the element that fails is kept.
    initialize(stream, "3|1|2|z");
    CBxIntList numbers;
    EXPECT_EQ(thrownBy([&] { stream >> numbers; }), 2015);
    EXPECT_EQ(numbers.GetSize(), 2);
    initializeRaw(stream, "3|a|b|cut");
    EXPECT_EQ(thrownBy([&] { stream >> list; }), 2023);
    EXPECT_EQ(list.GetSize(), 2);
    EXPECT_STREQ(list[1], "b");
}

TEST(HostileStream, BinaryValues) {
    const struct {
        const char* text;
        int code;
        const char* next;
    } rows[] = {
        {"2|a\376", 7011, "a\376"},
        {"2|a\3761", 7011, "a\3761"},
        {"2|a\3761g|n", 7011, "a\3761g"},
        {"2|a\3761|n", 7011, "a\3761"},
        {"3|ab|n", 2015, "n"},
        {"1|ab|n", 2015, "n"},
        {"-|ab|n", 2015, "n"},
        {"7fffffff|ab", 2015, ""},
        {"5", 2015, ""},
        {"2|\3760A\377|n", 0, "n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const qel::test::TraceCapture trace;
        CBxDataStream stream;
        initialize(stream, row.text);
        unsigned char* block = nullptr;
        long size = 9;
        EXPECT_EQ(stream.Read(block, size), row.code);
        EXPECT_EQ(block != nullptr, row.code == 0);
        EXPECT_EQ(trace.errors().size(), row.code == 0 ? 0U : 1U);
        std::free(block);
        VStr next;
        stream >> next;
        EXPECT_STREQ(next, row.next);
    }
    CBxDataStream stream;
    unsigned char byte = 1;
    EXPECT_EQ(stream.Write(nullptr, 5), 0);
    EXPECT_EQ(stream.Write(&byte, -5), 0);
    EXPECT_EQ(qel::test::contentOf(stream), "|");
}

TEST(HostileStream, AMillionEmptyElements) {
    CBxDataStream stream;
    initialize(stream, "f4240" + std::string(1'000'000, '|'));
    VStrArray list;
    stream >> list;
    EXPECT_EQ(list.GetSize(), 1'000'000);
}

}  // namespace
