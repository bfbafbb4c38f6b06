// Entries of vCalendar 1.0. One thread.
#ifndef QEL_CALENDAR_FORMATS_VCALREADER_H
#define QEL_CALENDAR_FORMATS_VCALREADER_H

#include <string>
#include <string_view>
#include <vector>

#include "calendar/formats/EntryReader.h"
#include "calendar/rules/RuleReader.h"

namespace qel::calendar {

class VCalReader final : public EntryReader {
  public:
    using EntryReader::EntryReader;

  private:
    [[nodiscard]] RuleForm ruleForm() const override { return RuleForm::VCalendar10; }
    [[nodiscard]] std::string_view carryPrefix() const override { return kVCalendarPrefix; }
    void takeProperty(const ContentLine& line) override;
    [[nodiscard]] std::vector<std::string> listItems(std::string_view value) const override;
    void settleTimes() override;
    // vCalendar 1.0 has no other way to say it.
    [[nodiscard]] bool daysAreTimes() const override { return true; }

    void takeList(const ContentLine& line);
    void takeClass(const ContentLine& line);
    // Whatever is a text, or unknown and taken for one.
    void takeText(const ContentLine& line);
    void takeAttendee(const ContentLine& line);
    void takeAttachment(const ContentLine& line);
    void takeStatus(const ContentLine& line);
    void takeTransparency(const ContentLine& line);
    void takeNumber(const ContentLine& line, int most);
};

// The parameters of a vCalendar 1.0 line in iCalendar's words: without encodings, and with the
// prefix X-VCAL- where iCalendar lacks them.
[[nodiscard]] std::vector<Parameter> parametersFromVCalendar(const ContentLine& line);

}  // namespace qel::calendar

#endif
