#include "calendar/rules/RuleReader.h"

#include <algorithm>
#include <limits>

#include "calendar/base/Ascii.h"
#include "calendar/base/ByteSearch.h"
#include "calendar/rules/RuleReadICalendar.h"
#include "calendar/rules/RuleReadVCalendar.h"

namespace qel::calendar {

namespace {

// A rule that cannot be read is kept as text with its entry only when it is alone.
void markLostRules(std::vector<Note>& notes) {
    for (Note& note : notes) {
        switch (note.code) {
            case NoteCode::RuleWithinDay:
                note = Note(NoteCode::RuleOfSeveralWithinDay, 0, {note.text()});
                break;
            case NoteCode::RuleEndInvalid:
            case NoteCode::RuleFrequencyUnknown:
            case NoteCode::RuleFrequencyMissing:
            case NoteCode::RuleNothingLeft:
                note = Note(NoteCode::RuleOfSeveralInvalid, 0, {note.text()});
                break;
            default:
                break;
        }
    }
}

// Larger numbers are read as the largest. No series gets as far as that, so no date changes.
void noteLargeNumbers(std::string_view text, RuleReading& reading) {
    constexpr int kLargest = std::numeric_limits<int>::max();
    constexpr std::string_view kAsText = "2147483647";
    const auto isLarge = [](const Rule& rule) {
        return rule.count == kLargest || rule.interval == kLargest;
    };
    if (std::any_of(reading.rules.begin(), reading.rules.end(), isLarge) &&
        text.find(kAsText) == std::string_view::npos)
        reading.notes.push_back(Note(NoteCode::RuleNumberLarge, 0, {kAsText}));
}

}  // namespace

RuleForm guessRuleForm(std::string_view text) {
    if (startsWithIgnoreCase(text, "FREQ=")) return RuleForm::ICalendar;
    if (!hasAny<'=', ';'>(text)) return RuleForm::VCalendar10;
    const std::string capitals = upper(text.substr(0, 4096));
    if (capitals.find("FREQ=") != std::string::npos) return RuleForm::ICalendar;
    return capitals.find(';') != std::string::npos ? RuleForm::Positional : RuleForm::VCalendar10;
}

RuleReading readRules(std::string_view text, RuleForm form, const std::optional<RuleStart>& start,
                      CountMeans countMeans) {
    RuleReading reading;
    text = trimmed(text);
    if (text.empty()) {
        reading.notes.emplace_back(NoteCode::RuleEmpty);
        return reading;
    }
    // Files of one format contain rules of the other.
    if (form == RuleForm::VCalendar10 && guessRuleForm(text) == RuleForm::ICalendar) {
        form = RuleForm::ICalendar;
        reading.notes.emplace_back(NoteCode::RuleIsICalendar);
    } else if (form == RuleForm::ICalendar && guessRuleForm(text) == RuleForm::VCalendar10) {
        form = RuleForm::VCalendar10;
        reading.notes.emplace_back(NoteCode::RuleIsVCalendar);
    }
    switch (form) {
        case RuleForm::VCalendar10:
            readVCalendarRules(text, start, countMeans, reading);
            break;
        case RuleForm::ICalendar:
            readICalendarRules(text, start, reading);
            break;
        case RuleForm::Positional:
            readPositionalRule(text, start, reading);
            break;
    }
    if (!reading.rules.empty()) markLostRules(reading.notes);
    noteLargeNumbers(text, reading);
    return reading;
}

}  // namespace qel::calendar
