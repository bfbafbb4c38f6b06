#include "trace/BxTraceInternal.h"

#include <cstdio>

#include "trace/ErrorLine.h"
#include "trace/Stamp.h"
#include "trace/TraceSystem.h"

namespace qel::trace {

int BxTrace_Error_III(const char* file, int line, int detail1, int detail2, int code) {
    return reportError(file, line, code, "%s: Error %d.%d.%d at %.256s line %d", detail1, detail2);
}

int BxTrace_Error_I64(const char* file, int line, __int64 value, int detail1, int detail2,
                      int code) {
    return reportError(file, line, code, "%s: Error %llx.%d.%d.%d at %.256s line %d",
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

void BxTrace_SetErrorID(const char* text) {
    traceSystem().errorId().set(text);
}

bool BxTrace_GetErrorID(char* buffer, unsigned long size) {
    return traceSystem().errorId().get(buffer, size);
}

int BxTrace_Trace0(const char* text) {
    char line[640];
    std::snprintf(line, sizeof line, "%s: %.490s\n", makeStamp().text, shownText(text));
    return BxTrace_Trace00(line);
}

bool BxTrace_ForceInitialization() {
    traceSystem().options().load();
    return true;
}

void BxTrace_SetLogFileName(const char* name) {
    traceSystem().options().setLogName(name);
}

void BxTrace_FlushLog() {
    traceSystem().log().flushKept();
}

}  // namespace qel::trace
