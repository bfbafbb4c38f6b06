#include "commands/CalendarInput.h"

#include <algorithm>
#include <exception>
#include <string_view>
#include <vector>

#include "QelCalendar/Texts.h"

namespace qel::cli {

namespace {

constexpr std::size_t kPiece = std::size_t{64} << 10;
constexpr std::size_t kLargePiece = std::size_t{2} << 20;
constexpr std::uint64_t kLargeFrom = std::uint64_t{256} << 10;

// Calls `take` for all bytes of `input`, until it returns false.
template <class Input, class Take>
void readAll(Input& input, Take take) {
    std::vector<char> buffer(kPiece);
    std::uint64_t done = 0;
    while (const std::size_t got = input.read(buffer.data(), buffer.size()))
        if (!take(buffer.data(), got, done += got)) return;
}

// Fills `buffer` where the input has so much. What was read before a failure counts: the next call
// has the failure.
template <class Input>
std::size_t fill(Input& input, std::vector<char>& buffer, std::exception_ptr& failure) {
    if (failure != nullptr) std::rethrow_exception(failure);
    std::size_t size = 0;
    try {
        while (size < buffer.size()) {
            const std::size_t got =
                input.read(buffer.data() + size, std::min(kPiece, buffer.size() - size));
            if (got == 0) break;
            size += got;
        }
    } catch (const InputError&) {
        if (size == 0) throw;
        failure = std::current_exception();
    }
    return size;
}

// The same with pieces of kLargePiece after the first ones.
template <class Input, class Take>
void readLarge(Input& input, Take take) {
    std::vector<char> buffer(kPiece);
    std::exception_ptr failure;
    std::uint64_t done = 0;
    while (const std::size_t got = fill(input, buffer, failure)) {
        take(buffer.data(), got, done += got);
        if (done >= kLargeFrom) buffer.resize(kLargePiece);
    }
}

// Reads `input` up to where a calendar or an entry begins. Without one it throws what the file's
// first bytes seem to be.
template <class Input>
void findCalendar(Input& input, const std::string& name) {
    // Of each piece this much is looked at again with the next one: a line that begins an entry.
    constexpr std::size_t kOverlap = 80;
    std::string text;
    std::optional<qelcal_kind> first;
    bool found = false;
    readAll(input, [&](const char* bytes, std::size_t size, std::uint64_t) {
        text.append(bytes, size);
        const qelcal_kind kind = qelcal::recognise(text);
        if (!first) first = kind;
        found = kind == QELCAL_KIND_CALENDAR;
        if (text.size() > kOverlap) text.erase(0, text.size() - kOverlap);
        return !found;
    });
    if (!found)
        throw InputError(name + ": no calendar begins in it: it is " +
                         qelcal_kind_text(first.value_or(QELCAL_KIND_EMPTY)));
}

}  // namespace

CalendarInput::CalendarInput(Context& context, const CalendarFile& file)
    : context_(context), file_(file), input_(file.open(context)) {
    if (input_.size() != 0) {
        InputFile first = file.open(context);
        findCalendar(first, name());
        return;
    }
    spool_.emplace(input_);
    if (qelcal::recognise(std::string(spool_->head())) == QELCAL_KIND_CALENDAR) {
        const bool isPhoneFile = spool_->head().find("VERSION:1.0") != std::string_view::npos;
        kept_ = !isPhoneFile && spool_->keepAll();
        return;
    }
    // What there is no room for is read without a look.
    kept_ = spool_->keepAll();
    if (!kept_) return;
    findCalendar(*spool_, name());
    spool_->rewind();
}

void CalendarInput::read(const Take& scan, const Take& write) {
    const auto all = [this](auto& input, const Take& take) {
        if (large_) return readLarge(input, take);
        readAll(input, [&take](const char* bytes, std::size_t size, std::uint64_t done) {
            take(bytes, size, done);
            return true;
        });
    };
    if (!spool_) {
        InputFile first = file_.open(context_);
        all(first, scan);
        all(input_, write);
        return;
    }
    if (kept_) {
        all(*spool_, scan);
        spool_->rewind();
    }
    all(*spool_, write);
}

}  // namespace qel::cli
