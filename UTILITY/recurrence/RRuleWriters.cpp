// The rule writers: iCalendar, vCalendar 1.0 and the positional form.
#include <new>
#include <string>

#include "QelUtility/RRule.h"
#include "QelUtility/VStr.h"
#include "dates/ZQDateInternal.h"
#include "recurrence/RRuleInternal.h"

namespace qel {

namespace {

constexpr int kTimeLength = 8;  // "T000000Z"
constexpr short kNoCount = -1;
constexpr std::size_t kUsualLength = 120;  // of a rule's text

// The BY-parts in the order in which both comma-separated forms hold them.
struct Part {
    RRulePart bit;
    const char* keyword;
    void (*append)(const _rruleRepeat& rule, std::string& out);
};
constexpr Part kParts[] = {
    {RRULE_TYPE_BYDAY, "BYDAY=",
     [](const _rruleRepeat& rule, std::string& out) { RRule_AppendDays(rule, out, ','); }},
    {RRULE_TYPE_BYMONTHDAY, "BYMONTHDAY=",
     [](const _rruleRepeat& rule, std::string& out) { RRule_AppendMonthDays(rule, out, ','); }},
    {RRULE_TYPE_BYYEARDAY, "BYYEARDAY=",
     [](const _rruleRepeat& rule, std::string& out) { RRule_AppendYearDays(rule, out, ','); }},
    {RRULE_TYPE_BYWEEKNO, "BYWEEKNO=", RRule_AppendWeekNumbers},
    {RRULE_TYPE_BYMONTH, "BYMONTH=",
     [](const _rruleRepeat& rule, std::string& out) { RRule_AppendMonths(rule, out, ','); }},
    {RRULE_TYPE_BYSETPOS, "BYSETPOS=", RRule_AppendSetPositions},
};

// The name of the first frequency in `rule`, or null.
const char* frequencyName(const _rruleRepeat& rule) {
    for (const auto& frequency : kFrequencyNames) {
        if ((rule.freq & frequency.bit) != 0) return frequency.name;
    }
    return nullptr;
}

bool has(const _rruleRepeat& rule, RRulePart part) {
    return (rule.type & part) != 0;
}

void appendNumber(std::string& out, const char* before, int value, const char* after) {
    out += before;
    RRule_AppendNumber(value, out);
    out += after;
}

// The first week start that is not the default Sunday, or null.
const char* weekStart(const _rruleRepeat& rule) {
    for (std::size_t day = 2; day <= 7; ++day) {
        if ((rule.wkst >> day & 1) != 0) return kDayCodes[day];
    }
    return nullptr;
}

// The frequency code and what it says of the rule's kind; null without a frequency.
const char* v10Code(const _rruleRepeat& rule) {
    if ((rule.freq & RRULE_FREQ_YEARLY) != 0) return has(rule, RRULE_TYPE_BYMONTH) ? "YM" : "YD";
    if ((rule.freq & RRULE_FREQ_MONTHLY) != 0) return has(rule, RRULE_TYPE_BYDAY) ? "MP" : "MD";
    if ((rule.freq & RRULE_FREQ_WEEKLY) != 0) return "W";
    if ((rule.freq & RRULE_FREQ_DAILY) != 0) return "D";
    return nullptr;
}

// The modifiers of a vCalendar 1.0 rule. The lists stand back to back: only the position carries a
// space of its own.
void appendV10Modifiers(const _rruleRepeat& rule, std::string& out) {
    if (has(rule, RRULE_TYPE_BYSETPOS)) {
        const int position = rule.setPos[0];
        if (position > 0) {
            appendNumber(out, "", position, "+ ");
        } else {
            appendNumber(out, "", -position, "- ");
        }
    }
    if (has(rule, RRULE_TYPE_BYDAY)) RRule_AppendDays(rule, out, ' ');
    if (has(rule, RRULE_TYPE_BYMONTHDAY)) RRule_AppendMonthDays(rule, out, ' ');
    if (has(rule, RRULE_TYPE_BYYEARDAY)) {
        // The iCalendar keyword stands in vCalendar text too.
        out += "BYYEARDAY=";
        RRule_AppendYearDays(rule, out, ' ');
    }
    if (has(rule, RRULE_TYPE_BYMONTH)) RRule_AppendMonths(rule, out, ' ');
}

}  // namespace

void RRule_AppendUntil(__int64 until, std::string& out, bool withTime) {
    VStr text;
    ZQ_SecondsToDateTime(until, text, false);
    if (text.IsEmpty()) throw std::bad_alloc();
    out.append(text, static_cast<std::size_t>(text.GetLength() - (withTime ? 0 : kTimeLength)));
}

namespace {

// Gives `out` what `write` makes, and returns its text when `write` calls it a rule. A text that is
// built piece by piece must not be had in pieces: where memory is exhausted `out` is null.
template <typename Write>
const char* deliver(VStr& out, Write write) {
    out.Empty();
    try {
        std::string text;
        text.reserve(kUsualLength);
        const bool isRule = write(text);
        if (!text.empty()) out = text.c_str();
        return isRule && !out.IsEmpty() ? static_cast<const char*>(out) : nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

bool writePositional(const _rruleRepeat& rule, std::string& out, bool withTime) {
    const char* frequency = frequencyName(rule);
    if (frequency == nullptr) return false;
    out += frequency;
    out += ';';
    if (rule.until >= 0) RRule_AppendUntil(rule.until, out, withTime);
    out += ';';
    if (rule.until < 0 && rule.count != kNoCount) appendNumber(out, "", rule.count, "");
    out += ';';
    appendNumber(out, "", rule.interval, ";");
    out += ";;;";  // BYSECOND, BYMINUTE and BYHOUR have no representation
    for (const Part& part : kParts) {
        if (has(rule, part.bit)) part.append(rule, out);
        out += ';';
    }
    if (const char* day = weekStart(rule)) out += day;
    out += ';';
    return true;
}

bool writeIETF(const _rruleRepeat* rule, std::string& out, bool withTime) {
    out += "FREQ=";
    if (rule == nullptr) return false;
    const char* frequency = frequencyName(*rule);
    if (frequency == nullptr) return false;
    out += frequency;
    out += ';';
    if (rule->until >= 0) {
        out += "UNTIL=";
        RRule_AppendUntil(rule->until, out, withTime);
        out += ';';
    } else if (rule->count > 0) {
        appendNumber(out, "COUNT=", rule->count, ";");
    }
    if (rule->interval > 0) appendNumber(out, "INTERVAL=", rule->interval, ";");
    for (const Part& part : kParts) {
        if (!has(*rule, part.bit)) continue;
        out += part.keyword;
        part.append(*rule, out);
        out += ';';
    }
    // WKST is never written: a record's week start stays inside the library.
    out.pop_back();
    return true;
}

bool writeV10(const _rruleRepeat* rule, std::string& out, bool withTime) {
    const char* code = rule != nullptr ? v10Code(*rule) : nullptr;
    if (code == nullptr) return false;
    out += code;
    appendNumber(out, "", rule->interval > 0 ? rule->interval : 1, " ");
    appendV10Modifiers(*rule, out);
    if (out.back() != ' ') out += ' ';
    if (rule->until >= 0) {
        RRule_AppendUntil(rule->until, out, withTime);
    } else {
        // "#0" is vCalendar's form of a rule without end.
        appendNumber(out, "#", rule->count >= 1 ? rule->count : 0, "");
    }
    return true;
}

}  // namespace

const char* RRule_ToPositional(const _rruleRepeat& rule, VStr& out, bool withTime) {
    return deliver(out, [&](std::string& text) { return writePositional(rule, text, withTime); });
}

}  // namespace qel

using namespace qel;

const char* BxUtil_RRULEtoIETF(_rruleRepeat* rule, VStr& out, bool withTime) {
    return deliver(out, [&](std::string& text) { return writeIETF(rule, text, withTime); });
}

const char* BxUtil_RRULEtoV10IETF(_rruleRepeat* rule, VStr& out, bool withTime) {
    return deliver(out, [&](std::string& text) { return writeV10(rule, text, withTime); });
}
