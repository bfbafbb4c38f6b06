#include "Fuzz.h"
#include "QelUtility/BxMime.h"
#include "QelUtility/VStr.h"

using namespace qel::fuzz;

QEL_FUZZ_TARGET(mime) {
    std::string text = in.text();
    const char* const end = text.c_str() + std::strlen(text.c_str());
    char* line = text.data();
    // Line after line: each ends within the text and leads on, until nothing is left.
    for (int guard = 0; guard < 1000 && line != end; ++guard) {
        char* next = nullptr;
        const char* const stop = GetFoldedLineEnd(line, &next);
        FUZZ_CHECK(line <= stop && stop <= end && line <= next && next <= end);
        if (next == line) break;
        line = next;
    }
    VStr boundary("kept");
    const char* const found = GetMIMEDelimiter(text.data(), boundary);
    if (found == nullptr)
        FUZZ_CHECK(boundary.Compare("kept") == 0);
    else
        FUZZ_CHECK(std::strpbrk(found, "\"\t\r\n") == nullptr);
}
