#include "QelUtility/BxTrace.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "QelUtility/BxHost.h"
#include "platform/Files.h"
#include "platform/Format.h"
#include "platform/Process.h"
#include "trace/ErrorLine.h"
#include "trace/Stamp.h"
#include "trace/TraceSystem.h"

namespace {

using qel::trace::kShowFailuresBit;
using qel::trace::Path;
using qel::trace::reportError;
using qel::trace::shownText;
using qel::trace::TraceSystem;

constexpr std::size_t kFormatRoom = 100000;
constexpr std::size_t kTrace1Room = 4096;

void showFailure(const char* text) {
    if ((qel::trace::traceSystem().settings().tracingMask() & kShowFailuresBit) == 0) return;
    char title[256];
    BxHost_GetString(BXHOST_MESSAGE_TITLE, title, sizeof title);
    qel::platform::messageBox(title, text);
}

// Writes one message: 0 written, -1 not. The bits 2 and 4 of `mask` send it to the SyncML logs.
int writeMessage(const char* text, long mask) {
    TraceSystem& trace = qel::trace::traceSystem();
    trace.options().load();
    const char* failure = nullptr;
    const int result = trace.log().write(text != nullptr ? text : "(null)",
                                         static_cast<std::uint32_t>(mask), failure);
    // Shown without the mutex, so that a box that waits for its user holds up no other thread.
    if (failure != nullptr) showFailure(failure);
    return result;
}

// --- Formats ------------------------------------------------------------------------------------

// Formats and writes. Most texts are short; only a long one needs a block of its own, and is cut
// where there is no memory for it.
int formatAndWrite(long mask, const char* format, std::va_list arguments) {
    char shortText[1024];
    std::va_list again;
    va_copy(again, arguments);
    const int length = qel::platform::formatTextV(shortText, sizeof shortText, format, arguments);
    int result = -1;
    if (length < static_cast<int>(sizeof shortText)) {
        result = writeMessage(shortText, mask);
    } else {
        const std::size_t room = std::min(kFormatRoom, static_cast<std::size_t>(length) + 1);
        const std::unique_ptr<char[]> longText(new (std::nothrow) char[room]);
        if (longText != nullptr) qel::platform::formatTextV(longText.get(), room, format, again);
        result = writeMessage(longText != nullptr ? longText.get() : shortText, mask);
    }
    va_end(again);
    return result;
}

int levelledTrace(int level, const char* format, std::va_list arguments) {
    TraceSystem& trace = qel::trace::traceSystem();
    trace.options().load();
    const int verbosity = trace.settings().verbosity;
    return verbosity < level ? verbosity : formatAndWrite(0, format, arguments);
}

bool maskSelected(long mask) {
    TraceSystem& trace = qel::trace::traceSystem();
    trace.options().load();
    return (trace.settings().tracingMask() & static_cast<std::uint32_t>(mask)) != 0;
}

// --- Hexadecimal dump ---------------------------------------------------------------------------

constexpr unsigned long kMostDumped = 2048;
constexpr unsigned long kBytesInLine = 16;

// One line of `count` bytes, 1 to 16; 75 characters at most. Returns the end of what it wrote.
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

// --- Errors -------------------------------------------------------------------------------------

int BxTrace_Error(const char* file, int line, int detail, int code) {
    return reportError(file, line, code, "%s: Error %d.%d at %.256s line %d", detail);
}

int BxTrace_Error_L(const char* file, int line, long detail, int code) {
    const auto word = static_cast<std::int32_t>(detail);
    return reportError(file, line, code, "%s: Error 0x%x.%d.%d at %.256s line %d",
                       static_cast<std::uint32_t>(word), word);
}

int BxTrace_Error_S(const char* file, int line, const char* text, int code) {
    return reportError(file, line, code, "%s: Error %.350s.%d at %.256s line %d", shownText(text));
}

int BxTrace_Error_SS(const char* file, int line, const char* text1, const char* text2, int code) {
    return reportError(file, line, code, "%s: Error %.350s.%.350s.%d at %.256s line %d",
                       shownText(text1), shownText(text2));
}

int BxTrace_Error_SL(const char* file, int line, const char* text, long detail, int code) {
    return reportError(file, line, code, "%s: Error %.350s.%d.%d at %.256s line %d",
                       shownText(text), static_cast<std::int32_t>(detail));
}

int BxTrace_Error_SSL(const char* file, int line, const char* text1, const char* text2, long detail,
                      int code) {
    return reportError(file, line, code, "%s: Error %.350s.%.350s.%d.%d at %.256s line %d",
                       shownText(text1), shownText(text2), static_cast<std::int32_t>(detail));
}

int BxTrace_Error_SI64L(const char* file, int line, const char* text, __int64 value, long detail,
                        int code) {
    return reportError(file, line, code, "%s: Error %.350s.%llx.%d.%d at %.256s line %d",
                       shownText(text), static_cast<unsigned long long>(value),
                       static_cast<std::int32_t>(detail));
}

// --- Traces -------------------------------------------------------------------------------------

int BxTrace_Trace00(const char* text) {
    return writeMessage(text, 0);
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
    if (!maskSelected(mask)) return 0;
    std::va_list arguments;
    va_start(arguments, format);
    const int result = formatAndWrite(mask, format, arguments);
    va_end(arguments);
    return result;
}

void QELUTILITY_CALL BxTrace_WriteHex(long mask, const unsigned char* data, unsigned long length) {
    if (!maskSelected(mask)) return;
    const unsigned long count = data != nullptr ? std::min(length, kMostDumped) : 0;
    const std::unique_ptr<char[]> dump(new (std::nothrow) char[count * 5 + 76]);
    if (dump == nullptr) return;
    char* out = dump.get();
    for (unsigned long at = 0; at < count; at += kBytesInLine)
        out = dumpLine(out, at, data + at, std::min(kBytesInLine, count - at));
    *out = '\0';
    writeMessage(dump.get(), mask);
}

void BxTrace_FlushRetroBuffers() {
    qel::trace::traceSystem().log().flushRetro();
}

// --- Log files ----------------------------------------------------------------------------------

int BxTrace_ErrorLogDelete() {
    TraceSystem& trace = qel::trace::traceSystem();
    trace.options().load();
    return trace.settings().keepLogFiles != 0 ? 0 : BxTrace_BackupLogFile();
}

int BxTrace_BackupLogFile() {
    TraceSystem& trace = qel::trace::traceSystem();
    trace.options().load();
    const char* log = trace.paths().get(Path::kLog);
    return qel::platform::fileExists(log)
               ? BxTrace_MusicalBackups(log, trace.settings().maxBackupCount)
               : 0;
}

int BxTrace_MusicalBackups(const char* path, int count) {
    TraceSystem& trace = qel::trace::traceSystem();
    trace.options().load();
    return trace.log().rotateLocked(path != nullptr ? path : trace.paths().get(Path::kLog), count);
}

char* QELUTILITY_CALL BxTrace_GetLogFilePath() {
    return qel::trace::traceSystem().paths().get(Path::kLog);
}

char* QELUTILITY_CALL BxTrace_GetRunDirWithTrailingBackslash() {
    TraceSystem& trace = qel::trace::traceSystem();
    trace.options().load();
    return trace.paths().get(Path::kRunDirectory);
}

// --- Options ------------------------------------------------------------------------------------

char* BxTrace_GetOptionsFilePath() {
    return qel::trace::traceSystem().paths().get(Path::kOptions);
}

long BxTrace_GetTracingOptions() {
    TraceSystem& trace = qel::trace::traceSystem();
    trace.options().load();
    return trace.settings().tracingOptions;
}

void BxTrace_GetOptionValue(const char* section, const char* key, int& value) {
    qel::trace::traceSystem().options().read(section, key, 10, value);
}

void BxTrace_GetHexOptionValue(const char* section, const char* key, int& value) {
    qel::trace::traceSystem().options().read(section, key, 16, value);
}

void BxTrace_SetOptionValue(const char* section, const char* key, int value) {
    qel::trace::traceSystem().options().write(section, key, 10, value);
}

void BxTrace_SetHexOptionValue(const char* section, const char* key, int value) {
    qel::trace::traceSystem().options().write(section, key, 16, value);
}
