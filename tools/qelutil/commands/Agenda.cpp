#include "commands/Agenda.h"

#include <algorithm>
#include <ostream>
#include <sstream>

#include "base/RuleDates.h"
#include "base/Terminal.h"
#include "base/Text.h"

namespace qel::cli {

namespace {

constexpr std::size_t kWhenColumns = 13;
constexpr std::size_t kLongestText = 200;  // of one line
constexpr int kMostDaysMarked = 366;       // of one event

std::string clockText(const Time& time) {
    const auto two = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    return two(time.hour) + ":" + two(time.minute);
}

std::string dayText(const Time& time) {
    return std::to_string(time.day) + " " + qelcal::monthName(time.month) + " " +
           std::to_string(time.year);
}

bool isDate(const Time& time) {
    return time.is_date != 0;
}

std::optional<Time> timeOf(const qelcal::Entry& entry, qelcal_which_time which) {
    if (!entry.has(which)) return std::nullopt;
    return entry.time(which);
}

// What places an entry in the calendar.
std::optional<Time> placeOf(const qelcal::Entry& entry) {
    const auto start = timeOf(entry, QELCAL_START);
    return start ? start : timeOf(entry, QELCAL_DUE);
}

// The first line of a text, as it is shown.
std::string firstLine(const std::string& text) {
    return printable(std::string_view(text).substr(0, text.find('\n')), kLongestText);
}

// In the column of titles, as narrow as the terminal; programs read whole lines.
std::string inColumn(const std::string& text) {
    if (!outputIsRead()) return text;
    return wrapped(text, static_cast<std::size_t>(outputWidth()), kWhenColumns + 2);
}

// Nothing outside the years that calendars have.
std::optional<Time> moved(const Time& time, std::int64_t seconds) {
    qelcal_time result{};
    if (qelcal_time_add(&time, seconds, &result) != QELCAL_OK) return std::nullopt;
    return Time(result);
}

// The time that lies as far from `at` as the entry's end from its start.
std::optional<Time> endFor(const qelcal::Entry& entry, const Time& at) {
    const auto start = timeOf(entry, QELCAL_START);
    const auto end = timeOf(entry, QELCAL_END_TIME);
    std::int64_t length = 0;
    if (start && end)
        length = end->seconds() - start->seconds();
    else if (qelcal_entry_duration(entry.get(), &length) != QELCAL_OK)
        return std::nullopt;
    return moved(at, length);
}

// The day of a moment, from 1 January 1900 on, also before it.
std::int64_t dayOf(std::int64_t seconds) {
    return seconds / kDaySeconds - (seconds % kDaySeconds < 0 ? 1 : 0);
}

}  // namespace

std::vector<Time> Agenda::occurrencesInRange(const qelcal::Entry& entry) const {
    const Time since = range_.since.value_or(dateOf(0));
    std::vector<Time> all;
    const auto end = endFor(entry, since);
    if (end && entry.kind() == QELCAL_EVENT && end->seconds() > since.seconds()) {
        const std::int64_t length = end->seconds() - since.seconds();
        const auto earliest = moved(since, -length);
        const auto justBefore =
            moved(since.is_date != 0 ? momentAt(since.seconds(), false) : since, -1);
        if (earliest && justBefore) all = entry.occurrences(*earliest, *justBefore);
        std::erase_if(all,
                      [&](const Time& each) { return each.seconds() + length <= since.seconds(); });
    }
    for (const Time& each :
         entry.occurrences(since, range_.through.value_or(dateOf(kLastDay)), range_.most))
        all.push_back(each);
    return all;
}

std::vector<Time> Agenda::occurrencesOf(const qelcal::Entry& entry) const {
    if (!range_.everyDate) {
        auto first = entry.occurrences(1);
        if (!first.empty()) return first;
    } else if (entry.has(QELCAL_START)) {
        return occurrencesInRange(entry);
    }
    const std::optional<Time> place = placeOf(entry);
    if (!place) return {};
    const auto day = [](const Time& time) { return codeDateOf(time); };
    const bool inside = (!range_.since || day(*place) >= day(*range_.since)) &&
                        (!range_.through || day(*place) <= day(*range_.through));
    return inside ? std::vector<Time>{*place} : std::vector<Time>{};
}

Time Agenda::shown(const qelcal::Entry& entry, const Time& time) const {
    if (!zone_ || isDate(time) || time.clock == QELCAL_FLOATING) return time;
    try {
        const Time utc = isUtc(time) ? time : entry.utc(time);
        Time local = utc.plus(zone_->offset(utc.seconds()));
        local.clock = QELCAL_FLOATING;
        return local;
    } catch (const qelcal::Error&) {
        return time;  // its zone is unknown, or it is too far away
    }
}

std::string Agenda::whenText(const qelcal::Entry& entry, const std::optional<Time>& at) const {
    if (entry.kind() == QELCAL_JOURNAL) return "note";
    if (!at) return entry.kind() == QELCAL_TODO ? "to do" : "";
    const Time start = shown(entry, *at);
    if (entry.kind() == QELCAL_TODO) {
        const bool isDue = !entry.has(QELCAL_START);
        return std::string(isDue ? "due" : "to do") + (isDate(start) ? "" : " " + clockText(start));
    }
    if (entry.allDay() || isDate(start)) return "all day";
    const std::optional<Time> end = endFor(entry, *at);
    std::string text = clockText(start);
    if (!end || end->seconds() <= at->seconds()) return text;
    const Time last = shown(entry, *end);
    return text + "-" + clockText(last);
}

std::string Agenda::moreText(const qelcal::Entry& entry) const {
    std::string more;
    const auto add = [&more](const std::string& text) {
        if (!text.empty()) more += text + "\n";
    };
    add(firstLine(entry.text("LOCATION")));
    if (range_.everyDate) return more;
    for (const qelcal::Rules& rules : entry.rules())
        for (std::size_t i = 0; i < rules.count(); ++i) add(rules.words(i));
    return more;
}

Agenda::Line Agenda::lineOf(const qelcal::Entry& entry, const std::optional<Time>& at) const {
    Line line;
    line.when = whenText(entry, at);
    line.what = firstLine(entry.text("SUMMARY"));
    if (line.what.empty()) line.what = firstLine(entry.text("DESCRIPTION"));
    if (line.what.empty()) line.what = "(without a title)";
    line.more = moreText(entry);
    line.at = kDateless;
    if (!at) return line;
    const Time start = shown(entry, *at);
    line.at = start.seconds();
    line.timed = !isDate(start) && !entry.allDay();
    if (line.timed && isUtc(start))
        line.what += " (UTC)";
    else if (line.timed && start.clock == QELCAL_ZONED && !entry.zone().empty())
        line.what += " (" + firstLine(entry.zone()) + ")";
    const std::optional<Time> end = endFor(entry, *at);
    if (end && entry.kind() == QELCAL_EVENT && end->seconds() > at->seconds())
        addEnd(line, start, shown(entry, line.timed ? *end : moved(*end, -1).value_or(*end)));
    if (!entry.has(QELCAL_RECURRENCE_ID)) {
        line.uid = entry.uid();
        line.original = at->text();
    }
    return line;
}

// The day after the last one ends whole days: `last` is before it.
void Agenda::addEnd(Line& line, const Time& start, const Time& last) const {
    line.end = last.seconds() - (line.timed ? 1 : 0);
    int day = codeDateOf(start);
    if (range_.since && start.seconds() < range_.since->seconds()) {
        day = codeDateOf(*range_.since);
        const bool endsThen = line.timed && codeDateOf(last) == day;
        line.when = endsThen ? "until " + clockText(last) : "goes on";
        line.what += ", since " + dayText(start);
        line.at = range_.since->seconds();
        line.timed = false;
    }
    if (codeDateOf(last) > day) line.what += ", until " + dayText(last);
}

void Agenda::add(const qelcal::Entry& entry) {
    if (entry.has(QELCAL_RECURRENCE_ID))
        replaced_.emplace(entry.uid(), entry.time(QELCAL_RECURRENCE_ID).text());
    for (const Time& each : occurrencesOf(entry)) lines_.push_back(lineOf(entry, each));
    if (!placeOf(entry) && !range_.everyDate) lines_.push_back(lineOf(entry, std::nullopt));
}

void Agenda::settle(std::size_t most) {
    std::erase_if(
        lines_,
        [this](const Line& line) {
            return !line.uid.empty() && replaced_.contains({line.uid, line.original});
        });
    std::stable_sort(lines_.begin(), lines_.end(), [](const Line& one, const Line& other) {
        const auto day = [](const Line& line) {
            return line.at == kDateless ? kDateless : dayOf(line.at);
        };
        if (day(one) != day(other)) return day(one) < day(other);
        if (one.timed != other.timed) return other.timed;
        return one.timed && one.at < other.at;
    });
    if (most != 0 && lines_.size() > most) lines_.resize(most);
}

void Agenda::writeDays(std::ostream& out) const {
    const bool highlight = outputHighlights();
    std::int64_t last = -1;
    for (const Line& line : lines_) {
        const std::int64_t day = line.at == kDateless ? kDateless : dayOf(line.at);
        if (day != last) {
            const Time date = day == kDateless ? Time() : dateOf(static_cast<int>(day));
            const std::string title =
                day == kDateless ? "Without a date"
                                 : qelcal::weekdayName(date.weekday()) + ", " + dayText(date);
            out << (last == -1 ? "" : "\n") << (highlight ? "\x1b[1m" : "") << title
                << (highlight ? "\x1b[0m" : "") << "\n";
            last = day;
        }
        const std::size_t gap =
            line.when.size() < kWhenColumns ? kWhenColumns - line.when.size() : 1;
        out << "  " << line.when << std::string(gap, ' ') << inColumn(line.what) << "\n";
        std::istringstream more(line.more);
        for (std::string each; std::getline(more, each);)
            out << std::string(kWhenColumns + 2, ' ') << inColumn(each) << "\n";
    }
}

void Agenda::writeMonths(std::ostream& out) const {
    std::vector<int> days;
    for (const Line& line : lines_) {
        if (line.at < 0 || line.at >= kEndOfTime) continue;
        const int first = codeDateOf(momentAt(line.at, false));
        int last = line.end > line.at && line.end < kEndOfTime
                       ? codeDateOf(momentAt(line.end, false))
                       : first;
        // What goes on for years need not fill a page for each.
        last = std::min(last, first + kMostDaysMarked);
        if (range_.through) last = std::min(last, std::max(first, codeDateOf(*range_.through)));
        for (int day = first; day <= last; ++day) days.push_back(day);
    }
    std::sort(days.begin(), days.end());
    days.erase(std::unique(days.begin(), days.end()), days.end());
    writeDateGrids(out, listed(days));
}

}  // namespace qel::cli
