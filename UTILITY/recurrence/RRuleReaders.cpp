// The readers of the positional and the iCalendar form. Both find the texts of a rule's fields and
// hand them to one set of rules.
#include <array>
#include <cstring>
#include <string_view>

#include "QelUtility/RRule.h"
#include "platform/AsciiText.h"
#include "recurrence/RRuleText.h"

namespace qel::recurrence {

namespace {

constexpr int kLongestOrdinal = 3;  // characters of an ordinal that BYDAY skips

// The fields that are read, in the order of the positional form; it has three more, BYSECOND,
// BYMINUTE and BYHOUR, between INTERVAL and BYDAY.
enum Field : std::size_t {
    kFreq,
    kUntil,
    kCount,
    kInterval,
    kByDay,
    kByMonthDay,
    kByYearDay,
    kByWeekNo,
    kByMonth,
    kBySetPos,
    kWeekStart,
    kFields
};
constexpr std::size_t kFirstUnread = 4;  // positional index of BYSECOND
constexpr std::size_t kUnread = 3;

// A field that is missing has an empty text; both set nothing.
using Fields = std::array<std::string_view, kFields>;

// Calls `use` with each item of a list; a list with any item is present, whatever it holds.
template <typename Use>
void readList(std::string_view list, _rruleRepeat& rule, RRulePart part, Use use) {
    if (list.empty()) return;
    RRuleItems items(list, ',', RRuleItems::Empty::kDrop);
    std::string_view item;
    while (items.next(item)) {
        rule.type |= static_cast<short>(part);
        use(item);
    }
}

// Ordinals go to the slots of setPos; returns the number of slots used.
int readByDay(std::string_view list, _rruleRepeat& rule) {
    int positions = 0;
    readList(list, rule, RRULE_TYPE_BYDAY, [&](std::string_view item) {
        if (!platform::isAsciiLetter(item.front())) {
            if (const int ordinal = RRule_Number(item); ordinal != 0) {
                rule.type |= RRULE_TYPE_BYSETPOS;
                if (positions < kPositionSlots)
                    rule.setPos[positions++] = static_cast<short>(ordinal);
            }
            for (int i = 0;
                 i < kLongestOrdinal && !item.empty() && !platform::isAsciiLetter(item.front());
                 ++i)
                item.remove_prefix(1);
        }
        if (const int day = RRule_DayOfCodeNoCase(item); day != 0)
            rule.byDay |= static_cast<unsigned char>(1U << day);
    });
    return positions;
}

void readByMonthDay(std::string_view list, _rruleRepeat& rule) {
    readList(
        list, rule, RRULE_TYPE_BYMONTHDAY,
        [&](std::string_view item) {
            const long long n = RRule_Number(item);
            if (n > 0) rule.byMonthDay |= 1U << (n % 32);
            if (n < 0) rule.byMonthDayNeg |= 1U << (-n % 32);
        });
}

void readByYearDay(std::string_view list, _rruleRepeat& rule) {
    readList(
        list, rule, RRULE_TYPE_BYYEARDAY,
        [&](std::string_view item) {
            const long long n = RRule_Number(item);
            const long long magnitude = n < 0 ? -n : n;
            if (n == 0 || magnitude / 64 >= kYearDayWords) return;
            const unsigned long long bit = 1ULL << (magnitude % 64);
            if (n > 0)
                rule.byYearDay[magnitude / 64] |= bit;
            else
                rule.byYearDayNeg[magnitude / 64] |= bit;
        });
}

void readByWeekNo(std::string_view list, _rruleRepeat& rule) {
    readList(
        list, rule, RRULE_TYPE_BYWEEKNO,
        [&](std::string_view item) {
            const long long n = RRule_Number(item);
            if (n > 0 && n < 64) rule.byWeekNo |= 1ULL << n;
            if (n < 0 && n > -64) rule.byWeekNoNeg |= 1ULL << -n;
        });
}

// No range is tested: "0" and 13 to 15 set bits that are no month's.
void readByMonth(std::string_view list, _rruleRepeat& rule) {
    readList(
        list, rule, RRULE_TYPE_BYMONTH,
        [&](std::string_view item) {
            const auto bit = 1U << (static_cast<unsigned>(RRule_Number(item)) % 32);
            rule.byMonth |= static_cast<unsigned short>(bit);
        });
}

// The slots that BYDAY's ordinals took are skipped, together with as many items of this list:
// after one ordinal, item 1 goes to slot 1 and item 0 nowhere.
void readBySetPos(std::string_view list, _rruleRepeat& rule, int slotsTaken) {
    int index = 0;
    readList(list, rule, RRULE_TYPE_BYSETPOS, [&](std::string_view item) {
        if (index >= kPositionSlots) return;
        if (index >= slotsTaken) rule.setPos[index] = static_cast<short>(RRule_Number(item));
        ++index;
    });
}

// UNTIL, or COUNT where there is none, and INTERVAL.
void readBounds(const Fields& fields, _rruleRepeat& rule, int* flags) {
    if (!fields[kUntil].empty()) {
        const __int64 until = RRule_ReadUntil(fields[kUntil], flags);
        if (until >= 0) rule.until = until;
    }
    if (rule.until < 0 && !fields[kCount].empty())
        rule.count = static_cast<short>(RRule_Number(fields[kCount]));
    const int interval = RRule_Number(fields[kInterval]);
    if (interval > 0) rule.interval = static_cast<short>(interval);
}

int readFields(const Fields& fields, _rruleRepeat& rule, int* flags) {
    for (const auto& frequency : kFrequencyNames)
        if (RRule_IsName(fields[kFreq], frequency.name)) rule.freq = frequency.bit;
    if (rule.freq == 0) return RRule_BadFrequency(fields[kFreq]);
    readBounds(fields, rule, flags);
    const int slotsTaken = readByDay(fields[kByDay], rule);
    readByMonthDay(fields[kByMonthDay], rule);
    readByYearDay(fields[kByYearDay], rule);
    readByWeekNo(fields[kByWeekNo], rule);
    readByMonth(fields[kByMonth], rule);
    readBySetPos(fields[kBySetPos], rule, slotsTaken);
    if (const int day = RRule_DayOfCodeNoCase(fields[kWeekStart]); day != 0)
        rule.wkst |= static_cast<unsigned char>(1U << day);
    return QEL_OK;
}

// The names under which the iCalendar reader seeks its fields. The month days come from BYMONTH as
// well and the week start from BYWEEKST: parts named BYMONTHDAY and WKST are not read.
struct FieldName {
    std::string_view name;
    Field field;
};
constexpr FieldName kNames[] = {{"FREQ", kFreq},         {"UNTIL", kUntil},
                                {"COUNT", kCount},       {"INTERVAL", kInterval},
                                {"BYDAY", kByDay},       {"BYYEARDAY", kByYearDay},
                                {"BYWEEKNO", kByWeekNo}, {"BYMONTH", kByMonth},
                                {"BYSETPOS", kBySetPos}, {"BYWEEKST", kWeekStart}};

constexpr std::ptrdiff_t kShortestName = 4;

// A name's length and last letter distinguish it from all others: its place among 16.
constexpr std::size_t placeOf(std::string_view name) {
    return (name.size() + static_cast<unsigned char>(name.back())) % 16;
}
constexpr auto kByPlace = [] {
    std::array<FieldName, 16> places{};
    for (const FieldName& each : kNames) places[placeOf(each.name)] = each;
    return places;
}();
static_assert([] {
    for (const FieldName& each : kNames) {
        if (kByPlace[placeOf(each.name)].name != each.name) return false;
        if (each.name.size() < kShortestName) return false;
    }
    return true;
}());

// Of a name that comes twice the first value counts, an empty one too.
Fields namedFields(std::string_view text) {
    Fields fields;
    const char* const end = text.data() + text.size();
    for (const char* part = text.data(); part < end;) {
        const auto length = static_cast<std::size_t>(end - part);
        const auto* const separator = static_cast<const char*>(std::memchr(part, ';', length));
        const char* const partEnd = separator != nullptr ? separator : end;
        // An equals sign before the fourth character ends no known name.
        const char* const equals = partEnd - part > kShortestName
                                       ? RRule_Find(part + kShortestName, partEnd, '=')
                                       : partEnd;
        const std::string_view name(part, static_cast<std::size_t>(equals - part));
        part = partEnd + 1;
        if (equals == partEnd) continue;
        const auto& [known, field] = kByPlace[placeOf(name)];
        if (fields[field].data() != nullptr || name != known) continue;
        fields[field] = {equals + 1, static_cast<std::size_t>(partEnd - equals - 1)};
    }
    fields[kByMonthDay] = fields[kByMonth];
    return fields;
}

Fields positionalFields(std::string_view text) {
    Fields fields;
    RRuleItems items(text, ';', RRuleItems::Empty::kKeep);
    std::string_view item;
    for (std::size_t index = 0; index < kFields + kUnread && items.next(item); ++index)
        if (index < kFirstUnread)
            fields[index] = item;
        else if (index >= kFirstUnread + kUnread)
            fields[index - kUnread] = item;
    return fields;
}

}  // namespace

}  // namespace qel::recurrence

namespace recurrence = qel::recurrence;

int BxUtil_PositionaltoRRULE(const char* text, _rruleRepeat* rule, int* flags) {
    recurrence::RRule_Start(rule, flags);
    if (rule == nullptr) return QEL_FAILED;
    return recurrence::readFields(recurrence::positionalFields(text != nullptr ? text : ""), *rule,
                                  flags);
}

int BxUtil_PositionalV20toRRULE(const char* text, _rruleRepeat* rule, int* flags) {
    recurrence::RRule_Start(rule, flags);
    if (rule == nullptr) return QEL_FAILED;
    return recurrence::readFields(recurrence::namedFields(text != nullptr ? text : ""), *rule,
                                  flags);
}
