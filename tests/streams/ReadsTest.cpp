// What streams give that are whole, cut, lie about their counts or end nowhere.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "StreamTestSupport.h"
#include "support/Tables.h"
#include "support/TraceCapture.h"

namespace {

using qel::test::initialize;
using qel::test::initializeRaw;
using qel::test::thrownBy;

std::string failure(int code) {
    return code == 0 ? "" : "!" + std::to_string(code);
}

template <class T>
std::string readNumber(CBxDataStream& stream) {
    T value{};
    const std::string failed = failure(thrownBy([&] { stream >> value; }));
    return failed.empty() ? std::to_string(value) : failed;
}

template <class List, class Text>
std::string readList(CBxDataStream& stream, Text text) {
    List list;
    const std::string failed = failure(thrownBy([&] { stream >> list; }));
    std::string items;
    for (int i = 0; i < list.GetSize(); ++i) items += (i == 0 ? "" : ",") + text(list[i]);
    return "[" + items + "]" + failed;
}

std::string readBinary(CBxDataStream& stream) {
    unsigned char* block = nullptr;
    long size = 0;
    int code = 0;
    const int thrown = thrownBy([&] { code = stream.Read(block, size); });
    std::string bytes;
    if (block != nullptr) bytes.assign(block, block + size);
    std::free(block);
    return bytes + failure(thrown + code);
}

// The value of the type that the letter names, as the table shows it.
std::string read(CBxDataStream& stream, char type) {
    VStr text;
    CBxDataStream nested;
    switch (type) {
        case 'c':
            return readNumber<unsigned char>(stream);
        case 'i':
            return readNumber<int>(stream);
        case 'u':
            return readNumber<unsigned long>(stream);
        case 'w':
            return readNumber<unsigned long long>(stream);
        case 'b':
            return readNumber<bool>(stream);
        case 'l':
            return readList<VStrArray>(stream, [](const char* item) { return std::string(item); });
        case 'n':
            return readList<CBxIntList>(stream, [](int item) { return std::to_string(item); });
        case 'd':
            return readBinary(stream);
        case 's': {
            const int code = thrownBy([&] { stream >> nested; });
            return "<" + qel::test::contentOf(nested) + ">" + failure(code);
        }
        default: {
            const int code = thrownBy([&] { stream >> text; });
            return static_cast<const char*>(text) + failure(code);
        }
    }
}

TEST(StreamReads, GiveWhatTheTableSays) {
    for (qel::test::Row& row : qel::test::cases("streams/reads.txt")) {
        SCOPED_TRACE(row["case"]);
        const qel::test::TraceCapture trace;
        CBxDataStream stream;
        (row["end"] == "cut" ? initializeRaw : initialize)(stream, row["stream"]);
        std::string gives;
        for (const char type : row["reads"])
            gives += (gives.empty() ? "" : " ") + read(stream, type);
        EXPECT_EQ(gives, row["gives"]);
        const bool isReported = trace.hasError(row["report"], "BxDataStream");
        EXPECT_TRUE(row["report"] == "none" ? trace.errors().empty()
                                            : row["report"].empty() || isReported);
    }
}

TEST(StreamReads, AMillionEmptyElements) {
    CBxDataStream stream;
    initialize(stream, "f4240" + std::string(1'000'000, '|'));
    VStrArray list;
    stream >> list;
    EXPECT_EQ(list.GetSize(), 1'000'000);
}

}  // namespace
