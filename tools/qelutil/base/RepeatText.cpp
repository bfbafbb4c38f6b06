#include "base/RepeatText.h"

#include <algorithm>
#include <array>

#include "QelUtility/BxRepeat.h"
#include "QelUtility/VStr.h"
#include "platform/Console.h"

namespace qel::cli {

namespace {

struct Warning {
    int bit;
    const char* text;
};
constexpr Warning kWarnings[] = {
    {BXREPEAT_END_FROM_COUNT, "the record has no count: its end date was computed from it"},
    {BXREPEAT_SEVERAL_MONTH_DAYS,
     "the rule names several days of the month; the record keeps one of them"},
    {BXREPEAT_SEVERAL_NEGATIVE_DAYS,
     "the rule names several days counted from the month's end; the record keeps none of "
     "them"},
    {BXREPEAT_SEVERAL_MONTHS, "the rule names several months; the record keeps the first"},
    {BXREPEAT_POSITION_BEFORE_LAST,
     "the rule's position counts back past the last; the record takes the last"},
    {BXREPEAT_SECOND_POSITION, "the rule has several positions; the record keeps the first"},
    {BXREPEAT_POSITION_TOO_HIGH, "the rule's position is 6 or more, which the record cannot hold"},
    {BXREPEAT_WORKDAYS, "Monday to Friday are kept as five weekdays, not as \"workdays\""},
    {BXREPEAT_EXCLUSION_HAS_TIME, "an excluded date had a time of day, which the record drops"},
};

std::string problemOf(int code) {
    switch (code) {
        case QEL_RULE_INEXPRESSIBLE:
            return "a repeat record cannot hold this rule: it names no weekday where the record "
                   "needs one, or several days counted from the month's end alone";
        case QEL_RULE_UNSUPPORTED:
            return "a repeat record cannot hold week numbers";
        case QEL_REPEAT_ENGINE:
            return "the engine finds fewer dates for the record before the year 2500 than the rule "
                   "counts";
        default:
            return "the library makes no repeat record of it (code " + std::to_string(code) + ")";
    }
}

std::string code(int weekday) {
    constexpr std::array kCodes = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
    if (weekday < 1 || weekday > 7) return "day " + std::to_string(weekday);
    return kCodes.at(static_cast<std::size_t>(weekday - 1));
}

std::string everyInterval(const ZQTR_REPEAT& record, const char* unit) {
    if (record.interval == 1) return std::string("every ") + unit;
    return "every " + std::to_string(record.interval) + " " + unit + "s";
}

// weekOfMonth, or the position of the types 10 and 11: 5 is the last.
std::string place(short number) {
    return number == 5 ? "last" : "number " + std::to_string(number);
}

std::string kind(short number) {
    switch (number) {
        case REPEAT_ANY_DAY:
            return "day";
        case REPEAT_WORKDAY:
            return "workday";
        default:
            return "weekend day";
    }
}

std::string selectedDays(const ZQTR_REPEAT& record) {
    std::string text;
    for (int day = 1; day <= 7; ++day)
        if (record.days[day - 1] != 0) text += (text.empty() ? "" : " ") + code(day);
    return text;
}

std::string pattern(const ZQTR_REPEAT& record) {
    const std::string dayOfMonth = std::to_string(record.dayOfMonth);
    const std::string ofMonth = " of month " + std::to_string(record.month);
    switch (record.type) {
        case REPEAT_DAILY:
            return everyInterval(record, "day");
        case REPEAT_WEEKLY:
            return everyInterval(record, "week") + ", on " + code(record.dayOfWeek);
        case REPEAT_WEEKLY_DAYS:
            return everyInterval(record, "week") + ", on " + selectedDays(record);
        case REPEAT_MONTHLY_DAY:
            return everyInterval(record, "month") + ", on day " + dayOfMonth;
        case REPEAT_MONTHLY_WEEKDAY:
            return everyInterval(record, "month") + ", on " + code(record.dayOfWeek) + " " +
                   place(record.weekOfMonth);
        case REPEAT_MONTHLY_KIND:
            return everyInterval(record, "month") + ", on " + kind(record.dayOfWeek) + " " +
                   place(record.dayOfMonth);
        case REPEAT_YEARLY_DATE:
            return everyInterval(record, "year") + ", on day " + dayOfMonth + ofMonth;
        case REPEAT_YEARLY_WEEKDAY:
            return everyInterval(record, "year") + ", on " + code(record.dayOfWeek) + " " +
                   place(record.weekOfMonth) + ofMonth;
        case REPEAT_YEARLY_KIND:
            return everyInterval(record, "year") + ", on " + kind(record.dayOfWeek) + " " +
                   place(record.dayOfMonth) + ofMonth;
        default:
            return "interval " + std::to_string(record.interval);
    }
}

}  // namespace

Repeat repeatOf(const _rruleRepeat& record, const Time& start) {
    Repeat repeat;
    _rruleRepeat rule = record;
    const std::string day = start.text().substr(0, 8);
    int endFromRule = 0;
    repeat.code = BxUtil_RRuleToBxRepeat(&rule, nullptr, day.c_str(), &endFromRule, &repeat.record,
                                         &repeat.warningBits);
    if (repeat.code != 0) {
        repeat.problem = problemOf(repeat.code);
        return repeat;
    }
    for (const Warning& warning : kWarnings)
        if ((repeat.warningBits & warning.bit) != 0) repeat.warnings.emplace_back(warning.text);
    return repeat;
}

std::vector<Repeat> repeatsOf(const qelcal::Rules& rules, std::size_t rule, const Time& start) {
    std::vector<Repeat> repeats;
    for (std::size_t i = 0; i < rules.recordCount(rule); ++i) {
        _rruleRepeat record;
        rules.record(i, record, rule);
        repeats.push_back(repeatOf(record, start));
    }
    return repeats;
}

std::string repeatTypeName(int type) {
    constexpr std::array kNames = {"no repeat",
                                   "daily",
                                   "weekly on one weekday",
                                   "monthly on a day of the month",
                                   "monthly on a weekday of the month",
                                   "yearly on a date",
                                   "yearly on a weekday of a month",
                                   "on a day of selected months",
                                   "on weekdays of selected weeks of selected months",
                                   "not valid",
                                   "monthly on a day, workday or weekend day",
                                   "yearly on a day, workday or weekend day of a month",
                                   "weekly on the selected weekdays",
                                   "quarterly on a day of the quarter",
                                   "quarterly on a weekday of the quarter",
                                   "monthly on weekdays of selected weeks"};
    const auto index = static_cast<std::size_t>(type);
    return type >= 0 && index < kNames.size() ? kNames.at(index) : "not valid";
}

std::string repeatFields(const ZQTR_REPEAT& record) {
    std::string text = pattern(record) + ", from " + isoDate(record.startDate);
    return text + (record.endDate == -1 ? ", without end" : " to " + isoDate(record.endDate));
}

std::string ruleBack(const ZQTR_REPEAT& record) {
    ZQTR_REPEAT copy = record;
    _rruleRepeat rule;
    VStr exclusions;
    VStr startText;
    // Of a record without dates the library prints a line.
    const platform::OutputDiversion diversion;
    if (BxUtil_BxRepeatToRRule(&copy, &rule, exclusions, startText, 0, nullptr) != 0) return {};
    VStr text;
    const char* written = BxUtil_RRULEtoIETF(&rule, text, false);
    return written != nullptr ? written : "";
}

std::vector<int> repeatDates(const ZQTR_REPEAT& record, std::size_t most, int lastDay) {
    ZQTR_REPEAT copy = record;
    std::vector<int> dates;
    // Copied, not referred to: the packed record's fields are not aligned.
    const int recordEnd = record.endDate;
    const int end = recordEnd == -1 ? lastDay : std::min(recordEnd, lastDay);
    int next = -1;
    int previous = -1;
    while (dates.size() < most && ZQRepeatNextDate(&copy, &next, &previous) == 0) {
        // A date that does not advance would come again for ever.
        if (next > end || (!dates.empty() && next <= dates.back())) break;
        dates.push_back(next);
    }
    return dates;
}

std::vector<int> repeatDates(const std::vector<Repeat>& repeats, std::size_t most, int lastDay) {
    std::vector<int> all;
    for (const Repeat& repeat : repeats) {
        const std::vector<int> dates = repeatDates(repeat.record, most, lastDay);
        all.insert(all.end(), dates.begin(), dates.end());
    }
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    if (all.size() > most) all.resize(most);
    return all;
}

}  // namespace qel::cli
