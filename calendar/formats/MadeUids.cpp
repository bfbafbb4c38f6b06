#include "calendar/formats/MadeUids.h"

#include <algorithm>

#include "calendar/base/Ascii.h"
#include "calendar/text/Digest.h"

namespace qel::calendar {

namespace {

void addBytes(std::string& bytes, const Component& component) {
    bytes += component.name;
    bytes += '\n';
    for (const ContentLine& line : component.properties) {
        if (line.id == PropertyName::DtStamp || line.id == PropertyName::Uid) continue;
        bytes += line.name;
        for (const Parameter& each : line.parameters) {
            bytes += ';';
            bytes += each.name;
            bytes += '=';
            bytes += each.value;
        }
        bytes += ':';
        bytes += line.value;
        bytes += '\n';
    }
    for (const Component& each : component.children) addBytes(bytes, each);
}

}  // namespace

std::string digestForUid(const Component& component) {
    const bool given = std::any_of(
        component.properties.begin(), component.properties.end(), [](const ContentLine& line) {
            return line.id == PropertyName::Uid && !trimmed(line.value).empty();
        });
    if (given || component.name == "VTIMEZONE"sv) return {};
    std::string bytes;
    addBytes(bytes, component);
    return digestOf(bytes);
}

std::string MadeUids::uidOf(const std::string& digest, std::size_t line) {
    if (digest.empty()) return {};
    const auto found = seen_.find(digest);
    std::string suffix;
    if (found != seen_.end())
        suffix = "-" + std::to_string(++found->second);
    else if (seen_.size() < kMost)
        seen_.emplace(digest, 1);
    else
        suffix = "-line" + std::to_string(line);
    return digest + suffix + "@qelutil";
}

}  // namespace qel::calendar
