/* The same library from C: what has C linkage, and the records that it works on. */
#include <QelUtility/QelUtility.h>
#include <stdio.h>

int main(void) {
    ZQTR_REPEAT repeat;
    ClearZQTR(&repeat);
    repeat.type = REPEAT_MONTHLY_DAY;
    repeat.startDate = ZQ_AlphaToCodeDate("20050131");
    repeat.endDate = -1;
    repeat.interval = 1;
    repeat.unitCount = 1;
    repeat.dayOfMonth = 31;

    int day = 0;
    int previous = -1;
    VStr* text = VStr_Create(NULL); /* where the interface wants a string to fill */
    for (int i = 0; i < 3 && ZQRepeatNextDate(&repeat, &day, &previous) == 0; ++i) {
        ZQTRDateTimeToUTCDate(day, text);
        puts(VStr_Text(text));
    }
    VStr_Destroy(text);
    return 0;
}

// Prints:
// 20050131
// 20050228
// 20050331
