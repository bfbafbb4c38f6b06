"""The entries of a calendar as objects."""

from __future__ import annotations

import ctypes
import datetime as dt
import threading
from dataclasses import dataclass, field
from typing import Any, Callable, Generator, Iterator, Mapping, Optional

from . import _library
from ._calls import Stop, apart
from ._errors import Unpicklable, checked, failure
from ._input import CountMeans, Input, Kind as Kind, Only, Source, Zone, choose, chosen
from ._library import Result, Time, call, text
from ._notes import Note, note_of
from ._rules import Rule, rules_of
from ._times import EntryClock, Fetch, Moment, When, collected, in_batches, wall


_KINDS = {1: Kind.EVENT, 2: Kind.TODO, 3: Kind.NOTE}

_TIMES = {
    "start": 1,
    "end": 2,
    "due": 3,
    "completed": 4,
    "created": 5,
    "modified": 6,
    "stamp": 7,
    "recurrence_id": 8,
}


@dataclass(frozen=True)
class Property:
    """A property that is neither a time, a rule, a UID nor an alarm."""

    name: str
    """In capitals and in iCalendar's words."""
    values: tuple[str, ...]
    """As plain text: one, or the items of a list (CATEGORIES)."""
    parameters: Mapping[str, str]


@dataclass(frozen=True)
class Alarm:
    """An alarm: it rings at `time`, or `offset` after the start or the end."""

    action: str
    """ "AUDIO", "DISPLAY", "EMAIL", "PROCEDURE" or the file's own word."""
    time: Optional[When]
    offset: Optional[dt.timedelta]
    """Negative for an alarm before; None where it has a time."""
    from_end: bool
    """Whether the offset counts from the end, of a to-do from the due time."""
    snooze: Optional[dt.timedelta]
    """Between repetitions."""
    repeat: int
    """Further times."""
    text: str


@dataclass(frozen=True, eq=False)
class Entry(Unpicklable):
    """An event, a to-do or a note. Absent texts are empty, absent times None.

    Its dates and those of its rules are calculated as they are asked for, from the calendar that it
    belongs to.
    """

    kind: Kind
    uid: str
    line: int
    """Of the input, where it begins."""
    title: str
    place: str
    about: str
    all_day: bool
    """By its times or by a phone's flag."""
    zone: Optional[str]
    """The name of the zone of its zoned times."""
    start: Optional[When]
    end: Optional[When]
    """Of an event; for one of whole days the day after the last."""
    due: Optional[When]
    completed: Optional[When]
    created: Optional[When]
    modified: Optional[When]
    stamp: Optional[When]
    recurrence_id: Optional[When]
    """The occurrence that this entry replaces."""
    duration: Optional[dt.timedelta]
    """Where the file gives one."""
    rules: tuple[Rule, ...]
    dates: tuple[When, ...]
    """Single dates that are added (RDATE)."""
    excluded: tuple[When, ...]
    """Single dates that are taken out (EXDATE)."""
    alarms: tuple[Alarm, ...]
    properties: tuple[Property, ...]
    """All others, SUMMARY and DESCRIPTION among them, in the order of the file."""
    notes: tuple[Note, ...]
    """What was changed or invalid about it; the first 1000."""
    _fetch: Fetch = field(repr=False)

    def text(self, name: str) -> Optional[str]:
        """The first value of the first property of that name, in capitals: "CLASS"."""
        return next((each.values[0] for each in self.properties if each.name == name), None)

    def occurrences(self, since: Optional[Moment] = None, through: Optional[Moment] = None) -> Iterator[When]:
        """When it takes place, ascending, from `since` through `through` (by default from the first on
        to the year 2499): the dates of its rules and lists without those that are taken out; of an
        entry that does not recur, its start. A date as a bound means the whole day.
        """
        return in_batches(self._fetch, since, through)


WithEntry = Callable[[Callable[[Stop, Any], Any]], Any]
"""Calls a function with the library's entry, which lasts as long as the call, by `apart`."""


def _entry_of(handle: Any, with_entry: WithEntry) -> Entry:
    zone = call("entry_zone", handle)
    clock = EntryClock(text(zone))
    times = {name: _time(handle, clock, which) for name, which in _TIMES.items()}
    properties = tuple(_properties(handle))
    first = {each.name: each.values[0] for each in reversed(properties)}
    seconds = ctypes.c_int64()
    has_duration = call("entry_duration", handle, seconds) == Result.OK

    def fetch(since: Any, through: Any, most: int) -> Any:
        def use(stop: Stop, entry: Any) -> Any:
            found = collected(stop, "entry_occurrences", entry, since, through, most)
            return [(time, clock.when(entry, time)) for time in found]

        return with_entry(use)

    return Entry(
        kind=_KINDS[call("entry_kind_of", handle)],
        uid=text(call("entry_uid", handle)),
        line=call("entry_line", handle),
        title=first.get("SUMMARY", ""),
        place=first.get("LOCATION", ""),
        about=first.get("DESCRIPTION", ""),
        all_day=bool(call("entry_all_day", handle)),
        zone=None if zone is None else text(zone),
        duration=dt.timedelta(seconds=seconds.value) if has_duration else None,
        rules=tuple(_rules(handle, with_entry, clock)),
        dates=_dates(handle, clock, 0),
        excluded=_dates(handle, clock, 1),
        alarms=tuple(_alarms(handle, clock)),
        properties=properties,
        notes=tuple(note_of(call("entry_note", handle, i)) for i in range(call("entry_note_count", handle))),
        _fetch=fetch,
        **times,
    )


def _time(handle: Any, clock: EntryClock, which: int) -> Optional[When]:
    time = Time()
    return clock.when(handle, time) if call("entry_time", handle, which, time) == Result.OK else None


def _dates(handle: Any, clock: EntryClock, excluded: int) -> tuple[When, ...]:
    found = []
    for index in range(call("entry_date_count", handle, excluded)):
        time = Time()
        checked("entry_date", handle, excluded, index, time)
        found.append(clock.when(handle, time))
    return tuple(found)


def _properties(handle: Any) -> Iterator[Property]:
    for i in range(call("entry_property_count", handle)):
        yield Property(
            text(call("entry_property_name", handle, i)),
            tuple(text(call("entry_value", handle, i, j)) for j in range(call("entry_value_count", handle, i))),
            {
                text(call("entry_parameter_name", handle, i, j)): text(
                    call("entry_parameter_value", handle, i, j)
                )
                for j in range(call("entry_parameter_count", handle, i))
            },
        )


def _alarms(handle: Any, clock: EntryClock) -> Iterator[Alarm]:
    for index in range(call("entry_alarm_count", handle)):
        alarm = _library.Alarm()
        checked("entry_alarm", handle, index, alarm)
        yield Alarm(
            action=text(alarm.action),
            time=clock.when(handle, alarm.time) if alarm.has_time else None,
            offset=None if alarm.has_time else dt.timedelta(seconds=alarm.offset),
            from_end=bool(alarm.from_end),
            snooze=dt.timedelta(seconds=alarm.snooze) if alarm.snooze else None,
            repeat=alarm.repeat,
            text=text(alarm.text),
        )


def _rules(handle: Any, with_entry: WithEntry, clock: EntryClock) -> Iterator[Rule]:
    first = Time()
    call("entry_time", handle, _TIMES["start"], first)
    for index in range(call("entry_rule_count", handle)):
        rules = call("entry_rules", handle, index)
        if rules is None:
            continue

        def fetches(number: int, index: int = index) -> Fetch:
            def fetch(since: Any, through: Any, most: int) -> Any:
                def use(stop: Stop, entry: Any) -> Any:
                    owner = call("entry_rules", entry, index)
                    found = collected(stop, "rules_dates", owner, number, since, through, most)
                    return [(time, clock.when(entry, time)) for time in found]

                return with_entry(use)

            return fetch

        yield from rules_of(rules, bool(call("entry_rule_excludes", handle, index)), first.clock, fetches)


class _Reading:
    """One pass through a file; `handle` is the entry number `index`, -1 before the first."""

    def __init__(self, source: Input, choices: dict[int, bytes], one_pass: bool) -> None:
        self.index = -1
        self.lock = threading.Lock()
        self.handle = ctypes.c_void_p()
        self._reader = call("reader_new")
        if not self._reader:
            raise MemoryError
        choose("reader", self._reader, choices)
        if not one_pass:
            for piece in source.pieces(True):
                checked("reader_scan", self._reader, piece, len(piece))
        self._pieces = source.pieces(False)

    def __del__(self) -> None:
        call("reader_free", getattr(self, "_reader", None))

    def advance(self) -> bool:
        """Takes the next entry, if there is one."""
        index, self.index = self.index, -1  # of none, should a signal handler raise
        with self.lock:
            found = self._next()
        self.index = index + 1  # at the end too, where the last entry is gone
        return found

    def _next(self) -> bool:
        while True:
            result = call("reader_next", self._reader, self.handle)
            if result in (Result.OK, Result.END):
                return bool(result == Result.OK)
            if result != Result.NEED_INPUT:
                raise failure(result)
            piece = next(self._pieces, None)
            if piece is None:
                checked("reader_end", self._reader)
            else:
                checked("reader_write", self._reader, piece, len(piece))

    def notes(self) -> list[Note]:
        """Those that belong to no entry, so far."""
        return [
            note_of(call("reader_note", self._reader, i))
            for i in range(call("reader_note_count", self._reader))
        ]


class Calendar(Unpicklable):
    """A calendar in memory: its entries and what there is to say about them.

    `Calendar.read` makes it. Iterating over it gives its entries. Several threads may use one.
    """

    entries: tuple[Entry, ...]
    notes: tuple[Note, ...]
    """Those that belong to no entry; the first 10000."""

    def __init__(self, data: bytes, choices: dict[int, bytes]) -> None:
        self._data = data
        self._choices = choices
        self._lock = threading.Lock()
        reading = self._begun()
        entries = []
        while reading.advance():
            entries.append(_entry_of(reading.handle, self._entry(reading.index)))
        self.entries = tuple(entries)
        self.notes = tuple(reading.notes())
        self._reading: Optional[_Reading] = reading

    @classmethod
    def read(
        cls,
        source: Source,
        *,
        zone: Optional[Zone] = None,
        charset: Optional[str] = None,
        count_means: Optional[CountMeans] = None,
        only: Optional[Only] = None,
    ) -> Calendar:
        """Reads a calendar of either format. The choices are those of `convert`."""
        return cls(Input(source, None).whole(), chosen(zone, charset, count_means, False, only))

    def __iter__(self) -> Iterator[Entry]:
        return iter(self.entries)

    def __repr__(self) -> str:
        return f"<Calendar of {len(self.entries)} entries, {len(self.notes)} notes>"

    def __len__(self) -> int:
        return len(self.entries)

    def occurrences(self, since: Moment, through: Moment) -> list[tuple[When, Entry]]:
        """What takes place from `since` through `through`, by the clocks on the wall, in one pass."""
        found = [
            (when, entry) for entry in self.entries for when in entry.occurrences(since, through)
        ]
        return sorted(found, key=lambda each: _wall(each[0]))

    def _begun(self) -> _Reading:
        return _Reading(Input(self._data, None), self._choices, False)

    def _entry(self, index: int) -> WithEntry:
        # The library's entry lasts until its reader goes on. Going forward needs no second pass.
        def with_entry(use: Callable[[Stop, Any], Any]) -> Any:
            stop = Stop()

            def work() -> Any:
                with self._lock:
                    reading, self._reading = self._reading, None  # a call that fails drops it
                    if reading is None or reading.index > index:
                        reading = self._begun()
                    while reading.index < index:
                        if stop.asked:
                            raise failure(Result.STOPPED)
                        reading.advance()
                    found = use(stop, reading.handle)
                    self._reading = reading
                    return found

            return apart(stop, work)

        return with_entry


def _wall(when: When) -> dt.datetime:
    if isinstance(when, dt.datetime):
        return when.replace(tzinfo=None)
    return dt.datetime(when.year, when.month, when.day)


def entries(
    source: Source,
    *,
    zone: Optional[Zone] = None,
    charset: Optional[str] = None,
    count_means: Optional[CountMeans] = None,
    only: Optional[Only] = None,
    one_pass: bool = False,
) -> Generator[Entry, None, list[Note]]:
    """The entries of a calendar, one after another, in bounded memory. The choices are those of
    `convert`. The generator returns the notes that belong to no entry.

    An entry's dates are there until the next entry is taken; those of a `Calendar` stay.
    """
    reading = _Reading(Input(source, None), chosen(zone, charset, count_means, False, only), one_pass)

    def of(index: int) -> WithEntry:
        def with_entry(use: Callable[[Stop, Any], Any]) -> Any:
            stop = Stop()

            def checked_index() -> None:
                if reading.index != index:
                    raise failure(
                        Result.WRONG_ORDER,
                        "an entry's dates are there until the next one is taken; Calendar.read keeps them",
                    )

            def work() -> Any:
                with reading.lock:
                    checked_index()
                    return use(stop, reading.handle)

            checked_index()
            return apart(stop, work)

        return with_entry

    while reading.advance():
        yield _entry_of(reading.handle, of(reading.index))
    return reading.notes()
