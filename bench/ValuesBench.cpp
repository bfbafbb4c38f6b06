// One line of separated values into its items.
#ifdef QEL_BENCH_ALL_PEERS
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#endif
#include <cstring>
#include <string>
#include <vector>

#include "Comparison.h"
#include "QelUtility/BxParseValues.h"

namespace qel::bench {

namespace {

constexpr char kLine[] = "one,two,three,four,five,six,seven,eight,nine,ten,eleven,twelve";

void byStrcspn(const char* text, std::vector<std::string>& items) {
    items.clear();
    for (;;) {
        const std::size_t length = std::strcspn(text, ",");
        items.emplace_back(text, length);
        if (text[length] == '\0') return;
        text += length + 1;
    }
}

}  // namespace

void addValues() {
    Comparison row(
        {"12 items of a line, parser reused", 110, "62 bytes moved, 12 blocks", 0,
         "std::string by strcspn", 119},
        [] {
            CBxParseValues ours;
            ours.BuildSymbolArray(kLine);
            std::vector<std::string> peer;
            byStrcspn(kLine, peer);
            if (ours.GetSize() != 12 || peer.size() != 12) return false;
            for (int i = 0; i < 12; ++i)
                if (peer[static_cast<std::size_t>(i)] != static_cast<const char*>(ours[i]))
                    return false;
            return true;
        });
    row.ours([parser = CBxParseValues()]() mutable {
           parser.RemoveSymbols();
           benchmark::DoNotOptimize(parser.BuildSymbolArray(kLine));
       })
        .peer("std::string by strcspn", [items = std::vector<std::string>()]() mutable {
            byStrcspn(kLine, items);
            benchmark::DoNotOptimize(items.data());
        });
#ifdef QEL_BENCH_ALL_PEERS
    row.peer("Boost", [items = std::vector<std::string>()]() mutable {
        boost::algorithm::split(items, kLine, boost::algorithm::is_any_of(","));
        benchmark::DoNotOptimize(items.data());
    });
#endif
}

}  // namespace qel::bench
