// Recurrence rules: their three forms, words and dates.
#include <algorithm>
#include <limits>
#include <memory>

#include "QelUtility/RRule.h"
#include "calendar/api/Calls.h"
#include "calendar/api/Choosing.h"
#include "calendar/api/RulesHandle.h"
#include "calendar/api/TimeValue.h"
#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/rules/RuleRecords.h"
#include "calendar/rules/RuleSentence.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/rules/RuleWriteVCalendar.h"

using qel::calendar::api::fail;
using qel::calendar::api::goOn;
using qel::calendar::api::guarded;
using qel::calendar::api::guardedValue;
using qel::calendar::api::HandledRule;
using qel::calendar::api::momentOf;
using qel::calendar::api::noteAt;
using qel::calendar::api::RuleForms;
using qel::calendar::api::ruleStartOf;
using qel::calendar::api::timeOf;
namespace calendar = qel::calendar;

qelcal_rules::qelcal_rules(std::vector<calendar::Rule> read,
                           const std::optional<calendar::Moment>& seriesStart,
                           const std::optional<calendar::RuleStart>& rulesStart)
    : start(seriesStart), ruleStart(rulesStart) {
    rules.reserve(read.size());
    for (calendar::Rule& rule : read) rules.emplace_back(std::move(rule));
}

namespace {

// Past 31 December 2499 the library lists no dates.
constexpr int kLastYear = 2499;
constexpr std::optional<calendar::Moment> kLastMoment =
    calendar::Moment{calendar::dayNumber(kLastYear, 12, 31), 0, true, calendar::Clock::Floating};

int formNumber(calendar::RuleForm form) {
    switch (form) {
        case calendar::RuleForm::VCalendar10:
            return QELCAL_FORM_VCALENDAR;
        case calendar::RuleForm::ICalendar:
            return QELCAL_FORM_ICALENDAR;
        case calendar::RuleForm::Positional:
            return QELCAL_FORM_POSITIONAL;
    }
    return QELCAL_FORM_ANY;
}

std::optional<calendar::RuleForm> formOf(int number, std::string_view text) {
    switch (number) {
        case QELCAL_FORM_ANY:
            return calendar::guessRuleForm(text);
        case QELCAL_FORM_VCALENDAR:
            return calendar::RuleForm::VCalendar10;
        case QELCAL_FORM_ICALENDAR:
            return calendar::RuleForm::ICalendar;
        case QELCAL_FORM_POSITIONAL:
            return calendar::RuleForm::Positional;
        default:
            return std::nullopt;
    }
}

// Drops "RRULE:" or "EXRULE:", with its parameters, from a line that was taken over whole.
std::string_view withoutProperty(std::string_view text) {
    for (const std::string_view name : {"RRULE", "EXRULE"}) {
        if (!calendar::startsWithIgnoreCase(text, name)) continue;
        const std::size_t colon = text.find(':');
        if (colon != std::string_view::npos) return text.substr(colon + 1);
    }
    return text;
}

const HandledRule* ruleAt(const qelcal_rules* rules, size_t index) {
    return rules != nullptr && index < rules->rules.size() ? &rules->rules[index] : nullptr;
}

// The records and what they cannot hold, made once.
const std::vector<calendar::RulePiece>& recordsOf(const HandledRule& handled) {
    if (!handled.records) {
        std::vector<calendar::Note> notes;
        handled.records = calendar::rulePieces(handled.rule, &notes);
        for (calendar::Note& note : notes) handled.recordNotes.emplace_back(std::move(note));
    }
    return *handled.records;
}

RuleForms formsOf(const qelcal_rules& rules, const HandledRule& handled, int form) {
    RuleForms made;
    if (form == QELCAL_FORM_ICALENDAR) {
        made.texts = {calendar::iCalendarText(handled.rule)};
        if (made.texts.front().empty()) made.texts.clear();
    } else if (form == QELCAL_FORM_VCALENDAR) {
        calendar::VCalendarRule written = calendar::vCalendarTexts(handled.rule, rules.ruleStart);
        made = {std::move(written.texts), std::move(written.reason)};
    } else {
        made.texts = calendar::positionalTexts(handled.rule);
        recordsOf(handled);
        for (const qelcal_note& note : handled.recordNotes)
            made.reason += (made.reason.empty() ? "" : "; ") + note.note.text();
    }
    return made;
}

const RuleForms* formsAt(const qelcal_rules* rules, size_t rule, int form) {
    const HandledRule* handled = ruleAt(rules, rule);
    if (handled == nullptr || form < QELCAL_FORM_VCALENDAR || form > QELCAL_FORM_POSITIONAL)
        return nullptr;
    auto& forms = handled->forms[static_cast<size_t>(form - QELCAL_FORM_VCALENDAR)];
    if (!forms) forms = formsOf(*rules, *handled, form);
    return &*forms;
}

// The seconds that dates are wanted of, on the clock of the start.
struct DateRange {
    int64_t first;
    int64_t last;
    int lastYear;  // of `last`, where the library has dates
};

// Nothing when a time is invalid.
std::optional<DateRange> rangeOf(const qelcal_time* since, const qelcal_time* through,
                                 const calendar::Moment& start) {
    const auto first = since == nullptr ? start : momentOf(*since);
    const auto last = through == nullptr ? kLastMoment : momentOf(*through);
    if (!first || !last) return std::nullopt;
    return DateRange{first->seconds(),
                     last->seconds() + (last->isDate ? calendar::kDaySeconds - 1 : 0),
                     std::min(timeOf(*last).year, kLastYear)};
}

}  // namespace

int qelcal_rules_read(const char* text, int form, const qelcal_time* start, qelcal_rules** rules) {
    return qelcal_rules_read_counting(text, form, start, nullptr, rules);
}

int qelcal_rules_read_counting(const char* text, int form, const qelcal_time* start,
                               const char* count_means, qelcal_rules** rules) {
    if (text == nullptr || rules == nullptr)
        return fail(QELCAL_INVALID_ARGUMENT, "the text or the result is null");
    *rules = nullptr;
    return guarded([=] {
        calendar::Choices choices;
        const int chosen = calendar::api::choose(choices, QELCAL_CHOOSE_COUNT_MEANS, count_means);
        if (chosen != QELCAL_OK) return chosen;
        const std::string_view value = withoutProperty(calendar::trimmed(text));
        const auto readAs = formOf(form, value);
        if (!readAs) return fail(QELCAL_INVALID_ARGUMENT, "the form is unknown");
        std::optional<calendar::Moment> moment;
        std::optional<calendar::RuleStart> ruleStart;
        if (start != nullptr) {
            moment = momentOf(*start);
            if (!moment) return fail(QELCAL_INVALID_ARGUMENT, "the start is invalid");
            ruleStart = ruleStartOf(*moment);
        }
        calendar::RuleReading reading =
            calendar::readRules(value, *readAs, ruleStart, choices.countMeans);
        if (reading.rules.empty())
            return fail(QELCAL_INVALID_TEXT, reading.notes.empty() ? std::string("no rule in it")
                                                                   : reading.notes.front().text());
        auto made = std::make_unique<qelcal_rules>(std::move(reading.rules), moment, ruleStart);
        made->form = formNumber(*readAs);
        made->complete = reading.complete;
        for (calendar::Note& note : reading.notes) made->notes.emplace_back(std::move(note));
        *rules = made.release();
        return int{QELCAL_OK};
    });
}

void qelcal_rules_free(qelcal_rules* rules) {
    delete rules;
}

int qelcal_rules_form(const qelcal_rules* rules) {
    return rules == nullptr ? QELCAL_FORM_ANY : rules->form;
}

size_t qelcal_rules_count(const qelcal_rules* rules) {
    return rules == nullptr ? 0 : rules->rules.size();
}

int qelcal_rules_complete(const qelcal_rules* rules) {
    return rules != nullptr && rules->complete ? 1 : 0;
}

size_t qelcal_rules_note_count(const qelcal_rules* rules) {
    return rules == nullptr ? 0 : rules->notes.size();
}

const qelcal_note* qelcal_rules_note(const qelcal_rules* rules, size_t index) {
    return rules == nullptr ? nullptr : noteAt(rules->notes, index);
}

size_t qelcal_rules_text_count(const qelcal_rules* rules, size_t rule, int form) {
    return guardedValue(
        size_t{0},
        [=] {
            const RuleForms* forms = formsAt(rules, rule, form);
            return forms == nullptr ? 0 : forms->texts.size();
        });
}

const char* qelcal_rules_text(const qelcal_rules* rules, size_t rule, int form, size_t index) {
    return guardedValue(
        "",
        [=] {
            const RuleForms* forms = formsAt(rules, rule, form);
            return forms == nullptr || index >= forms->texts.size() ? ""
                                                                    : forms->texts[index].c_str();
        });
}

const char* qelcal_rules_reason(const qelcal_rules* rules, size_t rule, int form) {
    return guardedValue(
        "",
        [=] {
            const RuleForms* forms = formsAt(rules, rule, form);
            return forms == nullptr ? "" : forms->reason.c_str();
        });
}

size_t qelcal_rules_record_count(const qelcal_rules* rules, size_t rule) {
    return guardedValue(
        size_t{0},
        [=] {
            const HandledRule* handled = ruleAt(rules, rule);
            return handled == nullptr ? 0 : recordsOf(*handled).size();
        });
}

int qelcal_rules_record(const qelcal_rules* rules, size_t rule, size_t index,
                        struct _rruleRepeat* record, int* ordinals) {
    return guarded([=] {
        const HandledRule* handled = ruleAt(rules, rule);
        if (handled != nullptr && recordsOf(*handled).empty())
            return fail(QELCAL_INEXPRESSIBLE, "no record can hold the rule");
        if (handled == nullptr || record == nullptr || index >= recordsOf(*handled).size())
            return fail(QELCAL_INVALID_ARGUMENT, "there is no record of that index");
        const calendar::RulePiece& piece = recordsOf(*handled)[index];
        *record = piece.record;
        if (ordinals != nullptr) *ordinals = piece.positionsAreOrdinals ? 1 : 0;
        return int{QELCAL_OK};
    });
}

size_t qelcal_rules_record_note_count(const qelcal_rules* rules, size_t rule) {
    return guardedValue(
        size_t{0},
        [=] {
            const HandledRule* handled = ruleAt(rules, rule);
            if (handled == nullptr) return size_t{0};
            recordsOf(*handled);
            return handled->recordNotes.size();
        });
}

const qelcal_note* qelcal_rules_record_note(const qelcal_rules* rules, size_t rule, size_t index) {
    return index < qelcal_rules_record_note_count(rules, rule)
               ? noteAt(rules->rules[rule].recordNotes, index)
               : nullptr;
}

const char* qelcal_rules_words(const qelcal_rules* rules, size_t rule) {
    return guardedValue(
        "",
        [=] {
            const HandledRule* handled = ruleAt(rules, rule);
            if (handled == nullptr || !rules->ruleStart) return "";
            if (!handled->words)
                handled->words = calendar::ruleSentence(handled->rule, *rules->ruleStart);
            return handled->words->c_str();
        });
}

int qelcal_rules_yields_start(const qelcal_rules* rules, size_t rule) {
    return guardedValue(
        0,
        [=] {
            const HandledRule* handled = ruleAt(rules, rule);
            return handled != nullptr && rules->ruleStart &&
                           calendar::yieldsStart(handled->rule, *rules->ruleStart)
                       ? 1
                       : 0;
        });
}

int qelcal_rules_dates(const qelcal_rules* rules, size_t rule, const qelcal_time* since,
                       const qelcal_time* through, size_t most, qelcal_time_fn date,
                       void* context) {
    return guarded([=] {
        const HandledRule* handled = ruleAt(rules, rule);
        if (handled == nullptr || date == nullptr)
            return fail(QELCAL_INVALID_ARGUMENT, "there is no such rule, or no callback");
        if (!rules->start) return fail(QELCAL_WRONG_ORDER, "the rules were read without a start");
        const auto range = rangeOf(since, through, *rules->start);
        if (!range) return fail(QELCAL_INVALID_ARGUMENT, "a time of the range is invalid");
        // Dates before the range count towards the rule's own count, not towards `most`.
        const bool fromStart = range->first <= rules->start->seconds();
        calendar::RuleLimits limits;
        limits.lastYear = range->lastYear;
        limits.most = most == 0 || !fromStart ? std::numeric_limits<size_t>::max() : most;
        calendar::Moment moment = *rules->start;
        size_t handedOver = 0;
        for (const int day : calendar::expandRule(handled->rule, *rules->ruleStart, limits)) {
            moment.day = day;
            if (moment.seconds() < range->first) continue;
            if (moment.seconds() > range->last || (most != 0 && handedOver++ == most)) break;
            const qelcal_time time = timeOf(moment);
            goOn(date(context, &time));
        }
        return int{QELCAL_OK};
    });
}
