/* host.h by kernel32.dll alone, for a compiler without a C library. */
#include "host.h"

#define KERNEL32(type) __declspec(dllimport) type __stdcall
typedef void* Handle;
KERNEL32(Handle) GetStdHandle(unsigned long which);
KERNEL32(int)
ReadFile(Handle file, void* bytes, unsigned long room, unsigned long* count, void* overlapped);
KERNEL32(int)
WriteFile(Handle file, const void* bytes, unsigned long size, unsigned long* count,
          void* overlapped);
KERNEL32(void) ExitProcess(unsigned int code);

static const unsigned long kInput = (unsigned long)-10;
static const unsigned long kOutput = (unsigned long)-11;

/* The compiler calls these two even where the program does not. */
void* memset(void* to, int value, size_t size) {
    volatile unsigned char* byte = (volatile unsigned char*)to;
    while (size-- > 0) *byte++ = (unsigned char)value;
    return to;
}

void* memcpy(void* to, const void* from, size_t size) {
    volatile unsigned char* byte = (volatile unsigned char*)to;
    const unsigned char* source = (const unsigned char*)from;
    while (size-- > 0) *byte++ = *source++;
    return to;
}

size_t readInput(char* bytes, size_t room) {
    size_t size = 0;
    unsigned long count = 0;
    while (size < room &&
           ReadFile(GetStdHandle(kInput), bytes + size, (unsigned long)(room - size), &count, 0) &&
           count > 0)
        size += count;
    return size;
}

int writeOutput(const char* bytes, size_t size) {
    unsigned long count = 0;
    return WriteFile(GetStdHandle(kOutput), bytes, (unsigned long)size, &count, 0) && count == size
               ? 0
               : 1;
}

void start(void) {
    ExitProcess((unsigned int)runCalendar());
}
