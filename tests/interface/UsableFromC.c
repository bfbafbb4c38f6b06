/* The interface as C sees it: every family with C linkage, called through the shared library. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "QelUtility/QelUtility.h"

static int failures = 0;

static void check(int holds, const char* what, int line) {
    if (holds) return;
    ++failures;
    printf("UsableFromC.c:%d: FAILED: %s\n", line, what);
}
#define CHECK(condition) check((condition), #condition, __LINE__)

static void datesAndRepeats(void) {
    unsigned start = 0;
    CHECK(ZQ_DateEncode(6, 15, 2005, &start) == 0 && start == 38516);

    ZQTR_REPEAT repeat;
    ClearZQTR(&repeat);
    repeat.type = REPEAT_WEEKLY_DAYS;
    repeat.startDate = (int)start;
    repeat.endDate = (int)start + 20;
    repeat.interval = 2;
    repeat.unitCount = 1;
    repeat.days[1] = repeat.days[3] = 1;

    char dates[40] = "";
    char date[9];
    int next = 0;
    int previous = -1;
    for (int i = 0; i < 4 && ZQRepeatNextDate(&repeat, &next, &previous) == 0; ++i)
        strcat(strcat(dates, ZQ_CodeDateToAlpha(next, date) + 4), " ");
    CHECK(strcmp(dates, "0615 0627 0629 0711 ") == 0);

    _rruleRepeat rule;
    int flags = 0;
    VStr* exclusions = VStr_Create(NULL);
    VStr* startText = VStr_Create("old");
    CHECK(BxUtil_BxRepeatToRRule(&repeat, &rule, exclusions, startText, 0, &flags) == 0);
    CHECK(rule.count == 3 && rule.byDay == (RRULE_DAY_MO | RRULE_DAY_WE) && flags == 0);
    CHECK(strcmp(VStr_Text(startText), "20050615") == 0 && VStr_Text(exclusions)[0] == '\0');
    CHECK(BxUtil_RRuleToBxRepeat(&rule, "20050627", "20050615", NULL, &repeat, &flags) == 0);
    CHECK(repeat.endDate == (int)start + 14 && repeat.exclusions[0] == (int)start + 12);
    free(repeat.exclusions);
    CHECK(ZQTRDateTimeToUTCDate(38516, startText) == 0);
    CHECK(RRuleToZQTRDateTime(ConvertZQTRDateTimeToRRule(38516)) == 38516);
    VStr_Destroy(startText);
    VStr_Destroy(exclusions);
    VStr_Destroy(NULL);
}

static void expansion(void) {
    ZQTR_REPEAT repeat;
    ClearZQTR(&repeat);
    repeat.type = REPEAT_WEEKLY_DAYS;
    repeat.startDate = ZQ_AlphaToCodeDate("20050301");
    repeat.endDate = -1;
    repeat.interval = repeat.unitCount = 1;
    repeat.days[2] = 1;
    const int start = repeat.startDate;

    DateBlock dates;
    int valid = 0;
    int total = 0;
    CHECK(DateBlock_Init(&dates, 0, DATEBLOCK_STEP, DATEBLOCK_MAXIMUM) == 0);
    CHECK(Unfold_Repeat(&repeat, 3, start + 9, start, start + 30, &dates, &valid, &total) == 0);
    CHECK(valid == 3 && total == 3 && dates.data[0] == start + 14 && dates.data[2] == start + 28);
    CHECK(Unfold_ListDates(&repeat, 5, start, start + 7, &dates, &valid, &total) == 0 &&
          total == 2);
    CHECK(DateBlock_Reserve(&dates, DATEBLOCK_MAXIMUM + 1) == DATEBLOCK_FULL);
    DateBlock_Free(&dates);
    CHECK(DateBlock_Init(NULL, 0, 1, 1) == QEL_NOT_INITIALIZED);
    CHECK(DateBlock_Reserve(NULL, 1) == QEL_NOT_INITIALIZED);
    DateBlock_Free(NULL);
    CHECK(Unfold_HasOccurrence(start + 1, start + 6, start, &repeat) == 0);
    CHECK(WeekOfMonth(start + 7) == 2);

    int found = -7;
    CHECK(ZQRepeatJump(&repeat, start, &found) == -1 && ZQRepeatJump(NULL, start, &found) == -1);
    CHECK(found == -7);
    CHECK(ZQRepeatJump(&repeat, start + 36500, &found) == 0 && found == start + 36505);
}

static void dateTimesAndDurations(void) {
    int month = 0;
    int year = 0;
    CHECK(ZQ_DateDecode(38516, &month, NULL, &year) == 0 && month == 6 && year == 2005);
    CHECK(ZQ_DayOfWeek(38516) == 4);
    CHECK(ZQ_GetCurrentTime() >= 0 && ZQ_GetCurrentTime() < 86400);

    const __int64 value = ZQ_DateTimeToSeconds("20050615T083000Z");
    VStr* text = VStr_Create(NULL);
    int seconds = 0;
    CHECK(value == (__int64)38516 * 86400 + 30600 && ZQ_DateTimeToSeconds(NULL) == 0);
    ZQ_SecondsToDateTime(value, text, 1);
    CHECK(strcmp(VStr_Text(text), "20050615T083000") == 0);
    CHECK(ZQ_DateTimeToUnixTime(VStr_Text(text)) == 1118824200);
    CHECK(ZQ_SecondsToDuration(93600, text) == 0 && strcmp(VStr_Text(text), "+P1DT2H") == 0);
    CHECK(ZQ_DurationToSeconds("-PT15M", &seconds) == 0 && seconds == -900);
    CHECK(ZQ_DurationToSeconds(NULL, &seconds) == -1);
    CHECK(ZQ_NormalizeDuration("PT26H", text) == 0 && strcmp(VStr_Text(text), "+P1DT2H") == 0);
    CHECK(ZQ_DurationBetween("20050615T083000", "20050615T093000", text) == 0);
    CHECK(strcmp(VStr_Text(text), "+PT1H") == 0);
    CHECK(ZQ_DateTimeDifference("20050615T083000", NULL, NULL) == 0);
    VStr_Destroy(text);

    text = VStr_Create(NULL);
    CHECK(ZQ_AddDuration("20051231T233000Z", "PT45M", text) == 0);
    CHECK(ZQ_AddSeconds(NULL, 60, text) == 0);
    CHECK(strcmp(ZQ_UnixTimeToDateTime(0, text, 0),
                 "20060101T001500Z19000101T00010019700101T000000Z") == 0);
    VStr_Destroy(text);
}

static void codecs(void) {
    char text[40];
    unsigned char bytes[8];
    CHECK(Bx_Base64_Encode((const unsigned char*)"light", 5, text, sizeof text) == 8);
    CHECK(strcmp(text, "bGlnaHQ=") == 0);
    CHECK(Bx_Base64_Decode(text, bytes, sizeof bytes) == 5 && memcmp(bytes, "light", 5) == 0);
    CHECK(strcmp(MD5String("", text), "d41d8cd98f00b204e9800998ecf8427e") == 0);
    CHECK(ZQUT_EncodeToString("secret", text, sizeof text) == 0);
    CHECK(ZQUT_DecodeFromString(text, bytes, sizeof bytes) == 0);
    CHECK(strcmp((const char*)bytes, "secret") == 0);

    size_t length = 0;
    CHECK(decodeQP("a=3Db", 5, text, sizeof text, &length) == 0 && strcmp(text, "a=b") == 0);

    char header[] = "multipart/mixed; boundary=\"x y\"\r\n";
    char* following = NULL;
    VStr* boundary = VStr_Create("");
    CHECK(GetFoldedLineEnd(header, &following) == strchr(header, '\r') && *following == '\0');
    CHECK(strcmp(GetMIMEDelimiter(header, boundary), "x y") == 0);
    VStr_Destroy(boundary);
}

static void filesAndTrace(const char* self) {
    unsigned char* data = NULL;
    unsigned long size = 0;
    CHECK(BxFile_LoadFile(self, &data, &size) == 0 && size > 1000 && data[size] == 0);
    free(data);
    CHECK(BxFile_LoadFile("no such file", &data, &size) == QEL_CANNOT_OPEN && data == NULL);
    BxTrace_WriteHex(BXTRACE_SYNCML_IN_MAIN_LOG, (const unsigned char*)"ab", 2);
    CHECK(strstr(BxTrace_GetLogFilePath(), "UsableFromC.log") != NULL);
    CHECK(BxTrace_GetRunDirWithTrailingBackslash() != NULL);
}

int main(int count, char** arguments) {
    (void)count;
    datesAndRepeats();
    expansion();
    dateTimesAndDurations();
    codecs();
    filesAndTrace(arguments[0]);
    if (failures == 0) puts("the interface is usable from C");
    return failures == 0 ? 0 : 1;
}
