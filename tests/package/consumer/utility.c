/* A C program on QelUtility alone: the last Friday of June 2005, by a repeat record. */
#include <QelUtility/QelUtility.h>

#include "host.h"

int runCalendar(void) {
    ZQTR_REPEAT repeat;
    char text[33];
    int day = 0;
    int previous = -1;
    size_t size = 0;
    ClearZQTR(&repeat);
    repeat.type = REPEAT_MONTHLY_WEEKDAY;
    repeat.startDate = ZQ_AlphaToCodeDate("20050601");
    repeat.endDate = -1;
    repeat.interval = 1;
    repeat.unitCount = 1;
    repeat.dayOfWeek = 6;
    repeat.weekOfMonth = 5;
    if (ZQRepeatNextDate(&repeat, &day, &previous) != 0) return 1;
    ZQ_CodeDateToAlpha(day, text);
    while (text[size] != '\0') ++size;
    return writeOutput(text, size) != 0 || writeOutput("\n", 1) != 0;
}
