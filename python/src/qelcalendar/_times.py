"""Times of the library as those of the standard library."""

from __future__ import annotations

import ctypes
import datetime as dt
import functools
import zoneinfo
from typing import Any, Callable, Iterator, Optional, Union

from ._calls import Stop
from ._errors import checked, encoded, failure
from ._library import FLOATING, UTC, ZONED, Result, Time, TimeFn, call

When = Union[dt.date, dt.datetime]
"""A date, or a date-time: naive for local time of no zone, else in UTC or in a zone."""

Moment = Union[dt.date, dt.datetime, str]
"""The same, or a text: "2005-06-15", "20050615T103000", "2005-06-15T08:30:00Z"."""

ToWhen = Callable[[Time], When]


def _is_utc(zone: dt.tzinfo) -> bool:
    return zone is dt.timezone.utc or str(zone) in ("UTC", "Etc/UTC")


def time_of(value: Moment) -> Time:
    """A time for the library; one in a zone keeps its wall clock."""
    if isinstance(value, str):
        time = Time()
        checked("time_read", encoded(value), time)
        return time
    if not isinstance(value, dt.date):
        raise TypeError(f"a time is a date, a datetime or a text, not {value!r}")
    if not isinstance(value, dt.datetime):
        return Time(value.year, value.month, value.day, 0, 0, 0, 1, FLOATING)
    clock = FLOATING if value.tzinfo is None else UTC if _is_utc(value.tzinfo) else ZONED
    return Time(
        value.year, value.month, value.day, value.hour, value.minute, value.second, 0, clock
    )


def moment_of(value: Optional[Moment]) -> Optional[Time]:
    """A bound of a range: any moment of a zone becomes one of UTC."""
    if value is None:
        return None
    if isinstance(value, dt.datetime) and value.tzinfo is not None:
        try:
            value = value.astimezone(dt.timezone.utc)
        except OverflowError:  # of datetime.min or max
            end = dt.datetime.min if value.year < 5000 else dt.datetime.max
            value = end.replace(tzinfo=dt.timezone.utc)
    return time_of(value)


def _widened(bound: Optional[Time], days: int) -> tuple[Optional[Time], Optional[dt.datetime]]:
    """A bound of UTC as one of wall clocks that is some days wider, and the moment that it is."""
    if bound is None or bound.is_date or bound.clock != UTC:
        return bound, None
    wide = Time()
    moment = wall(bound).replace(tzinfo=dt.timezone.utc)
    if call("time_add", bound, days * 86400, wide) != Result.OK:
        return None, moment
    wide.clock = ZONED
    return wide, moment


def wall(time: Time) -> dt.datetime:
    """Its wall clock."""
    return dt.datetime(time.year, time.month, time.day, time.hour, time.minute, time.second)


def when_of(time: Time, zone: Optional[dt.tzinfo]) -> When:
    """A time whose zone is known to the caller."""
    if time.is_date:
        return dt.date(time.year, time.month, time.day)
    if time.clock == UTC:
        return wall(time).replace(tzinfo=dt.timezone.utc)
    return wall(time).replace(tzinfo=zone if time.clock == ZONED else None)


@functools.lru_cache(maxsize=256)
def _zone(name: str) -> Optional[dt.tzinfo]:
    """The standard library's zone of that name, if it has one."""
    try:
        return zoneinfo.ZoneInfo(name)
    except (zoneinfo.ZoneInfoNotFoundError, ValueError, OSError):
        return None


class EntryClock:
    """The zone of an entry, whose times it makes date-times of."""

    def __init__(self, name: str) -> None:
        self._name = name
        self._zone = _zone(name)

    def when(self, entry: Any, time: Time) -> When:
        """A time of the entry. Where its file describes the zone otherwise than the standard library
        does, or that does not know it, the zone is a fixed offset with its name."""
        if time.is_date or time.clock != ZONED:
            return when_of(time, None)
        local, utc = wall(time), Time()
        known = local.replace(tzinfo=self._zone)
        if call("entry_to_utc", entry, time, utc) != Result.OK:
            return known
        offset = local - wall(utc)
        if min(wall(utc) - dt.datetime.min, dt.datetime.max - wall(utc)) < dt.timedelta(days=1):
            return known  # UTC ends in these years too, so the offset is not the zone's
        if self._zone is not None and known.utcoffset() == offset:
            return known
        if abs(offset) >= dt.timedelta(days=1):
            return wall(utc).replace(tzinfo=dt.timezone.utc)
        fixed = dt.timezone(offset, self._name) if self._name else dt.timezone(offset)
        return local.replace(tzinfo=fixed)


def collected(stop: Stop, name: str, *arguments: Any) -> list[Time]:
    """All times that qelcal_NAME hands to its callback, in a call of `apart`."""
    times: list[bytes] = []
    size = ctypes.sizeof(Time)

    def take(_context: Any, address: int) -> int:
        try:
            times.append(ctypes.string_at(address, size))
            return stop.asked
        except BaseException as problem:  # it may not pass through the library
            return stop.failed(problem)

    result = call(name, *arguments, TimeFn(take), None)
    if result != Result.OK:
        raise stop.problem or failure(result)
    return [Time.from_buffer_copy(each) for each in times]


_FIRST_BATCH = 32
_LARGEST_BATCH = 1 << 16


Fetch = Callable[[Optional[Time], Optional[Time], int], "list[tuple[Time, When]]"]
"""At most so many times from one moment through another."""


def in_batches(
    fetch: Fetch, since: Optional[Moment], through: Optional[Moment], on_walls: bool = False
) -> Iterator[When]:
    """Times as they are asked for, in batches that grow. `on_walls`: they are those of a zone, and
    `fetch` compares nothing but clocks on the wall."""
    first, last = moment_of(since), moment_of(through)
    low: Optional[dt.datetime] = None
    high: Optional[dt.datetime] = None
    if on_walls:
        first, low = _widened(first, -1)
        last, high = _widened(last, 1)
    most = _FIRST_BATCH
    while True:
        batch = fetch(first, last, most)
        for _, when in batch:
            if isinstance(when, dt.datetime) and when.tzinfo is not None:
                if low is not None and when < low:
                    continue
                if high is not None and when > high:
                    continue
            yield when
        if len(batch) < most:
            return
        after = batch[-1][0]
        first = Time()
        checked("time_add", after, 86400 if after.is_date else 1, ctypes.byref(first))
        most = min(4 * most, _LARGEST_BATCH)
