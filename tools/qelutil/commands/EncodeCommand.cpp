// qelutil encode: a text as Base64, quoted-printable, digest or enciphered code.
#include <algorithm>
#include <map>
#include <memory>
#include <vector>

#include "QelUtility/BxEncodings.h"
#include "QelUtility/BxQuotedPrintable.h"
#include "base/Progress.h"
#include "base/Source.h"
#include "base/Text.h"
#include "commands/Commands.h"

namespace qel::cli {

namespace {

constexpr std::size_t kPiece = 1U << 20U;
// What is taken as one text, where the code is of the whole text.
constexpr std::size_t kLongestText = 64U << 20U;
constexpr std::size_t kLongestSecret = 1U << 20U;

struct Options {
    SourceOptions source;
    std::string kind;
    std::size_t wrap = 76;
    bool value = false;
    std::size_t column = 0;
};

// Writes characters in lines of `width`; 0 for one line.
class Wrapper {
  public:
    Wrapper(std::ostream& out, std::size_t width) : out_(out), width_(width) {}

    void write(std::string_view text) {
        if (width_ == 0) {
            out_ << text;
            written_ = written_ || !text.empty();
            return;
        }
        while (!text.empty()) {
            if (column_ == width_) {
                out_ << '\n';
                column_ = 0;
            }
            const std::size_t taken = std::min(width_ - column_, text.size());
            out_ << text.substr(0, taken);
            column_ += taken;
            written_ = true;
            text.remove_prefix(taken);
        }
    }
    void finish() {
        if (written_) out_ << '\n';
    }

  private:
    std::ostream& out_;
    std::size_t width_;
    std::size_t column_ = 0;
    bool written_ = false;
};

void encodeBase64(Context& context, const Options& options, InputFile& input, std::ostream& out) {
    constexpr std::size_t kThrees = kPiece / 3 * 3;
    Progress progress(context, input.name(), input.size());
    Pieces pieces(input, kThrees, kThrees);
    Wrapper lines(out, options.wrap);
    std::string piece;
    std::vector<char> code(kThrees / 3 * 4 + 1);
    while (pieces.next(piece, [](std::string_view text) { return text.size(); })) {
        const int length = Bx_Base64_Encode(reinterpret_cast<const unsigned char*>(piece.data()),
                                            static_cast<unsigned>(piece.size()), code.data(),
                                            static_cast<unsigned>(code.size()));
        if (length < 0) throw InputError(input.name() + ": cannot be encoded");
        lines.write({code.data(), static_cast<std::size_t>(length)});
        progress.update(pieces.bytesTaken());
    }
    lines.finish();
}

std::string quoted(const Options& options, std::string_view text) {
    std::size_t length = 0;
    const auto call = [&](char* out, std::size_t room) {
        return options.value
                   ? encodeQP(text.data(), text.size(), options.column, out, room, &length)
                   : encodeQuotedPrintable(text.data(), text.size(), out, room, &length);
    };
    std::string result;
    int code = call(nullptr, 0);
    if (code == 0) {
        result.resize(length + 1);
        code = call(result.data(), result.size());
    }
    if (code != 0)
        throw InputError("the text cannot be encoded (code " + std::to_string(code) + ")");
    result.resize(length);
    return result;
}

// Where a body may be cut: after its last line end, else, in a line of a megabyte, where a soft
// line break may stand, which is between characters and not inside CR LF.
std::size_t bodyCut(std::string_view text) {
    const std::size_t lineEnd = text.rfind('\n');
    if (lineEnd != std::string_view::npos) return lineEnd + 1;
    std::size_t cut = text.size();
    if (text.back() == '\r') --cut;
    for (std::size_t back = 0; back < 4 && back < cut; ++back) {
        const auto lead = static_cast<unsigned char>(text[cut - 1 - back]);
        if ((lead & 0xC0U) == 0x80U) continue;
        const std::string_view character = text.substr(cut - 1 - back, 4);
        if (lead >= 0xC0U && utf8CharacterLength(character) != back + 1) cut -= back + 1;
        break;
    }
    return cut;
}

// A piece of a body before its last: a line that is open at its end continues after a soft line
// break, for which a character that follows makes the encoder leave room.
std::string quotedPiece(const Options& options, std::string piece) {
    if (piece.back() == '\n') return quoted(options, piece);
    std::string result = quoted(options, piece += 'x');
    result.pop_back();
    if (!result.ends_with("=\r\n")) result += "=\r\n";
    return result;
}

void encodeQuoted(Context& context, const Options& options, InputFile& input, std::ostream& out) {
    if (options.value) {
        const std::string text = input.readAll(kLongestText);
        out << quoted(options, text) << (options.source.text ? "\n" : "");
        return;
    }
    Progress progress(context, input.name(), input.size());
    Pieces pieces(input, kPiece, kPiece);
    std::string piece;
    std::string held;  // until it is known whether more follows
    while (pieces.next(piece, bodyCut)) {
        if (!held.empty()) out << quotedPiece(options, held);
        held.swap(piece);
        progress.update(pieces.bytesTaken());
    }
    if (held.empty()) return;
    out << quoted(options, held);
    if (held.back() != '\n' && options.source.text) out << '\n';
}

// The digest and the cipher are of texts, which end at their first NUL byte.
std::string textWithoutNul(InputFile& input, std::size_t longest) {
    std::string text = input.readAll(longest);
    const std::size_t nul = text.find('\0');
    if (nul != std::string::npos)
        throw InputError(input.name() + ": contains a NUL byte at offset " + std::to_string(nul) +
                         ", where a text ends for this code; use base64 for data");
    return text;
}

void encodeDigest(InputFile& input, std::ostream& out) {
    char digest[33];
    const std::string_view shown = MD5String(textWithoutNul(input, kLongestText).c_str(), digest);
    if (shown.empty()) throw InputError("this system's cryptographic library refuses MD5");
    out << shown << '\n';
}

void encodeCipher(InputFile& input, std::ostream& out) {
    const std::string text = textWithoutNul(input, kLongestSecret);
    const std::size_t padded = (text.size() + 7) / 8 * 8;
    std::string code(2 * padded + 1, '\0');
    const int failed =
        ZQUT_EncodeToString(text.c_str(), code.data(), static_cast<int>(code.size()));
    if (failed != 0)
        throw InputError(input.name() + ": cannot be enciphered (code " + std::to_string(failed) +
                         "); the log may say why, see `qelutil log`");
    code.resize(2 * padded);
    // A cipher block with a NUL byte in it is decoded to something else, by every reader there is.
    std::string back(padded + 1, '\0');
    if (ZQUT_DecodeFromString(code.c_str(), back.data(), static_cast<unsigned>(back.size())) != 0 ||
        text != back.c_str())
        throw InputError(input.name() +
                         ": has no enciphered code: one of its blocks would hold a NUL byte and "
                         "could not be read back; change the text");
    out << code << '\n';
}

void run(Context& context, const Options& options) {
    if (options.value && options.kind != "qp")
        throw UsageError("--value is for qp, not for " + options.kind);
    InputFile input = options.source.open(context);
    OutputFile output(context, options.source.output);
    if (options.kind == "base64") encodeBase64(context, options, input, output.stream());
    if (options.kind == "qp") encodeQuoted(context, options, input, output.stream());
    if (options.kind == "md5") encodeDigest(input, output.stream());
    if (options.kind == "cipher") encodeCipher(input, output.stream());
    output.commit();
}

}  // namespace

void addEncodeCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "encode", "Encode as Base64, quoted-printable, MD5 digest or enciphered code");
    command->add_option("CODE", options->kind, "base64, qp, md5 or cipher")
        ->required()
        ->type_name("")
        ->check(CLI::IsMember({"base64", "qp", "md5", "cipher"}));
    options->source.addTo(*command);
    command->add_option("--wrap", options->wrap, "base64: characters in a line, 0 for one line")
        ->capture_default_str()
        ->check(CLI::NonNegativeNumber);
    CLI::Option* value = command->add_flag("--value", options->value,
                                           "qp: a property value, whose line ends become =0D=0A");
    command
        ->add_option("--column", options->column,
                     "qp --value: characters before the value on its line")
        ->needs(value)
        ->check(CLI::NonNegativeNumber);
    command->footer(
        "md5 and cipher take text; the code is 16 hexadecimal digits for every 8 bytes. The last\n"
        "line end of a file is part of its text. Quoted-printable encodes a text body, whose "
        "lines\n"
        "then end in CR LF, unless --value is given.\n"
        "Examples:\n"
        "  qelutil encode base64 --wrap 0 photo.jpg -o photo.b64\n"
        "  qelutil encode qp --value --column 38 --text \"Caf\xC3\xA9\"\n"
        "  qelutil encode md5 --text secret\n"
        "  qelutil encode cipher --text secret");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
