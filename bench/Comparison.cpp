#include "Comparison.h"

namespace qel::bench {

std::vector<Entry>& entries() {
    static std::vector<Entry> all;
    return all;
}

std::string benchmarkName(const Work& work, const std::string& side) {
    return work.name + "/" + side;
}

Comparison::Comparison(Work work, std::function<bool()> same) : index_(entries().size()) {
    entries().push_back({std::move(work), std::move(same), -1, {}});
}

std::string Comparison::add(const std::string& side) {
    Entry& entry = entries()[index_];
    entry.sides.push_back(side);
    return benchmarkName(entry.work, side);
}

bool Comparison::agrees(std::size_t index) {
    Entry& entry = entries()[index];
    if (entry.agreement < 0) entry.agreement = entry.same() ? 1 : 0;
    return entry.agreement == 1;
}

}  // namespace qel::bench
