"""Recurrence rules."""

from __future__ import annotations

import ctypes
import datetime as dt
import functools
import re
import threading
from dataclasses import dataclass, field
from typing import Any, Iterator, Optional

from . import _library
from ._calls import Stop, apart
from ._errors import Unpicklable, checked, encoded
from ._input import CountMeans
from ._library import call, text
from ._notes import Note, note_of
from ._times import Fetch, Moment, When, collected, in_batches, time_of, wall, when_of

_FORMS = {
    "vcalendar": _library.FORM_VCALENDAR,
    "icalendar": _library.FORM_ICALENDAR,
    "positional": _library.FORM_POSITIONAL,
}


@dataclass(frozen=True, eq=False)
class Rule(Unpicklable):
    """A recurrence rule: its texts in three forms, its words and its dates.

    A form mostly has one text, several where it needs several, none where it cannot express the
    rule; `reasons` then says why, by the form's name. Iterating over a rule gives its dates.
    """

    words: str
    """ "every 2 weeks on Monday, Wednesday and Friday, 10 times" """
    icalendar: tuple[str, ...]
    """ "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR" """
    vcalendar: tuple[str, ...]
    """ "W2 MO WE FR #10" """
    positional: tuple[str, ...]
    """ "WEEKLY;;10;2;;;;MO,WE,FR;;;;;;;", QelUtility's own """
    reasons: dict[str, str]
    complete: bool
    """Whether all of the text was understood."""
    excludes: bool
    """Whether it takes dates out (EXRULE)."""
    yields_start: bool
    """Whether the rule by itself has an occurrence on the start."""
    notes: tuple[Note, ...]
    """How its text was understood."""
    _fetch: Fetch = field(repr=False)
    _zoned: bool = field(repr=False)

    def dates(self, since: Optional[Moment] = None, through: Optional[Moment] = None) -> Iterator[When]:
        """Its dates, ascending, those from `since` through `through`, calculated as they are asked
        for: a series without an end goes on to the year 2499. The start is always the first."""
        return in_batches(self._fetch, since, through, self._zoned)

    def __iter__(self) -> Iterator[When]:
        return self.dates()

    def __str__(self) -> str:
        return self.words


class _Handle:
    """Rules that were read from a text, as long as somebody has one of them."""

    def __init__(self, handle: Any) -> None:
        self.handle = handle
        self.lock = threading.Lock()

    def __del__(self) -> None:
        call("rules_free", self.handle)


def rules_of(handle: Any, excludes: bool, clock: int, fetches: Any) -> list[Rule]:
    """The rules of one text; `fetches` makes the Fetch of one by its number. `clock` is that of
    the start."""
    notes = tuple(note_of(call("rules_note", handle, i)) for i in range(call("rules_note_count", handle)))
    made = []
    for number in range(call("rules_count", handle)):
        texts = {
            name: tuple(
                text(call("rules_text", handle, number, form, i))
                for i in range(call("rules_text_count", handle, number, form))
            )
            for name, form in _FORMS.items()
        }
        reasons = {name: text(call("rules_reason", handle, number, form)) for name, form in _FORMS.items()}
        made.append(
            Rule(
                words=text(call("rules_words", handle, number)),
                reasons={name: reason for name, reason in reasons.items() if reason},
                complete=bool(call("rules_complete", handle)),
                excludes=excludes,
                yields_start=bool(call("rules_yields_start", handle, number)),
                notes=notes,
                _fetch=fetches(number),
                _zoned=clock == _library.ZONED,
                **texts,
            )
        )
    return made


def rule(value: str, *, start: Moment, count_means: Optional[CountMeans] = None) -> list[Rule]:
    """The rules of a text of any form, mostly one, for a series that begins at `start`.

    `count_means` says what the number after # counts in a vCalendar rule with several days in a
    period: "dates", the default, or "periods". Raises CalendarValueError for a text that is no rule.
    """
    first = time_of(start)
    zone = start.tzinfo if isinstance(start, dt.datetime) else None
    meant = None if count_means is None else encoded(count_means)

    def read(text: str) -> _Handle:
        address = ctypes.c_void_p()
        checked("rules_read_counting", encoded(text), _library.FORM_ANY, first, meant, address)
        return _Handle(address)

    described = owner = read(value)
    if zone is not None and first.clock == _library.ZONED:
        on_wall = _UTC_TIME.sub(functools.partial(_on_wall, zone), value)
        if on_wall != value:
            owner = read(on_wall)

    def fetches(number: int) -> Fetch:
        def fetch(since: Any, through: Any, most: int) -> list[tuple[_library.Time, When]]:
            stop = Stop()

            def work() -> list[_library.Time]:
                with owner.lock:
                    return collected(stop, "rules_dates", owner.handle, number, since, through, most)

            return [(time, when_of(time, zone)) for time in apart(stop, work)]

        return fetch

    return rules_of(described.handle, False, first.clock, fetches)


# The library compares the end of a rule with the clock on the wall: it does not know the start's zone.
_UTC_TIME = re.compile(r"(?<!\w)\d{4}-?\d\d-?\d\dT\d\d:?\d\d(?::?\d\d)?Z(?!\w)", re.ASCII | re.IGNORECASE)


def _comes_twice(local: dt.datetime) -> bool:
    return local.replace(fold=0).utcoffset() != local.replace(fold=1).utcoffset()


def _on_wall(zone: dt.tzinfo, match: re.Match[str]) -> str:
    """A time of UTC as what the zone's clock shows, if it is one."""
    text, time = match[0], _library.Time()
    if call("time_read", encoded(text), time) != _library.Result.OK:
        return text
    try:
        local = wall(time).replace(tzinfo=dt.timezone.utc).astimezone(zone)
        if local.fold:  # dates are in the first pass of an hour that comes twice: all of it is earlier
            local, minute = local.replace(second=59), dt.timedelta(minutes=1)
            while _comes_twice(local + minute):
                local += minute
    except OverflowError:
        return text
    return f"{local:%Y%m%dT%H%M%S}".rjust(15, "0")
