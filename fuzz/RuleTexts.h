// What the fuzz targets of the three rule readers share.
#ifndef QEL_FUZZ_RULETEXTS_H
#define QEL_FUZZ_RULETEXTS_H

#include <string>

#include "Fuzz.h"
#include "QelUtility/RRule.h"
#include "QelUtility/VStr.h"

namespace qel::fuzz {

using RuleReader = int(const char*, _rruleRepeat*, int*);
using RuleWriter = const char*(const _rruleRepeat&, VStr&, bool);

inline bool sameRecord(const _rruleRepeat& a, const _rruleRepeat& b) {
    return std::memcmp(&a, &b, sizeof(a)) == 0;
}

// Reads `text`; what was read must write and read again, and from then on text and record stay as
// they are. (The first record may hold what the form has no text for: an empty list, or an interval
// that 16 bits made negative.) Gives the second and the third record; false when `text` is refused.
inline bool roundTrip(const std::string& text, RuleReader* read, RuleWriter* write,
                      _rruleRepeat& first, _rruleRepeat& second) {
    int flags = -1;
    const int result = read(text.c_str(), &first, &flags);
    FUZZ_CHECK(result == 0 || result == -1);
    FUZZ_CHECK((flags & ~RRULE_UNTIL_HAS_TIME) == 0);
    VStr written;
    if (result != 0) {
        _rruleRepeat fresh;
        BxUtil_InitializeRRULE(&fresh);
        FUZZ_CHECK(sameRecord(first, fresh));
        FUZZ_CHECK(write(first, written, true) == nullptr);
        return false;
    }
    FUZZ_CHECK(write(first, written, true) != nullptr);
    const int freq = first.freq;
    FUZZ_CHECK(read(written, &first, &flags) == 0);
    FUZZ_CHECK(first.freq == freq);
    FUZZ_CHECK(write(first, written, true) != nullptr);
    FUZZ_CHECK(read(written, &second, &flags) == 0);
    VStr again;
    FUZZ_CHECK(write(second, again, true) != nullptr);
    FUZZ_CHECK(written.Compare(again) == 0);
    return true;
}

}  // namespace qel::fuzz

#endif
