#include "calendar/platform/CharacterSets.h"

#include <windows.h>

#include <algorithm>
#include <limits>

namespace qel::calendar::platform {

namespace {

struct Page {
    const char* name;
    unsigned number;
};

constexpr Page kPages[] = {
    {"SHIFT_JIS", 932},      {"SJIS", 932},          {"WINDOWS-31J", 932},   {"EUC-KR", 949},
    {"KS_C_5601-1987", 949}, {"EUC-JP", 20932},      {"ISO-2022-JP", 50220}, {"KOI8-R", 20866},
    {"KOI8-U", 21866},       {"MACINTOSH", 10000},   {"MACROMAN", 10000},    {"ISO-8859-2", 28592},
    {"ISO-8859-3", 28593},   {"ISO-8859-4", 28594},  {"ISO-8859-5", 28595},  {"ISO-8859-6", 28596},
    {"ISO-8859-7", 28597},   {"ISO-8859-8", 28598},  {"ISO-8859-9", 28599},  {"ISO-8859-13", 28603},
    {"ISO-8859-15", 28605},  {"WINDOWS-1250", 1250}, {"WINDOWS-1251", 1251}, {"WINDOWS-1253", 1253},
    {"WINDOWS-1254", 1254},  {"WINDOWS-1255", 1255}, {"WINDOWS-1256", 1256}, {"WINDOWS-1257", 1257},
    {"WINDOWS-1258", 1258},  {"TIS-620", 874},       {"WINDOWS-874", 874},   {"GB18030", 54936},
    {"UTF-7", CP_UTF7}};

unsigned pageOf(std::string_view name) {
    std::string capitals(name);
    for (char& c : capitals)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (capitals.rfind("CP", 0) == 0) capitals = "WINDOWS-" + capitals.substr(2);
    for (const Page& page : kPages)
        if (capitals == page.name) return page.number;
    return 0;
}

}  // namespace

std::optional<std::string> toUtf8(std::string_view text, std::string_view name) {
    const unsigned page = pageOf(name);
    if (page == 0 || IsValidCodePage(page) == 0) return std::nullopt;
    if (text.empty()) return std::string();
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()) / 4)
        return std::nullopt;
    const int length = static_cast<int>(text.size());
    const int units = MultiByteToWideChar(page, 0, text.data(), length, nullptr, 0);
    if (units <= 0) return std::nullopt;
    std::wstring wide(static_cast<std::size_t>(units), L'\0');
    MultiByteToWideChar(page, 0, text.data(), length, wide.data(), units);
    const int bytes =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    if (bytes <= 0) return std::nullopt;
    std::string result(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, result.data(), bytes, nullptr, nullptr);
    return result;
}

}  // namespace qel::calendar::platform
