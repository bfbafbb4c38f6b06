"""Calendars of old phones (vCalendar 1.0) and of today (iCalendar): read, converted, explained.

`convert` converts a calendar; `Calendar.read` and `entries` read its entries; `rule` explains a
recurrence rule. The package keeps no settings; several threads may use it at the same time.
"""

from ._convert import Converted, Converter, Summary, convert, convert_pieces, convert_to
from ._entries import Alarm, Calendar, Entry, Kind, Property, entries
from ._errors import CalendarError, CalendarValueError
from ._library import Result, call as _call, text as _text
from ._notes import Fate, KindOfNote, Note, NoteKind, Severity, note_kinds
from ._rules import Rule, rule

__version__ = _text(_call("version"))

__all__ = [
    "Alarm",
    "Calendar",
    "CalendarError",
    "CalendarValueError",
    "Converted",
    "Converter",
    "Entry",
    "Fate",
    "Kind",
    "KindOfNote",
    "Note",
    "NoteKind",
    "Property",
    "Result",
    "Rule",
    "Severity",
    "Summary",
    "convert",
    "convert_pieces",
    "convert_to",
    "entries",
    "note_kinds",
    "rule",
]
