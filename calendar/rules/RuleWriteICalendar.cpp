#include "calendar/rules/RuleWriteICalendar.h"

#include <algorithm>

#include "QelUtility/VStr.h"
#include "calendar/base/Ascii.h"
#include "calendar/rules/RuleParts.h"
#include "calendar/rules/RuleRecords.h"

namespace qel::calendar {

namespace {

struct Part {
    std::string_view name;
    std::string_view value;
};

// The parts of an RRULE in their order. What they name must last as long as they do.
class Parts {
  public:
    explicit Parts(std::string_view text) {
        parts_.reserve(16);
        while (!text.empty()) {
            std::string_view item = nextField(text, ';');
            const std::string_view name = nextField(item, '=');
            parts_.push_back({name, item});
        }
    }

    [[nodiscard]] std::string_view value(std::string_view name) const {
        const auto found = std::find_if(parts_.begin(), parts_.end(),
                                        [&](const Part& part) { return part.name == name; });
        return found == parts_.end() ? std::string_view() : found->value;
    }

    void set(std::string_view name, std::string_view value) {
        for (Part& part : parts_) {
            if (part.name != name) continue;
            part.value = value;
            return;
        }
        parts_.push_back({name, value});
    }

    void drop(std::string_view name) {
        std::erase_if(
            parts_, [&](const Part& part) { return part.name == name; });
    }

    [[nodiscard]] std::string text() const {
        std::string text;
        text.reserve(80);
        for (const Part& part : parts_) {
            if (!text.empty()) text += ';';
            text += part.name;
            text += '=';
            text += part.value;
        }
        return text;
    }

  private:
    std::vector<Part> parts_;
};

// BYDAY of one piece, its ordinal at its day again.
void addDays(std::string& days, const Parts& parts, const RulePiece& piece) {
    const std::string_view value = parts.value("BYDAY");
    if (value.empty()) return;
    if (!days.empty()) days += ',';
    if (piece.positionsAreOrdinals) days += std::to_string(piece.record.setPos[0]);
    days += value;
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
    VStr written;
    const char* first = BxUtil_RRULEtoIETF(&pieces.front().record, written, true);
    if (first == nullptr) return "";
    Parts parts(first);
    std::string days;
    addDays(days, parts, pieces.front());
    for (std::size_t each = 1; each < pieces.size(); ++each) {
        VStr more;
        const char* text = BxUtil_RRULEtoIETF(&pieces[each].record, more, true);
        if (text == nullptr) return "";
        addDays(days, Parts(text), pieces[each]);
    }
    if (!days.empty()) parts.set("BYDAY", days);
    // The library writes an ordinal as BYSETPOS and keeps no more than four positions.
    parts.drop("BYSETPOS");
    const std::string positions = joined(rule.setPositions);
    if (!positions.empty()) parts.set("BYSETPOS", positions);
    const std::string count = std::to_string(rule.count);
    if (!rule.until.empty()) {
        parts.drop("COUNT");
        parts.set("UNTIL", rule.until);
    } else if (rule.count > 0) {
        parts.set("COUNT", count);
    }
    const std::string interval = std::to_string(rule.interval);
    parts.set("INTERVAL", interval);
    const std::string hours = joined(rule.hours);
    if (!hours.empty()) parts.set("BYHOUR", hours);
    const std::string minutes = joined(rule.minutes);
    if (!minutes.empty()) parts.set("BYMINUTE", minutes);
    const std::string seconds = joined(rule.seconds);
    if (!seconds.empty()) parts.set("BYSECOND", seconds);
    if (weekStartMatters(rule))
        parts.set("WKST", kDayCodes[static_cast<std::size_t>(rule.weekStart)]);
    return parts.text();
}

}  // namespace qel::calendar
