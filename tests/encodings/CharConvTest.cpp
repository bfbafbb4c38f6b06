// The converter between character sets: set-up, the descriptor level's codes, resynchronisation,
// and conversion in place.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <string>
#include <vector>

#include "QelUtility/BxCharConv.h"
#include "platform/CodePages.h"
#include "support/Tables.h"

namespace {

using qel::test::list;
using qel::test::number;
using qel::test::Row;

// Reaches the protected call.
class Converter : public CBxCharConvSvcs {
  public:
    using CBxCharConvSvcs::BxConvChar_guts;
};

// Windows replaces invalid input where others refuse it.
const bool kStrict = [] {
    char16_t unit[4] = {};
    return qel::platform::codePagesAvailable() &&
           qel::platform::decodeCodePage(65001, "\xFF", 1, unit, 4).failure ==
               qel::platform::CodePageFailure::kInvalid;
}();

struct Outcome {
    int result;
    std::string text;
    unsigned int inLeft;
};

Outcome convert(CBxCharConvSvcs& converter, const std::string& text, unsigned int room) {
    std::vector<char> buffer(room + 1, '~');
    const char* in = text.data();
    auto inLeft = static_cast<unsigned int>(text.size());
    char* out = buffer.data();
    unsigned int outLeft = room;
    const int result = converter.BxConvChar(in, inLeft, out, outLeft);
    EXPECT_EQ(in + inLeft, text.data() + text.size());
    EXPECT_EQ(out + outLeft, buffer.data() + room);
    EXPECT_EQ(buffer[room], '~');
    return {result, {buffer.data(), out}, inLeft};
}

std::string converted(const char* to, const char* from, const std::string& text) {
    CBxCharConvSvcs converter;
    EXPECT_EQ(converter.Initialize(to, from), 0);
    const Outcome outcome =
        convert(converter, text, static_cast<unsigned int>(3 * text.size() + 4));
    EXPECT_EQ(outcome.result, 0) << to << " from " << from;
    EXPECT_EQ(outcome.inLeft, 0U);
    return outcome.text;
}

TEST(CharConv, LooksNamesUpAndKeepsWhatItHasOnAFailure) {
    const char** names = CBxCharConvSvcs::GetCharSetNames();
    EXPECT_STREQ(names[0], "UTF-8");
    EXPECT_STREQ(names[16], "SJIS");
    EXPECT_STREQ(names[17], "");

    CBxCharConvSvcs converter;
    EXPECT_EQ(converter.LastError(), 0);
    ASSERT_EQ(converter.Initialize("utf-8", "sJIS"), 0);
    EXPECT_STREQ(converter.ToName(), "UTF-8");
    EXPECT_STREQ(converter.FromName(), "SJIS");
    const char* const bad[][2] = {{"UTF-8", "utf-8"}, {"UTF-8", "1252"}, {"UTF-8", ""},
                                  {"", "936"},        {nullptr, "936"},  {"936", nullptr},
                                  {"8859-11", "936"}, {"UTF-8 ", "936"}};
    for (const auto& pair : bad) {
        EXPECT_EQ(converter.Initialize(pair[0], pair[1]), QEL_NOT_INITIALIZED);
        EXPECT_TRUE(converter.IsInitialized());
        EXPECT_STREQ(converter.FromName(), "SJIS");
    }
    ASSERT_EQ(converter.InitializeTo("936"), 0);
    EXPECT_STREQ(converter.ToName(), "936");
    EXPECT_STREQ(converter.FromName(), "UTF-8");
}

TEST(CharConv, ConvertsTheSetsThatHaveCodePages) {
    for (Row& row : list("encodings/sets.txt")) {
        const char* const set = row["set"].c_str();
        EXPECT_EQ(converted("UTF-8", set, row["encoded"]), row["text"]) << set;
        EXPECT_EQ(converted(set, "UTF-8", row["text"]), row["encoded"]) << set;
    }
    EXPECT_EQ(converted("8859-1", "936", "\xA8\xA6"), "\xE9");
    // What the target lacks: one "?" for each UTF-16 unit.
    EXPECT_EQ(converted("8859-1", "UTF-8",
                        "a\xE4\xBD\xA0"
                        "b\xF0\x9F\x98\x80"),
              "a?b??");
    for (const char* set : {"8859-1", "936", "950"}) {  // a tag character, and nothing else
        EXPECT_EQ(converted(set, "UTF-8", "\xF3\xA0\x81\xA2"), "??") << set;
        EXPECT_EQ(converted(set, "UTF-8", "x\xF3\xA0\x81\xA2\xF3\xA0\x81\xBFy"), "x????y") << set;
    }
    EXPECT_EQ(converted("UTF-8", "8859-1", ""), "");
}

TEST(CharConv, RefusesThePartsOf8859AndWhatIsNotInitialised) {
    Converter converter;
    const char* in = "abc";
    unsigned int inLeft = 3;
    char buffer[8];
    char* out = buffer;
    unsigned int outLeft = sizeof buffer;
    EXPECT_EQ(converter.BxConvChar_guts(in, inLeft, out, outLeft), QEL_NOT_INITIALIZED);
    EXPECT_EQ(converter.BxConvChar(in, inLeft, out, outLeft), BX_CONV_FAILED);
    VStr text("abc");
    EXPECT_EQ(converter.BxConvChar(text), BX_CONV_FAILED);

    for (const bool from : {true, false}) {
        ASSERT_EQ(from ? converter.InitializeFrom("8859-5") : converter.InitializeTo("8859-10"), 0);
        EXPECT_EQ(converter.BxConvChar_guts(in, inLeft, out, outLeft), BX_CONV_REFUSED);
        EXPECT_EQ(converter.LastError(), 9);
        EXPECT_EQ(converter.BxConvChar(in, inLeft, out, outLeft), BX_CONV_FAILED);
        EXPECT_EQ(converter.BxConvChar(text), BX_CONV_FAILED);
        EXPECT_STREQ(text, "abc");
        EXPECT_EQ(inLeft, 3U);
        EXPECT_EQ(outLeft, sizeof buffer);
    }
    VStr empty;
    EXPECT_EQ(converter.BxConvChar(empty), 0);
    EXPECT_TRUE(empty.IsEmpty());
}

TEST(CharConv, TheDescriptorLevelHasItsCodes) {
    CBxCharConvSvcs converter;
    _iconv_info* const failure = converter.iconv_open("", "936");
    EXPECT_EQ(converter.iconv_open("936", ""), failure);
    EXPECT_EQ(converter.iconv_open("936", nullptr), failure);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(failure), UINTPTR_MAX);
    EXPECT_EQ(converter.LastError(), 22);
    EXPECT_EQ(converter.iconv_close(nullptr), -1);
    EXPECT_EQ(converter.LastError(), 9);
    EXPECT_EQ(converter.iconv_close(failure), -1);

    _iconv_info* cd = converter.iconv_open("UTF-8", "8859-1");
    ASSERT_NE(cd, failure);
    EXPECT_STREQ(cd->toName, "UTF-8");
    EXPECT_EQ(cd->toCodePage, 65001U);
    EXPECT_EQ(cd->fromCodePage, 0U);
    EXPECT_EQ(cd->useCodePages, 1U);
    EXPECT_EQ(cd->wideBufCount, 0U);

    char buffer[4] = {};
    const char* in = "\xE9";
    unsigned int inLeft = 1;
    char* out = buffer;
    unsigned int outLeft = 0;
    constexpr unsigned int kFailed = 0xFFFFFFFF;
    const char* const nothing = nullptr;
    const char* reset = nothing;
    EXPECT_EQ(converter.iconv(cd, nullptr, nullptr, nullptr, nullptr), 0U);
    EXPECT_EQ(converter.iconv(cd, &reset, &inLeft, &out, &outLeft), 0U);
    EXPECT_EQ(converter.iconv(nullptr, &in, &inLeft, &out, &outLeft), kFailed);
    EXPECT_EQ(converter.iconv(failure, &in, &inLeft, &out, &outLeft), kFailed);
    char* noRoom = nullptr;
    EXPECT_EQ(converter.iconv(cd, &in, &inLeft, nullptr, &outLeft), kFailed);
    EXPECT_EQ(converter.iconv(cd, &in, &inLeft, &noRoom, &outLeft), kFailed);
    EXPECT_EQ(converter.iconv(cd, &in, nullptr, &out, &outLeft), kFailed);
    EXPECT_EQ(converter.iconv(cd, &in, &inLeft, &out, nullptr), kFailed);
    EXPECT_EQ(converter.LastError(), 9);
    for (outLeft = 0; outLeft < 2; ++outLeft) {
        EXPECT_EQ(converter.iconv(cd, &in, &inLeft, &out, &outLeft), kFailed) << outLeft;
        EXPECT_EQ(converter.LastError(), 7);
        EXPECT_EQ(inLeft, 1U);
        EXPECT_EQ(out, buffer);
    }
    EXPECT_EQ(converter.iconv(cd, &in, &inLeft, &out, &outLeft), 1U);
    EXPECT_EQ(outLeft, 0U);
    EXPECT_EQ(cd->wideBufCount, 2U);
    EXPECT_STREQ(buffer, "\xC3\xA9");
    EXPECT_EQ(converter.iconv(cd, &in, &inLeft, &out, &outLeft), 0U) << "nothing to copy";

    cd->useCodePages = 0;
    in = "\xE9xy";
    inLeft = 3;
    out = buffer;
    outLeft = 2;
    EXPECT_EQ(converter.iconv(cd, &in, &inLeft, &out, &outLeft), kFailed);
    EXPECT_EQ(converter.LastError(), 7);
    EXPECT_EQ(inLeft, 1U);
    EXPECT_EQ(outLeft, 0U);
    outLeft = 2;
    EXPECT_EQ(converter.iconv(cd, &in, &inLeft, &out, &outLeft), 1U);
    EXPECT_STREQ(buffer, "\xE9xy");
    EXPECT_EQ(converter.iconv_close(cd), 0);

    // Names are free here: leading digits make the page, and too many of them no small one.
    cd = converter.iconv_open("936GB", "99999999999999999999999");
    ASSERT_NE(cd, failure);
    EXPECT_EQ(cd->toCodePage, 936U);
    EXPECT_EQ(cd->fromCodePage, 0xFFFFFFFFU);
    EXPECT_EQ(converter.iconv_close(cd), 0);
}

TEST(CharConv, AByteOrderMarkBecomesATrailingNul) {
    EXPECT_EQ(converted("8859-1", "UTF-8",
                        "\xEF\xBB\xBF"
                        "ab"),
              std::string("ab\0", 3));
    if (kStrict) EXPECT_EQ(converted("8859-1", "UTF-8", "\xEF\xBF\xBE?"), std::string("?\0", 2));
    CBxCharConvSvcs converter;
    ASSERT_EQ(converter.InitializeTo("8859-1"), 0);
    VStr text("\xEF\xBB\xBFZ\xC3\xBC");
    EXPECT_EQ(converter.BxConvChar(text), 0);
    EXPECT_STREQ(text, "Z\xFC");
    EXPECT_EQ(text.GetLength(), 2);
}

TEST(CharConv, ConvertsStringsInPlaceWithinTwiceTheirLength) {
    CBxCharConvSvcs converter;
    ASSERT_EQ(converter.InitializeFrom("8859-1"), 0);
    VStr text('\xE9', 31);  // 63 bytes of room, 62 used
    EXPECT_EQ(converter.BxConvChar(text), 0);
    EXPECT_EQ(text.GetLength(), 62);
    text += "!";
    EXPECT_STREQ(static_cast<const char*>(text) + 60, "\xC3\xA9!");
    VStr euros('\x80', 2);  // 6 bytes into 5
    EXPECT_EQ(converter.BxConvChar(euros), QEL_OUTPUT_TOO_SMALL);
    EXPECT_STREQ(euros, "\x80\x80");
    VStr cut("ab\0cd", 5);
    EXPECT_EQ(converter.BxConvChar(cut), 0);
    EXPECT_EQ(cut.GetLength(), 2);
}

TEST(CharConv, ResynchronisesBehindWhatItCannotDecode) {
    if (!kStrict) {
        CBxCharConvSvcs lenient;
        ASSERT_EQ(lenient.InitializeTo("936"), 0);
        const Outcome outcome = convert(lenient, "good\xFFok", 100);
        EXPECT_EQ(outcome.text.substr(0, 4), "good");
        EXPECT_EQ(outcome.text.substr(outcome.text.size() - 2), "ok");
        EXPECT_EQ(outcome.inLeft, 0U);
        return;
    }
    for (Row& row : list("encodings/undecodable.txt")) {
        SCOPED_TRACE(row["text"]);
        CBxCharConvSvcs converter;
        const char* const to = row["from"] == "UTF-8" ? "936" : "UTF-8";
        ASSERT_EQ(converter.Initialize(to, row["from"].c_str()), 0);
        const Outcome outcome = convert(converter, row["text"], 100);
        EXPECT_EQ(outcome.result, 0);
        EXPECT_EQ(outcome.text, row["rest"]);
        EXPECT_EQ(static_cast<int>(outcome.inLeft), number(row, "left"));
        EXPECT_EQ(converter.LastError(), 42);
    }
}

// Skipping in one step does what trying byte by byte does, for every short text of awkward bytes.
TEST(CharConv, SkipsAsTryingEachByteWould) {
    using namespace std::string_literals;
    const std::string pool = "a@\0\x81\xFE\xFF\xC3\xA9\xE0\xE4\xBD\xED\xF0\x9F\xF4\x90"s;
    for (const std::uint32_t page : {0U, 936U, 950U, 65001U}) {
        std::uint32_t state = page + 1;
        for (int round = 0; round < 3000; ++round) {
            std::string text(static_cast<std::size_t>(2 + round % 9), ' ');
            for (char& c : text) {
                state = state * 1664525 + 1013904223;
                c = pool[(state >> 16) % pool.size()];
            }
            char16_t units[16];
            const auto length = static_cast<std::uint32_t>(text.size());
            const auto fails = [&](std::uint32_t at) {
                return qel::platform::decodeCodePage(page, text.data() + at, length - at, units, 16)
                           .failure != qel::platform::CodePageFailure::kNone;
            };
            if (!fails(0)) continue;
            std::uint32_t expected = 1;
            while (expected < length - 1 && fails(expected)) ++expected;
            ASSERT_EQ(qel::platform::undecodablePrefix(page, text.data(), length), expected)
                << page << " " << testing::PrintToString(text);
        }
    }
}

// Texts of all kinds of characters in a row, as far as the page has them: in one step as in two,
// and with less room than they take no byte is written past it.
TEST(CharConv, MixedTextsKeepToTheirRoom) {
    namespace platform = qel::platform;
    if (!kStrict) GTEST_SKIP() << "the system's own code pages";
    const std::vector<std::string> pool{"a",
                                        "sixteen letters ..",
                                        " ",
                                        "\xC3\xA9",
                                        "\xE2\x82\xAC",
                                        "\xE4\xBD\xA0",
                                        "\xE5\xA5\xBD",
                                        "\xEE\x80\x80",
                                        "\xF0\x9F\x98\x80",
                                        "\xC2\x80",
                                        "\xEF\xBD\xA1"};
    std::uint32_t state = 1;
    for (int round = 0; round < 4000; ++round) {
        std::string text;
        for (int i = 0; i < 1 + round % 12; ++i) {
            state = state * 1664525 + 1013904223;
            text += pool[(state >> 16) % pool.size()];
        }
        for (const std::uint32_t page : {0U, 936U, 950U, 65001U}) {
            SCOPED_TRACE(std::to_string(page) + " " + text);
            const auto length = static_cast<std::uint32_t>(text.size());
            std::vector<char16_t> units(length);
            const auto decoded =
                platform::decodeCodePage(65001, text.data(), length, units.data(), length);
            ASSERT_EQ(decoded.failure, platform::CodePageFailure::kNone);
            std::string two(3 * length, '~');
            const auto whole =
                platform::encodeCodePage(page, units.data(), decoded.count, two.data(), 3 * length);
            ASSERT_EQ(whole.failure, platform::CodePageFailure::kNone);
            two.resize(whole.count);
            std::vector<char16_t> back(whole.count);
            const auto again =
                platform::decodeCodePage(page, two.data(), whole.count, back.data(), whole.count);
            ASSERT_EQ(again.failure, platform::CodePageFailure::kNone);
            if (page == 65001) EXPECT_EQ(two, text);
            const std::uint32_t less = 1 + state % 5;
            // To the page and from it, in rooms that are enough and in some that are not.
            for (const bool to : {true, false}) {
                const std::string& from = to ? text : two;
                std::string other = to ? two : text;
                if (!to) {
                    std::vector<char> utf8(3 * again.count);
                    const auto size = static_cast<std::uint32_t>(utf8.size());
                    other.assign(
                        utf8.data(),
                        platform::encodeCodePage(65001, back.data(), again.count, utf8.data(), size)
                            .count);
                }
                const auto most = static_cast<std::uint32_t>(other.size());
                for (const std::uint32_t room : {most + 9, most, most - std::min(less, most)}) {
                    std::string one(room + 1, '~');
                    const auto written = platform::convertCodePage(
                        to ? 65001 : page, to ? page : 65001, from.data(),
                        static_cast<std::uint32_t>(from.size()), one.data(), room);
                    EXPECT_EQ(one[room], '~');
                    if (written != 0) EXPECT_EQ(one.substr(0, written), other);
                    if (room < most) EXPECT_EQ(written, 0U);
                }
            }
            if (whole.count > less) {
                EXPECT_EQ(platform::encodeCodePage(page, units.data(), decoded.count, two.data(),
                                                   whole.count - less)
                              .failure,
                          platform::CodePageFailure::kNoRoom);
            }
            if (again.count > less) {
                EXPECT_EQ(platform::decodeCodePage(page, two.data(), whole.count, back.data(),
                                                   again.count - less)
                              .failure,
                          platform::CodePageFailure::kNoRoom);
            }
        }
    }
    const char16_t half[] = {0xD800, 'a'};
    char out[8];
    EXPECT_EQ(platform::encodeCodePage(65001, half, 2, out, 8).count, 2U);
    EXPECT_EQ(std::string(out, 2), "?a");
    EXPECT_EQ(platform::undecodablePrefix(1, "\xFF\xFF", 2), 1U) << "no such page";
    EXPECT_EQ(platform::undecodablePrefix(936, "\xFF", 1), 1U);
}

TEST(CharConv, LongHostileTextsTakeLinearTime) {
    const auto start = std::chrono::steady_clock::now();
    const struct {
        const char* to;
        const char* from;
        std::string text;
    } rows[] = {
        {"936", "UTF-8", std::string(400000, 'a') + "\xFF"},
        {"UTF-8", "936", std::string(400000, '\x81') + "\xFF"},
        {"UTF-8", "936", std::string(400001, '\xFF')},
        {"UTF-8", "8859-1", std::string(200000, '\x81') + std::string(200000, 'a')},
        {"8859-1", "936", std::string(400000, '\xB0')},  // nothing but "?"
    };
    for (const auto& row : rows) {
        CBxCharConvSvcs converter;
        ASSERT_EQ(converter.Initialize(row.to, row.from), 0);
        EXPECT_EQ(convert(converter, row.text, 2000000).result, 0);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(CharConv, CopiesShareNothing) {
    CBxCharConvSvcs second;
    {
        CBxCharConvSvcs first;
        ASSERT_EQ(first.InitializeFrom("936"), 0);
        CBxCharConvSvcs copy(first);
        second = copy;
        CBxCharConvSvcs& itself = second;
        second = itself;
        first.InitializeTo("950");
    }
    EXPECT_STREQ(second.FromName(), "936");
    EXPECT_EQ(convert(second, "\xC4\xE3", 3).text, "\xE4\xBD\xA0");
    CBxCharConvSvcs none;
    second = none;
    EXPECT_FALSE(second.IsInitialized());
    EXPECT_EQ(second.ToName(), nullptr);
    EXPECT_EQ(convert(second, "a", 3).result, BX_CONV_FAILED);
}

// The conversion in one step, where there is one, against decoding and encoding: every character
// and every pair of bytes, at every place of a run of sixteen.
TEST(CharConv, OneStepGivesWhatTwoGive) {
    namespace platform = qel::platform;
    std::size_t direct = 0;
    std::size_t place = 0;
    const auto compare = [&](unsigned from, unsigned to, const std::string& character) {
        const std::string text = std::string(place++ % 18, 'a') + character + "bc";
        const auto length = static_cast<unsigned>(text.size());
        char16_t units[32];
        char two[64];
        char one[64];
        const auto decoded = platform::decodeCodePage(from, text.data(), length, units, 32);
        const auto encoded = platform::encodeCodePage(to, units, decoded.count, two, 64);
        const auto written = platform::convertCodePage(from, to, text.data(), length, one, 64);
        if (written == 0) return;
        ++direct;
        ASSERT_EQ(std::string(one, written), std::string(two, encoded.count)) << to << text;
        EXPECT_EQ(platform::convertCodePage(from, to, text.data(), length, one, written - 1), 0U);
        EXPECT_EQ(platform::convertCodePage(from, to, one, length, one + 1, 60), 0U) << "overlap";
    };
    for (const unsigned page : {0U, 936U, 950U}) {
        for (unsigned i = 0; i < 0x11000; ++i) {
            const auto byte = [](unsigned value) { return static_cast<char>(value); };
            if (i < 0x10000) compare(page, 65001, {byte(i >> 8), byte(i & 0xFF)});
            // The code points of the first plane, and some of the others.
            const unsigned point = i < 0x10000 ? i : i * 16;
            char16_t units[2] = {static_cast<char16_t>(point), 0};
            if (point > 0xFFFF) units[0] = static_cast<char16_t>(0xD7C0 + (point >> 10));
            if (point > 0xFFFF) units[1] = static_cast<char16_t>(0xDC00 + (point & 0x3FF));
            char utf8[8];
            const auto size =
                platform::encodeCodePage(65001, units, point > 0xFFFF ? 2 : 1, utf8, 8);
            compare(65001, page, {utf8, size.count});
        }
    }
    EXPECT_TRUE(!kStrict || direct > 200000) << direct;
}

}  // namespace
