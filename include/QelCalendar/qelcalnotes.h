/** @file
 * The codes of the calendar library's notes; made by `./dev pages` from the library's catalogue. A
 * number is never used again. C99.
 */
#ifndef QELCALENDAR_QELCALNOTES_H
#define QELCALENDAR_QELCALNOTES_H

/** What a note is about; docs/notes.md explains each. */
typedef enum qelcal_note_code {
    QELCAL_NOTE_NONE = 0 /**< no note */
} qelcal_note_code;

#endif
