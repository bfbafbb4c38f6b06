// Character sets, beside iconv(3) and ICU.
#include <iconv.h>
#include <unicode/ucnv.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "Comparison.h"
#include "QelUtility/BxCharConv.h"

namespace qel::bench {

namespace {

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

struct Sample {
    const char* set;       // the library's name
    const char* iconvSet;  // and the peers'
    std::string utf8;
    std::string bytes;  // the same in `set`
    std::vector<char> out = {};
};

std::string repeated(const char* text, std::size_t size) {
    const std::string piece(text);
    std::string result;
    while (result.size() + piece.size() <= size) result += piece;
    return result;
}

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

// Converts `in` with all sides to `expected`.
void add(const std::string& name, double goal, std::size_t bytes, const char* peer,
         double reference, const char* to, const char* from, const char* iconvTo,
         const char* iconvFrom, const std::string& in, const std::string& expected) {
    auto ours = std::make_shared<CBxCharConvSvcs>();
    ours->Initialize(to, from);
    const std::shared_ptr<void> descriptor(iconv_open(iconvTo, iconvFrom), iconv_close);
    auto icu = std::make_shared<Icu>(iconvTo, iconvFrom);
    auto out = std::make_shared<std::vector<char>>(4 * in.size() + 16);
    const auto convert = [ours, in, out] {
        const char* source = in.data();
        auto left = static_cast<unsigned>(in.size());
        char* target = out->data();
        auto room = static_cast<unsigned>(out->size());
        ours->BxConvChar(source, left, target, room);
        return static_cast<std::size_t>(target - out->data());
    };
    Comparison({name, goal, "each byte read and written once", bytes, peer, reference},
               [=] {
                   const std::size_t length = convert();
                   if (std::string(out->data(), length) != expected) return false;
                   const std::size_t icuLength = icu->convert(in, *out);
                   return std::string(out->data(), icuLength) == expected &&
                          byIconv(descriptor.get(), in, *out) == expected;
               })
        .ours([convert] { benchmark::DoNotOptimize(convert()); })
        .peer("iconv", [=] { benchmark::DoNotOptimize(iconvLength(descriptor.get(), in, *out)); })
        .peer("ICU", [=] { benchmark::DoNotOptimize(icu->convert(in, *out)); });
}

void addBothWays(const char* set, const char* iconvSet, double icuSpeed, const char* piece) {
    const std::string utf8 = repeated(piece, kMebibyte);
    const std::shared_ptr<void> descriptor(iconv_open(iconvSet, "UTF-8"), iconv_close);
    std::vector<char> room(2 * utf8.size());
    const std::string bytes = byIconv(descriptor.get(), utf8, room);
    const std::string label = set == std::string("8859-1") ? "1252" : set;
    add("UTF-8 to " + label + ", 1 MiB", icuSpeed, utf8.size(), "ICU", icuSpeed, set, "UTF-8",
        iconvSet, "UTF-8", utf8, bytes);
    add(label + " to UTF-8, 1 MiB", icuSpeed, bytes.size(), "ICU", icuSpeed, "UTF-8", set, "UTF-8",
        iconvSet, bytes, utf8);
}

}  // namespace

void addCharsets() {
    addBothWays("8859-1", "CP1252", 1.6,
                "Die Stra\xC3\x9F"
                "e f\xC3\xBChrt nach K\xC3\xB6ln. ");
    // "Tomorrow at nine a meeting" in simplified and in traditional characters.
    addBothWays("936", "CP936", 1.11,
                "\xE6\x98\x8E\xE5\xA4\xA9\xE4\xB9\x9D\xE7\x82\xB9\xE5\xBC\x80\xE4\xBC\x9A ");
    addBothWays("950", "CP950", 1.11,
                "\xE6\x98\x8E\xE5\xA4\xA9\xE4\xB9\x9D\xE9\xBB\x9E\xE9\x96\x8B\xE6\x9C\x83 ");
    const std::string ascii = repeated("Weekly meeting in the small room, ", kMebibyte);
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
