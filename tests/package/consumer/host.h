/* What calendar.c needs of a system: its input, its output and an end. */
#ifndef CONSUMER_HOST_H
#define CONSUMER_HOST_H

#include <stddef.h>

/* Reads the standard input to its end into `bytes`, at most `room` of it; returns how much. */
size_t readInput(char* bytes, size_t room);
/* Writes to the standard output; returns 0 when that worked. */
int writeOutput(const char* bytes, size_t size);
/* The program: 0 for success. */
int runCalendar(void);

#endif
