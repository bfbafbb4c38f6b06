#include "calendar/rules/RuleRecords.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "calendar/base/Ascii.h"
#include "calendar/rules/RuleParts.h"

namespace qel::calendar {

namespace {

constexpr int kMostInRecord = std::numeric_limits<short>::max();
constexpr std::size_t kMostPositions = 4;

std::string_view codeOf(const RuleDay& day) {
    return kDayCodes[static_cast<std::size_t>(day.weekday)];
}

std::string daysText(const std::vector<RuleDay>& days) {
    std::string text;
    for (const RuleDay& day : days) {
        if (!text.empty()) text += ',';
        if (day.position != 0) text += std::to_string(day.position);
        text += codeOf(day);
    }
    return text;
}

std::string_view frequencyText(Frequency frequency) {
    switch (frequency) {
        case Frequency::Daily:
            return "DAILY";
        case Frequency::Weekly:
            return "WEEKLY";
        case Frequency::Monthly:
            return "MONTHLY";
        case Frequency::Yearly:
            return "YEARLY";
    }
    return "";
}

// The rules, each with days that one record can hold: those without a position together, each one
// with a position by itself.
std::vector<Rule> splitByDays(const Rule& rule) {
    std::vector<Rule> pieces;
    Rule plain = rule;
    plain.days.clear();
    for (const RuleDay& day : rule.days)
        if (day.position == 0) plain.days.push_back(day);
    if (!plain.days.empty()) pieces.push_back(plain);
    for (const RuleDay& day : rule.days) {
        if (day.position == 0) continue;
        pieces.push_back(plain);
        pieces.back().days = {day};
    }
    return pieces;
}

// Hands them to `take` one by one, until it says false; true when it never did. Nearly every rule
// is its own only piece, and is not copied then.
template <class Take>
bool forEachPiece(const Rule& rule, Take take) {
    const bool whole = std::all_of(rule.days.begin(), rule.days.end(),
                                   [](const RuleDay& day) { return day.position == 0; });
    if (whole) return take(rule);
    const std::vector<Rule> pieces = splitByDays(rule);
    return std::all_of(pieces.begin(), pieces.end(), take);
}

// The library reads a date past its calendar as 1 January 1900; "99991231" is meant as never.
bool endsPastCalendar(const Rule& rule) {
    return rule.until.substr(0, 4) > "2499";
}

std::string recordUntil(const Rule& piece) {
    return endsPastCalendar(piece) ? "24991231" + piece.until.substr(8) : piece.until;
}

bool isOrdinal(const Rule& piece) {
    return piece.days.size() == 1 && piece.days.front().position != 0;
}

std::string positionalText(const Rule& piece) {
    std::string text(frequencyText(piece.frequency));
    const bool holdsCount = piece.count > 0 && piece.count <= kMostInRecord;
    text += ";" + recordUntil(piece);
    text += ";" + (holdsCount ? std::to_string(piece.count) : std::string());
    text += ";" + std::to_string(std::min(piece.interval, kMostInRecord));
    text += ";;;;" + daysText(piece.days);
    text += ";" + joined(piece.monthDays) + ";" + joined(piece.yearDays) + ";" +
            joined(piece.weekNumbers) + ";" + joined(piece.months) + ";";
    // The one position of an ordinal is on its day already.
    if (!isOrdinal(piece)) {
        std::vector<int> positions = piece.setPositions;
        if (positions.size() > kMostPositions) positions.resize(kMostPositions);
        text += joined(positions);
    }
    text += ";";
    if (piece.weekStart != 0) text += kDayCodes[static_cast<std::size_t>(piece.weekStart)];
    return text + ";";
}

void addItems(std::string& text, const std::vector<int>& numbers) {
    for (const int number : numbers) {
        text += ' ';
        text += std::to_string(number);
    }
}

// How a piece begins in vCalendar 1.0, where the library reads that form without loss, else "".
std::string_view vCalendarCode(const Rule& piece) {
    const auto positive = [](const std::vector<int>& list) {
        return !list.empty() &&
               std::all_of(list.begin(), list.end(), [](int number) { return number > 0; });
    };
    if (piece.weekStart != 0 || !piece.weekNumbers.empty() || !piece.setPositions.empty())
        return "";
    const bool noDays = piece.days.empty();
    const bool noMonthDays = piece.monthDays.empty();
    const bool noYearDays = piece.yearDays.empty();
    const bool noMonths = piece.months.empty();
    const bool onlyDays = noMonthDays && noYearDays && noMonths;
    switch (piece.frequency) {
        case Frequency::Daily:
            return onlyDays && noDays ? "D" : "";
        case Frequency::Weekly:
            return onlyDays ? "W" : "";
        case Frequency::Monthly:
            if (onlyDays && isOrdinal(piece)) return "MP";
            return noDays && noMonths && noYearDays && positive(piece.monthDays) ? "MD" : "";
        case Frequency::Yearly:
            if (noDays && noMonthDays && noYearDays && !noMonths) return "YM";
            return noDays && noMonthDays && noMonths && positive(piece.yearDays) ? "YD" : "";
    }
    return "";
}

// The whole text of such a piece, else "".
std::string vCalendarPieceText(const Rule& piece) {
    std::string text(vCalendarCode(piece));
    if (text.empty()) return text;
    text += std::to_string(std::min(piece.interval, kMostInRecord));
    if (piece.frequency == Frequency::Monthly && isOrdinal(piece)) {
        const RuleDay& day = piece.days.front();
        text += ' ' + std::to_string(std::abs(day.position)) + (day.position > 0 ? "+ " : "- ");
        text += codeOf(day);
    } else {
        for (const RuleDay& day : piece.days) {
            text += ' ';
            text += codeOf(day);
        }
    }
    addItems(text, piece.monthDays);
    addItems(text, piece.months);
    addItems(text, piece.yearDays);
    text += ' ';
    if (!piece.until.empty()) {
        text += recordUntil(piece);
    } else {
        const bool holdsCount = piece.count > 0 && piece.count <= kMostInRecord;
        text += '#' + std::to_string(holdsCount ? piece.count : 0);
    }
    return text;
}

void noteLimits(const Rule& rule, std::vector<Note>& notes) {
    if (rule.interval > kMostInRecord || rule.count > kMostInRecord)
        notes.push_back({Severity::Warning, "a record holds no number beyond 32767"});
    if (endsPastCalendar(rule))
        notes.push_back({Severity::Note, "a record holds no end past 31 December 2499"});
    if (!rule.hours.empty() || !rule.minutes.empty() || !rule.seconds.empty())
        notes.push_back({Severity::Warning, "a record holds no times of day"});
    const bool ordinals = std::any_of(rule.days.begin(), rule.days.end(),
                                      [](const RuleDay& day) { return day.position != 0; });
    if (rule.setPositions.size() > kMostPositions)
        notes.push_back({Severity::Warning, "a record holds no more than four positions"});
    if (ordinals && !rule.setPositions.empty())
        notes.push_back({Severity::Warning,
                         "a record does not hold positions of weekdays and BYSETPOS together"});
    if (rule.count > 0 && splitByDays(rule).size() > 1)
        notes.push_back({Severity::Note,
                         "the rule takes several records; its count is the count "
                         "of all their dates together"});
}

}  // namespace

std::vector<std::string> positionalTexts(const Rule& rule) {
    std::vector<std::string> texts;
    forEachPiece(rule, [&](const Rule& piece) {
        texts.push_back(positionalText(piece));
        return true;
    });
    return texts;
}

std::vector<RulePiece> rulePieces(const Rule& rule, std::vector<Note>* notes) {
    if (notes != nullptr) noteLimits(rule, *notes);
    std::vector<RulePiece> pieces;
    const bool all = forEachPiece(rule, [&](const Rule& each) {
        RulePiece piece{};
        piece.positionsAreOrdinals = isOrdinal(each);
        const std::string text = vCalendarPieceText(each);
        const int result =
            text.empty()
                ? BxUtil_PositionaltoRRULE(positionalText(each).c_str(), &piece.record, nullptr)
                : BxUtil_PositionalV10toRRULE(text.c_str(), &piece.record, nullptr);
        pieces.push_back(piece);
        return result == 0;
    });
    if (!all) pieces.clear();
    return pieces;
}

}  // namespace qel::calendar
