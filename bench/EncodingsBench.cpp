// Base64 and MD5, beside OpenSSL.
#include <openssl/evp.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "Comparison.h"
#include "QelUtility/BxEncodings.h"

namespace qel::bench {

namespace {

using Bytes = std::vector<unsigned char>;

struct Sample {
    explicit Sample(std::size_t size) : bytes(size), text(4 * ((size + 2) / 3) + 1) {
        std::uint32_t value = 1;
        for (unsigned char& byte : bytes) {
            value = value * 1664525 + 1013904223;
            byte = static_cast<unsigned char>(value >> 24);
        }
        Bx_Base64_Encode(bytes.data(), static_cast<unsigned>(size), text.data(),
                         static_cast<unsigned>(text.size()));
        back.resize(size + 4);
    }

    bool same() const {
        Bytes theirs(text.size());
        Bytes decoded(bytes.size() + 4);
        const int length =
            EVP_EncodeBlock(theirs.data(), bytes.data(), static_cast<int>(bytes.size()));
        return static_cast<std::size_t>(length) + 1 == text.size() &&
               std::memcmp(theirs.data(), text.data(), text.size()) == 0 &&
               Bx_Base64_Decode(text.data(), decoded.data(),
                                static_cast<unsigned>(decoded.size())) ==
                   static_cast<int>(bytes.size()) &&
               std::memcmp(decoded.data(), bytes.data(), bytes.size()) == 0;
    }

    Bytes bytes;
    std::vector<char> text;
    Bytes back;
};

void addBase64(const char* size, std::size_t count, Work encode, Work decode) {
    auto sample = std::make_shared<Sample>(count);
    const auto same = [sample] { return sample->same(); };
    encode.name = std::string("Base64 encode, ") + size;
    decode.name = std::string("Base64 decode, ") + size;
    Comparison(encode, same)
        .ours([sample, out = std::vector<char>(sample->text.size())]() mutable {
            benchmark::DoNotOptimize(
                Bx_Base64_Encode(sample->bytes.data(), static_cast<unsigned>(sample->bytes.size()),
                                 out.data(), static_cast<unsigned>(out.size())));
            benchmark::ClobberMemory();
        })
        .peer("OpenSSL", [sample, out = Bytes(sample->text.size())]() mutable {
            benchmark::DoNotOptimize(EVP_EncodeBlock(out.data(), sample->bytes.data(),
                                                     static_cast<int>(sample->bytes.size())));
            benchmark::ClobberMemory();
        });
    Comparison(decode, same)
        .ours([sample, out = Bytes(sample->text.size())]() mutable {
            benchmark::DoNotOptimize(Bx_Base64_Decode(sample->text.data(), out.data(),
                                                      static_cast<unsigned>(out.size())));
            benchmark::ClobberMemory();
        })
        .peer("OpenSSL", [sample, out = Bytes(sample->text.size())]() mutable {
            const auto* text = reinterpret_cast<const unsigned char*>(sample->text.data());
            benchmark::DoNotOptimize(
                EVP_DecodeBlock(out.data(), text, static_cast<int>(sample->text.size() - 1)));
            benchmark::ClobberMemory();
        });
}

constexpr char kDigested[] = "0123456789abcdef0123456789abcdef";

std::string md5ByEvp() {
    unsigned char digest[16];
    unsigned int size = sizeof digest;
    EVP_Digest(kDigested, 32, digest, &size, EVP_md5(), nullptr);
    char text[33];
    for (int i = 0; i < 16; ++i) std::snprintf(text + 2 * i, 3, "%02x", digest[i]);
    return text;
}

}  // namespace

void addEncodings() {
    const char* moved = "each byte read and written once";
    addBase64("48 bytes", 48, {"", 15, moved, 0, "OpenSSL", 18.6},
              {"", 16, moved, 0, "OpenSSL", 21.6});
    constexpr std::size_t kMebibyte = std::size_t{1} << 20;
    addBase64("1 MiB", kMebibyte, {"", 12, moved, kMebibyte, "OpenSSL", 2.7},
              {"", 10, moved, kMebibyte, "OpenSSL", 2.4});
    Comparison({"MD5 of 32 bytes, as text", 100, "one block of 64 rounds", 0, "OpenSSL EVP", 315},
               [] {
                   char ours[33];
                   return md5ByEvp() == MD5String(kDigested, ours);
               })
        .ours([] {
            char out[33];
            benchmark::DoNotOptimize(MD5String(kDigested, out));
        })
        .peer("OpenSSL EVP", [] {
            unsigned char digest[16];
            unsigned int size = sizeof digest;
            benchmark::DoNotOptimize(EVP_Digest(kDigested, 32, digest, &size, EVP_md5(), nullptr));
            benchmark::DoNotOptimize(digest);
        });
}

}  // namespace qel::bench
