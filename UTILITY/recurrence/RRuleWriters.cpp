// The rule writers: iCalendar, vCalendar 1.0 and the positional form.
#include "QelUtility/RRule.h"
#include "QelUtility/VStr.h"
#include "dates/ZQDateTimeInternal.h"
#include "recurrence/RRuleLists.h"
#include "recurrence/RRuleText.h"

namespace qel::recurrence {

namespace {

constexpr std::size_t kTimeLength = 8;  // "T000000Z"
constexpr short kNoCount = -1;

// The BY-parts in the order in which both comma-separated forms hold them.
struct Part {
    RRulePart bit;
    std::string_view keyword;
    void (*append)(const _rruleRepeat& rule, RRuleOutput& out);
};
constexpr Part kParts[] = {
    {RRULE_TYPE_BYDAY, "BYDAY=",
     [](const _rruleRepeat& rule, RRuleOutput& out) { RRule_AppendDays(rule, out, ','); }},
    {RRULE_TYPE_BYMONTHDAY, "BYMONTHDAY=",
     [](const _rruleRepeat& rule, RRuleOutput& out) { RRule_AppendMonthDays(rule, out, ','); }},
    {RRULE_TYPE_BYYEARDAY, "BYYEARDAY=",
     [](const _rruleRepeat& rule, RRuleOutput& out) { RRule_AppendYearDays(rule, out, ','); }},
    {RRULE_TYPE_BYWEEKNO, "BYWEEKNO=", RRule_AppendWeekNumbers},
    {RRULE_TYPE_BYMONTH, "BYMONTH=",
     [](const _rruleRepeat& rule, RRuleOutput& out) { RRule_AppendMonths(rule, out, ','); }},
    {RRULE_TYPE_BYSETPOS, "BYSETPOS=", RRule_AppendSetPositions},
};

// The name of the first frequency in `rule`; empty without one.
std::string_view frequencyName(const _rruleRepeat& rule) {
    for (const auto& frequency : kFrequencyNames)
        if ((rule.freq & frequency.bit) != 0) return frequency.name;
    return {};
}

bool has(const _rruleRepeat& rule, RRulePart part) {
    return (rule.type & part) != 0;
}

// The first week start that is not the default Sunday, or nothing.
std::string_view weekStart(const _rruleRepeat& rule) {
    for (std::size_t day = 2; day <= 7; ++day)
        if ((rule.wkst >> day & 1) != 0) return kDayCodes[day];
    return "";
}

// The frequency code with the letter for the rule's kind; empty without a frequency.
std::string_view v10Code(const _rruleRepeat& rule) {
    if ((rule.freq & RRULE_FREQ_YEARLY) != 0) return has(rule, RRULE_TYPE_BYMONTH) ? "YM" : "YD";
    if ((rule.freq & RRULE_FREQ_MONTHLY) != 0) return has(rule, RRULE_TYPE_BYDAY) ? "MP" : "MD";
    if ((rule.freq & RRULE_FREQ_WEEKLY) != 0) return "W";
    if ((rule.freq & RRULE_FREQ_DAILY) != 0) return "D";
    return {};
}

// The modifiers of a vCalendar 1.0 rule. The lists follow each other directly: only the position
// carries a space of its own.
void appendV10Modifiers(const _rruleRepeat& rule, RRuleOutput& out) {
    if (has(rule, RRULE_TYPE_BYSETPOS)) {
        const int position = rule.setPos[0];
        if (position > 0) {
            out.add(position);
            out.add("+ ");
        } else {
            out.add(-position);
            out.add("- ");
        }
    }
    if (has(rule, RRULE_TYPE_BYDAY)) RRule_AppendDays(rule, out, ' ');
    if (has(rule, RRULE_TYPE_BYMONTHDAY)) RRule_AppendMonthDays(rule, out, ' ');
    if (has(rule, RRULE_TYPE_BYYEARDAY)) {
        // The iCalendar keyword is written in vCalendar text too.
        out.add("BYYEARDAY=");
        RRule_AppendYearDays(rule, out, ' ');
    }
    if (has(rule, RRULE_TYPE_BYMONTH)) RRule_AppendMonths(rule, out, ' ');
}

// "20051231T000000Z", or its eight-digit date alone.
void appendUntil(__int64 until, RRuleOutput& out, bool withTime) {
    char text[dates::kDateTimeRoom];
    const std::size_t length = dates::secondsToAlpha(until, text, false);
    out.add({text, length - (withTime ? 0 : kTimeLength)});
}

// Gives `out` what `write` makes, and returns its text when `write` calls it a rule. Where memory
// is exhausted `out` is null.
template <typename Write>
const char* deliver(VStr& out, Write write) {
    RRuleOutput output;
    const bool isRule = write(output);
    const std::string_view text = output.text();
    if (text.empty())
        out.Empty();
    else
        out.Copy(text.data(), static_cast<int>(text.size()));
    return isRule && !out.IsEmpty() ? static_cast<const char*>(out) : nullptr;
}

bool writePositional(const _rruleRepeat* rule, RRuleOutput& out, bool withTime) {
    if (rule == nullptr) return false;
    const std::string_view frequency = frequencyName(*rule);
    if (frequency.empty()) return false;
    out.add(frequency);
    out.add(';');
    if (rule->until >= 0) appendUntil(rule->until, out, withTime);
    out.add(';');
    if (rule->until < 0 && rule->count != kNoCount) out.add(rule->count);
    out.add(';');
    out.add(rule->interval);
    out.add(';');
    out.add(";;;");  // BYSECOND, BYMINUTE and BYHOUR have no representation
    for (const Part& part : kParts) {
        if (has(*rule, part.bit)) part.append(*rule, out);
        out.add(';');
    }
    out.add(weekStart(*rule));
    out.add(';');
    return true;
}

bool writeIETF(const _rruleRepeat* rule, RRuleOutput& out, bool withTime) {
    out.add("FREQ=");
    if (rule == nullptr) return false;
    const std::string_view frequency = frequencyName(*rule);
    if (frequency.empty()) return false;
    out.add(frequency);
    out.add(';');
    if (rule->until >= 0) {
        out.add("UNTIL=");
        appendUntil(rule->until, out, withTime);
        out.add(';');
    } else if (rule->count > 0) {
        out.add("COUNT=");
        out.add(rule->count);
        out.add(';');
    }
    if (rule->interval > 0) {
        out.add("INTERVAL=");
        out.add(rule->interval);
        out.add(';');
    }
    for (const Part& part : kParts) {
        if (!has(*rule, part.bit)) continue;
        out.add(part.keyword);
        part.append(*rule, out);
        out.add(';');
    }
    // WKST is never written: a record's week start stays inside the library.
    out.dropLast();
    return true;
}

bool writeV10(const _rruleRepeat* rule, RRuleOutput& out, bool withTime) {
    if (rule == nullptr) return false;
    const std::string_view code = v10Code(*rule);
    if (code.empty()) return false;
    out.add(code);
    out.add(rule->interval > 0 ? rule->interval : 1);
    out.add(' ');
    appendV10Modifiers(*rule, out);
    if (!out.endsWith(' ')) out.add(' ');
    if (rule->until >= 0) {
        appendUntil(rule->until, out, withTime);
    } else {
        // "#0" is vCalendar's form of a rule without end.
        out.add('#');
        out.add(rule->count >= 1 ? rule->count : 0);
    }
    return true;
}

}  // namespace

}  // namespace qel::recurrence

namespace recurrence = qel::recurrence;

const char* BxUtil_RRULEtoIETF(_rruleRepeat* rule, VStr& out, bool withTime) {
    return recurrence::deliver(
        out,
        [&](recurrence::RRuleOutput& text) { return recurrence::writeIETF(rule, text, withTime); });
}

const char* BxUtil_RRULEtoV10IETF(_rruleRepeat* rule, VStr& out, bool withTime) {
    return recurrence::deliver(
        out,
        [&](recurrence::RRuleOutput& text) { return recurrence::writeV10(rule, text, withTime); });
}

const char* BxUtil_RRULEtoPositional(_rruleRepeat* rule, VStr& out, bool withTime) {
    return recurrence::deliver(
        out,
        [&](recurrence::RRuleOutput& text) {
            return recurrence::writePositional(rule, text, withTime);
        });
}
