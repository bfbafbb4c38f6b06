// The tables of the code pages that are not UTF-8. iconv(3) fills a row when a text first needs it,
// once for the process. Any thread.
#ifndef QEL_PLATFORM_POSIX_CODEPAGETABLES_H
#define QEL_PLATFORM_POSIX_CODEPAGETABLES_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace qel::platform {

// Rows of 256 entries that are filled on demand, by any thread.
template <typename Entry>
class Rows {
  public:
    using Row = std::array<Entry, 256>;

    // `fill(row)` gives false when it cannot; then, and only then, the result is null.
    template <typename Fill>
    const Row* row(std::size_t index, Fill fill) {
        if (ready_[index].load(std::memory_order_acquire)) [[likely]]
            return &rows_[index];
        return filledRow(index, fill);
    }

  private:
    template <typename Fill>
    [[gnu::noinline]] const Row* filledRow(std::size_t index, Fill fill) {
        const std::lock_guard<std::mutex> lock(filling_);
        if (!ready_[index].load(std::memory_order_relaxed)) {
            if (!fill(rows_[index])) return nullptr;
            ready_[index].store(true, std::memory_order_release);
        }
        return &rows_[index];
    }

    std::mutex filling_;
    std::array<std::atomic<bool>, 256> ready_{};
    std::array<Row, 256> rows_{};
};

// A page whose characters have one byte or two, and one UTF-16 unit each. 0 means nothing,
// except in the places of U+0000.
class Page {
  public:
    explicit Page(const char* name) : name_(name) {}

    // The units of the single bytes, or of the second bytes after `lead`; null when iconv has no
    // memory or no such page.
    const Rows<char16_t>::Row* singles() {
        // Byte 0 begins no pair, so its row holds the single bytes.
        return units_.row(0, [this](auto& row) { return fillUnits(-1, row); });
    }
    const Rows<char16_t>::Row* pairs(unsigned char lead) {
        if (lead == 0) return nullptr;
        return units_.row(lead, [this, lead](auto& row) { return fillUnits(lead, row); });
    }
    // The bytes of the units from `high` * 256 on: one below 256, else two with the lead on top.
    const Rows<std::uint16_t>::Row* codes(std::size_t high) {
        return codes_.row(
            high, [this, high](auto& row) { return fillCodes(high, row); });
    }

  private:
    bool fillUnits(int lead, Rows<char16_t>::Row& row) const;
    bool fillCodes(std::size_t high, Rows<std::uint16_t>::Row& row) const;

    const char* name_;
    Rows<char16_t> units_;
    Rows<std::uint16_t> codes_;
};

// Null for a page that has no table.
Page* pageOf(std::uint32_t codePage);

}  // namespace qel::platform

#endif
