// A C++11 program on QelCalendar alone: converts the calendar that it reads, lists its entries with
// their next dates and explains a rule. calendar.c and calendar.py print the same.
#include <QelCalendar/All.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

namespace {

const std::size_t kPiece = 7;
const std::size_t kMostDates = 3;

void say(const std::string& text) {
    std::cout << text;
}

// Calendars come in pieces of any size: from a file, a network buffer, or as small as here.
template <class Sink>
void writeInPieces(Sink& sink, const std::string& input) {
    for (std::size_t from = 0; from < input.size(); from += kPiece)
        sink.write(input.data() + from, std::min(kPiece, input.size() - from));
}

void convert(const std::string& input) {
    qelcal::Converter converter(QELCAL_ICALENDAR, [](const char* bytes, std::size_t size) {
        say(std::string(bytes, size));
    });
    converter.beginFile("phone.vcs");
    writeInPieces(converter, input);
    converter.endFile();
    converter.finish();
}

void list(const std::string& input) {
    qelcal::Reader reader;
    writeInPieces(reader, input);
    reader.end();
    const qelcal::Time since = qelcal::Time::read("20050701");
    const qelcal::Time through = qelcal::Time::read("20071231");
    while (qelcal::Entry entry = reader.next()) {
        say(entry.text("SUMMARY") + ":");
        const std::vector<qelcal::Time> dates = entry.occurrences(since, through);
        for (std::size_t i = 0; i < std::min(kMostDates, dates.size()); ++i)
            say(" " + dates[i].text());
        say("\n");
    }
}

}  // namespace

int main() {
    try {
        const std::string input((std::istreambuf_iterator<char>(std::cin)),
                                std::istreambuf_iterator<char>());
        convert(input);
        list(input);
        const qelcal::Rules rules("W2 MO WE FR #10", qelcal::Time::read("20050615"));
        say(rules.text(QELCAL_FORM_ICALENDAR) + ": " + rules.words() + "\n");
    } catch (const std::exception& problem) {
        say(std::string(problem.what()) + "\n");
        return 1;
    }
}
