/// @file
/// Parsers of one line of separated values: CBxParseValues splits a text into items and joins items
/// into a text; CBxParsePairValues also looks up the value of an item "name=value". One thread at a
/// time uses a parser. Between calls it points into the caller's text, which must stay as it is
/// until the parse is over; the items themselves are copies.
///
/// Escapes of vCard and vCalendar values ("\,", "\;", "\\"; RFC 2425 section 5.8.4, RFC 2445
/// section 4.3.11) are resolved when the backslash is one
/// of the separators; else it is an ordinary character. No text is malformed: every text yields
/// items. When memory is exhausted the item or text at hand is a null string, and a parse may end
/// there; nothing is thrown.
#ifndef QELUTILITY_BXPARSEVALUES_H
#define QELUTILITY_BXPARSEVALUES_H

#include <map>

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"

/// What the two parsers have in common; not for use by itself. Copies are deep, but read on in the
/// same text. Functions that give an `int` give 0 unless stated otherwise.
class QELUTILITY_API CBxSymbolParser {
  public:
    /// Keeps the pointer, not a copy; null is the empty set. The default is ",".
    int SetSeparators(const char* seps);
    /// Whether an empty item, which is a null string, is kept: between two separators, before a
    /// leading one and after a last one. Off by default.
    int SetAddEmptyItems(bool on);
    /// Whether the escape "\n" becomes CR LF; off by default. "\N" is never translated.
    int EscapeNewLines(bool on);

    /// Reads on over escapes, with the read position on a backslash, up to the next separator, and
    /// appends what it read to `item`. An escaped character that is none of ",", ";" and "\" keeps
    /// its backslash. Gives 2018 when the text ends right after an escape, else 0.
    int ProcessEscapes(VStr& item);

    /// Puts the items into `out` with `sep` between them and gives its text. With `escape` a
    /// backslash goes before each first character of sep within an item, and an item ends before
    /// any other character of sep: "x;y" with ",;" is written as "x". This is meant for a `sep` of
    /// one character. Backslashes of an item are not doubled. A null sep is the empty text. `out`
    /// may be one of the items.
    const char* ArrayToString(VStr& out, const char* sep, bool escape);

    /// The number of items.
    int GetSize();
    /// The items themselves; the reference is valid as long as the parser.
    Bx_VStrArray& GetSymbols();
    /// One item.
    /// Throws the `int` -1 for an index outside the items.
    VStr& operator[](int i);
    /// Forgets the items, which otherwise pile up from line to line.
    void RemoveSymbols();

  protected:
    /// No items; separated by ",", empty items left out.
    CBxSymbolParser();
    ///@{
    /// Deep; the copy reads on in the same text.
    CBxSymbolParser(const CBxSymbolParser& o);
    CBxSymbolParser& operator=(const CBxSymbolParser& o);
    ///@}
    ~CBxSymbolParser();

    /// Reads one item; `result` is what GetNextSymbol gives. True when the last item is one that
    /// was read from the text, false when nothing stood there or memory is exhausted.
    QELUTILITY_LOCAL bool ReadSymbol(int& result);

    const char* m_cursor;      ///< read position in the caller's text; null before the first parse
    const char* m_separators;  ///< never null
    Bx_VStrArray m_symbols;    ///< the items
    bool m_addEmptyItems;      ///< as SetAddEmptyItems
    bool m_escapeNewLines;     ///< as EscapeNewLines
};

/// Splits a text into items.
class QELUTILITY_API CBxParseValues : public CBxSymbolParser {
  public:
    /// No items; separated by ",", empty items left out.
    CBxParseValues();
    ///@{
    /// Deep; the copy reads on in the same text.
    CBxParseValues(const CBxParseValues& o);
    CBxParseValues& operator=(const CBxParseValues& o);
    ///@}
    ~CBxParseValues();

    /// Splits `text` and appends its items to those already held. A null text is an empty one.
    int BuildSymbolArray(const char* text);
    /// Reads one item of the text: 0 when more input follows, 2018 at its end.
    int GetNextSymbol();
};

/// Splits a text into items and looks up those that are pairs, "name=value".
class QELUTILITY_API CBxParsePairValues : public CBxSymbolParser {
  public:
    /// No items and no pairs; separated by ",", empty items left out.
    CBxParsePairValues();
    ///@{
    /// Deep; the copy reads on in the same text.
    CBxParsePairValues(const CBxParsePairValues& o);
    CBxParsePairValues& operator=(const CBxParsePairValues& o);
    ///@}
    ~CBxParsePairValues();

    ///@{
    /// As those of CBxParseValues; they also remember the pair of every item with a "=" in it. A
    /// name keeps the first value that it was ever given: pairs are not forgotten for the life of
    /// the parser, RemoveSymbols included.
    int BuildSymbolArray(const char* text);
    int GetNextSymbol();
    ///@}

    /// The text after the first "=" of the item whose text before it is exactly `name`; a null
    /// string when there is none. A value may be null too: use the items to distinguish "A=" from
    /// nothing.
    VStr GetValueOf(const char* name);

  private:
    /// By the bytes of the names; a null name counts as the empty text.
    struct NameLess {
        using is_transparent = void;
        QELUTILITY_LOCAL bool operator()(const char* a, const char* b) const;
    };

    QELUTILITY_LOCAL void AddPair(const VStr& item);
    QELUTILITY_LOCAL void AddPair(const VStr& name, const char* value);
    QELUTILITY_LOCAL void CopyPairs(const CBxParsePairValues& o);

    std::map<VStr, VStr, NameLess> m_pairs;
};

#endif
