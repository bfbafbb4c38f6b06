// A caller from outside, with nothing but the library's headers and the library: a class, a
// function of C++ linkage, one of C linkage, and the version.
#include <QelUtility/QelUtility.h>

#include <cstdio>
#include <cstring>

int main() {
    _rruleRepeat rule;
    VStr text;
    unsigned day = 0;
    if (BxUtil_PositionalV10toRRULE("W2 MO WE FR #10", &rule, nullptr) != QEL_OK ||
        ZQ_DateEncode(6, 15, 2005, &day) != QEL_OK) {
        std::puts("the rule or the date was not read");
        return 1;
    }
    BxUtil_RRULEtoIETF(&rule, text, false);
    std::printf("%s, day %u, version %s\n", static_cast<const char*>(text), day,
                QELUTILITY_VERSION);
    return std::strcmp(text, "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR") == 0 ? 0 : 1;
}
