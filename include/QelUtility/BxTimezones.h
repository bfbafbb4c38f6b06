/// @file
/// Conversion of date-time texts between local time and UTC: by the rules of the computer's own
/// zone (CBxTimeZoneUtility), and by a built-in table of 77 named zones with their changes of
/// offset from 1990 to 2010 (the BxTZ_ functions). A date-time text is an eight-digit date, the
/// letter T, a six-digit time and, for UTC, the letter Z (RFC 2445 section 4.3.5).
///
/// The BxTZ_ functions that give a text return 2001, and the text is null, where memory is
/// exhausted.
///
/// The table's functions keep no state and may be called from any thread. A CBxTimeZoneUtility
/// gives its results in a buffer of its own: each thread uses its own object.
#ifndef QELUTILITY_BXTIMEZONES_H
#define QELUTILITY_BXTIMEZONES_H

#include <cstdint>
#include <vector>

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"

/// Conversions by the rules of the computer's own zone; each thread uses an object of its own.
class QELUTILITY_API CBxTimeZoneUtility {
  public:
    /// The Win32 record of this name, field by field.
    struct SYSTEMTIME {
        std::uint16_t wYear;          ///< 0 in a zone's rule that holds for every year
        std::uint16_t wMonth;         ///< 1 .. 12
        std::uint16_t wDayOfWeek;     ///< 0 Sunday .. 6 Saturday
        std::uint16_t wDay;           ///< day of the month; in a rule the week, 1 .. 5, 5 = last
        std::uint16_t wHour;          ///< 0 .. 23
        std::uint16_t wMinute;        ///< 0 .. 59
        std::uint16_t wSecond;        ///< 0 .. 59
        std::uint16_t wMilliseconds;  ///< 0 .. 999
    };
    /// The Win32 record of this name: units of 100 nanoseconds since 1 January 1601.
    struct FILETIME {
        std::uint32_t dwLowDateTime;   ///< bits 0 .. 31
        std::uint32_t dwHighDateTime;  ///< bits 32 .. 63
    };

    /// A zone's description. Biases are minutes, UTC = local time + bias. A StandardDate of month 0
    /// means no daylight saving.
    struct _EXCH_TZ {
        std::int32_t Bias;            ///< of the zone
        std::int32_t StandardBias;    ///< added to Bias in standard time
        std::int32_t DaylightBias;    ///< added to Bias in daylight saving time
        std::uint16_t wStandardYear;  ///< written as 0
        SYSTEMTIME StandardDate;      ///< the change to standard time
        std::uint16_t wDaylightYear;  ///< written as 0
        SYSTEMTIME DaylightDate;      ///< the change to daylight saving
    };
    static_assert(sizeof(_EXCH_TZ) == 48, "the record is packed");

    /// Without offsets until Initialize.
    CBxTimeZoneUtility() = default;
    ///@{
    /// The copy has the offsets that were loaded, and a result buffer of its own.
    CBxTimeZoneUtility(const CBxTimeZoneUtility&) = default;
    CBxTimeZoneUtility& operator=(const CBxTimeZoneUtility&) = default;
    ///@}

    /// Loads the offsets of the computer's current zone; to be called before the conversions, which
    /// until then change nothing but the form. Returns 0.
    int Initialize();

    /// The UTC text, with its Z, of a local text of exactly 15 characters with the T at its place.
    /// Any other text, null too, is returned as it was passed. The result is valid until the next
    /// conversion with this object.
    const char* LocalToUTC(const char* text);

    /// The local text of a UTC text of exactly 16 characters with T and Z at their places. Any
    /// other text is returned as it was passed.
    ///
    /// Both directions look up daylight saving with the text's own value. In the hours around a
    /// change they may therefore not be each other's inverse.
    const char* UTCToLocal(const char* text);

  private:
    int LoadTimeZone(_EXCH_TZ* zone);
    void LoadCurrentTZ(_EXCH_TZ* out);
    __int64 GetAdjustment(__int64 fileTime);
    int IsDaylightSavingTime(FILETIME time);

    char m_szResult[32] = {};
    __int64 m_nDaylightOffset = 0;  ///< in units of 100 nanoseconds
    __int64 m_nStandardOffset = 0;
    int m_bDaylightEnabled = 0;
};

/// The number, 1 to 77, of the zone of a name, ASCII letters compared without case; -1, and an
/// error in the log, for an unknown name. "utc" is 22.
QELUTILITY_API int BxTZ_GetZoneID(const char* name);

/// Appends the zone's name to `name` and returns the zone number; 0, and an error in the log, for a
/// number outside 1..77.
QELUTILITY_API int BxTZ_GetZoneName(int zone, VStr& name);

/// Sets `names` to all zones' names in ascending strcmp order and `numbers` to their zone numbers
/// in the same order; both are empty where memory is exhausted.
QELUTILITY_API void BxTZ_GetZoneList(VStrArray& names, std::vector<int>& numbers);

/// Sets `out` to the UTC text of a zone's local text and returns 0. A text that has no T, or is
/// already UTC, is copied unchanged. An unknown zone number is logged, empties `out` and returns
/// 2016. `out` may be the string that holds `text`.
///
/// With zone 11, 20050615T083000 becomes 20050615T123000Z. Before its first change a zone has that
/// change's offset, after its last the last one's. A zone on an offset of less than an hour would
/// be left as it is; the table has none.
QELUTILITY_API int BxTZ_LocalToUTC(int zone, const char* text, VStr& out);

/// The way back: sets `out` to the zone's local text of a UTC text and returns 0. A text that has
/// no T is copied unchanged; one without a Z is copied too, but the result is 2098. An unknown
/// zone number is logged, empties `out` and returns 2016.
QELUTILITY_API int BxTZ_UTCToLocal(int zone, const char* text, VStr& out);

/// As BxTZ_LocalToUTC, with an offset from UTC in place of a zone. Hours and minutes have the same
/// sign: -2 and -30 for 2 1/2 hours behind UTC.
QELUTILITY_API int BxTZ_LocalToUTCByOffset(int offsetHours, int offsetMinutes, const char* text,
                                           VStr& out);

/// Moves a local text of one zone (or a UTC text) to another zone's local time. Returns 0 when the
/// zones are the same, else the result of the second step, BxTZ_UTCToLocal: 0 also when `fromZone`
/// is unknown, which has then been logged. With an unknown zone, and where memory is exhausted,
/// `text` stays as it was.
QELUTILITY_API int BxTZ_ConvertZone(VStr& text, int fromZone, int toZone);

#endif
