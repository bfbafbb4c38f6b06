// Room for texts that end together: those of one entry, or of one calendar's head. Handing out is
// a few instructions, giving back is one for all of them. One thread.
#ifndef QEL_CALENDAR_BASE_ARENA_H
#define QEL_CALENDAR_BASE_ARENA_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace qel::calendar {

class Arena {
  public:
    // `size` bytes that stay where they are until clear(), not set to anything.
    [[nodiscard]] char* take(std::size_t size) {
        if (size > static_cast<std::size_t>(end_ - at_)) grow(size);
        char* const bytes = at_;
        at_ += size;
        return bytes;
    }

    // A copy that lasts until clear().
    [[nodiscard]] std::string_view keep(std::string_view text) {
        if (text.empty()) return {};
        char* const bytes = take(text.size());
        std::memcpy(bytes, text.data(), text.size());
        return {bytes, text.size()};
    }

    // Ends all that was handed out. One block stays for what comes next.
    void clear() {
        if (blocks_.empty()) return;
        blocks_.resize(1);
        at_ = blocks_.front().get();
        end_ = at_ + kBlock;
    }

  private:
    static constexpr std::size_t kBlock = 16384;

    void grow(std::size_t size) {
        // The first block is the one that stays: it has the usual size.
        if (blocks_.empty()) add(kBlock);
        if (size > static_cast<std::size_t>(end_ - at_)) add(size < kBlock ? kBlock : size);
    }

    void add(std::size_t size) {
        blocks_.push_back(std::make_unique_for_overwrite<char[]>(size));
        at_ = blocks_.back().get();
        end_ = at_ + size;
    }

    std::vector<std::unique_ptr<char[]>> blocks_;
    char* at_ = nullptr;
    char* end_ = nullptr;
};

}  // namespace qel::calendar

#endif
