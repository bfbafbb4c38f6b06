// From components of a file to entries: what the readers of both formats share. They are lenient,
// as files are: an iCalendar property in a vCalendar 1.0 file is read, and the other way round. One
// thread.
#ifndef QEL_CALENDAR_FORMATS_ENTRYREADER_H
#define QEL_CALENDAR_FORMATS_ENTRYREADER_H

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "calendar/base/Choices.h"
#include "calendar/entries/Entry.h"
#include "calendar/lines/CalendarReader.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/zones/WorldZones.h"

namespace qel::calendar {

using ZonesById = std::map<std::string, ZonePtr, std::less<>>;

// The zones that a file may name.
struct KnownZones {
    const ZonesById* described;  // in the file, by TZID
    WorldZones world;
};

// The start of a series, for the entries that replace single dates of it.
struct SeriesStart {
    Moment start;
    ZonePtr zone;
    bool oneTime = true;  // all of its dates are at the start's time of day
};

// Reads the entries of one file. A zone that the file does not describe is reported once.
class EntryReader {
  public:
    // REQUIRES: `zones` and `choices` outlive the reader.
    EntryReader(KnownZones& zones, const Choices& choices, NoteSink sink);
    virtual ~EntryReader() = default;
    EntryReader(const EntryReader&) = delete;
    EntryReader& operator=(const EntryReader&) = delete;

    // The entry of a VEVENT, VTODO, VJOURNAL or VNOTE, which lasts until the next one is read; null
    // for other components, which are reported. `zone` is the one of the calendar's TZ line, or
    // null.
    [[nodiscard]] Entry* read(const Component& component, const ZonePtr& zone);

    // Of what was reported once for the file: it is not reported again.
    struct Reported {
        // By TZID; null for one that means no zone. It may be shared, and is not changed then.
        std::shared_ptr<ZonesById> undescribed = std::make_shared<ZonesById>();
        bool positionOrder = false;
    };
    [[nodiscard]] const Reported& reported() const { return *reported_; }

    // From here on this reader reads entries before their turn, where `reported`, which must
    // outlive that, is known of the ones before.
    void readAhead(const Reported& reported) {
        reported_ = &reported;
        ahead_ = true;
    }
    // True when the entry that was read last depends on more than that: what was read is of no use.
    [[nodiscard]] bool dependsOnOthers() const { return dependsOnOthers_; }
    // The series that the entry read last is, which the file's own reader is given in its turn.
    [[nodiscard]] std::optional<SeriesStart>& series() { return series_; }
    void remember(const std::string& uid, SeriesStart&& series);

    // The zone that was chosen for times without one, or null.
    [[nodiscard]] const ZonePtr& chosenZone() const { return chosenZone_; }

  protected:
    [[nodiscard]] virtual RuleForm ruleForm() const = 0;
    [[nodiscard]] virtual std::string_view carryPrefix() const = 0;
    // A property that is neither date, rule nor alarm.
    virtual void takeProperty(const ContentLine& line) = 0;
    // The items of an EXDATE or RDATE value.
    [[nodiscard]] virtual std::vector<std::string> listItems(std::string_view value) const = 0;
    // After all properties, before the rules are read.
    virtual void settleTimes() {}
    // True when a time from midnight to midnight means whole days even if nothing says so.
    [[nodiscard]] virtual bool daysAreTimes() const { return false; }

    // UTF-8, without the file's encoding; faults in it are reported. It lasts as long as the line.
    std::string_view text(const ContentLine& line);
    // The moment of a value, by TZID, VALUE and the file's zone; nothing when it is not a date. An
    // unknown zone is reported.
    std::optional<Moment> moment(const ContentLine& line, std::string_view value);
    // Keeps a line under the other format's prefix.
    void carry(const ContentLine& line);
    // The same, with a note whose values are the line's name, the name that it is kept under, and
    // `value`.
    void carry(const ContentLine& line, NoteCode why, std::string_view value = {});
    // The same without decoding the value.
    void carryRaw(const ContentLine& line, NoteCode why);
    // A property under `name`, which is the line's own or another.
    void add(const ContentLine& line, std::string_view name, EntryProperty::Type type,
             std::string_view value, std::vector<Parameter> parameters);
    void addList(const ContentLine& line, std::vector<std::string> items,
                 std::vector<Parameter> parameters);
    void report(Note note) { sink_(std::move(note)); }
    // GEO. vCalendar 1.0 gives the longitude first, but its writers give the latitude first as
    // iCalendar does: the order that lies on Earth counts.
    void takePosition(const ContentLine& line, std::vector<Parameter> parameters);
    // An ATTENDEE's or ORGANIZER's address and parameters, as iCalendar has them. An address is
    // not kept as the name too; an organizer with neither address nor name is left out.
    void addPerson(const ContentLine& line, std::string_view value,
                   std::vector<Parameter> parameters);
    // The start becomes a date, the end the day after the last.
    void makeAllDay();

    // True when the entry has a rule or a list of dates, read or not.
    [[nodiscard]] bool hasRecurrence() const { return !ruleLines_.empty() || !dateLines_.empty(); }

    [[nodiscard]] const Choices& choices() const { return choices_; }
    [[nodiscard]] bool fileDescribesZones() const { return !zones_.described->empty(); }
    // A series in UTC moves to the clock of the entry's zone.
    void moveSeriesToZone();
    // False where a rule has no date on its start, were that `start`.
    [[nodiscard]] bool rulesYield(const Moment& start) const;

    Entry entry_;

  private:
    friend class AlarmReader;

    void takeLine(const ContentLine& line);
    // Parameters of a line of which an entry keeps the value alone.
    void reportParameters(const ContentLine& line);
    void takeDate(const ContentLine& line, std::optional<Moment>& slot);
    void takeDuration(const ContentLine& line);
    // A duration, tidy or not; `text` is of `line`.
    [[nodiscard]] std::optional<Duration> duration(const ContentLine& line, std::string_view text);
    void takeUid(const ContentLine& line);
    void takeBytes(const ContentLine& line);
    [[nodiscard]] std::vector<Parameter> carriedParameters(const ContentLine& line) const;
    void keepDecoded(const ContentLine& line, std::vector<ContentLine>& lines);
    void takeDateList(const ContentLine& line);
    // Until the next call.
    [[nodiscard]] const ZonePtr& zoneNamed(const ContentLine& line, std::string_view id);
    [[nodiscard]] ZonePtr undescribedZone(const ContentLine& line, std::string_view id);
    [[nodiscard]] std::string carriedName(const ContentLine& line) const;
    [[nodiscard]] bool beginEntry(const Component& component, const ZonePtr& zone);
    // A to-do may have its due time under the name that events have for their end.
    void dueAtEnd();
    // A series counts from its start; a to-do may have a due time alone.
    void startSeriesAtDue();
    void settleWholeDays();
    [[nodiscard]] bool lastsWholeDays() const;
    void settleDaysOfUtc();
    [[nodiscard]] Moment onLocalClock(const Moment& moment) const;
    void settleRecurrenceId();
    void reportUnknownSeries();
    void noteSeries();
    // Gives dates of the series that are in another form than its start the start's.
    // False where a rule has times of day of its own or is not understood: any time may be one of
    // its occurrences.
    [[nodiscard]] bool rulesKeepTime() const;
    // `meant`, or where a day alone is the day in UTC of an occurrence, that.
    [[nodiscard]] Moment onDayOfSeries(const Moment& date, const Moment& meant,
                                       const std::set<int>& days) const;
    void settleExcluded();
    // Those on which the series would be without its exceptions, up to the last of these.
    [[nodiscard]] std::set<int> daysOfSeries() const;
    [[nodiscard]] std::optional<Moment> ofUtcDay(const Moment& day) const;
    void reportAdditional();
    void takeRecurrence();
    void readRuleLines();
    // A vCalendar 1.0 rule that ends before the time of day of a date of its series.
    void settleUntil(Rule& rule, const ContentLine& line);

    KnownZones& zones_;
    const Choices& choices_;
    ZonePtr chosenZone_;
    ZonePtr named_;  // by the last TZID that was not known
    NoteSink sink_;
    bool daysOfUtc_ = false;  // the entry's days are guessed from times in UTC
    Reported own_;
    const Reported* reported_ = &own_;
    bool ahead_ = false;
    bool dependsOnOthers_ = false;
    std::optional<SeriesStart> series_;
    std::vector<ContentLine> ruleLines_;
    std::vector<ContentLine> dateLines_;
    Arena texts_;  // decoded ones, of the entry that is read
    struct HashOfText {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };
    std::unordered_map<std::string, SeriesStart, HashOfText, std::equal_to<>> seriesStarts_;  // UID
};

// Takes the blanks off the items of a list, and those away that are nothing else.
void dropBlankItems(std::vector<std::string>& items);

// True for the words that name an encoding, where a value is given without its parameter's name.
[[nodiscard]] bool isEncodingWord(std::string_view value);

}  // namespace qel::calendar

#endif
