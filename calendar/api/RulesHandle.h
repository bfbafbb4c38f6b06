// The rules of one text as the C interface hands them out. Forms are made when somebody asks for
// them. One thread at a time.
#ifndef QEL_CALENDAR_API_RULESHANDLE_H
#define QEL_CALENDAR_API_RULESHANDLE_H

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "QelCalendar/qelcalendar.h"
#include "calendar/api/NoteHandle.h"
#include "calendar/base/Moment.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/rules/RuleRecords.h"
#include "calendar/rules/RuleWriteVCalendar.h"

namespace qel::calendar::api {

struct RuleForms {
    std::vector<std::string> texts;
    std::string reason;  // what the form cannot hold
};

// One rule with what has been made of it so far.
struct HandledRule {
    explicit HandledRule(Rule handled) : rule(std::move(handled)) {}

    Rule rule;
    mutable std::array<std::optional<RuleForms>, 3> forms;  // by QELCAL_FORM_... - 1
    mutable std::optional<std::string> words;
    mutable std::optional<std::vector<RulePiece>> records;
    mutable NoteHandles recordNotes;
};

}  // namespace qel::calendar::api

struct qelcal_rules {
    // Rules as they were read, with the start of their series; no start where none is known.
    qelcal_rules(std::vector<qel::calendar::Rule> read,
                 const std::optional<qel::calendar::Moment>& seriesStart,
                 const std::optional<qel::calendar::RuleStart>& rulesStart);

    int form = QELCAL_FORM_ANY;
    bool complete = true;
    std::optional<qel::calendar::Moment> start;
    std::optional<qel::calendar::RuleStart> ruleStart;
    std::vector<qel::calendar::api::HandledRule> rules;
    qel::calendar::api::NoteHandles notes;
};

#endif
