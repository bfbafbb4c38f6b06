// An entry without a message was converted whole: every property of both formats, each with a word
// of its own, is found in the result or named by a message, in each place, twice, with and without
// parameters; and so is every property of the public files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

#include "calendar/Conversions.h"
#include "calendar/lines/Property.h"

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

// The result as a person could read it: without folds, as it stands and decoded, and the messages
// with their lines.
std::string readable(const Conversion& conversion) {
    std::string lines;
    for (const std::string& each : unfolded(conversion.out)) lines += each + "\r\n";
    lines += decoded(conversion.out);
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
        std::string word;    // of it alone
        std::string number;  // "line 7:"
    };
    std::string text;
    std::vector<Line> lines;

    void add(const std::string& more) {
        text += more;
        count_ += static_cast<std::size_t>(std::count(more.begin(), more.end(), '\n'));
    }
    void addProperties(const char* parameters) {
        for (int id = 0; id <= static_cast<int>(kLastPropertyName); ++id) {
            const Property& property = propertyOf(static_cast<PropertyName>(id));
            if (property.id == PropertyName::Begin || property.id == PropertyName::End ||
                property.id == PropertyName::Version || property.id == PropertyName::ProdId)
                continue;
            const std::string name =
                property.id == PropertyName::Unknown ? "BOGUS" : std::string(property.name);
            const std::string word = "word" + std::to_string(lines.size()) + "x";
            add(name + parameters + ":" + valueOf(property, word) + "\r\n");
            lines.push_back({name + parameters, word, "line " + std::to_string(count_) + ":"});
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
        for (const char* parameters : {"", ";X-Q=qqq", ";ENCODING=QUOTED-PRINTABLE"})
            for (const Place& place : places)
                for (const auto to : {CalendarFormat::ICalendar, CalendarFormat::VCalendar10}) {
                    const Generated file = generate(version, parameters, place.begin, place.end);
                    const std::string result = readable(convertText(file.text, to));
                    for (const Generated::Line& line : file.lines)
                        EXPECT_TRUE(result.find(line.word) != std::string::npos ||
                                    result.find(line.number) != std::string::npos)
                            << line.text << " in a " << place.name << ", " << version << " to "
                            << (to == CalendarFormat::ICalendar ? "2.0" : "1.0");
                }
}

}  // namespace
}  // namespace qel::test
