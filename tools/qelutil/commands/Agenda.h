// A calendar by days, as `qelutil show` prints it. One thread.
#ifndef QELUTIL_COMMANDS_AGENDA_H
#define QELUTIL_COMMANDS_AGENDA_H

#include <cstdint>
#include <iosfwd>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "QelCalendar/Entries.h"
#include "QelCalendar/Zones.h"
#include "base/Moment.h"

namespace qel::cli {

class Agenda {
  public:
    struct Range {
        std::optional<Time> since;
        std::optional<Time> through;
        // False: an entry is shown once, on its first date, with its rule in words.
        bool everyDate = false;
        std::size_t most = 0;  // dates of each entry from `since` on; 0: all
    };

    // Times that are known in UTC are shown in `zone`; without one, each on its own clock.
    Agenda(const Range& range, std::optional<qelcal::Zone> zone) : range_(range), zone_(zone) {}

    // The entry's occurrences in the range, one that began before it and goes on included; of an
    // entry that does not recur, its start or due time.
    [[nodiscard]] std::vector<Time> occurrencesOf(const qelcal::Entry& entry) const;
    void add(const qelcal::Entry& entry);

    // All entries have been added: an occurrence that another entry replaces is left out, the rest
    // is put in order, and all but the first `most` are dropped (0: none).
    void settle(std::size_t most);

    [[nodiscard]] bool empty() const { return lines_.empty(); }
    void writeDays(std::ostream& out) const;
    void writeMonths(std::ostream& out) const;

  private:
    struct Line {
        std::int64_t at = 0;   // seconds since 1900 on the clock that is shown; kDateless without
        std::int64_t end = 0;  // of an event that has one
        bool timed = false;    // what takes whole days comes first
        std::string uid;       // of a series, to find what is replaced
        std::string original;
        std::string when;  // "09:30-10:30"
        std::string what;
        std::string more;  // lines below it, each with its line end
    };
    static constexpr std::int64_t kDateless = INT64_MAX;

    [[nodiscard]] std::vector<Time> occurrencesInRange(const qelcal::Entry& entry) const;
    // What began before the range is shown on its first day.
    void addEnd(Line& line, const Time& start, const Time& last) const;
    [[nodiscard]] Time shown(const qelcal::Entry& entry, const Time& time) const;
    [[nodiscard]] Line lineOf(const qelcal::Entry& entry, const std::optional<Time>& at) const;
    [[nodiscard]] std::string whenText(const qelcal::Entry& entry,
                                       const std::optional<Time>& at) const;
    [[nodiscard]] std::string moreText(const qelcal::Entry& entry) const;

    Range range_;
    std::optional<qelcal::Zone> zone_;
    std::vector<Line> lines_;
    std::set<std::pair<std::string, std::string>> replaced_;  // UID and occurrence
};

}  // namespace qel::cli

#endif
