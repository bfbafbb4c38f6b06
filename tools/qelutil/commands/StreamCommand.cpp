// qelutil stream: what a serialised data stream holds, value by value.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <vector>

#include "QelUtility/BxDataStream.h"
#include "base/Json.h"
#include "base/Progress.h"
#include "base/Source.h"
#include "base/Text.h"
#include "commands/Commands.h"
#include "platform/Console.h"

namespace qel::cli {

namespace {

// What is taken at once: a stream with types as a whole, one without them value by value.
constexpr std::size_t kLongestStream = 256U << 20U;
constexpr std::size_t kPiece = 1U << 18U;
constexpr char kSeparator = '\x1f';

struct Options {
    SourceOptions source;
    std::vector<std::string> types;
    bool json = false;
};

const char* reasonOf(int code) {
    switch (code) {
        case QEL_OUT_OF_MEMORY:
            return "memory is exhausted";
        case QEL_MALFORMED:
            return "it is not a number, or not as many bytes as announced";
        case QEL_READ_PAST_END:
            return "the stream ends before it";
        case 7004:
            return "memory is exhausted";
        case 7011:
            return "it has a malformed escape";
        default:
            return "it cannot be read";
    }
}

template <typename T>
Json readNumber(CBxDataStream& stream) {
    T value{};
    stream >> value;
    return value;
}

Json readChar(CBxDataStream& stream) {
    char value = 0;
    stream >> value;
    return static_cast<int>(static_cast<signed char>(value));
}

Json readText(CBxDataStream& stream) {
    VStr value;
    stream >> value;
    return jsonText({static_cast<const char*>(value), static_cast<std::size_t>(value.GetLength())});
}

Json readTexts(CBxDataStream& stream) {
    VStrArray values;
    stream >> values;
    Json list = Json::array();
    for (int i = 0; i < values.GetSize(); ++i)
        list.push_back(jsonText(static_cast<const char*>(values.ElementAt(i))));
    return list;
}

Json readInts(CBxDataStream& stream) {
    CBxIntList values;
    stream >> values;
    Json list = Json::array();
    for (int i = 0; i < values.GetSize(); ++i) list.push_back(values[i]);
    return list;
}

Json readNested(CBxDataStream& stream) {
    CBxDataStream nested;
    stream >> nested;
    Json list = Json::array();
    if (nested.Len() == 0) return list;
    std::string_view content(reinterpret_cast<const char*>(nested.Storage()), nested.Len() - 1);
    while (!content.empty()) {
        const std::size_t end = std::min(content.find(kSeparator), content.size());
        list.push_back(jsonText(content.substr(0, end)));
        if (end + 1 == content.size()) list.push_back("");  // a separator with nothing after it
        content.remove_prefix(std::min(end + 1, content.size()));
    }
    return list;
}

Json readBinary(CBxDataStream& stream) {
    unsigned char* data = nullptr;
    long size = 0;
    const int code = stream.Read(data, size);
    if (code != 0) throw code;
    const std::unique_ptr<unsigned char, void (*)(void*)> owner(data, std::free);
    constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (long i = 0; data != nullptr && i < size; ++i) {
        hex += kDigits[data[i] >> 4U];
        hex += kDigits[data[i] & 0xFU];
    }
    return hex;
}

using Reader = Json (*)(CBxDataStream&);

const std::map<std::string, Reader>& readers() {
    static const std::map<std::string, Reader> kReaders = {
        {"char", readChar},
        {"uchar", readNumber<unsigned char>},
        {"bool", readNumber<bool>},
        {"short", readNumber<short>},
        {"ushort", readNumber<unsigned short>},
        {"int", readNumber<int>},
        {"uint", readNumber<unsigned int>},
        {"int64", readNumber<long long>},
        {"uint64", readNumber<unsigned long long>},
        {"text", readText},
        {"texts", readTexts},
        {"ints", readInts},
        {"stream", readNested},
        {"binary", readBinary},
    };
    return kReaders;
}

std::string typeNames() {
    std::string names;
    for (const auto& [name, reader] : readers()) names += (names.empty() ? "" : ", ") + name;
    return names;
}

// What a value would be as a number: null when it is not one. Eight digits are an int or a long,
// more are 64 bits wide; both are read with their sign.
Json numberOf(const std::string& text) {
    if (text == "-") return -1;
    if (text.size() > 16 || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        return nullptr;
    const unsigned long long value = text.empty() ? 0 : std::stoull(text, nullptr, 16);
    if (text.size() <= 8 && value <= std::numeric_limits<unsigned>::max())
        return static_cast<int>(static_cast<unsigned>(value));
    return static_cast<long long>(value);
}

class Dump {
  public:
    Dump(Context& context, InputFile& input, bool asJson)
        : context_(context),
          input_(input),
          name_(input.name()),
          asJson_(asJson),
          array_(context.out, "stream", "values") {}

    // Shows all values of the input, those with a type as it says and the others as they stand.
    void run(const std::vector<std::string>& types) {
        try {
            types.empty() ? runInPieces() : runWhole(types);
        } catch (const InputError&) {
            if (asJson_) array_.finish();
            throw;
        }
        if (asJson_) array_.finish();
    }

  private:
    // A value with a type may continue after a separator, so the stream is taken as a whole.
    void runWhole(const std::vector<std::string>& types) {
        std::string content = input_.readAll(kLongestStream);
        const std::size_t nul = content.find('\0');
        if (nul != std::string::npos) {
            reportNul(nul, content.size() - nul - 1);
            content.resize(nul);
        }
        CBxDataStream stream;
        open(stream, content);
        std::size_t next = 0;
        while (!ended_ && hasMore(stream, content)) {
            if (!value(stream, next < types.size() ? types[next] : "")) break;
            ++next;
        }
        if (next < types.size() && context_.exitCode() == kExitFine)
            context_.error(name_, 0,
                           "holds " + std::to_string(next) + " values, and " +
                               std::to_string(types.size()) + " types are given");
    }

    // Values without a type end at their separators: the stream may be of any length.
    void runInPieces() {
        Progress progress(context_, name_, input_.size());
        Pieces pieces(input_, kPiece, kLongestStream);
        const auto afterSeparator = [](std::string_view text) {
            return text.rfind(kSeparator) + 1;
        };
        std::string piece;
        bool separated = false;
        while (pieces.next(piece, afterSeparator)) {
            const std::size_t nul = piece.find('\0');
            std::uint64_t after = 0;
            if (nul != std::string::npos) {
                after = piece.size() - nul - 1;
                piece.resize(nul);
            }
            if (!piece.empty()) {
                separated = piece.back() == kSeparator;
                CBxDataStream stream;
                open(stream, piece);
                while (position(stream) < piece.size())
                    if (!value(stream, "")) return;
            }
            before_ += piece.size();
            if (nul != std::string::npos) {
                const auto all = [](std::string_view text) { return text.size(); };
                while (pieces.next(piece, all)) after += piece.size();
                reportNul(before_, after);
                break;
            }
            if (!platform::outputIsTerminal()) progress.update(pieces.bytesTaken());
        }
        // Behind a last separator there is an empty value.
        if (separated) showText("", before_);
    }

    // The terminator may have been stored too; what follows it does not belong to the stream.
    void reportNul(std::uint64_t offset, std::uint64_t after) {
        if (after == 0) return;
        context_.error(name_, 0,
                       "a NUL byte ends the stream at offset " + std::to_string(offset) + "; " +
                           std::to_string(after) + " bytes after it are not read");
    }

    void open(CBxDataStream& stream, const std::string& content) {
        if (stream.Initialize(content.c_str()) != 0)
            throw InputError(name_ + ": memory is exhausted");
    }

    static std::size_t position(const CBxDataStream& stream) {
        return static_cast<std::size_t>(stream.Position() - stream.Storage());
    }

    static bool hasMore(const CBxDataStream& stream, const std::string& text) {
        const std::size_t offset = position(stream);
        if (offset < text.size()) return true;
        // Behind a last separator there is an empty value, once.
        return offset == text.size() && !text.empty() && text.back() == kSeparator;
    }

    // False when it cannot be read, which has been said then.
    bool value(CBxDataStream& stream, const std::string& type) {
        const std::size_t start = position(stream);
        const std::uint64_t offset = before_ + start;
        try {
            if (type.empty()) {
                VStr text;
                stream >> text;
                showText(static_cast<const char*>(text), offset);
            } else {
                showTyped(type, readers().at(type)(stream), offset);
            }
        } catch (int code) {
            context_.error(name_, 0,
                           "value " + std::to_string(number_) + " at offset " +
                               std::to_string(offset) + (type.empty() ? "" : " as " + type) + ": " +
                               reasonOf(code) + " (code " + std::to_string(code) +
                               "); it and what follows is left out");
            return false;
        }
        // The empty value after a last separator takes no bytes, and nothing follows it.
        if (position(stream) == start) ended_ = true;
        return true;
    }

    void showText(const std::string& text, std::uint64_t offset) {
        const Json number = numberOf(text);
        if (asJson_) {
            array_.add({{"value", number_},
                        {"offset", offset},
                        {"text", jsonText(text)},
                        {"number", number}});
        } else {
            std::ostream& out = showPlace(offset) << '"' << printable(jsonText(text)) << '"';
            if (!number.is_null()) out << "  " << number.dump();
            out << '\n';
        }
        ++number_;
    }

    void showTyped(const std::string& type, const Json& content, std::uint64_t offset) {
        if (asJson_) {
            array_.add(
                {{"value", number_}, {"offset", offset}, {"type", type}, {"content", content}});
        } else {
            showPlace(offset) << type << "  " << printable(content.dump()) << '\n';
        }
        ++number_;
    }

    std::ostream& showPlace(std::uint64_t offset) {
        const std::string place = std::to_string(number_) + " @" + std::to_string(offset);
        return context_.out << place << std::string(place.size() < 14 ? 14 - place.size() : 1, ' ');
    }

    Context& context_;
    InputFile& input_;
    std::string name_;
    bool asJson_;
    JsonArrayWriter array_;
    std::uint64_t before_ = 0;  // bytes of the pieces before this one
    std::uint64_t number_ = 1;
    bool ended_ = false;
};

void run(Context& context, const Options& options) {
    for (const std::string& type : options.types)
        if (readers().count(type) == 0)
            throw UsageError("there is no type \"" + type + "\"; there are " + typeNames());
    InputFile input = [&] {
        try {
            return options.source.open(context);
        } catch (const InputError&) {
            if (options.json) JsonArrayWriter(context.out, "stream", "values").finish();
            throw;
        }
    }();
    Dump(context, input, options.json).run(options.types);
}

}  // namespace

void addStreamCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("stream", "Show the values of a serialised data stream");
    options->source.addInputTo(*command);
    command->add_option("--types", options->types, "the types of the first values, in order")
        ->type_name("TYPE,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    command->add_flag("--json", options->json, "print the facts as JSON");
    command->footer(
        "A stream does not contain the types of its values. Without --types each is shown as "
        "text,\n"
        "together with its value as a number. The types are " +
        typeNames() +
        ".\n"
        "Examples:\n"
        "  qelutil stream record.dat\n"
        "  qelutil stream --types int,text,binary --json record.dat\n"
        "  printf '1a\\037\\037-\\037ab' | qelutil stream --types int,int,int,text");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
