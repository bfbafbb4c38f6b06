// qelutil decode: the way back from Base64, quoted-printable and the enciphered code.
#include <cstring>
#include <memory>
#include <vector>

#include "QelUtility/BxEncodings.h"
#include "QelUtility/BxQuotedPrintable.h"
#include "base/Progress.h"
#include "base/Source.h"
#include "commands/Commands.h"

namespace qel::cli {

namespace {

constexpr std::size_t kPiece = 1U << 20U;
constexpr std::size_t kLongestPiece = 64U << 20U;
constexpr std::size_t kLongestCode = 2U << 20U;
constexpr unsigned kMostWarnings = 10;

struct Options {
    SourceOptions source;
    std::string kind;
};

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

bool isSpace(char c) {
    return isBlank(c) || (c >= '\n' && c <= '\r');
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isBase64(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '+' ||
           c == '/';
}

// Collects the characters of the code in groups of four and hands them to the library; white space
// may stand anywhere.
class Base64Reader {
  public:
    Base64Reader(const std::string& name, std::ostream& out) : name_(name), out_(out) {}

    void add(char c) {
        if (c == '\n') ++line_;
        if (isSpace(c)) return;
        if (padded_ && c != '=')
            throw InputError(name_, line_, "there is more after the \"=\" that ends the code");
        if (c == '=') padded_ = true;
        if (!padded_ && !isBase64(c)) throw InputError(name_, line_, notBase64(c));
        group_ += c;
        // A full buffer waits for one more character: the last group may be one that is padded.
        if (group_.size() > kPiece && !padded_) {
            decode(group_.substr(0, kPiece));
            group_.erase(0, kPiece);
        }
        if (padded_ && group_.size() > kPiece + 4)
            throw InputError(name_, line_, "there are more \"=\" than end a code");
    }

    void finish() { decode(group_); }

  private:
    static_assert(kPiece % 4 == 0);

    static std::string notBase64(char c) {
        char shown[32];
        std::snprintf(shown, sizeof(shown), "0x%02X", static_cast<unsigned char>(c));
        const std::string what = c > ' ' && c < 0x7F ? "\"" + std::string(1, c) + "\"" : shown;
        return what + " is not a Base64 character; is this the whole code and nothing else?";
    }

    void decode(const std::string& code) {
        std::vector<unsigned char> bytes(code.size() / 4 * 3 + 3);
        const int length =
            Bx_Base64_Decode(code.c_str(), bytes.data(), static_cast<unsigned>(bytes.size()));
        if (length < 0)
            throw InputError(name_, line_,
                             "the code is cut off or badly padded: it must be groups of four "
                             "characters, the last one filled up with \"=\"");
        out_.write(reinterpret_cast<const char*>(bytes.data()), length);
    }

    const std::string& name_;
    std::ostream& out_;
    std::string group_;
    std::size_t line_ = 1;
    bool padded_ = false;
};

void decodeBase64(Context& context, InputFile& input, std::ostream& out) {
    Progress progress(context, input.name(), input.size());
    Pieces pieces(input, kPiece, kPiece);
    Base64Reader reader(input.name(), out);
    std::string piece;
    while (pieces.next(piece, [](std::string_view text) { return text.size(); })) {
        for (const char c : piece) reader.add(c);
        progress.update(pieces.bytesTaken());
    }
    reader.finish();
}

// Where a quoted-printable text may be cut: after a line end, or after a character that
// belongs to no escape, no soft break and no white space that a line end would make disappear.
std::size_t quotedCut(std::string_view text) {
    for (std::size_t at = text.size(); at > 2; --at) {
        const char last = text[at - 1];
        if (last == '\n') return at;
        if (last != '=' && last != '\r' && !isBlank(last) && text[at - 2] != '=') return at;
    }
    return 0;
}

// The library keeps invalid escapes unchanged; a person should know that they are there.
class EscapeWatch {
  public:
    EscapeWatch(Context& context, const std::string& name) : context_(context), name_(name) {}

    void look(std::string_view text, std::size_t line) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '\n') ++line;
            if (text[i] == '=' && !isEscape(text.substr(i + 1))) report(line);
        }
    }
    void finish() {
        if (found_ > kMostWarnings)
            context_.warning(name_, 0,
                             std::to_string(found_ - kMostWarnings) + " more of the same kind");
    }

  private:
    static bool isEscape(std::string_view rest) {
        if (rest.size() >= 2 && isHexDigit(rest[0]) && isHexDigit(rest[1])) return true;
        std::size_t i = 0;
        while (i < rest.size() && isBlank(rest[i])) ++i;
        return i < rest.size() && (rest[i] == '\r' || rest[i] == '\n');
    }
    void report(std::size_t line) {
        if (++found_ <= kMostWarnings)
            context_.warning(name_, line, "\"=\" without two hexadecimal digits, kept unchanged");
    }

    Context& context_;
    const std::string& name_;
    std::uint64_t found_ = 0;
};

void decodeQuoted(Context& context, InputFile& input, std::ostream& out) {
    Progress progress(context, input.name(), input.size());
    Pieces pieces(input, kPiece, kLongestPiece);
    EscapeWatch watch(context, input.name());
    std::string piece;
    while (pieces.next(piece, quotedCut)) {
        watch.look(piece, pieces.line());
        std::string text(piece.size() + 1, '\0');
        std::size_t length = 0;
        const int failed = decodeQP(piece.data(), piece.size(), text.data(), text.size(), &length);
        if (failed != 0)
            throw InputError(input.name(), pieces.line(),
                             "cannot be decoded (code " + std::to_string(failed) + ")");
        out.write(text.data(), static_cast<std::streamsize>(length));
        progress.update(pieces.bytesTaken());
    }
    watch.finish();
}

void decodeCipher(InputFile& input, std::ostream& out) {
    std::string code = input.readAll(kLongestCode);
    while (!code.empty() && isSpace(code.back())) code.pop_back();
    code.erase(0, code.find_first_not_of(" \t\r\n"));
    for (std::size_t i = 0; i < code.size(); ++i)
        if (!isHexDigit(code[i]))
            throw InputError(input.name() + ": character " + std::to_string(i + 1) +
                             " is not a hexadecimal digit; the code is one word of them");
    if (code.size() % 16 != 0)
        throw InputError(input.name() + ": holds " + std::to_string(code.size()) +
                         " hexadecimal digits; the code has 16 for every 8 bytes of text, so some "
                         "are missing or too many");
    std::string text(code.size() / 2 + 1, '\0');
    const int failed =
        ZQUT_DecodeFromString(code.c_str(), text.data(), static_cast<unsigned>(text.size()));
    if (failed != 0)
        throw InputError(input.name() + ": cannot be deciphered (code " + std::to_string(failed) +
                         "); is it what `qelutil encode cipher` writes?");
    out << text.c_str() << '\n';
}

void run(Context& context, const Options& options) {
    InputFile input = options.source.open(context);
    OutputFile output(context, options.source.output);
    if (options.kind == "base64") decodeBase64(context, input, output.stream());
    if (options.kind == "qp") decodeQuoted(context, input, output.stream());
    if (options.kind == "cipher") decodeCipher(input, output.stream());
    output.commit();
}

}  // namespace

void addDecodeCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("decode", "Decode Base64, quoted-printable or enciphered code");
    command->add_option("CODE", options->kind, "base64, qp or cipher")
        ->required()
        ->type_name("")
        ->check(CLI::IsMember({"base64", "qp", "cipher"}));
    options->source.addTo(*command);
    command->footer(
        "The bytes are written unchanged, without an added line end; only an enciphered code\n"
        "gives a line of text.\n"
        "Examples:\n"
        "  qelutil decode base64 photo.b64 -o photo.jpg\n"
        "  qelutil decode qp --text \"Caf=C3=A9\"\n"
        "  qelutil encode cipher --text secret | qelutil decode cipher");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
