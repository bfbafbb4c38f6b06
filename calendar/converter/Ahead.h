// Spans of a file that several threads read before their turn. One thread owns it.
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

// A `Span` has `bytes`, and clear(), after which nobody has read it. A `Reader` has read(Span&),
// which may throw; then the span is cleared.
template <typename Span, typename Reader>
class Ahead {
  public:
    // A reader for each thread; `member` is another number for each of them.
    using MakeReader = std::function<std::unique_ptr<Reader>(std::size_t member)>;

    // So many threads, with the owner's. A span has at least `size` bytes: enough to take longer
    // than it takes to hand them to another thread, and few enough for a processor's nearer memory.
    Ahead(std::size_t threads, std::size_t size, const MakeReader& makeReader) : size_(size) {
        while (readers_.size() < threads) readers_.push_back(makeReader(readers_.size()));
        while (spans_.size() < kSpans * threads) spans_.push_back(std::make_unique<Span>());
    }

    // Has threads read the bytes in spans, and gives these to `owner` in their order: take(Span&).
    // The threads end before this does. What cannot be read before its turn goes to the owner's
    // readAlone(), from one cut to another. Gives what is after the last cut.
    //
    // The owner's isBetween() says whether it knows what a span needs to know of what is before it,
    // once that has been read; lines() is how many lines were read; begin(Span&, lines) tells a
    // span what is known of what is before it, as far as that is known by now. What was wrong with
    // that the owner sees when it takes the span.
    template <typename Owner>
    [[nodiscard]] std::string_view read(std::string_view bytes, Owner& owner);

    // At any time: reads no more of what was given, and returns when nobody reads.
    void giveUp() {
        if (!crew_) return;
        from_.store(given_, std::memory_order_relaxed);
        crew_->wait();
    }

  private:
    // Spans for each thread: enough to do while one of them takes long.
    static constexpr std::size_t kSpans = 4;
    // A span of a larger entry is read alone: what is made of its bytes may take a hundred times
    // their memory.
    static constexpr std::size_t kLargestEntry = std::size_t{32} << 10;

    // While it lives there are threads.
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
    // What cannot be read for want of memory is read in its turn, which says so.
    void readSpan(std::size_t number, std::size_t member) {
        Span& span = *spans_[number % spans_.size()];
        try {
            if (number >= from_.load(std::memory_order_relaxed)) readers_[member]->read(span);
        } catch (...) {
            span.clear();
        }
    }

    const std::size_t size_;
    // Each number's span has its place in turn.
    std::vector<std::unique_ptr<Span>> spans_;
    std::size_t given_ = 0;
    std::size_t taken_ = 0;
    std::atomic<std::size_t> from_ = 0;             // those below this number are not read any more
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
