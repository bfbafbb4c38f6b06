// qelutil charset: text between UTF-8 and the character sets that phones use, and their list.
#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "QelCalendar/Texts.h"
#include "QelUtility/BxCharConv.h"
#include "base/Json.h"
#include "base/Progress.h"
#include "base/Source.h"
#include "base/Text.h"
#include "commands/Commands.h"

namespace qel::cli {

namespace {

constexpr std::size_t kPiece = 1U << 18U;
constexpr std::size_t kLongestLine = 64U << 20U;
constexpr unsigned kMostReports = 10;
constexpr char kReplacement = '?';
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kSubstitute = "\xEF\xBF\xBD";  // U+FFFD

struct Options {
    SourceOptions source;
    std::string from = "UTF-8";
    std::string to = "UTF-8";
    bool list = false;
    bool json = false;
};

enum class Support { Converts, SystemPage, Nothing };

// Of the names in the library's list, only these have a code page of their own.
Support supportOf(std::string_view set) {
    if (set == "UTF-8" || set == "8859-1" || set == "936" || set == "950") return Support::Converts;
    return set.substr(0, 5) == "8859-" ? Support::Nothing : Support::SystemPage;
}

const char* wordsOf(std::string_view set, Support support) {
    if (set == "8859-1")
        return "converts; means windows-1252, with the euro sign (on Windows the ANSI set)";
    switch (support) {
        case Support::Converts:
            return "converts";
        case Support::SystemPage:
            return "read with --from; written in the system's own set";
        case Support::Nothing:
            break;
    }
    return "read with --from";
}

std::vector<std::string> setNames() {
    std::vector<std::string> names;
    for (const char** name = CBxCharConvSvcs::GetCharSetNames(); **name != '\0'; ++name)
        names.emplace_back(*name);
    return names;
}

void listSets(Context& context, bool asJson) {
    Json document = Json::array();
    for (const std::string& name : setNames()) {
        const Support support = supportOf(name);
        if (asJson) {
            document.push_back({{"name", name},
                                {"converts", support == Support::Converts},
                                {"note", wordsOf(name, support)}});
        } else {
            context.out << name << std::string(10 - name.size(), ' ') << wordsOf(name, support)
                        << '\n';
        }
    }
    if (asJson)
        writeJson(context.out, "charset", {{"characterSets", document}});
    else
        context.out
            << "\nand, read with --from, the sets that browsers know by name: windows-1251, "
               "Shift_JIS,\nEUC-KR, UTF-16 and so on\n";
}

// One direction of the library's converter, on the level that consumes its whole input or nothing.
class Converter {
  public:
    Converter(const std::string& to, const std::string& from) {
        descriptor_ = services_.iconv_open(to.c_str(), from.c_str());
        if (descriptor_ == nullptr ||
            descriptor_ == reinterpret_cast<_iconv_info*>(~std::uintptr_t{0}))
            throw InputError("no conversion can be opened from " + from + " to " + to +
                             "; see `qelutil charset --list`");
    }
    ~Converter() { services_.iconv_close(descriptor_); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    enum class Outcome { Done, InvalidInput, Refused };

    // Replaces `result` when Done. REQUIRES: text begins with no byte-order mark.
    Outcome convert(std::string_view text, std::string& result) {
        if (text.empty()) {
            result.clear();
            return Outcome::Done;
        }
        // No set here needs more than four bytes for what takes one in another.
        result.resize(4 * text.size() + 16);
        const char* in = text.data();
        auto inLeft = static_cast<unsigned>(text.size());
        char* out = result.data();
        auto outLeft = static_cast<unsigned>(result.size());
        constexpr unsigned kFailure = 0xFFFFFFFFU;
        if (services_.iconv(descriptor_, &in, &inLeft, &out, &outLeft) == kFailure) {
            constexpr int kInvalidSequence = 42;
            return services_.LastError() == kInvalidSequence ? Outcome::InvalidInput
                                                             : Outcome::Refused;
        }
        result.resize(result.size() - outLeft);
        return Outcome::Done;
    }

  private:
    CBxCharConvSvcs services_;
    _iconv_info* descriptor_;
};

// The bytes of the character at the start of `text` in one of the sets that convert; 1 for what is
// none.
std::size_t characterLength(std::string_view set, std::string_view text) {
    if (set == "UTF-8") return std::max<std::size_t>(1, utf8CharacterLength(text));
    const bool twoBytes = (set == "936" || set == "950") && text.size() > 1 &&
                          static_cast<unsigned char>(text[0]) > 0x80U;
    return twoBytes ? 2 : 1;
}

class Conversion {
  public:
    Conversion(Context& context, const Options& options, std::string name)
        : context_(context),
          from_(options.from),
          to_(options.to),
          name_(std::move(name)),
          there_(to_, from_),
          back_(from_, to_) {
        if (from_ != kUtf8) fromToUtf8_ = std::make_unique<Converter>(kUtf8, from_);
        if (to_ != kUtf8) toToUtf8_ = std::make_unique<Converter>(kUtf8, to_);
    }

    // Several whole lines at once when all is well, else line by line, else character by character,
    // so that what cannot be converted is named by its line and costs one "?".
    void convert(std::string_view text, std::size_t firstLine, std::ostream& out) {
        std::string result;
        if (firstLine == 1 && from_ == kUtf8 && text.substr(0, 3) == kByteOrderMark)
            text.remove_prefix(kByteOrderMark.size());
        if (comesBack(text, result)) {
            out << result;
            return;
        }
        for (std::size_t line = firstLine; !text.empty(); ++line) {
            const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
            if (comesBack(text.substr(0, length), result))
                out << result;
            else
                convertLine(text.substr(0, length), line, out);
            text.remove_prefix(length);
        }
    }

    void finish() {
        if (reports_ > kMostReports)
            context_.error(name_, 0,
                           std::to_string(reports_ - kMostReports) + " more of the same kind");
    }

  private:
    static constexpr char kUtf8[] = "UTF-8";
    enum class Fit { Arrives, NoPlace, Invalid };

    // U+FEFF and U+FFFE at the start: the converter takes either for a byte-order mark.
    [[nodiscard]] bool startsWithMark(std::string_view text) const {
        return from_ == kUtf8 &&
               (text.substr(0, 3) == kByteOrderMark || text.substr(0, 3) == "\xEF\xBF\xBE");
    }

    Converter::Outcome forward(std::string_view text, std::string& result) {
        const auto outcome = there_.convert(text, result);
        if (outcome == Converter::Outcome::Refused)
            throw InputError(name_ + ": the conversion from " + from_ + " to " + to_ +
                             " is not possible here; see `qelutil charset --list`");
        return outcome;
    }

    // True when the result, converted back, is the text: then nothing was lost.
    bool comesBack(std::string_view text, std::string& result) {
        if (startsWithMark(text)) return false;
        std::string back;
        return forward(text, result) == Converter::Outcome::Done &&
               back_.convert(result, back) == Converter::Outcome::Done && back == text;
    }

    static std::string inUtf8(const std::unique_ptr<Converter>& converter, std::string_view text) {
        std::string result(text);
        if (converter && converter->convert(text, result) != Converter::Outcome::Done) return {};
        return result;
    }

    // One character. Some sets have two codes for one character, so it need not come back as it
    // was; it must mean the same. Some systems do not refuse what they cannot decode or encode, but
    // put a substitute in its place.
    Fit fitOf(std::string_view character, std::string& result) {
        if (startsWithMark(character)) return Fit::NoPlace;
        if (forward(character, result) != Converter::Outcome::Done) return Fit::Invalid;
        const std::string meaning = inUtf8(fromToUtf8_, character);
        if (!isUtf8(meaning) || meaning.empty()) return Fit::Invalid;
        const bool substituted = meaning == "?" || meaning.find(kSubstitute) != std::string::npos;
        if (fromToUtf8_ && substituted && character != "?") return Fit::Invalid;
        return inUtf8(toToUtf8_, result) == meaning ? Fit::Arrives : Fit::NoPlace;
    }

    void convertLine(std::string_view text, std::size_t line, std::ostream& out) {
        std::string result;
        for (std::size_t at = 0; at < text.size();) {
            std::size_t length = characterLength(from_, text.substr(at));
            const Fit fit = fitOf(text.substr(at, length), result);
            if (fit == Fit::Arrives) {
                out << result;
            } else {
                // The second byte of an invalid pair may be a character of its own.
                if (fit == Fit::Invalid) length = 1;
                out << kReplacement;
                report(line, at + 1, text.substr(at, length), fit);
            }
            at += length;
        }
    }

    void report(std::size_t line, std::size_t column, std::string_view character, Fit fit) {
        if (++reports_ > kMostReports) return;
        context_.error(name_, line,
                       "byte " + std::to_string(column) + ", \"" + std::string(character) + "\": " +
                           (fit == Fit::Invalid ? "is not " + from_ : "has no place in " + to_) +
                           "; a \"?\" is written for it");
    }

    Context& context_;
    std::string from_;
    std::string to_;
    std::string name_;
    Converter there_;
    Converter back_;
    std::unique_ptr<Converter> fromToUtf8_;  // null when the set is UTF-8
    std::unique_ptr<Converter> toToUtf8_;
    std::uint64_t reports_ = 0;
};

// A set whose characters are units of several bytes, such as UTF-16.
struct WideSet {
    std::string name;     // with the order of its bytes
    std::string lineEnd;  // one unit
};

std::optional<WideSet> wideSetOf(const std::string& name) {
    using namespace std::string_literals;
    const WideSet kSets[] = {{"UTF-16LE", "\n\0"s},
                             {"UTF-16BE", "\0\n"s},
                             {"UTF-32LE", "\n\0\0\0"s},
                             {"UTF-32BE", "\0\0\0\n"s}};
    if (!qelcal::isCharset(name)) return std::nullopt;
    for (const WideSet& set : kSets)
        if (qelcal::toUtf8(name, set.lineEnd) == "\n") return set;
    return std::nullopt;
}

// The set in the other order of its bytes, when the text begins with the mark of that one.
WideSet orderedAs(const WideSet& set, std::string_view text) {
    WideSet other = set;
    std::reverse(other.lineEnd.begin(), other.lineEnd.end());
    char& order = other.name[other.name.size() - 2];
    order = order == 'L' ? 'B' : 'L';
    std::string mark(set.lineEnd.size(), '\0');
    mark[0] = '\xFE';
    mark[1] = '\xFF';
    // In the bytes of the little order FF FE, of the big one FE FF, with zeros at the greater end.
    if (order == 'L')
        std::swap(mark[0], mark[1]);
    else if (mark.size() > 2)
        mark = std::string("\0\0\xFE\xFF", 4);
    return text.starts_with(mark) ? other : set;
}

// How many characters were replaced by a "?".
std::size_t replaceSubstitutes(std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(kSubstitute, at)) != std::string::npos; ++count)
        text.replace(at, kSubstitute.size(), 1, kReplacement);
    return count;
}

// Into UTF-8 from a wide set.
class WideReading {
  public:
    WideReading(Context& context, WideSet set, std::string name)
        : context_(context), set_(std::move(set)), name_(std::move(name)) {}

    // The length of the whole lines at the beginning of `text`.
    [[nodiscard]] std::size_t linesIn(std::string_view text) {
        if (std::exchange(first_, false)) set_ = orderedAs(set_, text);
        const std::size_t unit = set_.lineEnd.size();
        std::size_t end = text.size() / unit * unit;
        while (end != 0 && text.substr(end - unit, unit) != set_.lineEnd) end -= unit;
        return end;
    }

    void convert(std::string_view text, std::size_t, std::ostream& out) {
        // A text in one piece was not asked for its lines.
        if (std::exchange(first_, false)) set_ = orderedAs(set_, text);
        std::string result = qelcal::toUtf8(set_.name, std::string(text));
        if (!begun_ && result.starts_with(kByteOrderMark)) result.erase(0, kByteOrderMark.size());
        begun_ = true;
        faults_ += replaceSubstitutes(result);
        out << result;
    }

    void finish() {
        if (faults_ != 0)
            context_.error(name_, 0,
                           "holds what is not " + set_.name + "; a \"?\" is written for each of " +
                               std::to_string(faults_) + " such places");
    }

  private:
    Context& context_;
    WideSet set_;
    std::string name_;
    bool first_ = true;
    bool begun_ = false;
    std::size_t faults_ = 0;
};

// Into UTF-8 from any other set that calendars are read in, line by line.
class Reading {
  public:
    Reading(Context& context, std::string set, std::string name)
        : context_(context), set_(std::move(set)), name_(std::move(name)) {}

    void convert(std::string_view text, std::size_t firstLine, std::ostream& out) {
        for (std::size_t line = firstLine; !text.empty(); ++line) {
            const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
            std::string result = qelcal::toUtf8(set_, std::string(text.substr(0, length)));
            if (replaceSubstitutes(result) != 0 && ++badLines_ <= kMostReports)
                context_.error(
                    name_, line,
                    "holds bytes that are not " + set_ + "; a \"?\" is written for each");
            out << result;
            text.remove_prefix(length);
        }
    }

    void finish() {
        if (badLines_ > kMostReports)
            context_.error(name_, 0,
                           std::to_string(badLines_ - kMostReports) + " more of the same kind");
    }

  private:
    Context& context_;
    std::string set_;
    std::string name_;
    std::uint64_t badLines_ = 0;
};

// QelUtility's name for a set by its usual name, "" for a set that it does not convert.
std::string setOfUsualName(const std::string& name) {
    static const std::map<std::string, std::string> kSets = {{"windows-1252", "8859-1"},
                                                             {"cp1252", "8859-1"},
                                                             {"iso-8859-1", "8859-1"},
                                                             {"iso8859-1", "8859-1"},
                                                             {"latin1", "8859-1"},
                                                             {"gb2312", "936"},
                                                             {"gbk", "936"},
                                                             {"cp936", "936"},
                                                             {"gb_2312-80", "936"},
                                                             {"euc-cn", "936"},
                                                             {"big5", "950"},
                                                             {"cp950", "950"}};
    const auto set = kSets.find(CLI::detail::to_lower(name));
    return set == kSets.end() ? std::string() : set->second;
}

// True for a set that calendars are read in, other than UTF-8 and the wide ones.
bool isRead(const std::string& name) {
    return qelcal::isCharset(name) && qelcal::toUtf8(name, "\n") == "\n" &&
           qelcal::toUtf8(name, "\xC3\xA9") != "\xC3\xA9";
}

// The name as QelUtility writes it, of a set for `option`. Throws UsageError for a name that it
// does not know.
std::string knownSet(const std::string& option, const std::string& name) {
    if (std::string set = setOfUsualName(name); !set.empty()) return set;
    for (const std::string& each : setNames())
        if (CLI::detail::to_lower(each) == CLI::detail::to_lower(name)) return each;
    if (!isRead(name) && !wideSetOf(name))
        throw UsageError("there is no character set \"" + name +
                         "\"; `qelutil charset --list` lists some, and --from reads those that "
                         "browsers know by their names, as windows-1251");
    throw UsageError(name + (option == "--to"
                                 ? " can be read but not written; --to takes UTF-8, 8859-1 "
                                   "(windows-1252), 936 (GB2312) and 950 (Big5)"
                                 : " can be read into UTF-8 only; leave --to out"));
}

template <class Conversion>
void convertAll(Context& context, const Options& options, InputFile& input, Conversion conversion) {
    const auto afterLastLine = [&](std::string_view text) {
        if constexpr (std::is_same_v<Conversion, WideReading>)
            return conversion.linesIn(text);
        else
            return text.rfind('\n') + 1;  // no other set has this byte inside a character
    };
    OutputFile output(context, options.source.output);
    Progress progress(context, input.name(), input.size());
    Pieces pieces(input, kPiece, kLongestLine);
    std::string piece;
    while (pieces.next(piece, afterLastLine)) {
        conversion.convert(piece, pieces.line(), output.stream());
        progress.update(pieces.bytesTaken());
    }
    conversion.finish();
    output.commit();
}

void run(Context& context, Options options) {
    if (options.list) {
        listSets(context, options.json);
        return;
    }
    options.to = knownSet("--to", options.to);
    const std::optional<WideSet> wide = wideSetOf(options.from);
    if (options.to == "UTF-8" && wide) {
        InputFile input = options.source.open(context);
        convertAll(context, options, input, WideReading(context, *wide, input.name()));
        return;
    }
    if (options.to == "UTF-8" && isRead(options.from)) {
        InputFile input = options.source.open(context);
        convertAll(context, options, input, Reading(context, options.from, input.name()));
        return;
    }
    options.from = knownSet("--from", options.from);
    if (options.from == options.to)
        throw UsageError("both sets are " + options.from + "; name another with --from or --to");
    for (const std::string& set : {options.from, options.to}) {
        if (supportOf(set) == Support::Nothing)
            throw InputError(set + " is read only: --from takes it with --to UTF-8");
        if (supportOf(set) == Support::SystemPage)
            context.warning({}, 0,
                            set + " has no conversion of its own: the system's own set is taken");
    }
    InputFile input = options.source.open(context);
    convertAll(context, options, input, Conversion(context, options, input.name()));
}

}  // namespace

void addCharsetCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("charset", "Text between UTF-8 and the character sets of phones");
    options->source.addTo(*command);
    command->add_option("--from", options->from, "the set that the text is in")
        ->capture_default_str();
    command->add_option("--to", options->to, "the set to convert it to")->capture_default_str();
    CLI::Option* list = command->add_flag("--list", options->list, "list the sets");
    command->add_flag("--json", options->json, "with --list: as JSON")->needs(list);
    command->footer(
        "A character that is invalid in the one set or missing from the other becomes \"?\" and "
        "is\n"
        "reported on standard error with its line; the exit status is then 1. The sets of --list\n"
        "may also be given by their usual names (windows-1252, GB2312, Big5); 8859-1 means\n"
        "windows-1252 and has the euro sign. --from also reads, into UTF-8, every set that\n"
        "calendars are read in, by the names that browsers know (Shift_JIS, KOI8-R, UTF-16).\n"
        "Examples:\n"
        "  qelutil charset --list\n"
        "  qelutil charset --from GB2312 notes.txt -o notes-utf8.txt\n"
        "  qelutil charset --to 8859-1 --text \"Caf\xC3\xA9\" | od -c");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
