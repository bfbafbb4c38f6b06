#include "calendar/converter/EntryWork.h"

#include <algorithm>
#include <utility>

#include "calendar/formats/MadeUids.h"
#include "calendar/text/ContentValue.h"

namespace qel::calendar {

void prepare(EntryWork& work, const Choices& choices) {
    if (std::exchange(work.prepared, true)) return;
    work.digest = digestForUid(*work.component);
    decodeParameters(*work.component, choices.characterSet);
}

bool hasZoneLines(const Component& component) {
    return std::any_of(
        component.properties.begin(), component.properties.end(),
        [](const ContentLine& line) {
            return line.id == PropertyName::Tz || line.id == PropertyName::Daylight;
        });
}

bool isChosen(const Choices& choices, std::string_view component) {
    if (component == "VEVENT"sv) return choices.only.events;
    return component == "VTODO"sv ? choices.only.todos : choices.only.notes;
}

}  // namespace qel::calendar
