// iCalendar rules from rules: the library writes each record, its texts are mended and joined.
#include <algorithm>

#include "QelUtility/VStr.h"
#include "convert/Ascii.h"
#include "convert/RuleParts.h"

namespace qel::convert {

namespace {

using Parts = std::vector<std::pair<std::string, std::string>>;

Parts partsOf(std::string_view text) {
    Parts parts;
    while (!text.empty()) {
        std::string_view item = nextField(text, ';');
        const std::string_view name = nextField(item, '=');
        parts.emplace_back(name, item);
    }
    return parts;
}

void setPart(Parts& parts, std::string_view name, const std::string& value) {
    const auto found = std::find_if(parts.begin(), parts.end(),
                                    [&](const auto& part) { return part.first == name; });
    if (found != parts.end()) {
        found->second = value;
    } else {
        parts.emplace_back(name, value);
    }
}

void dropPart(Parts& parts, std::string_view name) {
    std::erase_if(parts, [&](const auto& part) { return part.first == name; });
}

// BYDAY of all pieces together, each ordinal at its day again.
std::string joinedDays(const std::vector<Parts>& texts, const std::vector<RulePiece>& pieces) {
    std::string days;
    for (std::size_t each = 0; each < texts.size(); ++each) {
        for (const auto& [name, value] : texts[each]) {
            if (name != "BYDAY") continue;
            if (!days.empty()) days += ',';
            if (pieces[each].positionsAreOrdinals)
                days += std::to_string(pieces[each].record.setPos[0]);
            days += value;
        }
    }
    return days;
}

// WKST counts where a week is counted or numbered.
bool weekStartMatters(const Rule& rule) {
    if (rule.weekStart == 0) return false;
    return !rule.weekNumbers.empty() ||
           (rule.frequency == Frequency::Weekly && rule.interval > 1 && !rule.days.empty());
}

}  // namespace

std::string iCalendarText(const Rule& rule) {
    std::vector<RulePiece> pieces = rulePieces(rule, nullptr);
    if (pieces.empty()) return "";
    std::vector<Parts> texts;
    for (RulePiece& piece : pieces) {
        VStr written;
        const char* text = BxUtil_RRULEtoIETF(&piece.record, written, true);
        if (text == nullptr) return "";
        texts.push_back(partsOf(text));
    }
    Parts parts = texts.front();
    const std::string days = joinedDays(texts, pieces);
    if (!days.empty()) setPart(parts, "BYDAY", days);
    // The library writes an ordinal as BYSETPOS and keeps no more than four positions.
    dropPart(parts, "BYSETPOS");
    if (!rule.setPositions.empty()) setPart(parts, "BYSETPOS", joined(rule.setPositions));
    if (!rule.until.empty()) {
        dropPart(parts, "COUNT");
        setPart(parts, "UNTIL", rule.until);
    } else if (rule.count > 0) {
        setPart(parts, "COUNT", std::to_string(rule.count));
    }
    setPart(parts, "INTERVAL", std::to_string(rule.interval));
    if (!rule.hours.empty()) setPart(parts, "BYHOUR", joined(rule.hours));
    if (!rule.minutes.empty()) setPart(parts, "BYMINUTE", joined(rule.minutes));
    if (!rule.seconds.empty()) setPart(parts, "BYSECOND", joined(rule.seconds));
    if (weekStartMatters(rule))
        setPart(parts, "WKST", std::string(kDayCodes[static_cast<std::size_t>(rule.weekStart)]));
    std::string text;
    for (const auto& [name, value] : parts) {
        if (!text.empty()) text += ';';
        text += name + "=" + value;
    }
    return text;
}

}  // namespace qel::convert
