// Room for texts that are dropped together: those of one entry, or of a calendar's own properties.
// One thread.
#ifndef QEL_CALENDAR_BASE_ARENA_H
#define QEL_CALENDAR_BASE_ARENA_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <memory_resource>
#include <string_view>

namespace qel::calendar {

class Arena {
  public:
    // A copy that is valid until clear().
    [[nodiscard]] std::string_view keep(std::string_view text) {
        if (text.empty()) return {};
        void* const bytes = texts_.allocate(text.size(), 1);
        std::memcpy(bytes, text.data(), text.size());
        return {static_cast<const char*>(bytes), text.size()};
    }

    // Drops all copies. The first block stays for the next ones.
    void clear() { texts_.release(); }

  private:
    static constexpr std::size_t kBlock = 16384;

    std::unique_ptr<std::byte[]> first_ = std::make_unique_for_overwrite<std::byte[]>(kBlock);
    std::pmr::monotonic_buffer_resource texts_{first_.get(), kBlock};
};

}  // namespace qel::calendar

#endif
