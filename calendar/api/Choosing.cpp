#include "calendar/api/Choosing.h"

#include <string>
#include <string_view>

#include "calendar/api/Calls.h"
#include "calendar/charsets/CharacterSet.h"
#include "calendar/zones/WorldZones.h"

namespace qel::calendar::api {

namespace {

int refuse(std::string_view value, std::string_view expected) {
    return fail(QELCAL_INVALID_ARGUMENT,
                "\"" + std::string(value) + "\" cannot be chosen: " + std::string(expected));
}

int chooseZone(Choices& choices, std::string_view value) {
    const auto zone = worldZoneMeant(value);
    if (!zone && !value.empty()) return fail(QELCAL_INVALID_ARGUMENT, noWorldZone(value));
    choices.zone = zone ? worldZoneName(*zone) : std::string_view();
    return QELCAL_OK;
}

int chooseCountMeans(Choices& choices, std::string_view value) {
    if (value == "periods")
        choices.countMeans = CountMeans::Periods;
    else if (value.empty() || value == "dates")
        choices.countMeans = CountMeans::Dates;
    else
        return refuse(value, "the number of a rule means dates or periods");
    return QELCAL_OK;
}

int chooseCharacterSet(Choices& choices, std::string_view value) {
    if (!value.empty() && findCharacterSet(value) == nullptr)
        return fail(QELCAL_UNKNOWN_NAME,
                    "the character set \"" + std::string(value) + "\" is unknown");
    choices.characterSet = value;
    return QELCAL_OK;
}

int chooseDistinctUids(Choices& choices, std::string_view value) {
    if (!value.empty() && value != "yes" && value != "no") return refuse(value, "it is yes or no");
    choices.distinctUids = value == "yes";
    return QELCAL_OK;
}

int chooseOnly(Choices& choices, std::string_view value) {
    KindsWanted only{value.empty(), value.empty(), value.empty()};
    while (!value.empty()) {
        const std::string_view kind = value.substr(0, value.find(','));
        if (kind == "events")
            only.events = true;
        else if (kind == "todos")
            only.todos = true;
        else if (kind == "notes")
            only.notes = true;
        else
            return refuse(kind, "there are events, todos and notes");
        value.remove_prefix(std::min(kind.size() + 1, value.size()));
    }
    choices.only = only;
    return QELCAL_OK;
}

}  // namespace

int choose(Choices& choices, int choice, const char* value) {
    const std::string_view text = value == nullptr ? "" : value;
    return guarded([&] {
        switch (choice) {
            case QELCAL_CHOOSE_ZONE:
                return chooseZone(choices, text);
            case QELCAL_CHOOSE_CHARSET:
                return chooseCharacterSet(choices, text);
            case QELCAL_CHOOSE_COUNT_MEANS:
                return chooseCountMeans(choices, text);
            case QELCAL_CHOOSE_DISTINCT_UIDS:
                return chooseDistinctUids(choices, text);
            case QELCAL_CHOOSE_ONLY:
                return chooseOnly(choices, text);
            default:
                return fail(QELCAL_INVALID_ARGUMENT, "this choice does not exist");
        }
    });
}

}  // namespace qel::calendar::api
