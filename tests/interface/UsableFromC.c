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
    codecs();
    filesAndTrace(arguments[0]);
    if (failures == 0) puts("the interface is usable from C");
    return failures == 0 ? 0 : 1;
}
