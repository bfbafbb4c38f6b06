/// @file
/// The whole interface of the calendar library in C++. Programs in C include qelcalendar.h.
#ifndef QELCALENDAR_ALL_H
#define QELCALENDAR_ALL_H

#include "QelCalendar/Convert.h"
#include "QelCalendar/Entries.h"
#include "QelCalendar/Error.h"
#include "QelCalendar/Notes.h"
#include "QelCalendar/Report.h"
#include "QelCalendar/Rules.h"
#include "QelCalendar/Texts.h"
#include "QelCalendar/Times.h"
#include "QelCalendar/Zones.h"

#endif
