// What callers choose about the reading of files, for the reader and the converter alike.
#ifndef QEL_CALENDAR_API_CHOOSING_H
#define QEL_CALENDAR_API_CHOOSING_H

#include "calendar/base/Choices.h"

namespace qel::calendar::api {

// Sets `choice`, a qelcal_choice. A value that it cannot have fails and changes nothing.
int choose(Choices& choices, int choice, const char* value);

}  // namespace qel::calendar::api

#endif
