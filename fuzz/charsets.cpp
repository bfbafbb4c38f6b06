#include "Fuzz.h"
#include "QelUtility/BxCharConv.h"
#include "QelUtility/VStr.h"

using namespace qel::fuzz;

QEL_FUZZ_TARGET(charsets) {
    const char** const names = CBxCharConvSvcs::GetCharSetNames();
    const char* const to = names[in.choose(18)];
    const char* const from = names[in.choose(18)];
    const unsigned room = in.take<std::uint16_t>() % 4096;
    const std::string text = in.text();
    CBxCharConvSvcs converter;
    if (converter.Initialize(to, from) != 0) {
        FUZZ_CHECK(!converter.IsInitialized());
        return;
    }
    std::vector<char> out(room);
    const char* next = text.data();
    auto left = static_cast<unsigned>(text.size());
    char* write = out.data();
    unsigned outLeft = room;
    converter.BxConvChar(next, left, write, outLeft);
    FUZZ_CHECK(next + left == text.data() + text.size() && next >= text.data());
    FUZZ_CHECK(write + outLeft == out.data() + room && write >= out.data());

    VStr string(text.c_str());
    const VStr before(string);
    if (converter.BxConvChar(string) != 0) FUZZ_CHECK(string.Compare(before) == 0);
}
