#include "commands/ConvertMessages.h"

#include <algorithm>

namespace qel::cli {

namespace {

constexpr std::size_t kMostToLookAt = 3;

// The higher, the earlier a person should look at it.
int weight(const qelcal::Note& note) {
    return (note.fate == QELCAL_LOST ? 4 : 0) + note.severity;
}

std::string place(const qelcal::Note& note) {
    std::string text = note.file;
    if (note.line != 0) text += (text.empty() ? "line " : ":") + std::to_string(note.line);
    return text;
}

}  // namespace

void ConvertMessages::add(const FileOutcome& outcome) {
    hidden_ += outcome.hidden;
    for (const auto& [note, count] : outcome.shown) {
        if (note.severity == QELCAL_ERROR) context_.setBadInput();
        if (verbose_) {
            show(note, note.text);
            continue;
        }
        const auto kind = std::find_if(
            kinds_.begin(), kinds_.end(),
            [&note = note](const Kind& each) { return each.group.first.code == note.code; });
        if (kind == kinds_.end()) {
            kinds_.push_back({{note, count}, 1});
            continue;
        }
        kind->group.count += count;
        ++kind->files;
    }
}

void ConvertMessages::finish() {
    for (const Kind& kind : kinds_) {
        std::string text = kind.group.first.text;
        if (kind.group.count > 1) {
            text += "; and " + std::to_string(kind.group.count - 1) + " more like it";
            if (kind.files > 1) text += ", in " + std::to_string(kind.files) + " files together";
        }
        show(kind.group.first, text);
    }
    if (std::any_of(kinds_.begin(), kinds_.end(),
                    [](const Kind& kind) { return kind.group.count > 1; }))
        context_.say("--verbose shows every message by itself");
}

std::vector<std::string> ConvertMessages::worthALook() const {
    if (kinds_.size() <= kMostToLookAt) return {};
    std::vector<const Kind*> order;
    for (const Kind& kind : kinds_) order.push_back(&kind);
    std::stable_sort(order.begin(), order.end(), [](const Kind* a, const Kind* b) {
        return weight(a->group.first) > weight(b->group.first);
    });
    order.resize(kMostToLookAt);
    std::vector<std::string> lines;
    for (const Kind* kind : order)
        lines.push_back(place(kind->group.first) + ": " + kind->group.first.text);
    return lines;
}

void ConvertMessages::show(const qelcal::Note& note, const std::string& text) {
    switch (note.severity) {
        case QELCAL_ERROR:
            context_.error(note.file, note.line, text);
            break;
        case QELCAL_WARNING:
            context_.warning(note.file, note.line, text);
            break;
        case QELCAL_NOTE:
            context_.note(note.file, note.line, text);
            break;
    }
}

}  // namespace qel::cli
