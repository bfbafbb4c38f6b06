#include "calendar/converter/Converter.h"

#include <algorithm>
#include <cassert>
#include <ostream>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/converter/FileZone.h"
#include "calendar/converter/HeldFiles.h"
#include "calendar/converter/Namesakes.h"
#include "calendar/converter/SourceLines.h"
#include "calendar/formats/ICalReader.h"
#include "calendar/formats/ICalWriter.h"
#include "calendar/formats/MadeUids.h"
#include "calendar/formats/VCalReader.h"
#include "calendar/formats/VCalWriter.h"
#include "calendar/lines/CalendarReader.h"
#include "calendar/text/ContentValue.h"
#include "calendar/text/Escapes.h"
#include "calendar/text/TextCodec.h"
#include "calendar/zones/ZoneFromVCalendar.h"
#include "calendar/zones/ZoneFromVTimezone.h"

namespace qel::calendar {

namespace {

// Memory for zones, far more than all zones of the world take; beyond it a zone counts as not
// described.
constexpr std::size_t kMostZoneBytes = std::size_t{64} << 20;
// Bytes of a name or a value that a note mentions.
constexpr std::size_t kLongestName = 200;
// Properties of a calendar itself that are kept.
constexpr std::size_t kMostHeader = 200;
// Bytes of an entry's source that an observer is given.
constexpr std::size_t kMostSource = std::size_t{64} << 10;
// Bytes that are read at once.
constexpr std::size_t kPiece = std::size_t{64} << 10;

// Calls `write` for the bytes in pieces of at most kPiece.
template <class Write>
void inPieces(std::string_view bytes, const Write& write) {
    for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), kPiece)))
        write(bytes.substr(0, kPiece));
}

// True for an entry that has what only iCalendar has, and nothing that only vCalendar 1.0 has.
bool looksLikeICalendar(const Component& component) {
    bool found = !component.children.empty();
    for (const ContentLine& line : component.properties) {
        const bool fits = line.id == PropertyName::RRule
                              ? startsWithIgnoreCase(trimmed(line.value), "FREQ=")
                              : line.id == PropertyName::Unknown ||
                                    propertyOf(line.id).isOf(Property::kICalendar);
        if (!fits || isEncoded(line)) return false;
        found = found || line.id == PropertyName::DtStamp || line.id == PropertyName::RRule ||
                line.hasParameter("TZID") || equalsIgnoreCase(line.parameter("VALUE"), "DATE");
    }
    return found;
}

}  // namespace

class ZoneStore {
  public:
    void add(const ZonePtr& zone) {
        if (zone == nullptr) return;
        const std::size_t cost = zone->cost();
        if (bytes_ + cost > kMostZoneBytes) return;
        // The same name may be described twice; the later one counts from there on.
        ZonePtr& place = known.described[zone->id()];
        bytes_ += cost - (place == nullptr ? 0 : place->cost());
        place = zone;
    }

    void clear() {
        known.described.clear();
        bytes_ = 0;
    }

    KnownZones known;
    ZoneNamings namings;

  private:
    std::size_t bytes_ = 0;
};

// One file on its way through.
class Converter::File {
  public:
    File(Converter& owner, std::string name)
        : owner_(owner),
          name_(std::move(name)),
          choices_(withGuess(owner.choices_, owner.guess_)),
          observer_(owner.observer_),
          wantsLines_(observer_ != nullptr && observer_->wantsLines()),
          reader_(noteSink()),
          vCalReader_(owner.zones_->known, choices_, noteSink()),
          iCalReader_(owner.zones_->known, choices_, noteSink()) {}

    void reportGuess() {
        if (owner_.guess_ && owner_.choices_.characterSet.empty())
            report(Note(NoteCode::CharacterSetGuessed, owner_.guess_->line,
                        {owner_.guess_->set, owner_.guess_->letters}));
    }

    // REQUIRES: at most kPiece bytes, so that what is kept of them stays small.
    void write(std::string_view piece) {
        if (wantsLines_) source_.add(piece);
        reader_.write(piece);
        takeItems();
    }

    void end() {
        reader_.end();
        takeItems();
        if (shifting_ != 0)
            report(Note(NoteCode::UtcSeriesShifts, firstShifting_, {std::to_string(shifting_)}));
        if (notChosen_ != 0)
            report(Note(NoteCode::EntriesNotChosen, firstNotChosen_, {std::to_string(notChosen_)}));
    }

    // Passes a note on, and keeps it until the entry that it may be about is written.
    void report(Note note) {
        note.file = name_;
        if (observer_ != nullptr) keep(note);
        owner_.sink_(std::move(note));
    }

  private:
    static Choices withGuess(Choices choices, const std::optional<GuessedSet>& guess) {
        if (choices.characterSet.empty() && guess) choices.characterSet = guess->set;
        return choices;
    }

    [[nodiscard]] NoteSink noteSink() {
        return [this](Note note) { report(std::move(note)); };
    }

    void keep(const Note& note) {
        if (notes_.size() == ConvertedEntry::kMostNotes) {
            // What is outside entries may have given any number of notes.
            if (!inEntry_ && !reader_.inEntry())
                notes_.clear();
            else if (notes_.front().line < reader_.component().number)
                dropNotesBefore(reader_.component().number);
        }
        if (notes_.size() < ConvertedEntry::kMostNotes)
            notes_.push_back(note);
        else
            ++moreNotes_;
    }

    void dropNotesBefore(std::size_t line) {
        std::erase_if(
            notes_, [line](const Note& note) { return note.line < line; });
    }

    void takeItems() {
        using Item = CalendarReader::Item;
        for (;;) {
            switch (reader_.next()) {
                case Item::CalendarBegin:
                    beginCalendar();
                    break;
                case Item::CalendarProperty:
                    takeProperty();
                    break;
                case Item::Entry:
                    takeComponent();
                    break;
                case Item::CalendarEnd:
                    endCalendar();
                    break;
                case Item::NeedMore:
                case Item::End:
                    return;
            }
        }
    }

    void beginCalendar() {
        ++owner_.counts_.calendars;
        tz_.reset();
        iCalendarUnsaid_ = false;
        daylight_.clear();
        texts_.clear();
        header_.clear();
        settled_ = false;
        begun_ = false;
        zoneName_.clear();
        zone_ = {};
    }

    void takeProperty() {
        ContentLine& line = reader_.property();
        decodeParameters(line, choices_.characterSet);
        if (line.id == PropertyName::Version || line.name == "PRODID"sv ||
            line.name == "CALSCALE"sv) {
            if (line.name == "CALSCALE"sv && !equalsIgnoreCase(trimmed(line.value), "GREGORIAN"))
                report(Note(NoteCode::CalendarScaleUnknown, line.number,
                            {line.value.substr(0, kLongestName)}));
            return;
        }
        const bool isTz = line.id == PropertyName::Tz;
        const bool isDaylight = line.id == PropertyName::Daylight;
        if (settled_ && (isTz || isDaylight))
            report(Note(NoteCode::ZoneLineLate, line.number, {line.name}));
        if (isTz) {
            if (tz_ && !settled_ && trimmed(tz_->value) != trimmed(line.value))
                report(Note(NoteCode::ZoneLineReplaced, tz_->number, {tz_->value}));
            line.moveTo(texts_);
            tz_ = std::move(line);
            settled_ = false;
        } else if (line.name == kZoneName) {
            zoneName_ = trimmed(decodedText(line.value)).substr(0, kLongestName);
            settled_ = false;
        } else if (isDaylight) {
            if (daylight_.size() < kMostHeader) {
                line.moveTo(texts_);
                daylight_.push_back(std::move(line));
            }
            settled_ = false;
        } else {
            takeHeader(line);
        }
    }

    void takeHeader(const ContentLine& line) {
        if (begun_) {
            report(Note(NoteCode::CalendarPropertyLate, line.number,
                        {line.name.substr(0, kLongestName)}));
            return;
        }
        const Property& property = propertyOf(line.id);
        const bool stray = property.standsIn(Property::kNotInCalendar);
        if (stray || header_.size() >= kMostHeader) {
            report(Note(NoteCode::NotCalendarProperty, line.number,
                        {line.name.substr(0, kLongestName)}));
            return;
        }
        std::vector<Note> notes;
        std::string value = decodedValue(line, choices_.characterSet, notes);
        const bool vcalendar = isVCalendar();
        if (!vcalendar) value = unescapeICalendar(value);
        std::string name(line.name);
        const bool known =
            property.standsIn(Property::kCalendar) && property.isOf(Property::kICalendar);
        if (name.starts_with(kICalendarPrefix))
            name = restoredName(line.name, kICalendarPrefix);
        else if (!known && !name.starts_with("X-"))
            name = std::string(kVCalendarPrefix) + name;
        const auto type = name == "METHOD"sv || name == "URL"sv || name == "SOURCE"sv
                              ? EntryProperty::Type::Raw
                              : EntryProperty::Type::Text;
        header_.push_back({name, parametersFromVCalendar(line), type, value, {}, line.number});
        for (Note& note : notes) report(std::move(note));
    }

    [[nodiscard]] bool isVCalendar() const { return reader_.version() != "2.0"; }

    // The calendar's properties are known when its first entry comes, or its end.
    void settle(const Component* first = nullptr) {
        if (settled_) return;
        settled_ = true;
        begun_ = true;
        if (first != nullptr) {
            iCalendarUnsaid_ = reader_.version().empty() && looksLikeICalendar(*first);
            if (iCalendarUnsaid_) report(Note(NoteCode::VersionMissing, first->number));
            dropUselessMethod(*first);
        }
        ZonePtr made;
        if (tz_) made = zoneOfLines(*tz_, daylight_, zoneName_);
        zone_ =
            FileZone(std::move(made), tz_ ? tz_->number : 0, zoneName_, vCalReader_.chosenZone(),
                     owner_.zones_->namings, owner_.zones_->known.world);
        if (!owner_.to_)
            owner_.to_ = isVCalendar() ? CalendarFormat::ICalendar : CalendarFormat::VCalendar10;
        owner_.writer().makeUidsDistinct(choices_.distinctUids);
        owner_.writer().calendar(header_);
    }

    // An invitation, an answer or a publication names its organizer (RFC 5546 section 3.2).
    void dropUselessMethod(const Component& first) {
        const bool organized = std::any_of(
            first.properties.begin(), first.properties.end(), [](const ContentLine& line) {
                return line.id == PropertyName::Organizer && !trimmed(line.value).empty();
            });
        if (organized) return;
        std::erase_if(header_, [this](const EntryProperty& each) {
            if (each.name != "METHOD"sv) return false;
            report(Note(NoteCode::MethodWithoutOrganizer, each.line,
                        {each.name, each.value().substr(0, kLongestName)}));
            return true;
        });
    }

    void takeComponent() {
        inEntry_ = true;
        convertComponent();
        inEntry_ = false;
        notes_.clear();
        moreNotes_ = 0;
    }

    void convertComponent() {
        Component& component = reader_.component();
        std::string uid = uids_.uidOf(component);
        decodeParameters(component, choices_.characterSet);
        if (component.name == "VTIMEZONE"sv) {
            owner_.zones_->add(zoneFromVTimezone(component, noteSink()));
            return;
        }
        settle(&component);
        if (!isChosen(component.name)) {
            if (notChosen_++ == 0) firstNotChosen_ = component.number;
            return;
        }
        FileZone& fileZone = zoneOf(component);
        EntryReader* reader = &iCalReader_;
        if ((isVCalendar() && !iCalendarUnsaid_) || component.name == "VNOTE"sv)
            reader = &vCalReader_;
        Entry* const entry = reader->read(component, fileZone.zone());
        if (entry == nullptr) return;
        fileZone.settle(*entry, noteSink());
        if (const auto date = namesakes_.differs(*entry, owner_.zones_->known.world))
            report(Note(NoteCode::ZoneDiffersFromName, entry->line,
                        {formatMoment(*date), entry->zone->id()}));
        countShifting(*entry);
        entry->madeUid = std::move(uid);
        ++owner_.counts_.entries;
        owner_.counts_.alarms += entry->alarms.size();
        if (observer_ == nullptr) {
            owner_.writer().write(*entry);
            return;
        }
        // Notes about lines before the entry are about the calendar, or about what was left out.
        dropNotesBefore(entry->line);
        owner_.writer().keepEntryLines(wantsLines_);
        owner_.writer().write(*entry);
        ConvertedEntry converted{*entry, *owner_.to_, notes_, moreNotes_, {}, false, {}};
        if (wantsLines_) {
            const SourceLines::Lines lines =
                source_.entry(entry->line, reader_.lastLine(), kMostSource);
            converted.source = lines.text;
            converted.sourceCut = lines.cut;
            converted.written = owner_.writer().entryLines();
        }
        observer_->entryConverted(converted);
    }

    [[nodiscard]] bool isChosen(std::string_view component) const {
        if (component == "VEVENT"sv) return choices_.only.events;
        return component == "VTODO"sv ? choices_.only.todos : choices_.only.notes;
    }

    // Null without a zone, and when `name` says all of it.
    [[nodiscard]] ZonePtr zoneOfLines(const ContentLine& tz,
                                      const std::vector<ContentLine>& daylight, std::string& name) {
        const bool isOffset = parseUtcOffset(tz.value) || offsetNamed(tz.value);
        const auto meant = isOffset ? std::nullopt : worldZoneMeant(tz.value);
        if (!meant) return zoneFromVCalendar(tz, daylight, noteSink());
        if (!std::exchange(zoneNameReported_, true))
            report(Note(NoteCode::ZoneNamedByTz, tz.number, {worldZoneName(*meant), tz.value}));
        const ZonePtr& zone = owner_.zones_->known.world.zone(*meant);
        // "EST" beside DAYLIGHT lines says no more than an offset.
        const int winter = zone->offsetAtUtc(yearBegin(2000));
        const bool described =
            std::any_of(daylight.begin(), daylight.end(), [](const ContentLine& line) {
                return startsWithIgnoreCase(trimmed(line.value), "TRUE");
            });
        const bool steady =
            zone->offsetAtUtc(yearBegin(2000) + std::int64_t{182} * kDaySeconds) == winter;
        if (!described || !steady) {
            name = worldZoneName(*meant);
            return nullptr;
        }
        const std::string offset = formatUtcOffset(winter);
        ContentLine line = tz;
        line.value = offset;
        return zoneFromVCalendar(line, daylight, noteSink());
    }

    // The zone of an entry: its own TZ line, where it has one.
    [[nodiscard]] FileZone& zoneOf(const Component& component) {
        const ContentLine* tz = nullptr;
        std::vector<ContentLine> daylight;
        for (const ContentLine& line : component.properties) {
            if (line.id == PropertyName::Tz && tz == nullptr)
                tz = &line;
            else if (line.id == PropertyName::Tz && trimmed(tz->value) != trimmed(line.value))
                report(Note(NoteCode::ZoneLineReplaced, line.number, {line.value}));
            if (line.id == PropertyName::Daylight && daylight.size() < kMostHeader)
                daylight.push_back(line);
        }
        if (tz == nullptr && daylight.empty()) return zone_;
        if (tz == nullptr && tz_) tz = &*tz_;
        if (tz == nullptr) {
            for (const ContentLine& line : daylight)
                if (!startsWithIgnoreCase(trimmed(line.value), "FALSE"))
                    report(Note(NoteCode::DaylightWithoutZone, line.number));
            return zone_;
        }
        std::string name;
        ZonePtr made = zoneOfLines(*tz, daylight.empty() ? daylight_ : daylight, name);
        // Mostly all entries of a file have the same lines.
        if (made == nullptr || entryZone_.zone() == nullptr ||
            entryZone_.zone()->id() != made->id())
            entryZone_ = FileZone(std::move(made), tz->number, name, vCalReader_.chosenZone(),
                                  owner_.zones_->namings, owner_.zones_->known.world);
        return entryZone_;
    }

    void countShifting(const Entry& entry) {
        if (entry.zone != nullptr || !entry.start || entry.start->isDate ||
            entry.start->clock != Clock::Utc || !entry.recurs() ||
            !owner_.zones_->known.described.empty())
            return;
        if (shifting_++ == 0) firstShifting_ = entry.line;
    }

    void endCalendar() {
        const bool empty = !begun_;
        settle();
        if (empty) report(Note(NoteCode::CalendarEmpty));
        if (!tz_ && !daylight_.empty()) {
            for (const ContentLine& line : daylight_)
                if (!startsWithIgnoreCase(trimmed(line.value), "FALSE"))
                    report(Note(NoteCode::DaylightWithoutZone, line.number));
        }
    }

    Converter& owner_;
    const std::string name_;
    const Choices choices_;
    ConversionObserver* const observer_;
    const bool wantsLines_;
    SourceLines source_;
    CalendarReader reader_;
    VCalReader vCalReader_;
    ICalReader iCalReader_;
    Arena texts_;  // of tz_ and daylight_
    std::optional<ContentLine> tz_;
    std::vector<ContentLine> daylight_;
    std::vector<EntryProperty> header_;
    bool settled_ = false;          // what is known of the zone is used
    bool begun_ = false;            // an entry came, or the end
    bool iCalendarUnsaid_ = false;  // without VERSION, but its first entry shows it
    std::string zoneName_;          // that goes with TZ
    FileZone zone_;                 // of tz_ and daylight_
    FileZone entryZone_;            // of the last entry that had lines of its own
    bool zoneNameReported_ = false;
    Namesakes namesakes_;
    std::uint64_t shifting_ = 0;  // series in UTC, in a file without a zone
    std::size_t firstShifting_ = 0;
    std::uint64_t notChosen_ = 0;  // entries of kinds that nobody wants
    std::size_t firstNotChosen_ = 0;
    MadeUids uids_;
    // For the observer, since the last entry.
    std::vector<Note> notes_;
    std::uint64_t moreNotes_ = 0;
    bool inEntry_ = false;  // one has been read and is converted
};

// A file that is read for its zones, and for the character set of texts that name none.
class Converter::Scan {
  public:
    explicit Scan(ZoneStore& zones) : zones_(zones) {
        reader_.watchTexts([this](const ContentLine& line) { weigh(line); });
    }

    void write(std::string_view piece) {
        reader_.write(piece);
        takeZones();
    }

    void end() {
        reader_.end();
        takeZones();
    }

    [[nodiscard]] std::optional<GuessedSet> guess() const { return guess_.result(); }

  private:
    void weigh(const ContentLine& line) {
        if (const std::string text = unlabelledText(line); !text.empty())
            guess_.add(text, line.number);
    }

    void takeZones() {
        using Item = CalendarReader::Item;
        for (;;) {
            const Item item = reader_.next();
            if (item == Item::NeedMore || item == Item::End) return;
            if (item == Item::CalendarProperty) weigh(reader_.property());
            if (item != Item::Entry) continue;
            for (const ContentLine& line : reader_.component().properties) weigh(line);
            if (reader_.component().name != "VTIMEZONE"sv) continue;
            decodeParameters(reader_.component(), "");
            zones_.add(zoneFromVTimezone(reader_.component(), silent_));
        }
    }

    ZoneStore& zones_;
    const NoteSink silent_ = [](const Note&) {};
    CharsetGuess guess_;
    CalendarReader reader_{silent_, CalendarReader::Contents::OfZones};
};

Converter::Converter(std::ostream& out, std::optional<CalendarFormat> to, NoteSink sink)
    : out_(&out), to_(to), sink_(std::move(sink)), zones_(std::make_unique<ZoneStore>()) {}

Converter::Converter(std::unique_ptr<EntryWriter> writer, NoteSink sink)
    : sink_(std::move(sink)), writer_(std::move(writer)), zones_(std::make_unique<ZoneStore>()) {}

Converter::~Converter() = default;

void Converter::beginFile(const std::string& name) {
    file_ = std::make_unique<File>(*this, name);
    file_->reportGuess();
}

void Converter::write(std::string_view bytes) {
    assert(file_ != nullptr);
    inPieces(bytes, [this](std::string_view piece) { file_->write(piece); });
}

void Converter::endFile() {
    assert(file_ != nullptr);
    file_->end();
    file_.reset();
    zones_->clear();
    guess_.reset();
}

void Converter::beginScan() {
    scan_ = std::make_unique<Scan>(*zones_);
    guess_.reset();
}

void Converter::scan(std::string_view bytes) {
    assert(scan_ != nullptr);
    inPieces(bytes, [this](std::string_view piece) { scan_->write(piece); });
}

void Converter::endScan() {
    assert(scan_ != nullptr);
    scan_->end();
    guess_ = scan_->guess();
    scan_.reset();
}

void Converter::report(Note note) {
    if (file_ != nullptr) return file_->report(std::move(note));
    if (heldName_ != nullptr) note.file = *heldName_;
    if (heldEntry_ != nullptr && observer_ != nullptr) {
        if (heldEntry_->notes.size() < ConvertedEntry::kMostNotes)
            heldEntry_->notes.push_back(note);
        else
            ++heldEntry_->moreNotes;
    }
    sink_(std::move(note));
}

void Converter::take(HeldFile file) {
    assert(file_ == nullptr);
    // Also where writing fails.
    struct Taking {
        explicit Taking(Converter& converter) : owner(converter) {}
        ~Taking() {
            owner.heldName_ = nullptr;
            owner.heldEntry_ = nullptr;
        }
        Converter& owner;
    } const taking(*this);
    heldName_ = &file.name;
    const bool lines = observer_ != nullptr && observer_->wantsLines();
    const std::uint64_t before = counts_.calendars;
    for (HeldFile::Item& item : file.items) {
        counts_.calendars = before + item.calendars;
        if (item.note != nullptr)
            sink_(std::move(*item.note));
        else if (item.calendar != nullptr)
            takeCalendar(*item.calendar, file.distinctUids);
        else
            takeEntry(*item.entry, lines);
        // Notes and entries are not needed twice.
        item = {};
    }
    counts_.calendars = before + file.calendars;
}

void Converter::takeCalendar(const HeldCalendar& calendar, bool distinctUids) {
    if (!to_) to_ = calendar.target;
    writer().makeUidsDistinct(distinctUids);
    writer().calendar(calendar.properties);
}

void Converter::takeEntry(HeldEntry& held, bool lines) {
    Entry& entry = held.entry;
    ++counts_.entries;
    counts_.alarms += entry.alarms.size();
    heldEntry_ = &held;
    writer().keepEntryLines(lines);
    writer().write(entry);
    heldEntry_ = nullptr;
    if (observer_ == nullptr) return;
    observer_->entryConverted({entry, *to_, held.notes, held.moreNotes, held.source, held.sourceCut,
                               lines ? writer().entryLines() : std::string_view()});
}

EntryWriter& Converter::writer() {
    if (writer_ == nullptr) {
        NoteSink sink = [this](Note note) { report(std::move(note)); };
        if (to_ == CalendarFormat::VCalendar10)
            writer_ = std::make_unique<VCalWriter>(*out_, std::move(sink));
        else
            writer_ = std::make_unique<ICalWriter>(*out_, std::move(sink));
    }
    return *writer_;
}

void Converter::finish() {
    writer().finish();
}

}  // namespace qel::calendar
