// The stream without memory: 2001, thrown by writers and readers and returned by the others, with
// the position before the value that failed and what came before it kept.
#include <cstdlib>
#include <cstring>
#include <string>

#include "QelUtility/BxDataStream.h"
#include "faults/Exhaustion.h"

namespace qel::test {

namespace {

using Bytes = unsigned char*;

Bytes bytes(std::string& text) {
    return reinterpret_cast<Bytes>(text.data());
}

std::string content(CBxDataStream& stream) {
    return stream.Len() == 0 ? "" : reinterpret_cast<const char*>(stream.Storage());
}

// A stream takes and gives values after all that was refused.
void expectUsable(CBxDataStream& stream) {
    stream.Empty();
    stream << 26 << "text";
    stream.SeekToBegin();
    int number = 0;
    VStr text;
    stream >> number >> text;
    EXPECT_EQ(number, 26);
    EXPECT_STREQ(text, "text");
}

// Runs `write` on a stream that holds "1a"; what it throws is 2001, and then the stream holds
// `whole` up to some value's end. Without a throw it holds all of it, or was told by `refusedCode`.
template <typename Write>
void written(Attempt& attempt, const std::string& whole, Write write) {
    CBxDataStream stream;
    stream << 26;
    int code = 0;
    attempt.armed([&] { code = write(stream); });
    const std::string is = content(stream);
    if (attempt.thrown() == 0 && code == 0) {
        EXPECT_EQ(is, whole);
    } else {
        EXPECT_TRUE(attempt.starved());
        EXPECT_EQ(attempt.thrown() + code, QEL_OUT_OF_MEMORY);
        ASSERT_LT(is.size(), whole.size());
        EXPECT_EQ(whole.compare(0, is.size(), is), 0) << is;
        EXPECT_EQ(whole[is.size()], '\x1f');
    }
    expectUsable(stream);
}

const std::string kLongText(300, 'x');

const Operation kWriters[] = {
    {"Numbers",
     [](Attempt& attempt) {
         std::string whole = "1a";
         for (int i = 0; i < 200; ++i)
             whole +=
                 "\x1f"
                 "7b";
         written(attempt, whole, [](CBxDataStream& stream) {
             for (int i = 0; i < 200; ++i) stream << 123;
             return 0;
         });
     }},
    {"Text",
     [](Attempt& attempt) {
         written(attempt, "1a\x1f" + kLongText, [](CBxDataStream& stream) {
             stream << kLongText.c_str();
             return 0;
         });
     }},
    {"Strings",
     [](Attempt& attempt) {
         VStrArray list;
         list.Add("one");
         list.Add(kLongText.c_str());
         written(attempt,
                 "1a\x1f"
                 "2\x1f"
                 "one\x1f" +
                     kLongText,
                 [&](CBxDataStream& stream) {
                     stream << list;
                     return 0;
                 });
     }},
    {"Binary",
     [](Attempt& attempt) {
         std::string data(500, 'b');
         written(attempt,
                 "1a\x1f"
                 "1f4\x1f" +
                     data,
                 [&](CBxDataStream& stream) { return stream.Write(bytes(data), 500); });
     }},
    {"Nested",
     [](Attempt& attempt) {
         CBxDataStream nested;
         nested << kLongText.c_str();
         written(attempt,
                 "1a\x1f"
                 "12c\x1f" +
                     kLongText,
                 [&](CBxDataStream& stream) {
                     stream << nested;
                     return 0;
                 });
     }},
    {"Itself",
     [](Attempt& attempt) {
         written(attempt,
                 "1a\x1f"
                 "2\x1f"
                 "1a",
                 [](CBxDataStream& stream) {
                     stream << stream;
                     return 0;
                 });
     }},
    {"OwnBytes",
     [](Attempt& attempt) {
         written(attempt,
                 "1a\x1f"
                 "1a",
                 [](CBxDataStream& stream) {
                     stream.AddToBuf(reinterpret_cast<char*>(const_cast<Bytes>(stream.Storage())),
                                     2);
                     return 0;
                 });
     }},
    {"RawBytes",
     [](Attempt& attempt) {
         std::string data = "\x1f" + kLongText;
         written(attempt, "1a" + data, [&](CBxDataStream& stream) {
             stream.AppendRawBytes(bytes(data), data.size());
             return 0;
         });
     }},
    {"Initialize",
     [](Attempt& attempt) {
         CBxDataStream stream;
         stream << 1;
         int code = 0;
         attempt.armed([&] { code = stream.Initialize(kLongText.c_str()); });
         EXPECT_EQ(code == 0, content(stream) == kLongText);
         if (code != 0) {
             EXPECT_EQ(code, QEL_OUT_OF_MEMORY);
             EXPECT_TRUE(attempt.starved());
             EXPECT_EQ(stream.Len(), 0U);
         }
         expectUsable(stream);
     }},
    {"Replace",
     [](Attempt& attempt) {
         CBxDataStream source;
         source << kLongText.c_str();
         CBxDataStream stream;
         stream << 1;
         attempt.armed([&] { stream = source; });
         EXPECT_EQ(attempt.thrown(), attempt.starved() ? QEL_OUT_OF_MEMORY : 0);
         EXPECT_EQ(content(stream), attempt.starved() ? "" : kLongText);
         expectUsable(stream);
     }},
    {"IntList",
     [](Attempt& attempt) {
         CBxIntList list;
         list.Add(1);
         list.Add(2);
         int index = 0;
         CBxIntList target;
         attempt.armed([&] {
             const CBxIntList copy(list);
             target = copy;
             index = list.Add(3);
         });
         EXPECT_TRUE(target.GetSize() == 2 || (attempt.starved() && target.GetSize() == 0));
         EXPECT_TRUE(index == 2 || (attempt.starved() && index == -1));
         EXPECT_EQ(list.GetSize(), index == 2 ? 3 : 2);
         EXPECT_EQ(list[1], 2);
     }},
};
INSTANTIATE_TEST_SUITE_P(StreamWriters, Exhaustion, testing::ValuesIn(kWriters), operationName);

// Runs `read` at the start of `text`; a throw is 2001 and comes where memory was refused.
template <typename Read>
void readFrom(Attempt& attempt, const std::string& text, CBxDataStream& stream, Read read) {
    ASSERT_EQ(stream.Initialize(text.c_str()), 0);
    attempt.armed([&] { read(stream); });
    if (attempt.thrown() != 0) {
        EXPECT_TRUE(attempt.starved());
        EXPECT_EQ(attempt.thrown(), QEL_OUT_OF_MEMORY);
    }
}

const Operation kReaders[] = {
    {"Text",
     [](Attempt& attempt) {
         CBxDataStream stream;
         VStr text("old");
         readFrom(attempt, kLongText, stream, [&](CBxDataStream& s) { s >> text; });
         if (attempt.thrown() != 0) {
             EXPECT_EQ(stream.Position(), stream.Storage());
             stream >> text;
         }
         EXPECT_STREQ(text, kLongText.c_str());
     }},
    {"Strings",
     [](Attempt& attempt) {
         CBxDataStream stream;
         VStrArray list;
         readFrom(attempt,
                  "2\x1f"
                  "one\x1f" +
                      kLongText,
                  stream, [&](CBxDataStream& s) { s >> list; });
         if (attempt.thrown() == 0) {
             ASSERT_EQ(list.GetSize(), 2);
             EXPECT_STREQ(list[0], "one");
             EXPECT_STREQ(list[1], kLongText.c_str());
         } else {
             EXPECT_LT(list.GetSize(), 2);
         }
     }},
    {"Integers",
     [](Attempt& attempt) {
         CBxDataStream stream;
         CBxIntList list;
         readFrom(attempt,
                  "3\x1f"
                  "a\x1f"
                  "b\x1f"
                  "c",
                  stream, [&](CBxDataStream& s) { s >> list; });
         const int read = list.GetSize();
         EXPECT_EQ(read == 3, attempt.thrown() == 0);
         // The position is at the element that failed.
         for (int i = read; i < 3; ++i) {
             int value = 0;
             stream >> value;
             list.Add(value);
         }
         for (int i = 0; i < 3; ++i) EXPECT_EQ(list[i], 10 + i);
     }},
    {"Nested",
     [](Attempt& attempt) {
         CBxDataStream stream;
         CBxDataStream nested;
         readFrom(attempt,
                  "3\x1f"
                  "a\x1f"
                  "b\x1f"
                  "9",
                  stream, [&](CBxDataStream& s) { s >> nested; });
         if (attempt.thrown() != 0) {
             EXPECT_EQ(stream.Position(), stream.Storage());
             stream >> nested;
         }
         EXPECT_EQ(content(nested),
                   "a\x1f"
                   "b");
     }},
    {"Binary",
     [](Attempt& attempt) {
         CBxDataStream stream;
         Bytes data = nullptr;
         long size = 0;
         int code = 0;
         readFrom(attempt,
                  "4\x1f"
                  "ab\xfe"
                  "1f\xff\x1f"
                  "9",
                  stream, [&](CBxDataStream& s) { code = s.Read(data, size); });
         EXPECT_EQ(attempt.thrown(), 0);
         if (code == 0) {
             ASSERT_EQ(size, 4);
             EXPECT_EQ(std::memcmp(data, "ab\x1f\0", 5), 0);
             int next = 0;
             stream >> next;
             EXPECT_EQ(next, 9);
         } else {
             EXPECT_TRUE(attempt.starved());
             EXPECT_EQ(code, 7004);
             EXPECT_EQ(data, nullptr);
         }
         std::free(data);
     }},
    {"PastTheEnd",
     [](Attempt& attempt) {
         // The report of a failure may be what there is no memory for: the code is thrown all the
         // same.
         std::string raw(400, 'x');
         CBxDataStream stream;
         ASSERT_EQ(stream.Initialize(bytes(raw), 400, true), 0);
         VStr text("old");
         attempt.armed([&] { stream >> text; });
         EXPECT_EQ(attempt.thrown(), QEL_READ_PAST_END);
         EXPECT_EQ(stream.Position(), stream.Storage());
     }},
    {"MalformedBinary",
     [](Attempt& attempt) {
         CBxDataStream stream;
         const std::string text = "9\x1f" + kLongText +
                                  "\xfe"
                                  "zz";
         ASSERT_EQ(stream.Initialize(text.c_str()), 0);
         Bytes data = nullptr;
         long size = 0;
         int code = 0;
         attempt.armed([&] { code = stream.Read(data, size); });
         EXPECT_TRUE(code == 7011 || (attempt.starved() && code == 7004));
     }},
};
INSTANTIATE_TEST_SUITE_P(StreamReaders, Exhaustion, testing::ValuesIn(kReaders), operationName);

}  // namespace

}  // namespace qel::test
