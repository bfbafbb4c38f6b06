#include "commands/CalendarInput.h"

#include <string_view>
#include <vector>

#include "QelCalendar/Texts.h"

namespace qel::cli {

namespace {

constexpr std::size_t kPiece = std::size_t{64} << 10;

// Calls `take` for all bytes of `input`, until it returns false.
template <class Input, class Take>
void readAll(Input& input, Take take) {
    std::vector<char> buffer(kPiece);
    std::uint64_t done = 0;
    while (const std::size_t got = input.read(buffer.data(), buffer.size()))
        if (!take(buffer.data(), got, done += got)) return;
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
    const auto all = [](const Take& take) {
        return [&take](const char* bytes, std::size_t size, std::uint64_t done) {
            take(bytes, size, done);
            return true;
        };
    };
    if (!spool_) {
        InputFile first = file_.open(context_);
        readAll(first, all(scan));
        readAll(input_, all(write));
        return;
    }
    if (kept_) {
        readAll(*spool_, all(scan));
        spool_->rewind();
    }
    readAll(*spool_, all(write));
}

}  // namespace qel::cli
