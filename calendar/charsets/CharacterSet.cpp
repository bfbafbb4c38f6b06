#include "calendar/charsets/CharacterSet.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "calendar/base/Ascii.h"
#include "calendar/charsets/Decoders.h"

namespace qel::calendar {

struct CharacterSet {
    std::string_view name;
    Decoder decoder;
    const char16_t* upperHalf = nullptr;  // of a single-byte set
    bool changesAscii = false;
};

namespace {

// clang-format off
#include "calendar/charsets/SingleByteTables.inc"
// clang-format on

enum class Set : std::uint8_t {
    Utf8,
    Utf7,
    Utf16le,
    Utf16be,
    Utf32le,
    Utf32be,
    ShiftJis,
    EucJp,
    Iso2022Jp,
    Gbk,
    Gb18030,
    HzGb2312,
    Iso2022Cn,
    Big5,
    EucKr,
    Iso2022Kr,
    Windows1250,
    Windows1251,
    Windows1252,
    Windows1253,
    Windows1254,
    Windows1255,
    Windows1256,
    Windows1257,
    Windows1258,
    Windows874,
    Iso88592,
    Iso88593,
    Iso88594,
    Iso88595,
    Iso88596,
    Iso88597,
    Iso88598,
    Iso885910,
    Iso885913,
    Iso885914,
    Iso885915,
    Iso885916,
    Koi8R,
    Koi8U,
    Koi8T,
    Macintosh,
    XMacCyrillic,
    MacCentraleurope,
    Ibm866,
    Cp437,
    Cp737,
    Cp775,
    Cp850,
    Cp852,
    Cp855,
    Cp857,
    Cp858,
    Cp860,
    Cp861,
    Cp862,
    Cp863,
    Cp864,
    Cp865,
    Cp869,
    Cp1125,
    HpRoman8,
    Armscii8,
    GeorgianAcademy,
    GeorgianPs,
    Kz1048,
    Pt154,
    Viscii
};

// In the order of Set.
constexpr CharacterSet kSets[] = {{"UTF-8", Decoder::Utf8},
                                  {"UTF-7", Decoder::Utf7, nullptr, true},
                                  {"UTF-16LE", Decoder::Utf16LittleEndian, nullptr, true},
                                  {"UTF-16BE", Decoder::Utf16BigEndian, nullptr, true},
                                  {"UTF-32LE", Decoder::Utf32LittleEndian, nullptr, true},
                                  {"UTF-32BE", Decoder::Utf32BigEndian, nullptr, true},
                                  {"Shift_JIS", Decoder::ShiftJis},
                                  {"EUC-JP", Decoder::EucJp},
                                  {"ISO-2022-JP", Decoder::Iso2022Jp, nullptr, true},
                                  {"GBK", Decoder::Gb18030},
                                  {"gb18030", Decoder::Gb18030},
                                  {"HZ-GB-2312", Decoder::Hz, nullptr, true},
                                  {"ISO-2022-CN", Decoder::ShiftOut, nullptr, true},
                                  {"Big5", Decoder::Big5},
                                  {"EUC-KR", Decoder::EucKr},
                                  {"ISO-2022-KR", Decoder::ShiftOut, nullptr, true},
                                  {"windows-1250", Decoder::SingleByte, kWindows1250},
                                  {"windows-1251", Decoder::SingleByte, kWindows1251},
                                  {"windows-1252", Decoder::SingleByte, kWindows1252},
                                  {"windows-1253", Decoder::SingleByte, kWindows1253},
                                  {"windows-1254", Decoder::SingleByte, kWindows1254},
                                  {"windows-1255", Decoder::SingleByte, kWindows1255},
                                  {"windows-1256", Decoder::SingleByte, kWindows1256},
                                  {"windows-1257", Decoder::SingleByte, kWindows1257},
                                  {"windows-1258", Decoder::SingleByte, kWindows1258},
                                  {"windows-874", Decoder::SingleByte, kWindows874},
                                  {"ISO-8859-2", Decoder::SingleByte, kIso88592},
                                  {"ISO-8859-3", Decoder::SingleByte, kIso88593},
                                  {"ISO-8859-4", Decoder::SingleByte, kIso88594},
                                  {"ISO-8859-5", Decoder::SingleByte, kIso88595},
                                  {"ISO-8859-6", Decoder::SingleByte, kIso88596},
                                  {"ISO-8859-7", Decoder::SingleByte, kIso88597},
                                  {"ISO-8859-8", Decoder::SingleByte, kIso88598},
                                  {"ISO-8859-10", Decoder::SingleByte, kIso885910},
                                  {"ISO-8859-13", Decoder::SingleByte, kIso885913},
                                  {"ISO-8859-14", Decoder::SingleByte, kIso885914},
                                  {"ISO-8859-15", Decoder::SingleByte, kIso885915},
                                  {"ISO-8859-16", Decoder::SingleByte, kIso885916},
                                  {"KOI8-R", Decoder::SingleByte, kKoi8R},
                                  {"KOI8-U", Decoder::SingleByte, kKoi8U},
                                  {"KOI8-T", Decoder::SingleByte, kKoi8T},
                                  {"macintosh", Decoder::SingleByte, kMacintosh},
                                  {"x-mac-cyrillic", Decoder::SingleByte, kXMacCyrillic},
                                  {"x-mac-ce", Decoder::SingleByte, kMacCentraleurope},
                                  {"IBM866", Decoder::SingleByte, kIbm866},
                                  {"IBM437", Decoder::SingleByte, kCp437},
                                  {"IBM737", Decoder::SingleByte, kCp737},
                                  {"IBM775", Decoder::SingleByte, kCp775},
                                  {"IBM850", Decoder::SingleByte, kCp850},
                                  {"IBM852", Decoder::SingleByte, kCp852},
                                  {"IBM855", Decoder::SingleByte, kCp855},
                                  {"IBM857", Decoder::SingleByte, kCp857},
                                  {"IBM858", Decoder::SingleByte, kCp858},
                                  {"IBM860", Decoder::SingleByte, kCp860},
                                  {"IBM861", Decoder::SingleByte, kCp861},
                                  {"IBM862", Decoder::SingleByte, kCp862},
                                  {"IBM863", Decoder::SingleByte, kCp863},
                                  {"IBM864", Decoder::SingleByte, kCp864},
                                  {"IBM865", Decoder::SingleByte, kCp865},
                                  {"IBM869", Decoder::SingleByte, kCp869},
                                  {"IBM1125", Decoder::SingleByte, kCp1125},
                                  {"hp-roman8", Decoder::SingleByte, kHpRoman8},
                                  {"ARMSCII-8", Decoder::SingleByte, kArmscii8},
                                  {"Georgian-Academy", Decoder::SingleByte, kGeorgianAcademy},
                                  {"Georgian-PS", Decoder::SingleByte, kGeorgianPs},
                                  {"KZ-1048", Decoder::SingleByte, kKz1048},
                                  {"PT154", Decoder::SingleByte, kPt154},
                                  {"VISCII", Decoder::SingleByte, kViscii}};
static_assert(std::size(kSets) == static_cast<std::size_t>(Set::Viscii) + 1);
static_assert(kSets[static_cast<std::size_t>(Set::Windows1252)].name == "windows-1252" &&
              kSets[static_cast<std::size_t>(Set::Koi8R)].name == "KOI8-R" &&
              kSets[static_cast<std::size_t>(Set::Ibm866)].name == "IBM866");

struct Name {
    std::string_view normal;
    Set set;
};

constexpr Name kNames[] = {
#include "calendar/charsets/Names.inc"
};
static_assert(std::is_sorted(std::begin(kNames), std::end(kNames),
                             [](const Name& a, const Name& b) { return a.normal <= b.normal; }));

constexpr std::size_t kLongestName = 64;

// Small letters and digits alone; what a maker puts before the number of a code page is dropped.
std::string normalName(std::string_view name) {
    std::string normal;
    for (const char c : name)
        if (isAlpha(c) || isDigit(c)) normal += isAlpha(c) ? static_cast<char>(c | 0x20) : c;
    for (const std::string_view prefix : {"cp", "ibm", "iso", "windows", "ms", "xcp"})
        if (normal.starts_with(prefix) && allDigits(std::string_view(normal).substr(prefix.size())))
            return normal.substr(prefix.size());
    return normal;
}

}  // namespace

const CharacterSet* findCharacterSet(std::string_view name) {
    if (name.size() > kLongestName) return nullptr;
    const std::string normal = normalName(name);
    const auto found = std::lower_bound(
        std::begin(kNames), std::end(kNames), normal,
        [](const Name& each, std::string_view wanted) { return each.normal < wanted; });
    if (found == std::end(kNames) || found->normal != normal) return nullptr;
    return &kSets[static_cast<std::size_t>(found->set)];
}

std::string_view nameOf(const CharacterSet& set) {
    return set.name;
}

bool changesAscii(const CharacterSet& set) {
    return set.changesAscii;
}

bool isSingleByte(const CharacterSet& set) {
    return set.upperHalf != nullptr;
}

std::size_t decode(const CharacterSet& set, std::string_view bytes, std::string& text) {
    return decodeBytes(set.decoder, set.upperHalf, bytes, text);
}

}  // namespace qel::calendar
