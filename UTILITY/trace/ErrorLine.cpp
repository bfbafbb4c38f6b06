#include "trace/ErrorLine.h"

#include <cstring>

#include "QelUtility/BxTrace.h"
#include "trace/TraceSystem.h"

namespace qel::trace {

int writeErrorLine(int code, const char* line) {
    char id[ErrorId::kRoom];
    if (traceSystem().errorId().get(id, sizeof id) && std::strstr(line, id) == nullptr) {
        char extended[kErrorLineRoom + ErrorId::kRoom];
        std::snprintf(extended, sizeof extended, "%s, ID= %s", line, id);
        BxTrace_Trace00(extended);
    } else {
        BxTrace_Trace00(line);
    }
    BxTrace_FlushRetroBuffers();
    return code;
}

}  // namespace qel::trace
