// Room for texts that are dropped together: those of one entry, or of a calendar's own properties.
// One thread.
#ifndef QEL_CALENDAR_BASE_ARENA_H
#define QEL_CALENDAR_BASE_ARENA_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace qel::calendar {

class Arena {
  public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    // A copy that is valid until clear().
    [[nodiscard]] std::string_view keep(std::string_view text) {
        if (text.empty()) return {};
        if (text.size() > left_) addBlock(text.size());
        char* const bytes = next_;
        std::memcpy(bytes, text.data(), text.size());
        next_ += text.size();
        left_ -= text.size();
        return {bytes, text.size()};
    }

    // Drops all copies. The first block stays for the next ones.
    void clear() {
        more_.clear();
        next_ = first_.get();
        left_ = kBlock;
    }

  private:
    static constexpr std::size_t kBlock = 16384;

    using Block = std::unique_ptr<char[]>;

    // Not std::make_unique: it would clear the bytes first.
    [[nodiscard]] static Block newBlock(std::size_t size) { return Block(new char[size]); }

    // Blocks grow with their number, so that a long text takes few of them.
    void addBlock(std::size_t least) {
        const std::size_t size =
            std::max(kBlock << std::min<std::size_t>(more_.size() + 1, 8), least);
        more_.push_back(newBlock(size));
        next_ = more_.back().get();
        left_ = size;
    }

    Block first_ = newBlock(kBlock);
    std::vector<Block> more_;
    char* next_ = first_.get();
    std::size_t left_ = kBlock;
};

}  // namespace qel::calendar

#endif
