// The stream, codecs, converters and the catalogue without memory. The stream says 2001, thrown by
// writers and readers and returned by the others, with the position before the value that failed
// and what came before it kept.
#include <cstdlib>

#include "QelUtility/BxCharConv.h"
#include "QelUtility/BxDataStream.h"
#include "QelUtility/BxEncodings.h"
#include "QelUtility/BxFieldIDs.h"
#include "QelUtility/BxMime.h"
#include "QelUtility/BxQuotedPrintable.h"
#include "QelUtility/BxStatusNames.h"
#include "faults/Exhaustion.h"
#include "streams/StreamTestSupport.h"

namespace qel::test {

namespace {

using Bytes = unsigned char*;

std::string longText(300, 'x');
std::string rawBytes = "\x1f" + longText;

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
    EXPECT_EQ(together(number, text), "26 text");
}

// What `write` adds to a stream that holds "1a": all of it, or 2001 and all up to some value's end.
struct Writing {
    CBxDataStream stream;
    CBxDataStream nested;
    VStrArray list;
    int code = 0;

    Writing() {
        stream << 26;
        nested << longText.c_str();
        list.Add("one");
        list.Add(longText.c_str());
    }
};

Operation onWrite(const char* name, void (*write)(Writing& made)) {
    return {
        name,
        {"2001 up to a value"},
        [write](Attempt& attempt) {
            Writing whole;
            write(whole);
            Writing made;
            attempt.armed([&] { write(made); });
            const std::string all = content(whole.stream);
            const std::string is = content(made.stream);
            expectUsable(made.stream);
            const bool valuesEnd =
                all.compare(0, is.size(), is) == 0 && all.c_str()[is.size()] == '\x1f';
            return seen(together(attempt.thrown() + made.code, valuesEnd ? "up to a value" : is));
        }};
}

const Operation kWriters[] = {
    onWrite("Numbers",
            [](Writing& made) {
                for (int i = 0; i < 200; ++i) made.stream << 123;
            }),
    onWrite("Text", [](Writing& made) { made.stream << longText.c_str(); }),
    onWrite("Strings", [](Writing& made) { made.stream << made.list; }),
    onWrite("Binary", [](Writing& made) { made.code = made.stream.Write(bytes(longText), 300); }),
    onWrite("Nested", [](Writing& made) { made.stream << made.nested; }),
    onWrite("Itself", [](Writing& made) { made.stream << made.stream; }),
    onWrite("OwnBytes",
            [](Writing& made) {
                made.stream.AddToBuf(
                    reinterpret_cast<char*>(const_cast<Bytes>(made.stream.Storage())), 2);
            }),
    onWrite("RawBytes",
            [](Writing& made) { made.stream.AppendRawBytes(bytes(rawBytes), rawBytes.size()); }),
};
INSTANTIATE_TEST_SUITE_P(StreamWriters, Exhaustion, testing::ValuesIn(kWriters), operationName);

// A stream that is read from its start, and what was read of it.
struct Reading {
    CBxDataStream stream;
    VStr text{"old"};
    CBxDataStream nested;
    CBxIntList numbers;
    VStrArray list;
    Bytes data = nullptr;
    long size = 0;
    int code = 0;

    Outcome left(const Attempt& attempt) {
        // A value that was refused is what is read next.
        const auto position = attempt.thrown() == 0 ? 0 : stream.Position() - stream.Storage();
        Outcome outcome = seen(together(attempt.thrown() + code, position));
        for (int i = 0; i < numbers.GetSize(); ++i) outcome.push_back(shown(numbers[i]));
        for (int i = 0; i < list.GetSize(); ++i) outcome.push_back(shown(list[i]));
        outcome.resize(4, kNull);
        outcome.push_back(shown(text));
        outcome.push_back(content(nested));
        outcome.push_back(data == nullptr ? kNull
                                          : std::string(reinterpret_cast<char*>(data),
                                                        static_cast<std::size_t>(size)));
        std::free(data);
        expectUsable(stream);
        return outcome;
    }
};

// `read` on a stream of `text`, in which "|" stands for the separator.
Operation onRead(const char* name, const Outcome& starved, const std::string& text,
                 void (*read)(Reading& made)) {
    return {name, starved,
            [=](Attempt& attempt) {
                Reading made;
                initialize(made.stream, text);
                attempt.armed([&] { read(made); });
                return made.left(attempt);
            }};
}

void readBinary(Reading& made) {
    made.code = made.stream.Read(made.data, made.size);
}

void readText(Reading& made) {
    made.stream >> made.text;
}

const Operation kReaders[] = {
    onRead("Text", {"2001 0", kNull}, longText, readText),
    onRead("Nested", {"2001 0", ""}, "3|a|b|c", [](auto& made) { made.stream >> made.nested; }),
    onRead("Integers", {"2001 2", "2001 4", "2001 6", kNull}, "3|a|b|c",
           [](auto& made) { made.stream >> made.numbers; }),
    onRead("Strings", {"2001 2", "2001 6", kNull}, "2|one|" + longText,
           [](auto& made) { made.stream >> made.list; }),
    onRead("Binary", {"7004 0", kNull},
           "4|ab\xfe"
           "1f\xff|9",
           readBinary),
    onRead("MalformedBinary", {"7004 0"}, "9|" + longText + "\xfezz", readBinary),
    // The report of a failure may be what there is no memory for: the code is thrown all the same.
    on<Reading>(
        "PastTheEnd", {}, [](auto& made) { made.stream >> made.numbers; },
        [](auto& made) {
            std::string digits = "12";
            made.stream.Initialize(bytes(digits), 2, true);
        }),
    on<Reading>("TextThatNothingEnds", {"2001 0", kNull}, readText,
                [](auto& made) { made.stream.Initialize(bytes(longText), 300, true); }),
};
INSTANTIATE_TEST_SUITE_P(StreamReaders, Exhaustion, testing::ValuesIn(kReaders), operationName);

// What replaces all that an object held.
struct Replacing : Writing {
    CBxIntList numbers;
    CBxIntList target;

    Replacing() {
        numbers.Add(1);
        numbers.Add(2);
    }
    Outcome left(const Attempt& attempt) {
        const std::string is = content(stream);
        expectUsable(stream);
        return seen(together(attempt.thrown() + code, is), target.GetSize(),
                    together(numbers.GetSize(), numbers[1]));
    }
};

const Operation kReplacements[] = {
    on<Replacing>("Initialize", {"2001 "},
                  [](auto& made) { made.code = made.stream.Initialize(longText.c_str()); }),
    on<Replacing>("Stream", {"2001 "}, [](auto& made) { made.stream = made.nested; }),
    on<Replacing>("IntList", {"0"}, [](auto& made) { made.target = CBxIntList(made.numbers); }),
    on<Replacing>("IntListAdd", {"-1 1a", "2 2"},
                  [](auto& made) { made.code = made.numbers.Add(3); }),
};
INSTANTIATE_TEST_SUITE_P(Replacements, Exhaustion, testing::ValuesIn(kReplacements), operationName);

// --- Character sets ------------------------------------------------------------------------------

constexpr char kLatin[] = "Caf\xE9 cr\xE8me";
constexpr char kUtf8[] = "Caf\xC3\xA9 cr\xC3\xA8me";

// The C library loads its tables at the first use, and gives back what nobody has used for a while;
// the main thread's descriptors hold on to them.
class HeldTables : public testing::Environment {
  public:
    void SetUp() override {
        for (const char* set : {"8859-1", "936", "950"}) {
            CBxCharConvSvcs converter;
            VStr text("a");
            converter.InitializeFrom(set);
            converter.BxConvChar(text);
            converter.InitializeTo(set);
            converter.BxConvChar(text);
        }
    }
};

const testing::Environment* const heldTables = testing::AddGlobalTestEnvironment(new HeldTables);

// A converter that converts, whatever happened to it before.
void expectUsable(CBxCharConvSvcs& converter) {
    ASSERT_EQ(converter.InitializeFrom("8859-1"), 0);
    VStr text(kLatin);
    EXPECT_EQ(converter.BxConvChar(text), 0);
    EXPECT_STREQ(text, kUtf8);
}

// A converter from Latin, one of another set, and a text that is converted.
struct Conversion {
    CBxCharConvSvcs converter;
    CBxCharConvSvcs other;
    VStr text{kLatin};
    std::string out = std::string(32, '.');
    unsigned int outLeft = 32;
    int result = 0;

    Conversion() {
        converter.InitializeFrom("8859-1");
        other.InitializeTo("936");
    }
    void convert(const std::string& from) {
        const char* in = from.c_str();
        auto inLeft = static_cast<unsigned int>(from.size());
        char* at = out.data();
        result = other.BxConvChar(in, inLeft, at, outLeft);
    }
    Outcome left(const Attempt&) {
        const std::string sets =
            other.IsInitialized() ? together(other.FromName(), other.ToName()) : kNull;
        expectUsable(converter);
        expectUsable(other);
        return seen(together(result, text, outLeft, out), sets);
    }
};

const std::string kNothingOut = " 32 " + std::string(32, '.');
const std::string kNothingDone = std::string(" ") + kLatin + kNothingOut;
const std::string kOutOfMemory = std::to_string(QEL_OUT_OF_MEMORY) + kNothingDone;
const std::string kNotInitialized = std::to_string(QEL_NOT_INITIALIZED) + kNothingDone;
const std::string kFailed = std::to_string(BX_CONV_FAILED) + kNothingDone;

const Operation kConverters[] = {
    on<Conversion>("Initialize", {kNull, kOutOfMemory, kNotInitialized},
                   [](auto& made) { made.result = made.other.InitializeFrom("8859-1"); }),
    on<Conversion>("Copy", {kNull},
                   [](auto& made) {
                       CBxCharConvSvcs copy(made.converter);
                       made.other = copy;
                   }),
    on<Conversion>("ConvertString", {kOutOfMemory, kFailed},
                   [](auto& made) { made.result = made.converter.BxConvChar(made.text); }),
    // The first byte decodes as nothing and is given up; what is known of it is kept in memory that
    // may be refused too.
    on<Conversion>("ConvertBytes", {kFailed},
                   [](auto& made) {
                       static const std::string text =
                           "\xFF"
                           "abc";
                       made.convert(text);
                   }),
    {"Descriptor",
     {"(null) 12", "12", "9"},
     [](Attempt& attempt) {
         CBxCharConvSvcs converter;
         _iconv_info* const failed = reinterpret_cast<_iconv_info*>(~std::uintptr_t{0});
         _iconv_info* cd = nullptr;
         unsigned int count = 0;
         const char* in = kUtf8;
         unsigned int inLeft = sizeof kUtf8 - 1;
         char room[64];
         char* out = room;
         unsigned int outLeft = sizeof room;
         attempt.armed([&] {
             cd = converter.iconv_open("950", "UTF-8");
             if (cd != failed) count = converter.iconv(cd, &in, &inLeft, &out, &outLeft);
         });
         if (cd == failed) return seen(together(kNull, converter.LastError()));
         EXPECT_EQ(count == 1, inLeft == 0);
         EXPECT_EQ(converter.iconv_close(cd), 0);
         return seen(count == 1 ? "converted" : shown(converter.LastError()));
     }},
};
INSTANTIATE_TEST_SUITE_P(Converters, Exhaustion, testing::ValuesIn(kConverters), operationName);

// Texts in plain buffers, for which no memory is needed, and in a string.
struct Codes {
    char plain[64] = "";
    char other[64] = "";
    char header[64] = "multipart/mixed; boundary=\"mark\"\r\nX: y";
    unsigned char decoded[64];
    VStr text{"old"};
    unsigned long code = 0;
    FieldData field{};

    Outcome left(const Attempt&) { return seen(plain, other, together(code, text)); }
};

const Operation kCodecs[] = {
    on<Codes>("PlainBuffers", {},
              [](auto& made) {
                  char text[64];
                  const auto* const bytes = reinterpret_cast<const unsigned char*>("abc");
                  MD5String("", made.plain);
                  ZQUT_EncodeToString("abc", text, sizeof text);
                  ZQUT_DecodeFromString(text, made.other, sizeof made.other);
                  made.code = static_cast<unsigned long>(Bx_Base64_Encode(bytes, 3, text, 64));
                  Bx_Base64_Decode(text, made.decoded, sizeof made.decoded);
                  encodeQP("a=b", 3, 0, text, sizeof text, nullptr);
                  decodeQP(text, 5, text, sizeof text, nullptr);
                  encodeQuotedPrintable("a=b", 3, text, sizeof text, nullptr);
                  BxUtil_GetFieldDataByID(0x11000000, &made.field);
                  BxUtil_GetFieldDataByID(0x1F000000, &made.field);
                  OperationFromTag("<ADD>", made.code);
              }),
    on<Codes>("MimeDelimiter", {"1 old"},
              [](auto& made) { made.code = GetMIMEDelimiter(made.header, made.text) == nullptr; }),
    on<Codes>("StatusText", {"0 (null)"}, [](auto& made) { made.text = StatusText(0); }),
};
INSTANTIATE_TEST_SUITE_P(Codecs, Exhaustion, testing::ValuesIn(kCodecs), operationName);

}  // namespace

}  // namespace qel::test
