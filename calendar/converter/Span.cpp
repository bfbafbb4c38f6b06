#include "calendar/converter/Span.h"

#include <algorithm>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/ByteSearch.h"
#include "calendar/converter/FileCuts.h"
#include "calendar/converter/SourceLines.h"

namespace qel::calendar {

namespace {

// Places that are kept for the next span, unless this one had more bytes.
constexpr std::size_t kMostPlaces = 100;
constexpr std::size_t kUsual = std::size_t{16} << 10;
// Zones that are counted by each thread.
constexpr std::size_t kMostZones = 100;

}  // namespace

bool SpanContext::allows(const SpanContext& other) const {
    return place == other.place && vCalendar == other.vCalendar &&
           zonesChanged == other.zonesChanged && zone.isLike(other.zone);
}

void Span::clear() {
    steps.clear();
    // What entries take does not depend on their bytes alone.
    if (bytes.size() > kUsual) places.clear();
    for (auto& each : places)
        if (each.size() > kMostPlaces) each.resize(kMostPlaces);
    context.reset();
}

SpanReader::SpanReader(const Choices& choices, std::size_t member)
    : choices_(choices),
      member_(member),
      vCalReader_(zones_, choices, [this](Note note) { notes_->push_back(std::move(note)); }),
      iCalReader_(zones_, choices, [this](Note note) { notes_->push_back(std::move(note)); }),
      reader_([this](Note note) {
          lineNotes_.emplace_back(std::move(note),
                                  reader_.inEntry() ? reader_.component().number : 0);
      }) {
    vCalReader_.readAhead(reported_);
    iCalReader_.readAhead(reported_);
}

// The zone with a count of its users by this thread: threads that count those of one zone wait for
// each other.
const ZonePtr& SpanReader::own(const ZonePtr& zone) {
    if (zone == nullptr) return zone;
    const auto known = own_.find(zone.get());
    if (known != own_.end()) return known->second;
    if (own_.size() >= kMostZones) return zone;
    return own_[zone.get()] = ZonePtr(std::make_shared<ZonePtr>(zone), zone.get());
}

ZonesById SpanReader::own(const ZonesById& zones) {
    ZonesById result;
    for (const auto& [id, zone] : zones) result.emplace(id, own(zone));
    return result;
}

void SpanReader::use(const std::shared_ptr<const SpanContext>& context) {
    if (context_ == context) return;
    context_ = context;
    const EntryReader::Reported& reported = context->reported;
    reported_.positionOrder = reported.positionOrder;
    // To copy many zones takes longer than what it saves.
    const bool few = context->described->size() + reported.undescribed->size() <= kMostZones;
    described_ = few ? own(*context->described) : ZonesById();
    zones_.described = few ? &described_ : context->described;
    reported_.undescribed =
        few ? std::make_shared<ZonesById>(own(*reported.undescribed)) : reported.undescribed;
}

void SpanReader::read(Span& span) {
    use(span.context);
    used_ = 0;
    if (span.places.size() <= member_) span.places.resize(member_ + 1);
    const SpanContext& context = *span.context;
    std::size_t lines = span.linesBefore;
    reader_.goOn(context.place, lines);
    for (std::size_t begin = 0; begin < span.bytes.size();) {
        const std::size_t end = std::min(nextCut(span.bytes, begin), span.bytes.size());
        const std::string_view bytes = span.bytes.substr(begin, end - begin);
        begin = end;
        if (readEntry(span, bytes)) {
            lines = reader_.lines();
            continue;
        }
        span.steps.push_back({bytes, nullptr, 0, {}});
        lines += countOf(bytes, '\n');
        reader_.goOn(context.place, lines);
    }
}

// False when it is not one entry, or depends on others. Then the reader is anywhere.
bool SpanReader::readEntry(Span& span, std::string_view bytes) {
    using Item = CalendarReader::Item;
    const SpanContext& context = *span.context;
    if (!beginsEntry(bytes)) return false;
    if (context.wantsLines && bytes.find('\0') != bytes.npos) return false;
    const std::size_t before = reader_.lines();
    lineNotes_.clear();
    reader_.write(bytes);
    reader_.endLine();
    if (reader_.next() != Item::Entry || hasZoneLines(reader_.component())) return false;
    auto& places = span.places[member_];
    if (used_ == places.size()) places.push_back(std::make_unique<Span::Place>());
    Span::Place& place = *places[used_];
    if (!readComponent(place, context)) return false;
    EntryWork& work = place.work;
    if (context.wantsLines && work.chosen) {
        const SourceLines::Lines source =
            SourceLines::firstOf(bytes, reader_.lastLine() - before, kMostSource);
        work.source = source.text;
        work.sourceCut = source.cut;
    }
    // Nothing but blank lines may come after it, and it must leave the file as it was.
    const std::size_t notes = lineNotes_.size();
    if (reader_.next() != Item::NeedMore || reader_.place() != context.place ||
        lineNotes_.size() != notes)
        return false;
    ++used_;
    span.steps.push_back({bytes, &work, reader_.lines() - before, std::move(lineNotes_)});
    lineNotes_ = {};
    return true;
}

bool SpanReader::readComponent(Span::Place& place, const SpanContext& context) {
    EntryWork& work = place.work;
    Component& component = reader_.component();
    if (component.name == "VNOTE"sv && !context.vCalendar) return false;
    work.line = component.number;
    work.component = &component;
    work.vCalendar = context.vCalendar;
    work.prepared = false;
    work.source = {};
    work.sourceCut = false;
    work.notes.clear();
    work.chosen = isChosen(choices_, component.name);
    prepare(work, choices_);
    work.component = nullptr;
    if (!work.chosen) return true;
    notes_ = &work.notes;
    EntryReader& reader = context.vCalendar ? static_cast<EntryReader&>(vCalReader_) : iCalReader_;
    Entry* const entry = reader.read(component, own(context.zone.zone()));
    if (entry == nullptr || reader.dependsOnOthers()) return false;
    std::swap(place.entry, *entry);
    work.entry = &place.entry;
    work.series = std::move(reader.series());
    work.settled = context.zone.settle(place.entry);
    if (work.settled.named != nullptr) place.entry.zone = own(*work.settled.named);
    context.writer->draft(place.entry, work.draft);
    return true;
}

}  // namespace qel::calendar
