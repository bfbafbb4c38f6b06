// Traces from a module of your own and reads the log back.
#include <QelUtility/QelUtility.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char kSource[] = "MyModule";  // names the module in its error lines

static bool profileHere(char* buffer, unsigned long size) {
    return snprintf(buffer, size, ".") < (int)size;
}

static int loadCalendar(const char* path) {
    unsigned char* data = nullptr;
    unsigned long size = 0;
    const int code = BxFile_LoadFile(path, &data, &size);
    // The error functions hand back the code, so that a failure is reported where it is returned.
    if (code != 0) return BxTrace_Error_S(kSource, __LINE__, path, code);
    free(data);
    return 0;
}

int main() {
    BxHost_SetProfileDirectorySource(profileHere);  // the log is ./BxTrace.log from now on
    remove("BxTrace.log");
    BxTrace_Tracef("%d events, %d to-dos", 3, 1);
    BxTrace_VTrace(5, "written only with VTraceVerbosity=5 in BxOptions.opt");
    const int code = loadCalendar("no-such-file.vcs");

    unsigned char* log = nullptr;
    unsigned long size = 0;
    if (BxFile_LoadFile(BxTrace_GetLogFilePath(), &log, &size) != 0) return 1;
    for (char* line = strtok((char*)log, "\r\n"); line != nullptr; line = strtok(nullptr, "\r\n")) {
        // "[thread] date time number: ", and for an error a second stamp. A log begins with a
        // header.
        const char* text = strstr(line, ": ");
        const char* error = strstr(line, ": Error ");
        if (error != nullptr) text = error;
        if (text != nullptr && text[2] > ' ') printf("%s\n", text + 2);
    }
    free(log);
    printf("returned %d\n", code);
    return 0;
}

// Prints:
// 3 events, 1 to-dos
// Error no-such-file.vcs.2005 at MyModule line 18
// returned 2005
