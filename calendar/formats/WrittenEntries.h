// Which entries a result already has, remembered by digests of their UIDs and contents. One thread.
#ifndef QEL_CALENDAR_FORMATS_WRITTENENTRIES_H
#define QEL_CALENDAR_FORMATS_WRITTENENTRIES_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

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
    // Digests in one block of memory, each at the place that its bits say or at the next free one.
    class Digests {
      public:
        [[nodiscard]] bool contains(const ContentDigest& digest) const {
            return !places_.empty() && places_[placeOf(digest)] == digest;
        }
        // False when it is in already.
        bool insert(const ContentDigest& digest);
        [[nodiscard]] std::size_t size() const { return size_; }

      private:
        // Its own place, or the free one where it belongs. REQUIRES: a free place.
        [[nodiscard]] std::size_t placeOf(const ContentDigest& digest) const;
        void grow();

        std::vector<ContentDigest> places_;  // a power of two of them; free ones hold zeros
        std::size_t size_ = 0;
    };

    Digests keys_;
    Digests contents_;
};

}  // namespace qel::calendar

#endif
