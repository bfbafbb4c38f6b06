// VStr beside std::string.
#include <string>

#include "Comparison.h"
#include "QelUtility/VStr.h"

namespace qel::bench {

namespace {

constexpr char kText[] = "twenty characters ..";
constexpr char kPiece[] = "five.";
constexpr int kPieces = 205;  // 1 KiB

bool same() {
    const VStr ours(kText);
    const VStr copy(ours);
    const std::string peer(kText);
    VStr text;
    std::string peerText;
    for (int i = 0; i < kPieces; ++i) {
        text += kPiece;
        peerText += kPiece;
    }
    return peer == static_cast<const char*>(copy) && peerText == static_cast<const char*>(text);
}

// One append at each call, to a text that begins anew at 1 KiB.
template <typename String>
auto appending() {
    return [text = String(), left = kPieces]() mutable {
        text += kPiece;
        if (--left > 0) return;
        left = kPieces;
        text = String();
    };
}

}  // namespace

void addStrings() {
    Comparison({"string of 20 bytes", 15, "one block, 20 bytes moved", 0, "std::string", 10.5},
               same)
        .ours([] {
            const VStr text(kText);
            benchmark::DoNotOptimize(static_cast<const char*>(text));
        })
        .peer("std::string", [] {
            const std::string text(kText);
            benchmark::DoNotOptimize(text.data());
        });
    Comparison(
        {"string of 20 bytes and its copy", 30, "two blocks, 40 bytes moved", 0, "std::string", 20},
        same)
        .ours([] {
            const VStr text(kText);
            const VStr copy(text);
            benchmark::DoNotOptimize(static_cast<const char*>(copy));
        })
        .peer("std::string", [] {
            const std::string text(kText);
            const std::string copy(text);
            benchmark::DoNotOptimize(copy.data());
        });
    Comparison({"append of 5 bytes, up to 1 KiB", 25, "5 bytes moved, a block every 64 bytes"},
               same)
        .ours(appending<VStr>())
        .peer("std::string", appending<std::string>());
}

}  // namespace qel::bench
