/// @file
/// VStr: the library's byte string, in which all text crosses the interface. An owned heap block of
/// 8-bit characters that ends in a NUL byte, with the length kept beside it; it knows nothing of
/// encodings. Several threads may read one string; who writes one that others use locks outside it.
///
/// A string is in one of three states:
/// - null: no block, length 0. `VStr()`, `VStr("")`, Empty() and whatever fails.
/// - allocated empty: a block that holds the terminator alone, length 0. `Copy("")`, `= '\0'`,
///   ReleaseBuffer(0), TrimRight() of an all-blank text.
/// - text: a block, length above 0.
///
/// Only Compare and CompareNoCase distinguish the first two. When memory is exhausted the string
/// that was being built is null; nothing is reported.
///
/// Indexes and counts are `int`. A negative count or position counts as 0 unless stated otherwise.
/// Functions that give `VStr&` or `const VStr&` give this string.
#ifndef QELUTILITY_VSTR_H
#define QELUTILITY_VSTR_H

#include "QelUtility/QelTypes.h"

#ifdef __cplusplus

namespace qel {
namespace strings {
struct Writer;
}  // namespace strings
}  // namespace qel

/// A byte string with an owned block: null, allocated empty or a text (see VStr.h).
class QELUTILITY_API VStr {
  public:
    // --- Allocation ------------------------------------------------------------------------------

    /// A zero-filled block for `n` bytes: n with its low six bits cleared, plus 64 bytes, so 0 and
    /// 63 give 64 and 64 gives 128. The size goes to `*capacityOut` unless that is null (0 when
    /// there is no block). Null for a negative n and when memory is exhausted. Belongs to the
    /// caller, who hands it to a string with `<<=`; there is no other way to free it.
    static char* ModAlloc(int n, unsigned int* capacityOut = nullptr);

    /// Makes room for `n` bytes, the terminator included, keeps the text and gives the block. When
    /// memory is exhausted the string is null and so is the result. A negative n does nothing.
    char* ModGrow(int n);

    // --- Construction and assignment -------------------------------------------------------------

    /// A null string.
    VStr();
    /// Null for a null or empty `s`.
    VStr(const char* s);
    /// Null for a null `s` or a count of 0. Else the first n bytes of s; a shorter s is padded with
    /// zeros and the length is n all the same.
    VStr(const char* s, int n);
    /// Keeps the length of `o`; an allocated empty `o` gives a null string.
    VStr(const VStr& o);
    /// `n` times c, at least once.
    VStr(char c, int n);
    /// Frees the block.
    ~VStr();

    ///@{
    /// The text is measured: what follows an embedded NUL is not copied. A null string or pointer
    /// gives a null string.
    const VStr& operator=(const VStr& o);
    const VStr& operator=(const char* s);
    ///@}
    /// One character; '\0' gives an allocated empty string.
    const VStr& operator=(char c);

    /// Null for a null `s`; the empty text gives an allocated empty string. `s` may lie inside this
    /// string.
    VStr& Copy(const char* s);
    /// As `VStr(s, n)`, but a count of 0 gives an allocated empty string.
    VStr& Copy(const char* s, int n);

    /// Takes the block and the length of `o`, which is null afterwards. Cannot fail.
    const VStr& operator<<=(VStr& o);
    /// Takes over `s`, which must come from ModAlloc; null gives a null string.
    const VStr& operator<<=(char* s);

    // --- Buffer access ---------------------------------------------------------------------------

    /// The text, never null: a null string gives a shared empty text.
    operator const char*() const;

    /// A block that holds `n` characters and a terminator, for the caller to write; the length
    /// stays until ReleaseBuffer. Invalidated by every other change of the string. GetBuffer(0) of
    /// a null string gives the shared empty text, which must not be written.
    char* GetBuffer(int n);
    /// Ends the text after `n` characters; -1 measures it. A null string becomes an allocated one.
    /// An n past the block is cut to the block.
    void ReleaseBuffer(int n = -1);

    /// Characters before the terminator, embedded NULs included.
    int GetLength() const;
    ///@{
    /// Whether the length is 0: a null string or an allocated empty one.
    bool IsEmpty() const;
    bool operator!() const;
    ///@}

    /// Frees the block: the string is null.
    void Empty();
    /// Forgets the block without freeing it: the caller has taken it over.
    void Remove();
    /// Cuts the text to `n` characters; below 1 the string becomes null, above the length nothing
    /// happens.
    void Truncate(int n);

    /// The character at `i`, up to the end of the block. A null string, and an index outside the
    /// block, give a spare character that all strings share: what is written there is what all such
    /// reads give from then on.
    char& operator[](int i);
    /// The same character, to be read alone.
    char GetAt(int i) const;
    /// Throws a `char*`, "VStr null-value error", for a null string. Outside the block: nothing.
    void SetAt(int i, char c);

    // --- Concatenation ---------------------------------------------------------------------------

    /// This string becomes `a` followed by `b`; as the other concatenations otherwise.
    VStr& Catstr(VStr& a, const VStr& b);
    ///@{
    /// Appends. Two strings of length 0 leave a null string. The operand may be, or lie inside,
    /// this string.
    VStr& Catstr(const VStr& b);
    VStr& Catstr(const char* s);
    const VStr& operator+=(const VStr& o);
    const VStr& operator+=(const char* s);
    ///@}
    /// Appends one character; '\0' appends nothing.
    const VStr& operator+=(char c);

    // --- Extraction ------------------------------------------------------------------------------

    ///@{
    /// This string becomes `count` characters of `src`, or of itself, from `start`. A start below 0
    /// counts as 0 and one at or past the end selects the last character: Substr("abc", 10, 5) is
    /// "c". Nothing selected gives a null string. `src` may be this string.
    VStr& Substr(const VStr& src, int start, int count);
    VStr& Substr(int start, int count);
    ///@}
    ///@{
    /// What Substr would select, as a string of its own.
    VStr Mid(int start, int count);
    VStr operator()(int start, int count);
    ///@}
    /// From `start` to the end; a start at or past the end gives the last character.
    VStr Mid(int start);
    ///@{
    /// The first, or the last, `n` characters; the whole text when it has fewer.
    VStr Left(int n);
    VStr Right(int n);
    ///@}
    /// The longest head of characters that are in `set`; null counts as the empty set.
    VStr SpanIncluding(const char* set);
    /// The longest head of characters that are not in `set`.
    VStr SpanExcluding(const char* set);

    // --- Editing ---------------------------------------------------------------------------------

    ///@{
    /// This string becomes `src`, or itself, without `count` characters from `start`. A start past
    /// the end cuts the last character. A negative start keeps its value in "start + count beyond
    /// the end" alone and otherwise counts as 0. `src` may be this string.
    VStr& Cutstr(VStr& src, int start, int count);
    VStr& Cutstr(int start, int count);
    ///@}

    ///@{
    /// This string becomes `src`, or itself, with `ins` before the character at `pos`. A pos at or
    /// past the end counts as the last character: inserting "X" at 3 into "abc" gives "abXc".
    /// Nothing happens when `ins` has no text; when `src` has none, `src` itself becomes `ins`.
    VStr& Insert(VStr& src, int pos, VStr& ins);
    VStr& Insert(int pos, VStr s);
    ///@}

    ///@{
    /// Removes blanks: space, tab, carriage return and line feed. An all-blank text becomes an
    /// allocated empty string by TrimRight and a null string by TrimLeft.
    void TrimRight();
    void TrimLeft();
    ///@}

    // --- Search: an index, or -1; -1 for a null string -------------------------------------------

    /// The first `c`; '\0' is found at the end of the text.
    int Find(char c) const;
    /// The first `s`; the empty text is found at 0, a null one nowhere.
    int Find(const char* s) const;
    /// The last `c`, as Find.
    int ReverseFind(char c) const;
    /// The first character that is in `set`.
    int FindOneOf(const char* set) const;

    // --- Comparison ------------------------------------------------------------------------------

    /// Below, at or above 0 as strcmp; only the sign means something. A null string comes before
    /// every text, the empty one included; against a null `s` the result is 0 for a null string and
    /// 1 for any other.
    int Compare(const char* s) const;
    /// The same with ASCII capitals folded to small letters.
    int CompareNoCase(const char* s) const;

    /// The length that TrimRight would leave.
    int ComputeTrimmedLength();
    /// Whether the texts are equal but for blanks at their ends; leading blanks count.
    bool IdenticalWhenTrimmed(VStr& o);

    // --- Formatting ------------------------------------------------------------------------------

    /// The text of printf, cut at 4095 characters; `%I64d` and its like work on every platform.
    /// Arguments may be this string's own text. An empty result, and a format that the C library
    /// refuses, give an allocated empty string, a null `fmt` a null string.
    void Format(const char* fmt, ...) QELUTILITY_PRINTF(2, 3);

  private:
    friend struct qel::strings::Writer;  // the library's own
    QELUTILITY_LOCAL void Adopt(char* block, int length, unsigned int capacity);
    QELUTILITY_LOCAL void Make(const char* s, int count, int length);
    QELUTILITY_LOCAL bool Rewrite(const char* s, int count, int length);
    QELUTILITY_LOCAL VStr& Assign(const char* s, int count, int length);
    QELUTILITY_LOCAL VStr& Append(const char* s, int count);

    char* m_buffer;
    int m_length;
    /// The size of the block last obtained for this string: a record that no operation depends on.
    unsigned int m_capacity;
};

extern "C" {
#else
typedef struct VStr VStr;
#endif

// For callers in C and other languages, which hand a string to a function that takes a VStr by
// reference.

/// A new string with the text's copy, or a null string for a null or empty `text`. The caller frees
/// it by VStr_Destroy. Null when memory is exhausted.
QELUTILITY_API VStr* QELUTILITY_CALL VStr_Create(const char* text);

/// The text, never null; valid until the string is changed or destroyed.
QELUTILITY_API const char* QELUTILITY_CALL VStr_Text(const VStr* string);

/// Frees a string of VStr_Create; null is ignored.
QELUTILITY_API void QELUTILITY_CALL VStr_Destroy(VStr* string);

#ifdef __cplusplus
}
#endif

#endif
