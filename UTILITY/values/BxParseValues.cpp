#include "QelUtility/BxParseValues.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <exception>
#include <new>
#include <string>

namespace {

constexpr char kEscape = '\\';

bool isEscapable(char c) {
    return c == ',' || c == ';' || c == kEscape;
}

// An item as ArrayToString writes it with escapes.
std::string escapedItem(const char* p, const char* sep) {
    std::size_t run = std::strcspn(p, sep);
    std::string part(p, run);
    p += run;
    while (*p != '\0') {
        while (*p != '\0' && *p == sep[0]) {
            part += kEscape;
            part += *p++;
        }
        run = std::strcspn(p, sep);
        // The end, or a separator other than the first: the rest of the item is dropped.
        if (run == 0) break;
        part.append(p, run);
        p += run;
    }
    return part;
}

}  // namespace

CBxSymbolParser::CBxSymbolParser()
    : m_cursor(nullptr), m_separators(","), m_addEmptyItems(false), m_escapeNewLines(false) {}

CBxSymbolParser::CBxSymbolParser(const CBxSymbolParser& o) = default;
CBxSymbolParser& CBxSymbolParser::operator=(const CBxSymbolParser& o) = default;
CBxSymbolParser::~CBxSymbolParser() = default;

int CBxSymbolParser::SetSeparators(const char* seps) {
    m_separators = seps != nullptr ? seps : "";
    return QEL_OK;
}

int CBxSymbolParser::SetAddEmptyItems(bool on) {
    m_addEmptyItems = on;
    return QEL_OK;
}

int CBxSymbolParser::EscapeNewLines(bool on) {
    m_escapeNewLines = on;
    return QEL_OK;
}

bool CBxSymbolParser::ReadSymbol(int& result) {
    if (m_cursor == nullptr || *m_cursor == '\0') {
        if (m_addEmptyItems) m_symbols.Add(VStr());
        result = QEL_END_OF_INPUT;
        return false;
    }
    result = QEL_OK;
    const std::size_t span = std::strcspn(m_cursor, m_separators);
    if (span == 0 && *m_cursor != kEscape) {
        ++m_cursor;
        if (m_addEmptyItems) m_symbols.Add(VStr());
        return false;
    }
    VStr item(m_cursor, static_cast<int>(std::min<std::size_t>(span, INT_MAX)));
    m_cursor += span;
    // The run stops at a backslash only when that is one of the separators.
    const bool lost = span > 0 && item.IsEmpty();
    if (*m_cursor == kEscape) ProcessEscapes(item);
    // The tail of an item without its head is no item.
    if (lost) item.Empty();
    const bool kept = m_symbols.AddVStr(item) >= 0;
    if (*m_cursor == '\0')
        result = QEL_END_OF_INPUT;
    else
        ++m_cursor;
    return kept;
}

int CBxSymbolParser::ProcessEscapes(VStr& item) try {
    // Collected apart: appending to the item piece by piece would measure it each time.
    std::string tail;
    int result = QEL_OK;
    while (m_cursor != nullptr && *m_cursor == kEscape) {
        const char next = m_cursor[1];
        if (isEscapable(next)) {
            tail += next;
            m_cursor += 2;
        } else if (m_escapeNewLines && next == 'n') {
            tail += "\r\n";
            m_cursor += 2;
        } else {
            tail += kEscape;
            m_cursor += 1;
        }
        if (*m_cursor == '\0') {
            result = QEL_END_OF_INPUT;
            break;
        }
        const std::size_t span = std::strcspn(m_cursor, m_separators);
        tail.append(m_cursor, span);
        m_cursor += span;
    }
    if (!tail.empty()) item += tail.c_str();
    return result;
} catch (const std::exception&) {
    item.Empty();
    m_cursor += std::strlen(m_cursor);
    return QEL_END_OF_INPUT;
}

const char* CBxSymbolParser::ArrayToString(VStr& out, const char* sep, bool escape) try {
    if (sep == nullptr) sep = "";
    std::string joined;
    const int size = m_symbols.GetSize();
    for (int i = 0; i < size; ++i) {
        if (i > 0) joined += sep;
        const char* item = m_symbols[i];
        joined += escape ? escapedItem(item, sep) : item;
    }
    out.Empty();
    if (!joined.empty()) out = joined.c_str();
    return out;
} catch (const std::exception&) {
    out.Empty();
    return out;
}

int CBxSymbolParser::GetSize() {
    return m_symbols.GetSize();
}

Bx_VStrArray& CBxSymbolParser::GetSymbols() {
    return m_symbols;
}

VStr& CBxSymbolParser::operator[](int i) {
    return m_symbols[i];
}

void CBxSymbolParser::RemoveSymbols() {
    m_symbols.RemoveAll();
}

// --- CBxParseValues ------------------------------------------------------------------------------

CBxParseValues::CBxParseValues() = default;
CBxParseValues::CBxParseValues(const CBxParseValues& o) = default;
CBxParseValues& CBxParseValues::operator=(const CBxParseValues& o) = default;
CBxParseValues::~CBxParseValues() = default;

int CBxParseValues::BuildSymbolArray(const char* text) {
    m_cursor = text;
    while (GetNextSymbol() == QEL_OK) {
    }
    return QEL_OK;
}

int CBxParseValues::GetNextSymbol() {
    int result = QEL_OK;
    ReadSymbol(result);
    return result;
}

// --- CBxParsePairValues --------------------------------------------------------------------------

CBxParsePairValues::CBxParsePairValues() = default;
CBxParsePairValues::CBxParsePairValues(const CBxParsePairValues& o) : CBxSymbolParser(o) {
    CopyPairs(o);
}

CBxParsePairValues& CBxParsePairValues::operator=(const CBxParsePairValues& o) {
    CBxSymbolParser::operator=(o);
    CopyPairs(o);
    return *this;
}

void CBxParsePairValues::CopyPairs(const CBxParsePairValues& o) {
    if (this == &o) return;
    m_pairs.clear();
    for (const auto& [name, value] : o.m_pairs) AddPair(name, value);
}

CBxParsePairValues::~CBxParsePairValues() = default;

int CBxParsePairValues::BuildSymbolArray(const char* text) {
    m_cursor = text;
    while (GetNextSymbol() == QEL_OK) {
    }
    return QEL_OK;
}

int CBxParsePairValues::GetNextSymbol() {
    int result = QEL_OK;
    if (ReadSymbol(result)) AddPair(m_symbols[m_symbols.GetSize() - 1]);
    return result;
}

bool CBxParsePairValues::NameLess::operator()(const char* a, const char* b) const {
    return std::strcmp(a, b) < 0;
}

void CBxParsePairValues::AddPair(const VStr& item) {
    const int equals = item.Find('=');
    if (equals < 0) return;
    const char* text = item;
    const VStr name(text, equals);
    if (name.GetLength() == equals) AddPair(name, text + equals + 1);
}

// The first value given for a name is the one that holds.
void CBxParsePairValues::AddPair(const VStr& name, const char* value) {
    try {
        const auto added = m_pairs.try_emplace(name, value);
        // A name or value that there was no memory for is null now, and would be found as "".
        const auto& [ownName, ownValue] = *added.first;
        if (added.second && (std::strcmp(ownName, name) != 0 || std::strcmp(ownValue, value) != 0))
            m_pairs.erase(added.first);
    } catch (const std::bad_alloc&) {
        // The item stays; there was no memory for its pair.
    }
}

VStr CBxParsePairValues::GetValueOf(const char* name) {
    const auto found = m_pairs.find(name != nullptr ? name : "");
    return found == m_pairs.end() ? VStr() : found->second;
}
