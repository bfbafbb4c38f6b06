// The error functions: one line in the log, and the code handed back.
#include <cstring>
#include <mutex>

#include "platform/Immortal.h"
#include "trace/BxTraceInternal.h"
#include "trace/TraceState.h"

namespace {

// Two texts of 350 characters, a file name of 256, the stamp and the numbers, the error ID.
constexpr std::size_t kLineRoom = 1280;
constexpr std::size_t kErrorIdRoom = 65;

constinit char errorId[kErrorIdRoom] = "";

std::mutex& errorIdMutex() {
    static qel::platform::Immortal<std::mutex> mutex;
    return mutex.get();
}

const char* shown(const char* text) {
    return text != nullptr ? text : "(null)";
}

// Formats "<stamp>: Error <details>.<code> at <file> line <line>" and reports it. `details` carries
// the conversions of what stands before the code, each with its dot behind it.
template <typename... Details>
int report(const char* file, int line, int code, const char* format, Details... details) {
    char text[kLineRoom];
    std::snprintf(text, sizeof text, format, qel::trace::makeStamp().text, details..., code,
                  shown(file), line);
    return BxTrace_ReportError(code, text);
}

}  // namespace

int BxTrace_Error(const char* file, int line, int detail, int code) {
    return report(file, line, code, "%s: Error %d.%d at %.256s line %d", detail);
}

int BxTrace_Error_L(const char* file, int line, long detail, int code) {
    const auto word = static_cast<std::int32_t>(detail);
    return report(file, line, code, "%s: Error 0x%x.%d.%d at %.256s line %d",
                  static_cast<std::uint32_t>(word), word);
}

int BxTrace_Error_S(const char* file, int line, const char* text, int code) {
    return report(file, line, code, "%s: Error %.350s.%d at %.256s line %d", shown(text));
}

int BxTrace_Error_SS(const char* file, int line, const char* text1, const char* text2, int code) {
    return report(file, line, code, "%s: Error %.350s.%.350s.%d at %.256s line %d", shown(text1),
                  shown(text2));
}

int BxTrace_Error_SL(const char* file, int line, const char* text, long detail, int code) {
    return report(file, line, code, "%s: Error %.350s.%d.%d at %.256s line %d", shown(text),
                  static_cast<std::int32_t>(detail));
}

int BxTrace_Error_SSL(const char* file, int line, const char* text1, const char* text2, long detail,
                      int code) {
    return report(file, line, code, "%s: Error %.350s.%.350s.%d.%d at %.256s line %d", shown(text1),
                  shown(text2), static_cast<std::int32_t>(detail));
}

int BxTrace_Error_SI64L(const char* file, int line, const char* text, __int64 value, long detail,
                        int code) {
    return report(file, line, code, "%s: Error %.350s.%llx.%d.%d at %.256s line %d", shown(text),
                  static_cast<unsigned long long>(value), static_cast<std::int32_t>(detail));
}

int BxTrace_Error_III(const char* file, int line, int detail1, int detail2, int code) {
    return report(file, line, code, "%s: Error %d.%d.%d at %.256s line %d", detail1, detail2);
}

int BxTrace_Error_I64(const char* file, int line, __int64 value, int detail1, int detail2,
                      int code) {
    return report(file, line, code, "%s: Error %llx.%d.%d.%d at %.256s line %d",
                  static_cast<unsigned long long>(value), detail1, detail2);
}

int BxTrace_IsFailureCode(int code) {
    const bool success = code == 0 || code == 2014 || code == 2018 || code == 2037 || code == 2042;
    const std::uint32_t upper = static_cast<std::uint32_t>(code) & 0xFFFFFF00U;
    return static_cast<int>(upper | (success ? 0U : 1U));
}

int BxTrace_ErrorIfFailure(const char* file, int line, int detail, int code) {
    const bool failure = (BxTrace_IsFailureCode(code) & 0xFF) != 0;
    return failure ? BxTrace_Error(file, line, detail, code) : code;
}

int BxTrace_ReportError(int code, const char* line) {
    char id[kErrorIdRoom];
    if (BxTrace_GetErrorID(id, sizeof id) && std::strstr(line, id) == nullptr) {
        char extended[kLineRoom + kErrorIdRoom];
        std::snprintf(extended, sizeof extended, "%s, ID= %s", line, id);
        BxTrace_Trace00(extended);
    } else {
        BxTrace_Trace00(line);
    }
    BxTrace_FlushRetroBuffers();
    return code;
}

void BxTrace_SetErrorID(const char* text) {
    const std::lock_guard lock(errorIdMutex());
    std::snprintf(errorId, sizeof errorId, "%s", text != nullptr ? text : "");
}

bool BxTrace_GetErrorID(char* buffer, unsigned long size) {
    if (buffer == nullptr || size == 0) return false;
    const std::lock_guard lock(errorIdMutex());
    std::snprintf(buffer, size, "%s", errorId);
    return buffer[0] != '\0';
}
