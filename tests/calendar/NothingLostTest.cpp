// An entry without a message was converted whole: every property of both formats, each with a word
// of its own, is found in the result or named by a message, in each place, twice, with and without
// parameters; and so is every text of the public files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>

#include "calendar/Conversions.h"
#include "calendar/lines/Property.h"
#include "support/TempDir.h"

namespace qel::test {
namespace {

using namespace qel::calendar;

// "=41" is A; a soft line break is nothing. What no encoding made stays as it is.
std::string decoded(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '=' || i + 2 >= text.size()) {
            result += text[i];
            continue;
        }
        const std::string digits = text.substr(i + 1, 2);
        if (digits == "\r\n") {
            i += 2;
        } else if (std::isxdigit(static_cast<unsigned char>(digits[0])) != 0 &&
                   std::isxdigit(static_cast<unsigned char>(digits[1])) != 0) {
            result += static_cast<char>(std::stoi(digits, nullptr, 16));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

// The result as a person could read it, without folds, as written and decoded.
std::string readable(const Conversion& conversion) {
    std::string lines;
    for (const std::string& each : unfolded(conversion.out)) lines += each + "\r\n";
    return lines + decoded(conversion.out);
}

std::string messagesOf(const Conversion& conversion) {
    std::string lines;
    for (const Note& each : conversion.messages)
        lines += "line " + std::to_string(each.line) + ": " + each.text() + "\n";
    return lines;
}

// Values that the properties of a type can have, with a word that can be found again; words are
// what invalid values are.
std::string valueOf(const Property& property, const std::string& word) {
    switch (property.id) {
        case PropertyName::Attach:
        case PropertyName::Url:
            return "http://example.com/" + word;
        case PropertyName::Attendee:
        case PropertyName::Organizer:
            return "MAILTO:" + word + "@example.com";
        default:
            return word;
    }
}

// A calendar with every property that is not structure in one place, twice.
struct Generated {
    struct Line {
        std::string text;
        std::string name;
        std::string word;  // of it alone
        std::string wordOfParameter;
        std::string number;  // "line 7:"
    };
    std::string text;
    std::vector<Line> lines;

    void add(const std::string& more) {
        text += more;
        count_ += static_cast<std::size_t>(std::count(more.begin(), more.end(), '\n'));
    }
    // A parameter that ends with "=" gets a word too.
    void addProperties(const char* parameters) {
        for (int id = 0; id <= static_cast<int>(kLastPropertyName); ++id) {
            const Property& property = propertyOf(static_cast<PropertyName>(id));
            if (property.id == PropertyName::Begin || property.id == PropertyName::End ||
                property.id == PropertyName::Version || property.id == PropertyName::ProdId)
                continue;
            const std::string name =
                property.id == PropertyName::Unknown ? "BOGUS" : std::string(property.name);
            const std::string word = "word" + std::to_string(lines.size()) + "x";
            std::string own = parameters;
            std::string wordOfParameter;
            if (own.ends_with('=')) own += wordOfParameter = "par" + word;
            add(name + own + ":" + valueOf(property, word) + "\r\n");
            lines.push_back(
                {name + own, name, word, wordOfParameter, "line " + std::to_string(count_) + ":"});
        }
    }

  private:
    std::size_t count_ = 0;
};

Generated generate(const char* version, const char* parameters, const char* begin,
                   const char* end) {
    Generated file;
    file.add(std::string("BEGIN:VCALENDAR\r\nVERSION:") + version + "\r\n" + begin);
    for (int twice = 0; twice < 2; ++twice) file.addProperties(parameters);
    file.add(std::string(end) + "END:VCALENDAR\r\n");
    return file;
}

TEST(NothingLost, EveryPropertyInEveryPlace) {
    struct Place {
        const char* name;
        const char* begin;
        const char* end;
    };
    const Place places[] = {
        {"event", "BEGIN:VEVENT\r\nUID:u\r\nDTSTART:20050615T090000\r\n", "END:VEVENT\r\n"},
        {"to-do", "BEGIN:VTODO\r\n", "END:VTODO\r\n"},
        {"journal", "BEGIN:VJOURNAL\r\n", "END:VJOURNAL\r\n"},
        {"note", "BEGIN:VNOTE\r\n", "END:VNOTE\r\n"},
        {"alarm",
         "BEGIN:VEVENT\r\nDTSTART:20050615T090000\r\nBEGIN:VALARM\r\nACTION:DISPLAY\r\n"
         "TRIGGER:-PT15M\r\nDESCRIPTION:one\r\n",
         "END:VALARM\r\nEND:VEVENT\r\n"},
        {"calendar before its entries", "",
         "BEGIN:VEVENT\r\nDTSTART:20050615T090000\r\nEND:VEVENT\r\n"},
        {"calendar after its entries", "BEGIN:VEVENT\r\nDTSTART:20050615T090000\r\nEND:VEVENT\r\n",
         ""},
    };
    for (const char* version : {"1.0", "2.0"})
        for (const char* parameters : {"", ";X-Q=", ";FMTTYPE=", ";ENCODING=QUOTED-PRINTABLE"})
            for (const Place& place : places)
                for (const auto to : {CalendarFormat::ICalendar, CalendarFormat::VCalendar10}) {
                    const Generated file = generate(version, parameters, place.begin, place.end);
                    const Conversion converted = convertText(file.text, to);
                    const std::string result = readable(converted);
                    const std::string messages = messagesOf(converted);
                    const auto says = [&messages](const std::string& text) {
                        return messages.find(text) != std::string::npos;
                    };
                    // One message names all parts of an alarm that a phone's format has no room
                    // for.
                    const bool named = to == CalendarFormat::VCalendar10 &&
                                       std::string_view(place.name) == "alarm";
                    for (const Generated::Line& line : file.lines)
                        for (const std::string& word : {line.word, line.wordOfParameter})
                            EXPECT_TRUE(result.find(word) != std::string::npos ||
                                        says(line.number) || says(word) ||
                                        (named && says(line.name)))
                                << line.text << " in a " << place.name << ", " << version << " to "
                                << (to == CalendarFormat::ICalendar ? "2.0" : "1.0");
                }
}

// Where lines were broken within a text; what stands on both sides of it may be one word.
constexpr char kBreak = '\x01';

// The ASCII words of what a person reads, in lower case; parts of words of other characters and
// those at a break are not looked at.
std::vector<std::string> wordsOf(const std::string& text) {
    const auto isLetter = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
    // A letter after a byte above 127 may be the second half of a character.
    const auto isEdge = [](char c) { return c != kBreak && static_cast<unsigned char>(c) < 0x80; };
    std::vector<std::string> words;
    std::string word;
    char before = ' ';
    for (const char c : text + " ") {
        if (isLetter(c)) {
            word += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            continue;
        }
        const bool whole = isEdge(before) && isEdge(c);
        if (word.size() >= 3 && whole && word != "mailto") words.push_back(word);
        word.clear();
        before = c;
    }
    return words;
}

// With the breaks of folded and of quoted-printable lines made kBreak.
std::string joined(std::string_view lines, bool marked) {
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i] == '\r') continue;
        const bool soft = lines[i] == '\n' && !text.empty() && text.back() == '=';
        const bool fold = lines[i] == '\n' && i + 1 < lines.size() &&
                          (lines[i + 1] == ' ' || lines[i + 1] == '\t');
        if (soft) text.pop_back();
        if (fold) ++i;
        if (!soft && !fold)
            text += lines[i];
        else if (marked)
            text += kBreak;
    }
    return text;
}

// Looks at every entry on its way, and collects the lines of which words are missing.
class WordsMissing : public ConversionObserver {
  public:
    [[nodiscard]] bool wantsLines() const override { return true; }
    void entryConverted(const ConvertedEntry& converted) override {
        if (converted.sourceCut || !converted.notes.empty()) return;
        ++entries;
        std::string written;
        const std::string lines = joined(converted.written, false);
        for (const std::string& each : wordsOf(decoded(lines) + " " + unescapedText(lines)))
            written += each + " ";
        std::istringstream source(joined(converted.source, true));
        for (std::string line; std::getline(source, line);) {
            const std::size_t colon = line.find(':');
            if (colon == std::string::npos || !isOfEntry(line.substr(0, colon))) continue;
            for (const std::string& word : wordsOf(unescapedText(decoded(line.substr(colon + 1)))))
                if (written.find(word) == std::string::npos) missing += word + " of " + line + "\n";
        }
    }

    std::size_t entries = 0;
    std::string missing;

  private:
    static std::string unescapedText(std::string text) {
        for (const char* each : {"\\n", "\\N"})
            for (std::size_t at; (at = text.find(each)) != std::string::npos;)
                text.replace(at, 2, "  ");
        return text;
    }
    // Texts: dates, rules and alarms are compared by what they mean elsewhere.
    static bool isOfEntry(std::string head) {
        std::transform(head.begin(), head.end(), head.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        const Property& property =
            propertyOf(propertyName(std::string_view(head).substr(0, head.find(';'))));
        return property.id != PropertyName::Begin && property.id != PropertyName::End &&
               property.id != PropertyName::Transp && property.held == HeldAs::Property &&
               head.find("BASE64") == std::string::npos;
    }
};

TEST(NothingLost, TextsOfThePublicFiles) {
    std::size_t entries = 0;
    for (const char* folder : {"vcs", "ics"})
        for (const auto to : {CalendarFormat::ICalendar, CalendarFormat::VCalendar10})
            for (const auto& file : publicFiles(folder)) {
                SCOPED_TRACE(file.filename().string());
                WordsMissing words;
                (void)convertText(readFile(file.string()), to, 4096, &words);
                EXPECT_EQ(words.missing, "");
                entries += words.entries;
            }
    if (entries == 0) GTEST_SKIP() << "no public files at " << QEL_TEST_SHARED_DATA;
}

}  // namespace
}  // namespace qel::test
