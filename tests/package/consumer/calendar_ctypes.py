#!/usr/bin/env python3
"""Python on QelCalendar alone, by ctypes: converts the calendar that it reads, lists its entries with
their next dates and explains a rule. calendar.c and calendar.cpp print the same.

    calendar_ctypes.py LIBRARY <phone.vcs
"""
import ctypes
import sys
from ctypes import CFUNCTYPE, POINTER, byref, c_char_p, c_int, c_size_t, c_void_p

OK, END, NEED_INPUT = 0, 1, 2
ICALENDAR = 1
FORM_ANY, FORM_ICALENDAR = 0, 2
PIECE = 7


class Time(ctypes.Structure):
    _fields_ = [(name, c_int) for name in ("year", "month", "day", "hour", "minute", "second", "is_date", "clock")]


WriteFn = CFUNCTYPE(c_int, c_void_p, POINTER(ctypes.c_char), c_size_t)
TimeFn = CFUNCTYPE(c_int, c_void_p, POINTER(Time))

library = ctypes.CDLL(sys.argv[1])
output = sys.stdout.buffer


def function(name, result, *arguments):
    found = getattr(library, "qelcal_" + name)
    found.restype, found.argtypes = result, arguments
    return found


last_error = function("last_error", c_char_p)


def checked(name, *arguments):
    call = function(name, c_int, *arguments)

    def checking(*values):
        result = call(*values)
        if result != OK:
            raise SystemExit(last_error().decode())

    return checking


@WriteFn
def say_bytes(_, data, size):
    output.write(data[:size])
    return 0


def pieces(data):
    return (data[at:at + PIECE] for at in range(0, len(data), PIECE))


def convert(data):
    converter = function("converter_new", c_void_p, c_int, WriteFn, c_void_p)(ICALENDAR, say_bytes, None)
    checked("converter_begin_file", c_void_p, c_char_p)(converter, b"phone.vcs")
    write = checked("converter_write", c_void_p, c_char_p, c_size_t)
    for piece in pieces(data):
        write(converter, piece, len(piece))
    checked("converter_end_file", c_void_p)(converter)
    checked("converter_finish", c_void_p)(converter)
    function("converter_free", None, c_void_p)(converter)


@TimeFn
def say_time(_, time):
    text = ctypes.create_string_buffer(32)
    time_write(time, text)
    output.write(b" " + text.value)
    return 0


time_read = checked("time_read", c_char_p, POINTER(Time))
time_write = checked("time_write", POINTER(Time), c_char_p)


def list_entries(data):
    entry_text = function("entry_text", c_char_p, c_void_p, c_char_p)
    occurrences = checked("entry_occurrences", c_void_p, POINTER(Time), POINTER(Time), c_size_t, TimeFn, c_void_p)
    reader = function("reader_new", c_void_p)()
    next_entry = function("reader_next", c_int, c_void_p, POINTER(c_void_p))
    write = checked("reader_write", c_void_p, c_char_p, c_size_t)
    entry, since, rest = c_void_p(), Time(), pieces(data)
    time_read(b"20050701", byref(since))
    while (result := next_entry(reader, byref(entry))) != END:
        if result == NEED_INPUT:
            piece = next(rest, None)
            if piece is None:
                checked("reader_end", c_void_p)(reader)
            else:
                write(reader, piece, len(piece))
        elif result == OK:
            output.write((entry_text(entry, b"SUMMARY") or b"") + b":")
            occurrences(entry, byref(since), None, 3, say_time, None)
            output.write(b"\n")
        else:
            raise SystemExit(last_error().decode())
    function("reader_free", None, c_void_p)(reader)


def explain(text):
    start, rules = Time(), c_void_p()
    time_read(b"20050615", byref(start))
    checked("rules_read", c_char_p, c_int, POINTER(Time), POINTER(c_void_p))(text, FORM_ANY, byref(start), byref(rules))
    rule_text = function("rules_text", c_char_p, c_void_p, c_size_t, c_int, c_size_t)
    words = function("rules_words", c_char_p, c_void_p, c_size_t)
    output.write(rule_text(rules, 0, FORM_ICALENDAR, 0) + b": " + words(rules, 0) + b"\n")
    function("rules_free", None, c_void_p)(rules)


calendar = sys.stdin.buffer.read()
convert(calendar)
list_entries(calendar)
explain(b"W2 MO WE FR #10")
