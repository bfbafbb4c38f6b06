// qelutil stream: what a serialised data stream holds, value by value.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <vector>

#include "Json.h"
#include "QelUtility/BxDataStream.h"
#include "Source.h"
#include "Text.h"
#include "commands/Commands.h"

namespace qel::cli {

namespace {

constexpr std::size_t kLongestStream = 256U << 20U;
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
            return "it is no number, or not as many bytes as announced";
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
        if (end + 1 == content.size()) list.push_back("");  // a separator with nothing behind it
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

// What a value would be as a number: null when it is none. Eight digits are an int or a long, more
// are 64 bits wide; both are read with their sign.
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
    Dump(Context& context, std::string name, bool asJson)
        : context_(context), name_(std::move(name)), asJson_(asJson) {}

    // Reads all values of `content`, those with a type as it says and the others as they stand.
    void run(const std::string& content, const std::vector<std::string>& types) {
        const std::size_t nul = content.find('\0');
        // The terminator may have been stored too; what follows it is no part of the stream.
        if (nul != std::string::npos && nul + 1 < content.size())
            context_.error(name_, 0,
                           "a NUL byte ends the stream at offset " + std::to_string(nul) + "; " +
                               std::to_string(content.size() - nul - 1) +
                               " bytes after it are not read");
        const std::string text = content.substr(0, nul);
        CBxDataStream stream;
        if (stream.Initialize(text.c_str()) != 0) throw InputError(name_ + ": memory is exhausted");
        std::size_t next = 0;
        while (!ended_ && hasMore(stream, text)) {
            const bool typed = next < types.size();
            if (!value(stream, typed ? types[next] : "")) break;
            ++next;
        }
        if (next < types.size() && context_.exitCode() == kExitFine)
            context_.error(name_, 0,
                           "holds " + std::to_string(next) + " values, and " +
                               std::to_string(types.size()) + " types are given");
        if (asJson_) writeJson(context_.out, values_);
    }

  private:
    static bool hasMore(const CBxDataStream& stream, const std::string& text) {
        const auto offset = static_cast<std::size_t>(stream.Position() - stream.Storage());
        if (offset < text.size()) return true;
        // Behind a last separator there is an empty value, once.
        return offset == text.size() && !text.empty() && text.back() == kSeparator;
    }

    // False when it cannot be read, which has been said then.
    bool value(CBxDataStream& stream, const std::string& type) {
        const auto offset = stream.Position() - stream.Storage();
        Json entry;
        entry["value"] = number_++;
        entry["offset"] = offset;
        try {
            if (type.empty()) {
                VStr text;
                stream >> text;
                const std::string held(static_cast<const char*>(text));
                entry["text"] = jsonText(held);
                entry["number"] = numberOf(held);
            } else {
                entry["type"] = type;
                entry["content"] = readers().at(type)(stream);
            }
        } catch (int code) {
            context_.error(name_, 0,
                           "value " + std::to_string(number_ - 1) + " at offset " +
                               std::to_string(offset) + (type.empty() ? "" : " as " + type) + ": " +
                               reasonOf(code) + " (code " + std::to_string(code) +
                               "); it and what follows is left out");
            return false;
        }
        // The empty value behind a last separator takes no bytes, and nothing follows it.
        if (stream.Position() - stream.Storage() == offset) ended_ = true;
        show(entry);
        return true;
    }

    void show(const Json& entry) {
        if (asJson_) {
            values_.push_back(entry);
            return;
        }
        std::ostream& out = context_.out;
        const std::string place = std::to_string(entry["value"].get<int>()) + " @" +
                                  std::to_string(entry["offset"].get<long long>());
        out << place << std::string(place.size() < 14 ? 14 - place.size() : 1, ' ');
        if (entry.contains("type")) {
            out << entry["type"].get<std::string>() << "  " << printable(entry["content"].dump())
                << '\n';
            return;
        }
        out << '"' << printable(entry["text"].get<std::string>()) << '"';
        if (!entry["number"].is_null()) out << "  " << entry["number"].dump();
        out << '\n';
    }

    Context& context_;
    std::string name_;
    bool asJson_;
    bool ended_ = false;
    int number_ = 1;
    Json values_ = Json::array();
};

void run(Context& context, const Options& options) {
    for (const std::string& type : options.types)
        if (readers().count(type) == 0)
            throw UsageError("there is no type \"" + type + "\"; there are " + typeNames());
    InputFile input = options.source.open(context);
    Dump(context, input.name(), options.json).run(input.readAll(kLongestStream), options.types);
}

}  // namespace

void addStreamCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("stream", "What a serialised data stream holds");
    options->source.addInputTo(*command);
    command->add_option("--types", options->types, "the values' types, the rest has none")
        ->type_name("TYPE,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    command->add_flag("--json", options->json, "as JSON");
    command->footer(
        "A stream does not tell the types of its values. Without --types each is shown as text,\n"
        "with what it would be as a number. The types are " +
        typeNames() +
        ".\n"
        "Examples:\n"
        "  qelutil stream record.dat\n"
        "  qelutil stream --types int,text,binary --json record.dat\n"
        "  printf '1a\\037\\037-\\037ab' | qelutil stream --types int,int,int,text");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
