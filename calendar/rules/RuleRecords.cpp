#include "calendar/rules/RuleRecords.h"

#include <algorithm>
#include <limits>

#include "calendar/rules/RuleParts.h"

namespace qel::calendar {

namespace {

constexpr int kMostInRecord = std::numeric_limits<short>::max();
constexpr std::size_t kMostPositions = 4;

// QelUtility reads a date after its calendar as 1 January 1900; "99991231" means never.
bool endsPastCalendar(const Rule& rule) {
    return rule.until.substr(0, 4) > "2499";
}

bool isOrdinal(const Rule& piece) {
    return piece.days.size() == 1 && piece.days.front().position != 0;
}

// `rule` without what does not fit a record.
Rule fitted(const Rule& rule) {
    Rule piece = rule;
    piece.interval = std::min(rule.interval, kMostInRecord);
    if (rule.count > kMostInRecord) piece.count = 0;
    if (endsPastCalendar(rule)) piece.until = "24991231" + rule.until.substr(8);
    if (piece.setPositions.size() > kMostPositions) piece.setPositions.resize(kMostPositions);
    piece.hours.clear();
    piece.minutes.clear();
    piece.seconds.clear();
    return piece;
}

// Pieces with days that fit one record each: the days without a position together, every other
// one by itself.
std::vector<Rule> piecesOf(const Rule& rule) {
    Rule plain = fitted(rule);
    if (!anyPosition(rule.days)) return {plain};
    std::erase_if(plain.days, [](const RuleDay& day) { return day.position != 0; });
    std::vector<Rule> pieces;
    if (!plain.days.empty()) pieces.push_back(plain);
    for (const RuleDay& day : rule.days) {
        if (day.position == 0) continue;
        pieces.push_back(plain);
        pieces.back().days = {day};
        // A record has one place for both: the day's position takes it.
        pieces.back().setPositions.clear();
    }
    return pieces;
}

std::string positionalText(const Rule& piece) {
    std::string text;
    for (std::size_t field = 0; field < kRuleParts.size(); ++field) {
        addPartText(text, partOfField(field), piece, false);
        text += ';';
    }
    return text;
}

void noteLimits(const Rule& rule, std::vector<Note>& notes) {
    if (rule.interval > kMostInRecord || rule.count > kMostInRecord)
        notes.emplace_back(NoteCode::RecordNumberLimit);
    if (endsPastCalendar(rule)) notes.emplace_back(NoteCode::RecordEndLimit);
    if (!rule.hours.empty() || !rule.minutes.empty() || !rule.seconds.empty())
        notes.emplace_back(NoteCode::RecordTimesIgnored);
    if (rule.setPositions.size() > kMostPositions)
        notes.emplace_back(NoteCode::RecordPositionLimit);
    if (anyPosition(rule.days) && !rule.setPositions.empty())
        notes.emplace_back(NoteCode::RecordPositionsTogether);
    if (rule.count > 0 && piecesOf(rule).size() > 1) notes.emplace_back(NoteCode::RecordSeveral);
}

}  // namespace

std::vector<std::string> positionalTexts(const Rule& rule) {
    std::vector<std::string> texts;
    for (const Rule& piece : piecesOf(rule)) texts.push_back(positionalText(piece));
    return texts;
}

std::vector<RulePiece> rulePieces(const Rule& rule, std::vector<Note>* notes) {
    if (notes != nullptr) noteLimits(rule, *notes);
    std::vector<RulePiece> pieces;
    for (const Rule& each : piecesOf(rule)) {
        RulePiece piece{};
        piece.positionsAreOrdinals = isOrdinal(each);
        if (BxUtil_PositionaltoRRULE(positionalText(each).c_str(), &piece.record, nullptr) != 0)
            return {};
        pieces.push_back(piece);
    }
    return pieces;
}

}  // namespace qel::calendar
