#include "calendar/converter/Converter.h"

#include <algorithm>
#include <cassert>
#include <ostream>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/converter/Ahead.h"
#include "calendar/converter/FileScan.h"
#include "calendar/converter/FileZone.h"
#include "calendar/converter/HeldFiles.h"
#include "calendar/converter/SourceLines.h"
#include "calendar/converter/Span.h"
#include "calendar/converter/Turn.h"
#include "calendar/formats/ICalWriter.h"
#include "calendar/formats/VCalWriter.h"
#include "calendar/lines/CalendarReader.h"
#include "calendar/text/ContentValue.h"
#include "calendar/text/Escapes.h"
#include "calendar/text/TextCodec.h"
#include "calendar/zones/ZoneFromVCalendar.h"
#include "calendar/zones/ZoneFromVTimezone.h"

namespace qel::calendar {

namespace {

// Bytes of a name or a value that a note mentions.
constexpr std::size_t kLongestName = 200;
// Properties of a calendar itself that are kept.
constexpr std::size_t kMostHeader = 200;
// The least bytes that a thread reads ahead.
constexpr std::size_t kSpan = std::size_t{8} << 10;
// Bytes that are read at once.
constexpr std::size_t kPiece = std::size_t{64} << 10;

// True for components that entries are made of.
bool isEntry(std::string_view component) {
    return component == "VEVENT"sv || component == "VTODO"sv || component == "VJOURNAL"sv ||
           component == "VNOTE"sv;
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

// One file on its way through: calendars and their zones, entries in the order of their lines.
class Converter::File {
  public:
    File(Converter& owner, std::string name)
        : owner_(owner),
          name_(std::move(name)),
          choices_(withGuess(owner.choices_, owner.guess_)),
          turn_(owner, name_, choices_),
          reader_(noteSink()) {}

    void reportGuess() {
        if (owner_.guess_ && owner_.choices_.characterSet.empty())
            report(Note(NoteCode::CharacterSetGuessed, owner_.guess_->line,
                        {owner_.guess_->set, owner_.guess_->letters}));
    }

    void write(std::string_view bytes) {
        if (owner_.threads_ > 1 && bytes.size() >= owner_.largePiece_) {
            if (ahead_ == nullptr)
                ahead_ = std::make_unique<Ahead<Span, SpanReader>>(
                    owner_.threads_, std::min(owner_.largePiece_, kSpan),
                    [this](std::size_t member) {
                        return std::make_unique<SpanReader>(choices_, member);
                    });
            here_.reset();
            bytes = ahead_->read(bytes, *this);
            here_.reset();
            given_.reset();
        }
        writePieces(bytes);
    }

    void end() {
        reader_.end();
        takeItems();
        turn_.endFile();
        if (notChosen_ != 0)
            report(Note(NoteCode::EntriesNotChosen, firstNotChosen_, {std::to_string(notChosen_)}));
    }

    // What the entry that is written reports.
    void reportInTurn(Note note) { turn_.report(std::move(note)); }

  private:
    static Choices withGuess(Choices choices, const std::optional<GuessedSet>& guess) {
        if (choices.characterSet.empty() && guess) choices.characterSet = guess->set;
        return choices;
    }

    void report(Note note) {
        const std::size_t entryLine =
            inEntry_ || reader_.inEntry() ? reader_.component().number : aheadLine_;
        turn_.report(std::move(note), entryLine);
    }

    [[nodiscard]] NoteSink noteSink() {
        return [this](Note note) { report(std::move(note)); };
    }

    // At most kPiece bytes at once, so that what is kept of them stays small.
    void writePieces(std::string_view bytes) {
        for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), kPiece))) {
            const std::string_view piece = bytes.substr(0, kPiece);
            if (turn_.wantsLines()) source_.add(piece);
            reader_.write(piece);
            takeItems();
            if (turn_.wantsLines())
                source_.forget(reader_.inEntry() ? reader_.component().number : reader_.lines());
        }
    }

    // What Ahead needs of its owner.
    friend class Ahead<Span, SpanReader>;
    [[nodiscard]] bool isBetween() { return findHere(nullptr); }
    [[nodiscard]] std::size_t lines() const { return reader_.lines(); }

    void begin(Span& span, std::size_t lines) {
        // Otherwise the last one: mostly the next calendar is like the one before.
        if (findHere(nullptr)) given_ = here_;
        span.context = given_;
        span.linesBefore = lines;
    }

    void take(Span& span) {
        if (span.steps.empty()) return readAlone(span.bytes);
        for (const Span::Step& step : span.steps)
            if (step.work == nullptr || !isRight(span, step))
                readAlone(step.bytes);
            else
                takeStep(step);
    }

    void readAlone(std::string_view bytes) {
        writePieces(bytes);
        reader_.endLine();
        takeItems();
        here_.reset();
    }

    // True when reading the entry now would give what was read ahead.
    [[nodiscard]] bool isRight(const Span& span, const Span::Step& step) {
        if (reader_.lines() + 1 != step.work->line) return false;
        // Settling the calendar reports; an entry that is read again reports its lines first.
        if (here_ == nullptr && (reader_.place() != span.context->place || !findHere(&step)))
            return false;
        return here_ == span.context || here_->allows(*span.context);
    }

    void takeStep(const Span::Step& step) {
        EntryWork& work = *step.work;
        for (const auto& [note, entryLine] : step.notes) turn_.report(note, entryLine);
        if (!work.chosen && notChosen_++ == 0) firstNotChosen_ = work.line;
        work.zone = &zone_;
        turn_.take(work);
        turn_.endComponent();
        reader_.skip(step.lines);
        if (turn_.wantsLines()) source_.goOn(reader_.lines() + 1);
    }

    // Sets here_ to what the entries from here on depend on. False where that is unknown. `step` is
    // the entry that follows, or null.
    [[nodiscard]] bool findHere(const Span::Step* step) {
        if (here_ != nullptr) return true;
        const std::optional<CalendarReader::Place> place = reader_.place();
        if (!place || (turn_.wantsLines() && !source_.isUsable())) return false;
        if (!settled_) {
            // What is wrong with the entry's lines is reported before what settle() reports.
            if (step == nullptr || !step->notes.empty() || !isSettledWithoutEntry()) return false;
            aheadLine_ = step->work->line;
            settle();
            aheadLine_ = 0;
        }
        SpanContext here;
        here.place = *place;
        here.vCalendar = isVCalendar() && !iCalendarUnsaid_;
        here.zone = zone_;
        here.described = owner_.zones_->known.described;
        here.zonesChanged = owner_.zones_->changes();
        here.reported = turn_.reader(here.vCalendar).reported();
        here.writer = &owner_.writer();
        here.wantsLines = turn_.wantsLines();
        here_ = std::make_shared<const SpanContext>(std::move(here));
        return true;
    }

    // True when settle() does not look at the entry that follows.
    [[nodiscard]] bool isSettledWithoutEntry() const {
        return !reader_.version().empty() && !iCalendarUnsaid_ &&
               std::none_of(
                   header_.begin(), header_.end(),
                   [](const EntryProperty& each) { return each.name == "METHOD"sv; });
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
        turn_.beginCalendar();
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
        zone_ = fileZone(std::move(made), tz_ ? tz_->number : 0, zoneName_);
        if (!owner_.to_)
            owner_.to_ = isVCalendar() ? CalendarFormat::ICalendar : CalendarFormat::VCalendar10;
        turn_.calendar(header_);
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
        turn_.endComponent();
    }

    void convertComponent() {
        Component& component = reader_.component();
        if (component.name == "VTIMEZONE"sv) {
            decodeParameters(component, choices_.characterSet);
            const ZonePtr zone = zoneFromVTimezone(component, noteSink());
            // Threads that read ahead look at the known zones.
            if (ahead_ != nullptr) ahead_->giveUp();
            owner_.zones_->add(zone);
            return;
        }
        EntryWork& work = work_;
        work.line = component.number;
        work.component = &component;
        work.prepared = false;
        work.source = {};
        const bool ownZone = hasZoneLines(component);
        if (!settled_ || ownZone) prepare(work, choices_);
        settle(&component);
        work.chosen = isChosen(choices_, component.name);
        if (!work.chosen && notChosen_++ == 0) firstNotChosen_ = component.number;
        if (work.chosen) {
            work.vCalendar = (isVCalendar() && !iCalendarUnsaid_) || component.name == "VNOTE"sv;
            work.zone = ownZone ? &zoneOf(component) : &zone_;
            findSource(work);
        }
        turn_.take(work);
    }

    void findSource(EntryWork& work) {
        const Component& component = *work.component;
        if (!turn_.wantsLines() || !isEntry(component.name)) return;
        const SourceLines::Lines lines =
            source_.entry(component.number, reader_.lastLine(), kMostSource);
        work.source = lines.text;
        work.sourceCut = lines.cut;
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

    [[nodiscard]] FileZone fileZone(ZonePtr made, std::size_t line, const std::string& name) {
        return FileZone(std::move(made), line, name, turn_.reader(true).chosenZone(),
                        owner_.zones_->namings, owner_.zones_->known.world);
    }

    // The zone of an entry that has TZ or DAYLIGHT lines of its own.
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
            entryZone_ = fileZone(std::move(made), tz->number, name);
        return entryZone_;
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
    Turn turn_;
    SourceLines source_;
    CalendarReader reader_;
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
    std::uint64_t notChosen_ = 0;  // entries of kinds that nobody wants
    std::size_t firstNotChosen_ = 0;
    EntryWork work_;                                  // of the entry that is converted
    bool inEntry_ = false;                            // one has been read and is converted
    std::size_t aheadLine_ = 0;                       // of an entry that was read before its turn
    std::unique_ptr<Ahead<Span, SpanReader>> ahead_;  // from the first large piece on
    std::shared_ptr<const SpanContext> here_;         // null when something may have changed
    std::shared_ptr<const SpanContext> given_;        // of the last span
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
    file_->write(bytes);
}

void Converter::endFile() {
    assert(file_ != nullptr);
    file_->end();
    file_.reset();
    zones_->clear();
    guess_.reset();
}

void Converter::beginScan() {
    scan_ = std::make_unique<FileScan>(*zones_, threads_, largePiece_);
    guess_.reset();
}

void Converter::scan(std::string_view bytes) {
    assert(scan_ != nullptr);
    scan_->write(bytes);
}

void Converter::endScan() {
    assert(scan_ != nullptr);
    scan_->end();
    guess_ = scan_->guess();
    scan_.reset();
}

void Converter::report(Note note) {
    if (file_ != nullptr) return file_->reportInTurn(std::move(note));
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
