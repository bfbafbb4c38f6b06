// Character sets, beside iconv(3) and ICU where they can be had.
#ifdef QEL_BENCH_ALL_PEERS
#include <iconv.h>
#include <unicode/ucnv.h>
#endif

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Comparison.h"
#include "QelUtility/BxCharConv.h"

namespace qel::bench {

namespace {

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

std::string repeated(const std::string& piece, std::size_t count) {
    std::string result;
    while (count-- > 0) result += piece;
    return result;
}

#ifdef QEL_BENCH_ALL_PEERS

std::string byIconv(iconv_t descriptor, const std::string& in, std::vector<char>& out) {
    char* from = const_cast<char*>(in.data());
    std::size_t left = in.size();
    char* to = out.data();
    std::size_t room = out.size();
    iconv(descriptor, &from, &left, &to, &room);
    return {out.data(), out.size() - room};
}

std::size_t iconvLength(iconv_t descriptor, const std::string& in, std::vector<char>& out) {
    char* from = const_cast<char*>(in.data());
    std::size_t left = in.size();
    char* to = out.data();
    std::size_t room = out.size();
    iconv(descriptor, &from, &left, &to, &room);
    return out.size() - room;
}

// A pair of ICU converters with the pivot that ICU itself uses.
class Icu {
  public:
    Icu(const char* to, const char* from) : to_(open(to)), from_(open(from)) {}
    std::size_t convert(const std::string& in, std::vector<char>& out) {
        UChar pivot[1024];
        UChar* pivotSource = pivot;
        UChar* pivotTarget = pivot;
        const char* source = in.data();
        char* target = out.data();
        UErrorCode status = U_ZERO_ERROR;
        ucnv_convertEx(to_.get(), from_.get(), &target, out.data() + out.size(), &source,
                       in.data() + in.size(), pivot, &pivotSource, &pivotTarget, pivot + 1024, true,
                       true, &status);
        return static_cast<std::size_t>(target - out.data());
    }

  private:
    using Converter = std::unique_ptr<UConverter, void (*)(UConverter*)>;
    static Converter open(const char* name) {
        UErrorCode status = U_ZERO_ERROR;
        return {ucnv_open(name, &status), ucnv_close};
    }
    Converter to_;
    Converter from_;
};

#endif

// Converts `in` with all sides to `expected`. `peerTo` and `peerFrom` are the sets' names
// elsewhere.
void add(const std::string& name, double goal, std::size_t bytes, const char* peer,
         double reference, const char* to, const char* from, [[maybe_unused]] const char* peerTo,
         [[maybe_unused]] const char* peerFrom, const std::string& in,
         const std::string& expected) {
    auto ours = std::make_shared<CBxCharConvSvcs>();
    ours->Initialize(to, from);
    auto out = std::make_shared<std::vector<char>>(4 * in.size() + 16);
    const auto convert = [ours, in, out] {
        const char* source = in.data();
        auto left = static_cast<unsigned>(in.size());
        char* target = out->data();
        auto room = static_cast<unsigned>(out->size());
        ours->BxConvChar(source, left, target, room);
        return static_cast<std::size_t>(target - out->data());
    };
    std::function<bool()> peersAgree = [] { return true; };
#ifdef QEL_BENCH_ALL_PEERS
    const std::shared_ptr<void> descriptor(iconv_open(peerTo, peerFrom), iconv_close);
    auto icu = std::make_shared<Icu>(peerTo, peerFrom);
    peersAgree = [=] {
        const std::size_t icuLength = icu->convert(in, *out);
        return std::string(out->data(), icuLength) == expected &&
               byIconv(descriptor.get(), in, *out) == expected;
    };
#endif
    Comparison row(
        {name, goal, "each byte read and written once", bytes, peer, reference},
        [=] {
            const std::size_t length = convert();
            return std::string(out->data(), length) == expected && peersAgree();
        });
    row.ours([convert] { benchmark::DoNotOptimize(convert()); });
#ifdef QEL_BENCH_ALL_PEERS
    row.peer("iconv", [=] { benchmark::DoNotOptimize(iconvLength(descriptor.get(), in, *out)); })
        .peer("ICU", [=] { benchmark::DoNotOptimize(icu->convert(in, *out)); });
#endif
}

void addBothWays(const char* set, const char* peerSet, double icuSpeed, const std::string& piece,
                 const std::string& pieceBytes) {
    const std::size_t count = kMebibyte / piece.size();
    const std::string utf8 = repeated(piece, count);
    const std::string bytes = repeated(pieceBytes, count);
    const std::string label = set == std::string("8859-1") ? "1252" : set;
    add("UTF-8 to " + label + ", 1 MiB", icuSpeed, utf8.size(), "ICU", icuSpeed, set, "UTF-8",
        peerSet, "UTF-8", utf8, bytes);
    add(label + " to UTF-8, 1 MiB", icuSpeed, bytes.size(), "ICU", icuSpeed, "UTF-8", set, "UTF-8",
        peerSet, bytes, utf8);
}

}  // namespace

void addCharsets() {
    addBothWays("8859-1", "CP1252", 1.6,
                "Die Stra\xC3\x9F"
                "e f\xC3\xBChrt nach K\xC3\xB6ln. ",
                "Die Stra\xDF"
                "e f\xFChrt nach K\xF6ln. ");
    // "Tomorrow at nine a meeting" in simplified and in traditional characters.
    addBothWays("936", "CP936", 1.11,
                "\xE6\x98\x8E\xE5\xA4\xA9\xE4\xB9\x9D\xE7\x82\xB9\xE5\xBC\x80\xE4\xBC\x9A ",
                "\xC3\xF7\xCC\xEC\xBE\xC5\xB5\xE3\xBF\xAA\xBB\xE1 ");
    addBothWays("950", "CP950", 1.11,
                "\xE6\x98\x8E\xE5\xA4\xA9\xE4\xB9\x9D\xE9\xBB\x9E\xE9\x96\x8B\xE6\x9C\x83 ",
                "\xA9\xFA\xA4\xD1\xA4\x45\xC2\x49\xB6\x7D\xB7\x7C ");
    const std::string words = "Weekly meeting in the small room, ";
    const std::string ascii = repeated(words, kMebibyte / words.size());
    add("UTF-8 to 936, ASCII, 1 MiB", 5, ascii.size(), "", 0, "936", "UTF-8", "CP936", "UTF-8",
        ascii, ascii);
    add("936 to UTF-8, ASCII, 1 MiB", 5, ascii.size(), "", 0, "UTF-8", "936", "UTF-8", "CP936",
        ascii, ascii);
    add("UTF-8 to 1252, 24 bytes", 40, 0, "iconv", 48, "8859-1", "UTF-8", "CP1252", "UTF-8",
        "Stra\xC3\x9F"
        "e nach K\xC3\xB6ln, 3 km",
        "Stra\xDF"
        "e nach K\xF6ln, 3 km");
    add("1252 to UTF-8, 24 bytes", 40, 0, "iconv", 48, "UTF-8", "8859-1", "UTF-8", "CP1252",
        "Stra\xDF"
        "e nach K\xF6ln, 12 km",
        "Stra\xC3\x9F"
        "e nach K\xC3\xB6ln, 12 km");
}

}  // namespace qel::bench
