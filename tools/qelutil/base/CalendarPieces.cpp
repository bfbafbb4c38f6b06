#include "base/CalendarPieces.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace qel::cli {

namespace {

constexpr std::string_view kEnd = "END:VCALENDAR\r\n";
constexpr std::string_view kFold = "\r\n ";

std::string unfolded(std::string_view text) {
    std::string whole;
    whole.reserve(text.size());
    std::size_t at = 0;
    for (std::size_t fold; (fold = text.find(kFold, at)) != std::string_view::npos;) {
        whole += text.substr(at, fold - at);
        at = fold + kFold.size();
    }
    return whole += text.substr(at);
}

// What follows `name` up to one of `ends`, wherever it is in `text`; `from` moves past it.
std::string valueAfter(std::string_view text, std::string_view name, std::string_view ends,
                       std::size_t& from) {
    const std::size_t start = text.find(name, from);
    if (start == std::string_view::npos) {
        from = start;
        return {};
    }
    const std::size_t begin = start + name.size();
    from = std::min(text.find_first_of(ends, begin), text.size());
    return std::string(text.substr(begin, from - begin));
}

// Entries with one UID.
struct Group {
    std::vector<std::string_view> entries;
    std::size_t size = 0;
    std::set<std::string> zones;
};

struct Calendar {
    std::string_view head;
    std::map<std::string, std::string_view> zones;
    std::vector<Group> groups;  // in the order of their first entries
};

void addEntry(Calendar& calendar, std::map<std::string, std::size_t>& groupOf,
              std::string_view entry) {
    const std::string text = unfolded(entry);
    std::size_t from = 0;
    const std::string uid = valueAfter(text, "\r\nUID:", "\r", from);
    std::size_t number = calendar.groups.size();
    if (!uid.empty()) number = groupOf.try_emplace(uid, number).first->second;
    if (number == calendar.groups.size()) calendar.groups.emplace_back();
    Group& group = calendar.groups[number];
    group.entries.push_back(entry);
    group.size += entry.size();
    for (from = 0; from < text.size();) {
        std::string zone = valueAfter(text, ";TZID=", ":;\r", from);
        if (!zone.empty()) group.zones.insert(std::move(zone));
    }
}

Calendar read(std::string_view text) {
    Calendar calendar;
    std::map<std::string, std::size_t> groupOf;
    std::size_t at = text.find("\r\nBEGIN:");
    calendar.head = text.substr(0, at == std::string_view::npos ? text.size() : at + 2);
    while (at != std::string_view::npos) {
        const std::size_t start = at + 2;
        const std::size_t lineEnd = text.find("\r\n", start);
        const std::string_view kind = text.substr(start + 6, lineEnd - start - 6);
        const std::string last = "\r\nEND:" + std::string(kind) + "\r\n";
        const std::size_t end = text.find(last, lineEnd);
        if (end == std::string_view::npos) break;
        const std::string_view part = text.substr(start, end + last.size() - start);
        if (kind == "VTIMEZONE") {
            std::size_t from = 0;
            calendar.zones.emplace(valueAfter(unfolded(part), "\r\nTZID:", "\r", from), part);
        } else {
            addEntry(calendar, groupOf, part);
        }
        at = end + last.size() - 2;
        if (!text.substr(at + 2).starts_with("BEGIN:")) break;
    }
    return calendar;
}

// One calendar in calendars of at most `most` bytes, added to `pieces`.
void addPieces(std::string_view text, std::size_t most, std::vector<std::string>& pieces) {
    const Calendar calendar = read(text);
    std::string body;
    std::set<std::string> used;
    std::size_t zones = 0;  // bytes of those used
    const auto zoneSize = [&](const std::string& name) {
        const auto zone = calendar.zones.find(name);
        return zone == calendar.zones.end() ? 0 : zone->second.size();
    };
    const auto seal = [&] {
        if (body.empty()) return;
        std::string piece(calendar.head);
        for (const auto& [name, zone] : calendar.zones)
            if (used.contains(name)) piece += zone;
        pieces.push_back((piece += body) += kEnd);
        body.clear();
        used.clear();
        zones = 0;
    };
    for (const Group& group : calendar.groups) {
        const auto extra = [&] {
            std::size_t size = 0;
            for (const std::string& zone : group.zones)
                if (!used.contains(zone)) size += zoneSize(zone);
            return size;
        };
        const std::size_t frame = calendar.head.size() + kEnd.size();
        if (frame + zones + body.size() + group.size + extra() > most) seal();
        zones += extra();
        used.insert(group.zones.begin(), group.zones.end());
        for (const std::string_view entry : group.entries) body += entry;
    }
    seal();
}

}  // namespace

std::vector<std::string> calendarPieces(std::string_view calendars, std::size_t most) {
    std::vector<std::string> pieces;
    while (!calendars.empty()) {
        // At a line's start: a text may end in the same words.
        const std::size_t end = calendars.find("\r\n" + std::string(kEnd));
        const std::size_t size =
            end == std::string_view::npos ? calendars.size() : end + 2 + kEnd.size();
        addPieces(calendars.substr(0, size), most, pieces);
        calendars.remove_prefix(size);
    }
    // Small ones together in a file.
    std::vector<std::string> files;
    for (std::string& piece : pieces)
        if (!files.empty() && files.back().size() + piece.size() <= most)
            files.back() += piece;
        else
            files.push_back(std::move(piece));
    return files;
}

}  // namespace qel::cli
