"""Entries, their times and dates, and rules."""

from __future__ import annotations

import copy
import datetime as dt
import itertools
import pathlib
import pickle
import random
import zoneinfo
from concurrent.futures import ThreadPoolExecutor
from typing import Any

import pytest

from qelcalendar import Calendar, CalendarError, CalendarValueError, Kind, Result, entries, rule

BERLIN = zoneinfo.ZoneInfo("Europe/Berlin")
UTC = dt.timezone.utc
HOW: tuple[Any, Any] = "dates", "periods"


def calendar(*lines: str, version: str = "2.0") -> bytes:
    return "\r\n".join(["BEGIN:VCALENDAR", f"VERSION:{version}", *lines, "END:VCALENDAR", ""]).encode()


def event(*lines: str) -> list[str]:
    return ["BEGIN:VEVENT", *lines, "END:VEVENT"]


def test_describes_entries(phone: pathlib.Path) -> None:
    read = Calendar.read(phone)
    assert [entry.kind for entry in read] == [Kind.EVENT] * 5 + [Kind.TODO] * 2
    meeting, _, rent, _, flight, tax, _ = read.entries
    assert (meeting.title, meeting.place, meeting.zone) == ("Team meeting", "Café Zürich", "Europe/Berlin")
    assert meeting.about.endswith("figures for Überlingen, and coffee.")
    assert meeting.start == dt.datetime(2005, 6, 15, 9, 30, tzinfo=BERLIN) and meeting.uid.endswith("-1@phone")
    assert [each.values for each in meeting.properties if each.name == "CATEGORIES"] == [("MEETING", "WORK")]
    [alarm] = meeting.alarms
    assert alarm.time == dt.datetime(2005, 6, 15, 9, 15, tzinfo=BERLIN) and alarm.snooze == dt.timedelta(minutes=5)
    assert rent.all_day and rent.start == dt.date(2005, 6, 30) and not isinstance(rent.start, dt.datetime)
    assert flight.start == dt.datetime(2005, 10, 29, 22, tzinfo=UTC)
    assert (tax.start, tax.due) == (None, dt.datetime(2005, 9, 30, 12, tzinfo=BERLIN))
    streamed = list(entries(phone))
    same = "kind uid line title start end due alarms properties notes".split()
    for one, other in zip(read, streamed):
        assert [getattr(one, name) for name in same] == [getattr(other, name) for name in same]
    assert len(read) == len(streamed) and any(entry.notes for entry in read)
    assert Calendar.read(phone, only="todos").entries[0].title == tax.title
    assert [note.name for note in Calendar.read(b"nothing").notes] != []
    assert repr(read) == f"<Calendar of 7 entries, {len(read.notes)} notes>"
    for each in (read, meeting, meeting.rules[0]):
        assert copy.deepcopy(copy.copy(each)) is each
        with pytest.raises(TypeError, match="read them again"):
            pickle.dumps(each)


def test_keeps_moments_where_zones_differ() -> None:
    zones = []
    for name, offset in ("Europe/Berlin", "+0500"), ("Own/Zone", "+0130"):
        zones += ["BEGIN:VTIMEZONE", f"TZID:{name}", "BEGIN:STANDARD", "DTSTART:19700101T000000"]
        zones += [f"TZOFFSETFROM:{offset}", f"TZOFFSETTO:{offset}", "END:STANDARD", "END:VTIMEZONE"]
    starts = [f"DTSTART;TZID={name}:20050615T103000" for name in ("Europe/Berlin", "Own/Zone", "America/New_York")]
    data = calendar(*zones, *itertools.chain(*(event(start) for start in [*starts, "DTSTART:20050615T103000"])))
    berlin, own, york, local = [entry.start for entry in Calendar.read(data)]
    wall = dt.datetime(2005, 6, 15, 10, 30)
    assert berlin == wall.replace(tzinfo=dt.timezone(dt.timedelta(hours=5)))
    assert own == wall.replace(tzinfo=dt.timezone(dt.timedelta(minutes=90)))
    assert isinstance(own, dt.datetime) and own.tzname() == "Own/Zone"
    assert york == wall.replace(tzinfo=zoneinfo.ZoneInfo("America/New_York"))
    assert local == wall and isinstance(york, dt.datetime)
    # A series' bounds are moments on the file's own clock, in summer too.
    changes = ["BEGIN:VTIMEZONE", "TZID:Own/Summer"]
    for part, month, before, after in ("STANDARD", 10, "+0530", "+0430"), ("DAYLIGHT", 3, "+0430", "+0530"):
        changes += [f"BEGIN:{part}", f"DTSTART:1970{month:02}25T030000", f"RRULE:FREQ=YEARLY;BYMONTH={month};BYDAY=-1SU"]
        changes += [f"TZOFFSETFROM:{before}", f"TZOFFSETTO:{after}", f"END:{part}"]
    series = event("DTSTART;TZID=Own/Summer:20050115T100000", "RRULE:FREQ=DAILY")
    [summer] = Calendar.read(calendar(*changes, "END:VTIMEZONE", *series))
    moment, second = dt.datetime(2005, 7, 1, 4, 30, tzinfo=UTC), dt.timedelta(seconds=1)
    for dates in (summer.occurrences, summer.rules[0].dates):
        assert list(dates(moment, moment)) == [moment]
        assert not list(dates(moment + second, moment - second + dt.timedelta(days=1)))
        assert next(dates(dt.datetime.min.replace(tzinfo=BERLIN))) == summer.start
        assert next(dates(None, dt.datetime.max.replace(tzinfo=york.tzinfo))) == summer.start
    # The ends of time have the zone's offset.
    west = calendar(*event("DTSTART;TZID=America/New_York:99991231T235959"), *event("DTSTART;TZID=Asia/Tokyo:00010101T000000"))
    assert [getattr(entry.start, "tzinfo", None) for entry in Calendar.read(west)] == [
        zoneinfo.ZoneInfo("America/New_York"),
        zoneinfo.ZoneInfo("Asia/Tokyo"),
    ]
    # 2:30 comes twice in October, and never in March.
    twice = calendar(*event("DTSTART;TZID=Europe/Berlin:20051030T023000"), *event("DTSTART;TZID=Europe/Berlin:20050327T023000"))
    moments = [entry.start for entry in Calendar.read(twice)]
    assert [moment.astimezone(UTC).hour for moment in moments if isinstance(moment, dt.datetime)] == [0, 1]


def test_lists_occurrences_as_asked_for(phone: pathlib.Path) -> None:
    data = calendar(
        *event(
            "DTSTART;TZID=Europe/Berlin:20050615T103000",
            "DURATION:PT90M",
            "RRULE:FREQ=DAILY",
            "EXRULE:FREQ=WEEKLY;BYDAY=SU",
            "RDATE;VALUE=DATE:20050701",
            "EXDATE:20050616T083000Z",
        )
    )
    [daily] = Calendar.read(data)
    assert daily.duration == dt.timedelta(minutes=90) and daily.excluded and daily.dates
    first = list(itertools.islice(daily.occurrences(), 3))
    assert first == [dt.datetime(2005, 6, day, 10, 30, tzinfo=BERLIN) for day in (15, 17, 18)]
    everything = list(daily.occurrences())
    assert everything == sorted(set(everything)) and everything[-1].year == 2499
    since, through = dt.datetime(2030, 1, 1, tzinfo=UTC), dt.date(2031, 12, 31)
    middle = list(daily.occurrences(since, through))
    assert middle == [each for each in everything if 2030 <= each.year <= 2031] and len(middle) > 600
    assert [each.excludes for each in daily.rules] == [False, True]
    assert next(daily.rules[0].dates(since="20060101")) == dt.datetime(2006, 1, 1, 10, 30, tzinfo=BERLIN)
    # In any order, and from several threads.
    read = Calendar.read(phone)
    expected = [list(itertools.islice(entry.occurrences(), 100)) for entry in read]
    order = list(range(len(read))) * 4
    random.Random(1).shuffle(order)
    with ThreadPoolExecutor(4) as pool:
        found = list(pool.map(lambda i: list(itertools.islice(read.entries[i].occurrences(), 100)), order))
    assert found == [expected[i] for i in order]
    agenda = read.occurrences("2005-07-01", "2005-07-14")
    assert [(str(when)[:10], entry.title) for when, entry in agenda] == [
        ("2005-07-01", "Team meeting"),
        ("2005-07-01", "Club night"),
        ("2005-07-11", "Team meeting"),
        ("2005-07-13", "Team meeting"),
        ("2005-07-14", "Zoë's birthday"),
    ]
    # Of a stream, until the next entry.
    stream = entries(phone)
    meeting = next(stream)
    assert next(meeting.occurrences()) == expected[0][0]
    next(stream)
    with pytest.raises(CalendarError, match="until the next one") as gone:
        next(meeting.occurrences())
    assert gone.value.code == Result.WRONG_ORDER


def test_explains_rules() -> None:
    [weekly] = rule("W2 MO WE FR #10", start=dt.date(2005, 6, 15))
    assert str(weekly) == weekly.words == "every 2 weeks on Monday, Wednesday and Friday, 10 times"
    assert weekly.icalendar == ("FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR",)
    assert weekly.positional == ("WEEKLY;;10;2;;;;MO,WE,FR;;;;;;;",) and weekly.complete
    dates: Any = list(weekly)
    assert len(dates) == 10 and dates[0] == dt.date(2005, 6, 15)
    [endless] = rule("RRULE:FREQ=DAILY;BYSETPOS=1;BYDAY=MO,TU", start=dt.datetime(2005, 6, 6, 12, tzinfo=BERLIN))
    winter = dt.datetime(2030, 1, 7, 11, tzinfo=UTC)
    assert next(endless.dates(since=winter)) == winter
    [none] = rule("FREQ=YEARLY;BYWEEKNO=20;BYDAY=MO", start="2005-06-06")
    assert none.vcalendar == () and none.reasons["vcalendar"]
    # An end in UTC is a moment, whatever the start's clock shows.
    york, tokyo = zoneinfo.ZoneInfo("America/New_York"), zoneinfo.ZoneInfo("Asia/Tokyo")
    for zone, text, last in (
        (york, "FREQ=DAILY;UNTIL=20050617T103000Z", 16),
        (york, "D1 20050617T103000Z", 16),
        (york, "RRULE:FREQ=DAILY;UNTIL=20050617T143000Z", 17),
        (tokyo, "FREQ=DAILY;UNTIL=20050617T013000Z", 17),
        (tokyo, "FREQ=DAILY;UNTIL=20050617T012959Z", 16),
        (UTC, "FREQ=DAILY;UNTIL=20050617T103000Z", 17),
    ):
        [ending] = rule(text, start=dt.datetime(2005, 6, 15, 10, 30, tzinfo=zone))
        assert [when.day for when in ending] == list(range(15, last + 1)), (zone, text)
        assert ending.words.endswith("UTC")
    for hour, minute, count in ((2, 10, 2), (2, 50, 2), (3, 0, 1), (3, 10, 1)):  # 2:15, for the second time
        [ending] = rule("D1 20051030T011500Z", start=dt.datetime(2005, 10, 29, hour, minute, tzinfo=BERLIN))
        assert len(list(ending)) == count, (hour, minute)
    [dates], [periods] = (rule("W1 MO WE #4", start="20050606", count_means=how) for how in HOW)
    assert len(list(dates)) == 4 < len(list(periods))
    with pytest.raises(CalendarValueError, match="SOMETIMES") as caught:
        rule("FREQ=SOMETIMES", start="2005-06-06")
    assert caught.value.code == Result.INVALID_TEXT
    wrong: Any = (b"D1", "20050606"), ("D1", None), ("D1", dt.time(1))
    for invalid, start in wrong:
        with pytest.raises(TypeError, match="not "):
            rule(invalid, start=start)
    with pytest.raises(CalendarValueError, match="31"):
        rule("W1", start="2005-06-31")
