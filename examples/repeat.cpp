// Makes a repeat record of a rule and steps it from occurrence to occurrence.
#include <QelUtility/QelUtility.h>
#include <stdio.h>
#include <stdlib.h>

static bool isExcluded(const ZQTR_REPEAT& repeat, int day) {
    for (int i = 0; i < repeat.exclusionCount; ++i)
        if (repeat.exclusions[i] == day) return true;
    return false;
}

int main() {
    // The last workday of each month, six times from 15 June 2005; July's is left out.
    _rruleRepeat rule;
    const char* text = "MONTHLY;;6;1;;;;MO,TU,WE,TH,FR;;;;;-1;;";
    if (BxUtil_PositionaltoRRULE(text, &rule, nullptr) != 0) return 1;

    ZQTR_REPEAT repeat;
    ClearZQTR(&repeat);
    int flags = 0;
    const int code =
        BxUtil_RRuleToBxRepeat(&rule, "20050729", "20050615", nullptr, &repeat, &flags);
    printf("code %d, type %d, warnings 0x%03x\n", code, repeat.type, (unsigned)flags);

    int day = 0;
    int previous = -1;  // asks for the first occurrence
    while (code == 0 && ZQRepeatNextDate(&repeat, &day, &previous) == 0) {
        // The engine looks at neither: the end and the exclusions are its caller's business.
        if (repeat.endDate != -1 && day > repeat.endDate) break;
        if (isExcluded(repeat, day)) continue;
        char date[9];
        printf("%s\n", ZQ_CodeDateToAlpha(day, date));
    }
    free(repeat.exclusions);  // made by malloc, owned by whoever holds the record
    return code;
}

// Prints:
// code 0, type 10, warnings 0x001
// 20050630
// 20050831
// 20050930
// 20051031
// 20051130
