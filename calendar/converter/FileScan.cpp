#include "calendar/converter/FileScan.h"

#include <algorithm>

#include "calendar/text/ContentValue.h"
#include "calendar/zones/ZoneFromVTimezone.h"

namespace qel::calendar {

namespace {

// Bytes that are read at once.
constexpr std::size_t kPiece = std::size_t{64} << 10;
// The least bytes that a thread reads ahead.
constexpr std::size_t kSpan = std::size_t{64} << 10;

void dropNote(const Note&) {}

}  // namespace

void FileScan::Span::clear() {
    texts.clear();
    zones.clear();
    end.reset();
}

FileScan::Reader::Reader() : lines(dropNote, CalendarReader::Contents::OfZones) {
    lines.watchTexts([this](const ContentLine& line) { weigh(line); });
}

void FileScan::Reader::weigh(const ContentLine& line) {
    if (std::string text = unlabelledText(line); !text.empty())
        texts.emplace_back(std::move(text), line.number);
}

void FileScan::Reader::readItems() {
    using Item = CalendarReader::Item;
    for (;;) {
        const Item item = lines.next();
        if (item == Item::NeedMore || item == Item::End) return;
        if (item == Item::CalendarProperty) weigh(lines.property());
        if (item != Item::Entry) continue;
        for (const ContentLine& line : lines.component().properties) weigh(line);
        if (lines.component().name != "VTIMEZONE"sv) continue;
        decodeParameters(lines.component(), "");
        zones.push_back(zoneFromVTimezone(lines.component(), dropNote));
    }
}

void FileScan::Reader::read(Span& span) {
    texts.clear();
    zones.clear();
    lines.goOn(*span.begin, span.linesBefore);
    lines.write(span.bytes);
    lines.endLine();
    readItems();
    span.texts.swap(texts);
    span.zones.swap(zones);
    span.end = lines.place();
    span.lines = lines.lines();
}

FileScan::FileScan(ZoneStore& zones, std::size_t threads, std::size_t largePiece)
    : zones_(zones), threads_(threads), largePiece_(largePiece) {}

FileScan::~FileScan() = default;

void FileScan::write(std::string_view bytes) {
    if (threads_ > 1 && bytes.size() >= largePiece_) {
        if (ahead_ == nullptr)
            ahead_ = std::make_unique<Ahead<Span, Reader>>(
                threads_, std::min(largePiece_, kSpan),
                [](std::size_t) { return std::make_unique<Reader>(); });
        bytes = ahead_->read(bytes, *this);
    }
    writePieces(bytes);
}

void FileScan::end() {
    reader_.lines.end();
    reader_.readItems();
    keep(reader_.texts, reader_.zones);
}

void FileScan::writePieces(std::string_view bytes) {
    for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), kPiece))) {
        reader_.lines.write(bytes.substr(0, kPiece));
        reader_.readItems();
        keep(reader_.texts, reader_.zones);
    }
}

void FileScan::keep(std::vector<Text>& texts, std::vector<ZonePtr>& zones) {
    for (const auto& [text, line] : texts) guess_.add(text, line);
    for (const ZonePtr& each : zones) zones_.add(each);
    texts.clear();
    zones.clear();
}

void FileScan::begin(Span& span, std::size_t lines) {
    // Otherwise the last one: mostly the next calendar is like the one before.
    if (const auto place = reader_.lines.place()) place_ = place;
    span.begin = place_;
    span.linesBefore = lines;
}

void FileScan::take(Span& span) {
    if (!span.end || reader_.lines.place() != span.begin || lines() != span.linesBefore)
        return readAlone(span.bytes);
    keep(span.texts, span.zones);
    reader_.lines.goOn(*span.end, span.lines);
}

void FileScan::readAlone(std::string_view bytes) {
    writePieces(bytes);
    reader_.lines.endLine();
    reader_.readItems();
    keep(reader_.texts, reader_.zones);
}

}  // namespace qel::calendar
