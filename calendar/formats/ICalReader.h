// Entries of iCalendar 2.0. One thread.
#ifndef QEL_CALENDAR_FORMATS_ICALREADER_H
#define QEL_CALENDAR_FORMATS_ICALREADER_H

#include <string>
#include <string_view>
#include <vector>

#include "calendar/formats/EntryReader.h"
#include "calendar/rules/RuleReader.h"

namespace qel::calendar {

class ICalReader final : public EntryReader {
  public:
    using EntryReader::EntryReader;

  private:
    [[nodiscard]] RuleForm ruleForm() const override { return RuleForm::ICalendar; }
    [[nodiscard]] std::string_view carryPrefix() const override { return kICalendarPrefix; }
    void takeProperty(const ContentLine& line) override;
    [[nodiscard]] std::vector<std::string> listItems(std::string_view value) const override;
    void settleTimes() override;

    void addText(const ContentLine& line, std::string_view value,
                 std::vector<Parameter> parameters);
    // A Base64 value.
    void takeAttachment(const ContentLine& line);
};

}  // namespace qel::calendar

#endif
