#!/usr/bin/env python3
"""Python on the package qelcalendar: converts the calendar that it reads, lists its entries with their
next dates and explains a rule. calendar.c and calendar.cpp print the same.

    calendar.py <phone.vcs
"""
import datetime
import itertools
import sys

import qelcalendar

PIECE = 7
MOST_DATES = 3


def shown(when):
    if not isinstance(when, datetime.datetime):
        return f"{when:%Y%m%d}"
    return f"{when:%Y%m%dT%H%M%S}" + ("Z" if when.tzinfo is datetime.timezone.utc else "")


calendar = sys.stdin.buffer.read()
pieces = (calendar[at : at + PIECE] for at in range(0, len(calendar), PIECE))
qelcalendar.convert_to(pieces, sys.stdout.buffer, "ics", name="phone.vcs", one_pass=True)
sys.stdout.flush()
for entry in qelcalendar.entries(calendar):
    dates = itertools.islice(entry.occurrences(since="20050701"), MOST_DATES)
    print("".join([f"{entry.title}:", *(f" {shown(each)}" for each in dates)]))
[rule] = qelcalendar.rule("W2 MO WE FR #10", start="20050615")
print(f"{rule.icalendar[0]}: {rule.words}")
