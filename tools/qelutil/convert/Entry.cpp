#include "convert/Entry.h"

#include <algorithm>

#include "convert/Ascii.h"
#include "convert/Days.h"

namespace qel::convert {

const EntryProperty* Entry::find(std::string_view name) const {
    const auto found =
        std::find_if(properties.begin(), properties.end(),
                     [&](const EntryProperty& property) { return property.name == name; });
    return found == properties.end() ? nullptr : &*found;
}

bool Entry::saysAllDay() const {
    if (const EntryProperty* type = find("X-EPOCAGENDAENTRYTYPE")) {
        const std::string_view value = trimmed(type->value());
        if (equalsIgnoreCase(value, "EVENT") || equalsIgnoreCase(value, "ANNIVERSARY")) return true;
    }
    const EntryProperty* flag = find("X-MICROSOFT-CDO-ALLDAYEVENT");
    return flag != nullptr && equalsIgnoreCase(trimmed(flag->value()), "TRUE");
}

RuleStart Entry::ruleStart() const {
    const Civil civil = civilOf(start->day);
    RuleStart result{civil.year, civil.month, civil.day, start->second, start->isDate, 0};
    if (start->clock == Clock::Zoned && zone != nullptr)
        result.utcOffset = zone->offsetAtLocal(start->seconds());
    return result;
}

std::optional<Moment> Entry::toUtc(const Moment& moment) const {
    if (moment.isDate || moment.clock == Clock::Floating) return std::nullopt;
    if (moment.clock == Clock::Utc) return moment;
    if (zone == nullptr) return std::nullopt;
    return zone->toUtc(moment);
}

Moment Entry::inClockOf(const Moment& like, const Moment& moment) const {
    Moment result = moment;
    if (moment.isDate) {
        if (!like.isDate) {
            result = like;
            result.day = moment.day;
        }
        return result;
    }
    if (moment.clock != like.clock && zone != nullptr) {
        if (moment.clock == Clock::Utc && (like.clock == Clock::Zoned || like.isDate)) {
            result = zone->toLocal(moment);
        } else if (moment.clock == Clock::Zoned && like.clock == Clock::Utc) {
            result = zone->toUtc(moment);
        }
    }
    if (like.isDate) {
        result = like;
        const Moment local =
            moment.clock == Clock::Utc && zone != nullptr ? zone->toLocal(moment) : moment;
        result.day = local.day;
    }
    return result;
}

const PropertyKind* propertyKind(std::string_view name) {
    using Type = EntryProperty::Type;
    static constexpr PropertyKind kKinds[] = {
        {"ATTACH", Type::Raw, true, true, true, false},
        {"ATTENDEE", Type::Raw, true, true, true, false},
        {"CATEGORIES", Type::TextList, true, true, true, false},
        {"CLASS", Type::Text, true, true, true, true},
        {"COLOR", Type::Text, true, true, true, true},
        {"COMMENT", Type::Text, true, true, true, false},
        {"CONFERENCE", Type::Raw, true, true, false, false},
        {"CONTACT", Type::Text, true, true, true, false},
        {"DESCRIPTION", Type::Text, true, true, true, true},
        {"GEO", Type::Raw, true, true, false, true},
        {"IMAGE", Type::Raw, true, true, true, false},
        {"LOCATION", Type::Text, true, true, false, true},
        {"ORGANIZER", Type::Raw, true, true, true, true},
        {"PERCENT-COMPLETE", Type::Raw, false, true, false, true},
        {"PRIORITY", Type::Raw, true, true, false, true},
        {"RELATED-TO", Type::Text, true, true, true, false},
        {"REQUEST-STATUS", Type::Raw, true, true, true, false},
        {"RESOURCES", Type::TextList, true, true, false, false},
        {"SEQUENCE", Type::Raw, true, true, true, true},
        {"STATUS", Type::Text, true, true, true, true},
        {"SUMMARY", Type::Text, true, true, true, true},
        {"TRANSP", Type::Text, true, false, false, true},
        {"URL", Type::Raw, true, true, true, true}};
    for (const PropertyKind& kind : kKinds)
        if (kind.name == name) return &kind;
    return nullptr;
}

}  // namespace qel::convert
