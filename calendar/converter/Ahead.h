// Several threads read a file ahead, in spans, which their owner takes in the order of the file.
// One thread owns it.
#ifndef QEL_CALENDAR_CONVERTER_AHEAD_H
#define QEL_CALENDAR_CONVERTER_AHEAD_H

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "calendar/base/ByteSearch.h"
#include "calendar/converter/Crew.h"
#include "calendar/converter/FileCuts.h"

namespace qel::calendar {

// A `Span` has `bytes`, and clear(), which makes it one that was not read. A `Reader` has
// read(Span&); when that throws, the span is cleared.
template <typename Span, typename Reader>
class Ahead {
  public:
    // Makes the reader of one thread; threads are numbered by `member`.
    using MakeReader = std::function<std::unique_ptr<Reader>(std::size_t member)>;

    // `threads` counts the owner's too. A span has at least `size` bytes: enough that reading them
    // takes longer than handing them over, and few enough to stay in a core's cache.
    Ahead(std::size_t threads, std::size_t size, const MakeReader& makeReader) : size_(size) {
        while (readers_.size() < threads) readers_.push_back(makeReader(readers_.size()));
        while (spans_.size() < kSpans * threads) spans_.push_back(std::make_unique<Span>());
    }

    // Cuts the bytes into spans, has them read, and passes them to the owner in order. The threads
    // end before this returns. Returns the bytes after the last cut, which nobody has read.
    //
    // The owner has these functions, which are called on its own thread:
    //   isBetween()         true when the file stands between two entries, and enough of it is
    //   known
    //                       to read on from there
    //   lines()             how many lines of the file it has read
    //   begin(span, lines)  fills in what a span's reader has to know: a guess, while spans before
    //   it
    //                       have not been taken. `lines` come before it.
    //   take(span)          uses what was read, or reads the bytes again where the guess was wrong
    //   readAlone(bytes)    reads bytes that were not read ahead, up to a cut
    template <typename Owner>
    [[nodiscard]] std::string_view read(std::string_view bytes, Owner& owner);

    // Stops reading ahead what was given so far, and returns when no thread reads. At any time.
    void giveUp() {
        if (!crew_) return;
        from_.store(given_, std::memory_order_relaxed);
        crew_->wait();
    }

  private:
    // Spans for each thread, so that all are busy while one span takes long.
    static constexpr std::size_t kSpans = 4;
    // A larger entry is not read ahead: in memory it may be a hundred times its size.
    static constexpr std::size_t kLargestEntry = std::size_t{32} << 10;

    // The threads run while it lives.
    struct Call {
        explicit Call(Ahead& owner) : ahead(owner) {
            ahead.given_ = 0;
            ahead.taken_ = 0;
            ahead.from_ = 0;
            ahead.crew_.emplace(ahead.readers_.size(),
                                [&owner](std::size_t number, std::size_t member) {
                                    owner.readSpan(number, member);
                                });
        }
        ~Call() {
            ahead.crew_.reset();
            for (const auto& each : ahead.spans_) each->clear();
        }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

        Ahead& ahead;
    };

    [[nodiscard]] bool isEmpty() const { return crew_->open() == 0; }
    [[nodiscard]] bool isFull() const { return crew_->open() + 1 == spans_.size(); }
    template <typename Owner>
    void takeFirst(Owner& owner) {
        crew_->take();
        owner.take(*spans_[taken_++ % spans_.size()]);
    }
    // When memory ends the span counts as unread; reading it in its turn reports that.
    void readSpan(std::size_t number, std::size_t member) {
        Span& span = *spans_[number % spans_.size()];
        try {
            if (number >= from_.load(std::memory_order_relaxed)) readers_[member]->read(span);
        } catch (...) {
            span.clear();
        }
    }

    const std::size_t size_;
    // Span number n is at n modulo their count.
    std::vector<std::unique_ptr<Span>> spans_;
    std::size_t given_ = 0;
    std::size_t taken_ = 0;
    std::atomic<std::size_t> from_ = 0;             // spans below this number are not read any more
    std::vector<std::unique_ptr<Reader>> readers_;  // of each member of the crew
    std::optional<Crew> crew_;
};

template <typename Span, typename Reader>
template <typename Owner>
std::string_view Ahead<Span, Reader>::read(std::string_view bytes, Owner& owner) {
    const Call call(*this);
    std::size_t lines = 0;  // before what is given next
    while (!bytes.empty()) {
        const bool waits = !isEmpty();
        const bool isKnown = waits || owner.isBetween();
        const std::size_t end = nextCut(bytes, isKnown ? size_ - 1 : 0);
        if (end == bytes.npos) break;
        const std::string_view some = bytes.substr(0, end);
        bytes.remove_prefix(end);
        if (!isKnown || some.size() > std::max(kLargestEntry, 4 * size_)) {
            while (!isEmpty()) takeFirst(owner);
            owner.readAlone(some);
            continue;
        }
        if (!waits) lines = owner.lines();
        if (isFull()) takeFirst(owner);
        Span& span = *spans_[given_++ % spans_.size()];
        span.clear();
        span.bytes = some;
        owner.begin(span, lines);
        crew_->give();
        lines += countOf(some, '\n');
    }
    while (!isEmpty()) takeFirst(owner);
    return bytes;
}

}  // namespace qel::calendar

#endif
