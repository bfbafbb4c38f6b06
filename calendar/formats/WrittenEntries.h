// Which entries a result already has, remembered by digests of their UIDs and contents. One thread.
#ifndef QEL_CALENDAR_FORMATS_WRITTENENTRIES_H
#define QEL_CALENDAR_FORMATS_WRITTENENTRIES_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <unordered_set>

namespace qel::calendar {

// 128 bits that say the same on every computer. Not safe from somebody who wants two texts to have
// one digest.
struct ContentDigest {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    bool operator==(const ContentDigest&) const = default;
};

[[nodiscard]] ContentDigest contentDigest(std::initializer_list<std::string_view> texts);

class WrittenEntries {
  public:
    enum class Found { Nothing, Same, OtherContent };

    // What is known of an entry, which is known from now on. Beyond kMost entries nothing more is
    // remembered. `key` is of what makes an entry one, `content` of that and the rest.
    Found add(const ContentDigest& key, const ContentDigest& content);

    static constexpr std::size_t kMost = 500000;

  private:
    struct Hash {
        std::size_t operator()(const ContentDigest& digest) const {
            return static_cast<std::size_t>(digest.low);
        }
    };
    std::unordered_set<ContentDigest, Hash> keys_;
    std::unordered_set<ContentDigest, Hash> contents_;
};

}  // namespace qel::calendar

#endif
