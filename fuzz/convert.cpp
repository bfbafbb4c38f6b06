// The whole converter, through the library's interface: any file converts, in pieces as in one,
// what it writes converts again without a loss of entries and without an error that was not
// reported before, notes are of lines that are there, its entries can be read, and no text becomes
// an entry's begin or end.
#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>

#include "Fuzz.h"
#include "QelCalendar/All.h"

using namespace qel::fuzz;

namespace {

constexpr std::size_t kWhole = static_cast<std::size_t>(-1);

// Calls `call` for the pieces of `text`, whose sizes come from the bytes of `sizes` in turn.
template <class Call>
void inPieces(const std::string& text, std::string_view sizes, Call call) {
    std::size_t turn = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t wanted =
            sizes.empty() ? kWhole : static_cast<unsigned char>(sizes[turn++ % sizes.size()]) + 1U;
        // A copy, so that the sanitizers see its end.
        const std::string piece = text.substr(at, wanted);
        call(piece.data(), piece.size());
        at += piece.size();
    }
}

struct Result {
    std::string text;
    std::string notes;
    std::set<std::string> errors;  // the names of notes of that severity
    std::uint64_t entries = 0;
    std::uint64_t twice = 0;  // entries that were not written again
    bool operator==(const Result&) const = default;
};

Result convertText(const std::string& text, qelcal_format to, std::string_view sizes) {
    Result result;
    const auto lines = std::count_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; });
    qelcal::Converter converter(
        to, [&](const char* bytes, std::size_t size) { result.text.append(bytes, size); });
    converter.onNote([&](const qelcal::Note& note) {
        FUZZ_CHECK(!note.text.empty());
        FUZZ_CHECK(note.line <= static_cast<std::size_t>(lines) + 1);
        // What is kept under such a name was reported when it was.
        const bool kept = note.text.starts_with("X-ICAL-") || note.text.starts_with("X-VCAL-");
        if (note.severity == QELCAL_ERROR && !kept) result.errors.insert(note.name);
        if (note.name == "entry-twice") ++result.twice;
        result.notes += std::to_string(note.line) + " " + note.text + "\n";
    });
    const auto scan = [&](const char* bytes, std::size_t size) { converter.scan(bytes, size); };
    const auto write = [&](const char* bytes, std::size_t size) { converter.write(bytes, size); };
    converter.beginFile("input");
    inPieces(text, sizes, scan);
    inPieces(text, sizes, write);
    converter.endFile();
    converter.finish();
    result.entries = converter.counts().entries;
    return result;
}

void checkLines(const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find("\r\n", at);
        FUZZ_CHECK(end != std::string::npos);
        at = end + 2;
    }
}

// Asks an entry for all that it has.
void look(const qelcal::Entry& entry) {
    FUZZ_CHECK(entry.kind() != 0 && entry.line() != 0);
    for (std::size_t i = 0; i < qelcal_entry_property_count(entry.get()); ++i) {
        const std::string name = qelcal_entry_property_name(entry.get(), i);
        FUZZ_CHECK(entry.has(name) && !entry.values(name).empty());
    }
    for (int which = QELCAL_START; which <= QELCAL_RECURRENCE_ID; ++which)
        if (entry.has(static_cast<qelcal_which_time>(which))) {
            const qelcal::Time time = entry.time(static_cast<qelcal_which_time>(which));
            FUZZ_CHECK(qelcal::Time::read(time.text()).seconds() == time.seconds());
        }
    for (const qelcal::Rules& rules : entry.rules())
        for (std::size_t i = 0; i < rules.count(); ++i) FUZZ_CHECK(!rules.words(i).empty());
    for (const qelcal_alarm& alarm : entry.alarms()) FUZZ_CHECK(alarm.text != nullptr);
    FUZZ_CHECK(entry.occurrences(3).size() <= 3);
    for (const qelcal::Note& note : entry.notes()) FUZZ_CHECK(!note.text.empty());
}

std::uint64_t entriesOf(const std::string& text, std::string_view sizes) {
    qelcal::Reader reader;
    std::uint64_t entries = 0;
    const auto take = [&] {
        for (; const qelcal::Entry entry = reader.next(); ++entries) look(entry);
    };
    const auto scan = [&](const char* bytes, std::size_t size) { reader.scan(bytes, size); };
    inPieces(text, sizes, scan);
    inPieces(text, sizes, [&](const char* bytes, std::size_t size) {
        reader.write(bytes, size);
        take();
    });
    reader.end();
    take();
    return entries;
}

// A text of words that look like structure, at any column.
std::string treacherous(std::string_view choices) {
    static constexpr std::string_view kWords[] = {"BEGIN:VEVENT",
                                                  "end:vevent",
                                                  "END:VCALENDAR",
                                                  "Begin:valarm",
                                                  "\n",
                                                  " ",
                                                  "=",
                                                  "DTSTART:20060101",
                                                  "\xC3\xBC",
                                                  ";",
                                                  "\\n",
                                                  "=0D=0A"};
    std::string text = "a";
    for (const char c : choices.substr(0, 500)) {
        const auto choice = static_cast<unsigned char>(c);
        if (choice < std::size(kWords))
            text += kWords[choice];
        else
            text.append(choice % 80U, 'x').append(kWords[choice % std::size(kWords)]);
    }
    return text + "z";
}

std::string descriptionOf(const std::string& calendar) {
    qelcal::Reader reader;
    reader.write(calendar.data(), calendar.size());
    reader.end();
    const qelcal::Entry entry = reader.next();
    FUZZ_CHECK(entry && entry.values("DESCRIPTION").size() == 1);
    const std::string text = entry.values("DESCRIPTION").front();
    FUZZ_CHECK(!reader.next());
    return text;
}

// Both ways and back, with the text as it was.
void checkTexts(std::string_view choices) {
    const std::string text = treacherous(choices);
    std::string escaped;
    for (const char c : text)
        if (c == '\n')
            escaped += "\\n";
        else
            (c == '\\' || c == ';' ? escaped += '\\' : escaped) += c;
    const std::string first =
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:1\r\nDTSTART:20050601T090000Z\r\n"
        "DESCRIPTION:" +
        escaped + "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    FUZZ_CHECK(descriptionOf(first) == text);
    const std::string phone = convertText(first, QELCAL_VCALENDAR, {}).text;
    FUZZ_CHECK(descriptionOf(phone) == text);
    FUZZ_CHECK(descriptionOf(convertText(phone, QELCAL_ICALENDAR, {}).text) == text);
}

// What is kept under such a name may be invalid, and gets its own name back: it was reported when
// it was kept, by another conversion than those here.
bool hasKeptNames(std::string_view text) {
    const auto same = [](char a, char b) {
        return std::toupper(static_cast<unsigned char>(a)) == b;
    };
    static constexpr std::string_view kPrefixes[] = {"X-VCAL-", "X-ICAL-"};
    return std::any_of(std::begin(kPrefixes), std::end(kPrefixes), [&](std::string_view each) {
        return std::search(text.begin(), text.end(), each.begin(), each.end(), same) != text.end();
    });
}

}  // namespace

QEL_FUZZ_TARGET(convert) {
    const bool toPhone = in.flag();
    const std::string text = in.text();
    // The end of the input is its last line and the sizes of its pieces.
    const std::string_view sizes =
        std::string_view(text).substr(text.size() - std::min<std::size_t>(text.size(), 8));
    const qelcal_format there = toPhone ? QELCAL_VCALENDAR : QELCAL_ICALENDAR;
    const qelcal_format back = toPhone ? QELCAL_ICALENDAR : QELCAL_VCALENDAR;
    const Result first = convertText(text, there, {});
    FUZZ_CHECK(convertText(text, there, sizes) == first);
    checkLines(first.text);
    const Result second = convertText(first.text, back, sizes);
    checkLines(second.text);
    FUZZ_CHECK(hasKeptNames(text) || std::includes(first.errors.begin(), first.errors.end(),
                                                   second.errors.begin(), second.errors.end()));
    FUZZ_CHECK(second.entries == first.entries - first.twice);
    FUZZ_CHECK(entriesOf(text, sizes) == first.entries);
    checkTexts(text);
}
