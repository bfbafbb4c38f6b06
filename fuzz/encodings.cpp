// Base64 and the enciphered code: what encodes must decode to the same bytes; any text at all may
// be given to the decoders.
#include "Fuzz.h"
#include "QelUtility/BxEncodings.h"

using namespace qel::fuzz;

QEL_FUZZ_TARGET(encodings) {
    const unsigned room = in.take<std::uint16_t>();
    const std::string text = in.text();
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    const auto size = static_cast<unsigned>(text.size());

    std::vector<char> code(4 * ((text.size() + 2) / 3) + 1);
    const int length =
        Bx_Base64_Encode(bytes, size, code.data(), static_cast<unsigned>(code.size()));
    FUZZ_CHECK(length == static_cast<int>(code.size()) - 1);
    std::vector<unsigned char> back(text.size() + 3);
    FUZZ_CHECK(Bx_Base64_Decode(code.data(), back.data(), static_cast<unsigned>(back.size())) ==
               static_cast<int>(size));
    FUZZ_CHECK(std::memcmp(back.data(), text.data(), text.size()) == 0);

    // Outputs of a size that the input chooses, on the heap, so that a byte too many is seen.
    std::vector<unsigned char> out(1 + room % 512);
    const int measured = Bx_Base64_Decode(text.c_str(), nullptr, 0);
    const int decoded =
        Bx_Base64_Decode(text.c_str(), out.data(), static_cast<unsigned>(out.size()));
    FUZZ_CHECK(decoded <= static_cast<int>(out.size()));
    if (decoded >= 0) FUZZ_CHECK(measured == decoded);
    Bx_Base64_Encode(bytes, size, reinterpret_cast<char*>(out.data()),
                     static_cast<unsigned>(out.size()));

    const int result =
        ZQUT_DecodeFromString(text.c_str(), out.data(), static_cast<unsigned>(out.size()));
    FUZZ_CHECK(result == 0 || result == ZQUT_MALFORMED || result == ZQUT_OUTPUT_TOO_SMALL);
    std::vector<char> cipher(2 * (std::strlen(text.c_str()) + 7) / 8 * 8 + 17);
    FUZZ_CHECK(ZQUT_EncodeToString(text.c_str(), cipher.data(), static_cast<int>(cipher.size())) ==
               0);
    std::vector<unsigned char> plain(std::strlen(cipher.data()) / 2 + 1);
    // A block with a zero byte in it ends the code early and need not decode.
    ZQUT_DecodeFromString(cipher.data(), plain.data(), static_cast<unsigned>(plain.size()));
    char digest[33];
    FUZZ_CHECK(std::strlen(MD5String(text.c_str(), digest)) == 32);
}
