#include "calendar/text/Digest.h"

#include "QelUtility/BxEncodings.h"

namespace qel::calendar {

std::string digestOf(const std::string& text) {
    char digits[33];
    return MD5String(text.c_str(), digits);
}

}  // namespace qel::calendar
