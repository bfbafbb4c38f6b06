/// @file
/// CBxCharConvSvcs: converts text between UTF-8 and one of a fixed list of character sets, through
/// the platform's code pages and UTF-16. One converter belongs to one thread at a time (it keeps a
/// work buffer); different converters do not meet.
///
/// Which sets convert: "UTF-8", "8859-1" (the system's default ANSI set; windows-1252 on Western
/// systems and wherever there are no Windows code pages), "936" and "950". "eucJP", "KOI8-R", "PCK"
/// and "SJIS" mean the default ANSI set too. "8859-2" to "8859-10" open, but no system has a
/// code page 8859, so every conversion with them fails.
#ifndef QELUTILITY_BXCHARCONV_H
#define QELUTILITY_BXCHARCONV_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"

/// Result codes of the convenience level, beside 0, QEL_OUT_OF_MEMORY, QEL_OUTPUT_TOO_SMALL and
/// QEL_NOT_INITIALIZED.
enum BxCharConvResult {
    BX_CONV_FAILED = 2109,            ///< BxConvChar: what cannot be mended by skipping input
    BX_CONV_REFUSED = 2111,           ///< a bad descriptor, or the platform refused
    BX_CONV_INVALID_SEQUENCE = 2112,  ///< the input means nothing in its set
    BX_CONV_INCOMPLETE_INPUT = 2113,
    BX_CONV_OTHER = 2114
};

/// An open conversion, made by iconv_open and freed by iconv_close.
struct _iconv_info {
    char* toName;               ///< a copy of the name as given, owned
    char* fromName;             ///< likewise
    unsigned int toCodePage;    ///< 65001 for UTF-8, 0 for the default ANSI set
    unsigned int fromCodePage;  ///< likewise
    unsigned int useCodePages;  ///< 1; 0 turns the descriptor into a byte copier
    char16_t* wideBuf;          ///< work buffer, null at first; only grows
    unsigned int wideBufCount;  ///< the units it holds
};

/// A converter between UTF-8 and one character set, or between two sets.
class QELUTILITY_API CBxCharConvSvcs {
  public:
    /// Not initialised: every conversion fails until one of the Initialize functions.
    CBxCharConvSvcs();
    /// Closes the conversion.
    virtual ~CBxCharConvSvcs();

    ///@{
    /// Opens a conversion of its own between the sets of `o`; the two share nothing. A converter
    /// that is not initialised gives one that is not, and so does exhausted memory. Assignment from
    /// itself does nothing.
    CBxCharConvSvcs(const CBxCharConvSvcs& o);
    CBxCharConvSvcs& operator=(CBxCharConvSvcs& o);
    ///@}

    // --- Set-up: 0 or a library code -------------------------------------------------------------

    /// Names are looked up in GetCharSetNames() without regard to case. QEL_NOT_INITIALIZED for a
    /// null, empty or unknown name, or when both are the same set, and then an earlier conversion
    /// stays; also when the descriptor cannot be opened. QEL_OUT_OF_MEMORY for the names' copies.
    int Initialize(const char* to, const char* from);
    /// From `set` to UTF-8.
    int InitializeFrom(const char* set);
    /// From UTF-8 to `set`.
    int InitializeTo(const char* set);

    /// 18 names; the last is the empty text and ends the list. The array belongs to the library.
    static const char** GetCharSetNames();

    // --- Conversion: 0 or a library code ---------------------------------------------------------

    /// Converts `inLeft` bytes at `in` to `out`, all of them at once, and moves all four on.
    /// Input that cannot be decoded as a whole is tried again from one byte later, and so on: what
    /// precedes the last byte that could not be decoded is dropped. When fewer than two bytes
    /// remain to try, the last one is given up and the result is 0. QEL_OUTPUT_TOO_SMALL leaves
    /// what has not been dropped unconverted; BX_CONV_FAILED for every other failure, a converter
    /// that is not initialised included.
    int BxConvChar(const char*& in, unsigned int& inLeft, char*& out, unsigned int& outLeft);

    /// Converts a string in place, by the rules above, in 2 * length + 1 bytes: a text that needs
    /// more fails with QEL_OUTPUT_TOO_SMALL. The result ends at its first NUL. On failure `text` is
    /// as it was; QEL_OUT_OF_MEMORY when there is no room to convert in.
    int BxConvChar(VStr& text);

    // --- Descriptor level: the cause of a failure is in LastError() ------------------------------

    /// A descriptor between any two names: "UTF-8" (any case) is code page 65001, "8859-1" is 0,
    /// any other name is the value of its leading digits. The failure value, a pointer of all one
    /// bits, with 22 for a null or empty name and 12 when memory is exhausted.
    _iconv_info* iconv_open(const char* to, const char* from);

    /// Converts all of `*inLeft` bytes, or nothing. 1 for a conversion; 0 for the reset call, a
    /// null `in` or `*in` with a descriptor, which does nothing; the number of bytes copied by a
    /// byte copier, and for no input; or 0xFFFFFFFF, with
    /// - 7: the output is too small (a byte copier fills it, and the copied bytes are consumed)
    /// - 9: a null argument, or the platform refused
    /// - 12: no memory for the work buffer
    /// - 42: the input has a sequence that is invalid, or ends inside one.
    ///
    /// Input that decodes to a text beginning with a byte-order mark loses the mark and gains a
    /// trailing NUL byte.
    unsigned int iconv(_iconv_info* cd, const char** in, unsigned int* inLeft, char** out,
                       unsigned int* outLeft);

    /// 0; -1 with 9 for a null descriptor (or the failure value).
    int iconv_close(_iconv_info* cd);

    // --- State -----------------------------------------------------------------------------------

    /// The code of the last failure on the descriptor level, 0 before the first. Success does not
    /// change it.
    int LastError() const { return m_lastError; }
    /// Whether an Initialize has succeeded.
    bool IsInitialized() const { return m_initialized; }
    ///@{
    /// The sets' names as GetCharSetNames() has them; null before the first Initialize.
    const char* ToName() const { return m_toName; }
    const char* FromName() const { return m_fromName; }
    ///@}

  protected:
    /// One call of iconv on this object's descriptor. QEL_NOT_INITIALIZED, QEL_OUTPUT_TOO_SMALL or
    /// BX_CONV_REFUSED to BX_CONV_OTHER.
    int BxConvChar_guts(const char*& in, unsigned int& inLeft, char*& out, unsigned int& outLeft);

  private:
    _iconv_info* m_handle;
    bool m_initialized;
    char* m_toName;
    char* m_fromName;
    int m_lastError;
};

#endif
