// The digest of a text and the enciphered hexadecimal code; Base64 is in BxBase64.cpp.
#include "QelUtility/BxEncodings.h"

// The functions of MD5 itself: they need no memory, where the general ones set up the whole library
// at their first use and do not survive it when memory is exhausted meanwhile.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/md5.h>

#include <cstring>

#include "encodings/BxTea.h"
#include "platform/AsciiText.h"

namespace qel::encodings {
namespace {

// Shared by every module that exchanges these codes: a change makes the codes of earlier builds
// unreadable.
constexpr TeaKey kCipherKey{0x5D1C9A37, 0xE40B62F8, 0x27A3D50E, 0x913F7CB4};

}  // namespace

}  // namespace qel::encodings

const char* QELUTILITY_CALL MD5String(const char* text, char* out) {
    if (out == nullptr) return nullptr;
    if (text == nullptr) text = "";
    unsigned char digest[MD5_DIGEST_LENGTH];
    MD5_CTX context;
    char* end = out;
    if (MD5_Init(&context) == 1 && MD5_Update(&context, text, std::strlen(text)) == 1 &&
        MD5_Final(digest, &context) == 1) {
        for (const unsigned char byte : digest) {
            *end++ = qel::platform::kHexDigits[byte >> 4];
            *end++ = qel::platform::kHexDigits[byte & 0x0F];
        }
    }
    *end = '\0';
    return out;
}

int QELUTILITY_CALL ZQUT_EncodeToString(const char* text, char* out, int outSize) {
    return qel::encodings::encipherToHex(text, out, outSize, qel::encodings::kCipherKey);
}

int QELUTILITY_CALL ZQUT_DecodeFromString(const char* hex, void* out, unsigned int outSize) {
    return qel::encodings::decipherFromHex(hex, out, outSize, qel::encodings::kCipherKey);
}
