// Traces: from a caller's text or format to the lines in the log.
#include "QelUtility/BxTrace.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "QelUtility/BxHost.h"
#include "trace/BxTraceInternal.h"
#include "trace/TraceState.h"

namespace {

using qel::platform::LockResult;
using qel::trace::Path;
using qel::trace::settings;
using qel::trace::Writer;
using qel::trace::writer;
using qel::trace::WriterLock;

constexpr std::size_t kFormatRoom = 100000;
constexpr std::size_t kTrace1Room = 4096;
constexpr std::size_t kPrefixRoom = 72;  // "[", 8 digits, "] ", a stamp, ": "
static_assert(kPrefixRoom >= 13 + sizeof(qel::trace::Stamp::text));

void showFailure(const char* text) {
    const auto options = static_cast<std::uint32_t>(settings().tracingOptions.load());
    if ((options & qel::trace::kShowFailuresBit) == 0) return;
    char title[256];
    BxHost_GetString(BXHOST_MESSAGE_TITLE, title, sizeof title);
    qel::platform::messageBox(title, text);
}

// --- Lines --------------------------------------------------------------------------------------

// Where the pieces of one message go: to the stream, counted, or to the retroactive buffers.
struct Sink {
    std::FILE* stream;
    bool retro;
    std::int64_t written = 0;
    bool failed = false;

    void put(const char* text, std::size_t length) {
        if (retro)
            BxTrace_RetroAppend(text, static_cast<int>(std::min<std::size_t>(length, INT32_MAX)));
        else if (stream == nullptr || std::fwrite(text, 1, length, stream) != length)
            failed = true;
        else
            written += static_cast<std::int64_t>(length);
    }
    // "[%4.4X] %s: " with the thread and a stamp.
    void putPrefix() {
        char prefix[kPrefixRoom];
        char digits[8];
        int count = 0;
        for (std::uint32_t rest = qel::platform::threadId(); rest != 0 || count < 4; rest >>= 4)
            digits[count++] = "0123456789ABCDEF"[rest & 15];
        char* out = prefix;
        *out++ = '[';
        while (count != 0) *out++ = digits[--count];
        *out++ = ']';
        *out++ = ' ';
        out = qel::trace::putStamp(out);
        *out++ = ':';
        *out++ = ' ';
        put(prefix, static_cast<std::size_t>(out - prefix));
    }
};

// A SyncML document keeps its own layout: a header, the text as it is, a line end.
int writeSyncMLBlock(const char* text, bool input, std::FILE* stream) {
    if (stream == nullptr) return -1;
    std::fprintf(stream, "%s: %s\n", qel::trace::makeStamp().text,
                 input ? "SyncML Input:" : "SyncML Output:");
    std::fputs(text, stream);
    std::fputc('\n', stream);
    if ((settings().keepLogFileOpen & qel::trace::kFlushEveryMessage) != 0) std::fflush(stream);
    return std::ferror(stream) == 0 ? 0 : -1;
}

// How many bytes a message takes in the log at most: its text, and a prefix and a line end for each
// of its lines.
std::size_t roomFor(const char* text) {
    const std::size_t length = std::strlen(text);
    // A short text fits wherever there is room for it with nothing but line ends.
    const auto lines =
        length < 256 ? static_cast<std::ptrdiff_t>(length) : std::count(text, text + length, '\n');
    return length + (static_cast<std::size_t>(lines) + 1) * (kPrefixRoom + 1);
}

// Writes one message to the log that is active; `opened` says whether there was one.
int writeMessage(const char* text, std::uint32_t mask, bool& opened) {
    writer().messageRoom = roomFor(text);
    std::FILE* stream = nullptr;
    opened = OpenLogFile(&stream) == 0;
    if (!opened) return -1;
    const bool syncML = (mask & (qel::trace::kSyncInputBit | qel::trace::kSyncOutputBit)) != 0;
    const int written =
        syncML && qel::trace::retroSize() == 0
            ? writeSyncMLBlock(text, (mask & qel::trace::kSyncInputBit) != 0, stream)
            : BxTrace_WriteLines(false, text, stream);
    const int closed = BxTrace_CloseLogFile(stream);
    return written == 0 && closed == 0 ? 0 : -1;
}

// --- Formats ------------------------------------------------------------------------------------

// Formats and writes. Most texts are short; only a long one needs a block of its own, and without
// the memory for it the text is cut.
int formatAndWrite(long mask, const char* format, std::va_list arguments) {
    char shortText[1024];
    std::va_list again;
    va_copy(again, arguments);
    const int length = qel::platform::formatTextV(shortText, sizeof shortText, format, arguments);
    int result = -1;
    if (length < static_cast<int>(sizeof shortText)) {
        result = BxTrace_Trace000(shortText, mask);
    } else {
        const std::size_t room = std::min(kFormatRoom, static_cast<std::size_t>(length) + 1);
        const std::unique_ptr<char[]> longText(new (std::nothrow) char[room]);
        if (longText != nullptr) qel::platform::formatTextV(longText.get(), room, format, again);
        result = BxTrace_Trace000(longText != nullptr ? longText.get() : shortText, mask);
    }
    va_end(again);
    return result;
}

int levelledTrace(int level, const char* format, std::va_list arguments) {
    BxTrace_LoadSettings();
    const int verbosity = settings().verbosity;
    return verbosity < level ? verbosity : formatAndWrite(0, format, arguments);
}

bool maskSelected(long mask) {
    const auto options = static_cast<std::uint32_t>(settings().tracingOptions.load());
    return (options & static_cast<std::uint32_t>(mask)) != 0;
}

// --- Hexadecimal dump ---------------------------------------------------------------------------

constexpr unsigned long kMostDumped = 2048;
constexpr unsigned long kBytesInLine = 16;

// One line of `count` bytes, 1 to 16; 75 characters at most. Returns behind what it wrote.
char* dumpLine(char* out, unsigned long offset, const unsigned char* data, unsigned long count) {
    out += std::snprintf(out, 8, "%04X: ", static_cast<unsigned>(offset));
    for (unsigned long i = 0; i < kBytesInLine; ++i) {
        if (i < count) {
            out += std::snprintf(out, 4, "%02X ", data[i]);
        } else {
            std::memset(out, ' ', 3);
            out += 3;
        }
        if (i == 7) *out++ = ' ';
    }
    *out++ = '|';
    for (unsigned long i = 0; i < kBytesInLine; ++i) {
        const bool printable = i < count && data[i] >= 0x20 && data[i] <= 0x7E;
        *out++ = i >= count ? ' ' : printable ? static_cast<char>(data[i]) : '.';
    }
    *out++ = '|';
    *out++ = '\n';
    return out;
}

}  // namespace

int BxTrace_WriteLines(bool noPrefix, const char* text, std::FILE* stream) {
    const int retro = qel::trace::retroSize();
    Sink sink{stream, retro >= 1};
    bool prefixDue = !noPrefix;
    const char* line = text;
    while (*line != '\0') {
        const char* newline = std::strchr(line, '\n');
        const char* next = newline != nullptr ? newline + 1 : line + std::strlen(line);
        if (prefixDue) sink.putPrefix();
        prefixDue = retro >= 0;
        sink.put(line, static_cast<std::size_t>(next - line));
        line = next;
    }
    if (sink.written > 0 && line[-1] != '\n') sink.put("\n", 1);
    if (settings().keepLogFileOpen != 0 && retro < 1) {
        writer().keptSize += sink.written;
        if ((settings().keepLogFileOpen & qel::trace::kFlushEveryMessage) != 0 &&
            stream != nullptr && std::fflush(stream) != 0)
            sink.failed = true;
    }
    return sink.failed ? -1 : 0;
}

int BxTrace_Trace000(const char* text, long mask) {
    BxTrace_LoadSettings();
    if (text == nullptr) text = "(null)";
    const auto caller = static_cast<std::uint32_t>(mask);
    const auto options = static_cast<std::uint32_t>(settings().tracingOptions.load());
    const std::uint32_t routing = (options & qel::trace::kSyncInMainLogBit) != 0 ? 0 : caller;
    const char* failure = nullptr;
    int result = -1;
    {
        const WriterLock lock;
        if (!lock) {
            if (lock.result() == LockResult::kTimedOut)
                showFailure("WaitForSingleObject timed out in BxTrace_Trace000");
            return -1;
        }
        Writer& w = writer();
        if ((routing & qel::trace::kSyncInputBit) != 0)
            w.redirectedTo = qel::trace::path(Path::kSyncInput);
        else if ((routing & qel::trace::kSyncOutputBit) != 0)
            w.redirectedTo = qel::trace::path(Path::kSyncOutput);
        try {
            bool opened = false;
            result = writeMessage(text, caller, opened);
            if (!opened) failure = "OpenLogFile failed in BxTrace_Trace000";
        } catch (...) {
            result = -1;
            failure = "Exception caught in BxTrace_Trace000";
        }
        if (w.redirectedTo != nullptr) {
            // The saved copy lacks the process's number: with a log for each process, the first
            // SyncML message turns this process over to the shared name, from here on.
            w.redirectedTo = nullptr;
            qel::trace::publish(Path::kLog, qel::trace::path(Path::kSavedLog));
        }
        w.lock.release();
    }
    // Shown without the mutex, so that a box that waits for its user holds up no other thread.
    if (failure != nullptr) showFailure(failure);
    return result;
}

int BxTrace_Trace00(const char* text) {
    BxTrace_LoadSettings();
    return BxTrace_Trace000(text, 0);
}

int BxTrace_Trace0(const char* text) {
    char line[640];
    std::snprintf(line, sizeof line, "%s: %.490s\n", qel::trace::makeStamp().text,
                  text != nullptr ? text : "(null)");
    return BxTrace_Trace00(line);
}

int BxTrace_Trace1(const char* file, int line, const char* text) {
    char message[kTrace1Room];
    std::snprintf(message, sizeof message, "%s: %.190s at %.256s line %d\n",
                  qel::trace::makeStamp().text, text != nullptr ? text : "(null)",
                  file != nullptr ? file : "(null)", line);
    return BxTrace_Trace00(message);
}

int BxTrace_Tracef(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int result = formatAndWrite(0, format, arguments);
    va_end(arguments);
    return result;
}

int BxTrace_VTrace(int level, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int result = levelledTrace(level, format, arguments);
    va_end(arguments);
    return result;
}

int BxTrace_VTrace_TS(int level, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int result = levelledTrace(level, format, arguments);
    va_end(arguments);
    return result;
}

int BxTrace_OTrace_TS(long mask, const char* format, ...) {
    BxTrace_LoadSettings();
    if (!maskSelected(mask)) return 0;
    std::va_list arguments;
    va_start(arguments, format);
    const int result = formatAndWrite(mask, format, arguments);
    va_end(arguments);
    return result;
}

void QELUTILITY_CALL BxTrace_WriteHex(long mask, const unsigned char* data, unsigned long length) {
    BxTrace_LoadSettings();
    if (!maskSelected(mask)) return;
    const unsigned long count = data != nullptr ? std::min(length, kMostDumped) : 0;
    const std::unique_ptr<char[]> dump(new (std::nothrow) char[count * 5 + 76]);
    if (dump == nullptr) return;
    char* out = dump.get();
    for (unsigned long at = 0; at < count; at += kBytesInLine)
        out = dumpLine(out, at, data + at, std::min(kBytesInLine, count - at));
    *out = '\0';
    BxTrace_Trace000(dump.get(), mask);
}
