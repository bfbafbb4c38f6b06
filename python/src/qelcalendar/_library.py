"""The C interface (QelCalendar/qelcalendar.h), as ctypes sees it. Every call lets go of the GIL."""

from __future__ import annotations

import ctypes
import enum
import os
import sys
from ctypes import CFUNCTYPE, POINTER, c_char_p, c_int, c_int64, c_size_t, c_uint64, c_void_p
from typing import Any, Iterator


class Result(enum.IntEnum):
    """What a call of the library came to. The numbers are stable."""

    OK = 0
    END = 1
    NEED_INPUT = 2
    INVALID_ARGUMENT = 3
    OUT_OF_MEMORY = 4
    STOPPED = 5
    WRONG_ORDER = 6
    INVALID_TEXT = 7
    ABSENT = 8
    INEXPRESSIBLE = 9
    UNKNOWN_NAME = 10
    INTERNAL = 11


FLOATING, UTC, ZONED = range(3)
FORM_ANY, FORM_VCALENDAR, FORM_ICALENDAR, FORM_POSITIONAL = range(4)
CHOOSE_ZONE, CHOOSE_CHARSET, CHOOSE_COUNT_MEANS, CHOOSE_DISTINCT_UIDS, CHOOSE_ONLY = range(1, 6)
OTHER, ICALENDAR, VCALENDAR = range(3)


class Time(ctypes.Structure):
    """qelcal_time."""

    _fields_ = [
        (field, c_int)
        for field in ("year", "month", "day", "hour", "minute", "second", "is_date", "clock")
    ]


class NoteKind(ctypes.Structure):
    """qelcal_note_kind."""

    _fields_ = [(field, c_int) for field in ("code", "severity", "fate")] + [
        (field, c_char_p) for field in ("name", "sentence", "meaning", "advice")
    ]


class Alarm(ctypes.Structure):
    """qelcal_alarm."""

    _fields_ = [
        ("action", c_char_p),
        ("has_time", c_int),
        ("time", Time),
        ("offset", c_int64),
        ("from_end", c_int),
        ("snooze", c_int64),
        ("repeat", c_int),
        ("text", c_char_p),
    ]


class Counts(ctypes.Structure):
    """qelcal_counts."""

    _fields_ = [
        (field, c_uint64)
        for field in ("calendars", "entries", "alarms", "changed", "warnings", "errors", "lost")
    ]


NoteFn = CFUNCTYPE(c_int, c_void_p, c_void_p)
TimeFn = CFUNCTYPE(c_int, c_void_p, c_void_p)
WriteFn = CFUNCTYPE(c_int, c_void_p, c_void_p, c_size_t)

_time = POINTER(Time)
_handle = c_void_p

# Result and arguments of each function that is used here, without "qelcal_". tests/test_interface.py
# compares them with the header.
FUNCTIONS: dict[str, tuple[Any, ...]] = {
    "version": (c_char_p,),
    "result_text": (c_char_p, c_int),
    "last_error": (c_char_p,),
    "note_code_of": (c_int, _handle),
    "note_name": (c_char_p, _handle),
    "note_severity": (c_int, _handle),
    "note_fate": (c_int, _handle),
    "note_file": (c_char_p, _handle),
    "note_line": (c_size_t, _handle),
    "note_text": (c_char_p, _handle),
    "note_value_count": (c_size_t, _handle),
    "note_value": (c_char_p, _handle, c_size_t),
    "note_kind_count": (c_size_t,),
    "note_kind_at": (c_int, c_size_t, POINTER(NoteKind)),
    "time_read": (c_int, c_char_p, _time),
    "time_add": (c_int, _time, c_int64, _time),
    "rules_read_counting": (c_int, c_char_p, c_int, _time, c_char_p, POINTER(_handle)),
    "rules_free": (None, _handle),
    "rules_count": (c_size_t, _handle),
    "rules_complete": (c_int, _handle),
    "rules_note_count": (c_size_t, _handle),
    "rules_note": (_handle, _handle, c_size_t),
    "rules_text_count": (c_size_t, _handle, c_size_t, c_int),
    "rules_text": (c_char_p, _handle, c_size_t, c_int, c_size_t),
    "rules_reason": (c_char_p, _handle, c_size_t, c_int),
    "rules_words": (c_char_p, _handle, c_size_t),
    "rules_yields_start": (c_int, _handle, c_size_t),
    "rules_dates": (c_int, _handle, c_size_t, _time, _time, c_size_t, TimeFn, c_void_p),
    "entry_kind_of": (c_int, _handle),
    "entry_line": (c_size_t, _handle),
    "entry_uid": (c_char_p, _handle),
    "entry_property_count": (c_size_t, _handle),
    "entry_property_name": (c_char_p, _handle, c_size_t),
    "entry_value_count": (c_size_t, _handle, c_size_t),
    "entry_value": (c_char_p, _handle, c_size_t, c_size_t),
    "entry_parameter_count": (c_size_t, _handle, c_size_t),
    "entry_parameter_name": (c_char_p, _handle, c_size_t, c_size_t),
    "entry_parameter_value": (c_char_p, _handle, c_size_t, c_size_t),
    "entry_time": (c_int, _handle, c_int, _time),
    "entry_duration": (c_int, _handle, POINTER(c_int64)),
    "entry_all_day": (c_int, _handle),
    "entry_zone": (c_char_p, _handle),
    "entry_to_utc": (c_int, _handle, _time, _time),
    "entry_rule_count": (c_size_t, _handle),
    "entry_rules": (_handle, _handle, c_size_t),
    "entry_rule_excludes": (c_int, _handle, c_size_t),
    "entry_date_count": (c_size_t, _handle, c_int),
    "entry_date": (c_int, _handle, c_int, c_size_t, _time),
    "entry_occurrences": (c_int, _handle, _time, _time, c_size_t, TimeFn, c_void_p),
    "entry_alarm_count": (c_size_t, _handle),
    "entry_alarm": (c_int, _handle, c_size_t, POINTER(Alarm)),
    "entry_note_count": (c_size_t, _handle),
    "entry_note": (_handle, _handle, c_size_t),
    "reader_new": (_handle,),
    "reader_free": (None, _handle),
    "reader_choose": (c_int, _handle, c_int, c_char_p),
    "reader_scan": (c_int, _handle, c_char_p, c_size_t),
    "reader_write": (c_int, _handle, c_char_p, c_size_t),
    "reader_end": (c_int, _handle),
    "reader_next": (c_int, _handle, POINTER(_handle)),
    "reader_note_count": (c_size_t, _handle),
    "reader_note": (_handle, _handle, c_size_t),
    "converter_new": (_handle, c_int, WriteFn, c_void_p),
    "converter_free": (None, _handle),
    "converter_on_note": (c_int, _handle, NoteFn, c_void_p),
    "converter_choose": (c_int, _handle, c_int, c_char_p),
    "converter_begin_file": (c_int, _handle, c_char_p),
    "converter_scan": (c_int, _handle, c_char_p, c_size_t),
    "converter_write": (c_int, _handle, c_char_p, c_size_t),
    "converter_end_file": (c_int, _handle),
    "converter_finish": (c_int, _handle),
    "converter_target": (c_int, _handle),
    "converter_counts": (c_int, _handle, POINTER(Counts)),
}


def _candidates() -> Iterator[str]:
    """A wheel has the library inside; a distribution has it where its libraries are."""
    folder = os.path.dirname(os.path.abspath(__file__))
    for name in ("libQelCalendar.so", "QelCalendar.dll"):
        path = os.path.join(folder, name)
        if os.path.exists(path):
            yield path
    yield "QelCalendar.dll" if sys.platform == "win32" else "libQelCalendar.so.1"


def _load() -> dict[str, Any]:
    library = ctypes.CDLL(next(_candidates()))
    functions = {}
    for name, (result, *arguments) in FUNCTIONS.items():
        function = functions[name] = getattr(library, "qelcal_" + name)
        function.restype, function.argtypes = result, arguments
    return functions


_functions = _load()


def call(name: str, *arguments: Any) -> Any:
    """What qelcal_NAME returns."""
    return _functions[name](*arguments)


def text(value: bytes | None) -> str:
    """A text of the library."""
    return "" if value is None else value.decode("utf-8", "replace")
