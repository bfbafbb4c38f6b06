// From components of a file to entries: what both formats share, and the two readers. They are
// lenient, as files are: an iCalendar property in a vCalendar 1.0 file is read, and the other way
// round. One thread.
#ifndef QEL_CALENDAR_FORMATS_ENTRYREADER_H
#define QEL_CALENDAR_FORMATS_ENTRYREADER_H

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/entries/Entry.h"
#include "calendar/lines/CalendarReader.h"
#include "calendar/rules/RuleReader.h"

namespace qel::calendar {

// By TZID.
using ZoneMap = std::map<std::string, ZonePtr, std::less<>>;

// One reader reads the entries of one file: of a zone that is not described it tells once.
class EntryReader {
  public:
    EntryReader(const ZoneMap& zones, NoteSink sink) : zones_(zones), sink_(std::move(sink)) {}
    virtual ~EntryReader() = default;
    EntryReader(const EntryReader&) = delete;
    EntryReader& operator=(const EntryReader&) = delete;

    // The entry of a VEVENT, VTODO, VJOURNAL or VNOTE, which lasts until the next one is read; null
    // for other components, which is told. `zone` is the one of the calendar's TZ line, or null.
    [[nodiscard]] Entry* read(const Component& component, const ZonePtr& zone);

  protected:
    [[nodiscard]] virtual RuleForm ruleForm() const = 0;
    [[nodiscard]] virtual std::string_view carryPrefix() const = 0;
    // A property that is neither date, rule nor alarm.
    virtual void takeProperty(const ContentLine& line) = 0;
    // The items of an EXDATE or RDATE value.
    [[nodiscard]] virtual std::vector<std::string> listItems(std::string_view value) const = 0;
    // After all properties, before the rules are read.
    virtual void settleTimes() {}

    // UTF-8, without the file's encoding; what is wrong with it is told. It lasts as the line does.
    std::string_view text(const ContentLine& line);
    // The moment of a value, by TZID, VALUE and the file's zone. Tells what is none.
    std::optional<Moment> moment(const ContentLine& line, std::string_view value);
    // Keeps a line under the other format's prefix, and says why unless `why` is empty.
    void carry(const ContentLine& line, std::string_view why, Severity severity);
    // A property under `name`, which is the line's own or another.
    void add(const ContentLine& line, std::string_view name, EntryProperty::Type type,
             std::string_view value, std::vector<Parameter> parameters);
    void addList(const ContentLine& line, std::vector<std::string> items,
                 std::vector<Parameter> parameters);
    void tell(Severity severity, std::size_t line, std::string message) {
        sink_(Note(severity, std::move(message), line));
    }

    // True when the entry has a rule or a list of dates, read or not.
    [[nodiscard]] bool hasRecurrence() const { return !ruleLines_.empty() || !dateLines_.empty(); }

    Entry entry_;

  private:
    void takeLine(const ContentLine& line);
    void takeDate(const ContentLine& line, std::optional<Moment>& slot);
    void takeDuration(const ContentLine& line);
    void takeUid(const ContentLine& line);
    void keepDecoded(const ContentLine& line, std::vector<ContentLine>& lines);
    void takeDateList(const ContentLine& line);
    void tellUnknownZone(const ContentLine& line, std::string_view id);
    void takeAlarmLine(const ContentLine& line);
    void takeAlarmComponent(const Component& component);
    static void settleAlarm(Alarm& alarm);
    void readRuleLines();

    const ZoneMap& zones_;
    NoteSink sink_;
    std::vector<ContentLine> ruleLines_;
    std::vector<ContentLine> dateLines_;
    Arena texts_;                                      // decoded ones, of the entry that is read
    std::set<std::string, std::less<>> unknownZones_;  // that have been told
};

// vCalendar 1.0.
class VCalReader final : public EntryReader {
  public:
    using EntryReader::EntryReader;

  private:
    [[nodiscard]] RuleForm ruleForm() const override { return RuleForm::VCalendar10; }
    [[nodiscard]] std::string_view carryPrefix() const override { return kVCalendarPrefix; }
    void takeProperty(const ContentLine& line) override;
    [[nodiscard]] std::vector<std::string> listItems(std::string_view value) const override;
    void settleTimes() override;

    void takeList(const ContentLine& line);
    void takeClass(const ContentLine& line);
    void takeText(const ContentLine& line);
    void takeAttendee(const ContentLine& line);
    void takeAttachment(const ContentLine& line);
    void takeStatus(const ContentLine& line);
    void takeTransparency(const ContentLine& line);
    void takePosition(const ContentLine& line);
    void takeNumber(const ContentLine& line, int most);
    void makeAllDay();
};

// iCalendar 2.0.
class ICalReader final : public EntryReader {
  public:
    using EntryReader::EntryReader;

  private:
    [[nodiscard]] RuleForm ruleForm() const override { return RuleForm::ICalendar; }
    [[nodiscard]] std::string_view carryPrefix() const override { return kICalendarPrefix; }
    void takeProperty(const ContentLine& line) override;
    [[nodiscard]] std::vector<std::string> listItems(std::string_view value) const override;
};

// True for the words that name an encoding, where a value stands without its parameter's name.
[[nodiscard]] bool isEncodingWord(std::string_view value);

// The parameters of a vCalendar 1.0 line in iCalendar's words: encodings gone, what iCalendar does
// not know behind X-VCAL-.
[[nodiscard]] std::vector<Parameter> parametersFromVCalendar(const ContentLine& line);

}  // namespace qel::calendar

#endif
