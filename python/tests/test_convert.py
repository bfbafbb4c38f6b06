"""Conversions: sources, choices, notes, failures, threads."""

from __future__ import annotations

import array
import concurrent.futures
import io
import mmap
import os
import pathlib
import pickle
import signal
import stat
import sys
import threading
import time
import zoneinfo
from typing import Any, Callable, Iterator

import pytest

import qelcalendar
from qelcalendar import CalendarError, CalendarValueError, Converter, Fate, Result, Severity, convert

Native = Callable[..., bytes]


class Pipe(io.RawIOBase):
    """A stream that cannot go back and gives a few bytes at a time."""

    def __init__(self, data: bytes) -> None:
        self.rest = data

    def readable(self) -> bool:
        return True

    def read(self, _size: int = -1) -> bytes:
        piece, self.rest = self.rest[:7], self.rest[7:]
        return piece


class Waiting(Pipe):
    """A stream that has nothing yet and does not wait."""

    def __init__(self) -> None:
        super().__init__(b"")

    def read(self, _size: int = -1) -> Any:
        return None


def test_gives_the_programs_bytes(golden: list[pathlib.Path], native: Native) -> None:
    assert golden
    for path in golden:
        to: Any = "vcs" if path.suffix == ".ics" else "ics"
        assert convert(path, to).bytes == native("--to", to, path), path.name


def test_takes_every_kind_of_source(phone: pathlib.Path, native: Native, tmp_path: pathlib.Path) -> None:
    data, expected = phone.read_bytes(), native("--to", "ics", phone)
    with open(phone, "rb") as file:
        file.seek(0)
        sources: list[Any] = [data, bytearray(data), memoryview(data), str(phone), phone, file]
        sources += [Pipe(data), io.BytesIO(data), [data[:99], memoryview(data)[99:]], (data[i : i + 1] for i in range(len(data)))]
        sources += [mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ), array.array("B", data)]
        sources += [sources[-2], memoryview(bytes(byte for byte in data for _ in "ab"))[::2]]
        for source in sources:
            assert convert(source, "ics").bytes == expected, source
    assert b"".join(qelcalendar.convert_pieces(Pipe(data))) == expected
    assert convert(Pipe(data), one_pass=True).bytes == expected
    target = tmp_path / "phone.vcs"
    target.write_bytes(data)
    target.chmod(0o640)
    summary = qelcalendar.convert_to(target, target, "ics")
    assert target.read_bytes() == expected
    assert stat.S_IMODE(target.stat().st_mode) == 0o640
    assert (summary.format, summary.entries) == ("ics", 7)
    link = tmp_path / "link.ics"
    link.symlink_to(target.name)
    qelcalendar.convert_to(data, link)
    assert link.is_symlink() and target.read_bytes() == expected
    nowhere = tmp_path / "nowhere" / "phone.ics"
    with pytest.raises(FileNotFoundError, match="nowhere/phone.ics") as missing:
        qelcalendar.convert_to(data, nowhere)
    assert missing.value.filename == str(nowhere)
    written = io.BytesIO()
    qelcalendar.convert_to(phone, written)
    assert written.getvalue() == expected


def test_makes_every_choice(tmp_path: pathlib.Path, native: Native) -> None:
    def event(*lines: bytes) -> bytes:
        return b"\r\n".join([b"BEGIN:VEVENT", b"UID:1", *lines, b"END:VEVENT", b""])

    path = tmp_path / "choices.vcs"
    path.write_bytes(
        b"BEGIN:VCALENDAR\r\nVERSION:1.0\r\n"
        + event(b"SUMMARY:\xcf\xf0\xe8\xe2\xe5\xf2", b"DTSTART:20050615T103000", b"RRULE:W2 MO WE #4")
        + event(b"SUMMARY:other", b"DTSTART:20050616T103000")
        + b"BEGIN:VTODO\r\nSUMMARY:do\r\nEND:VTODO\r\nEND:VCALENDAR\r\n"
    )
    zone = "zone", "Europe/Berlin"
    for (name, value), options in {
        zone: ("--zone", "Europe/Berlin"),
        ("charset", "windows-1251"): ("--charset", "windows-1251"),
        ("count_means", "periods"): ("--count-means", "periods"),
        ("distinct_uids", True): ("--distinct-uids",),
        ("only", "todos"): ("--only", "todos"),
        ("only", ("events", "todos")): ("--only", "events,todos"),
        ("only", (qelcalendar.Kind.EVENT, "todos")): ("--only", "events,todos"),
        ("only", qelcalendar.Kind.TODO): ("--only", "todos"),
        ("zone", zoneinfo.ZoneInfo("Europe/Berlin")): ("--zone", "Europe/Berlin"),
    }.items():
        choice: dict[str, Any] = {name: value}
        assert convert(path, "ics", **choice).bytes == native("--to", "ics", *options, path), name
    # A choice is for one calendar: the next one begins with the defaults.
    parts: list[bytes] = []
    with Converter("ics", parts.append) as converter:
        converter.add(path, only="events", zone="Europe/Berlin")
        converter.add(path, only="todos")
        assert converter.finish().entries == 3
    assert b"Europe/Berlin" in b"".join(parts)


def test_describes_what_changed(phone: pathlib.Path) -> None:
    all_notes: list[qelcalendar.Note] = []
    converted = convert(phone, on_note=all_notes.append)
    assert sum(kind.count for kind in converted.notes) == len(all_notes) > 0
    kinds = {kind.code: kind for kind in qelcalendar.note_kinds()}
    for kind in converted.notes:
        row = kinds[kind.code]
        assert (kind.name, kind.severity, kind.fate) == (row.name, row.severity, row.fate)
        assert kind.first.meaning == kind.meaning == row.meaning and kind.first.advice == row.advice
        assert kind.first in all_notes and kind.first.file == str(phone) and kind.first.line > 0
        assert str(kind).startswith(kind.first.text) and (f"({kind.count} times)" in str(kind)) == (kind.count > 1)
    bad = convert(b"BEGIN:VCARD\nEND:VCARD\n", name="card")
    assert (bad.entries, bad.format, bad.errors) == (0, None, 1)
    [error] = [kind for kind in bad.notes if kind.severity is Severity.ERROR]
    assert error.first.file == "card" and str(error.first) and error.fate in tuple(Fate)


def broken() -> Iterator[bytes]:
    yield b"BEGIN:VCALENDAR\n"
    raise OSError("the disk is gone")


def full(_piece: object) -> None:
    raise OSError("the disk is full")


def test_raises_what_went_wrong(phone: pathlib.Path, tmp_path: pathlib.Path) -> None:
    with pytest.raises(CalendarValueError, match="Nowhere/Land") as caught:
        convert(b"", zone="Nowhere/Land")
    assert caught.value.code in (Result.INVALID_ARGUMENT, Result.UNKNOWN_NAME)
    again = pickle.loads(pickle.dumps(caught.value))
    assert (again.code, again.text) == (caught.value.code, caught.value.text)
    with pytest.raises(ValueError, match="pdf"):
        convert(b"", "pdf")  # type: ignore[arg-type]
    with pytest.raises(CalendarValueError, match="NUL"):
        convert(b"", zone="a\0b")
    with pytest.raises(ValueError, match="only is"):
        convert(b"", only=[])
    with pytest.raises(BlockingIOError):
        convert(Waiting())
    choices: Any = ({"zone": 1}, {"charset": b"utf-8"}, {"count_means": 1}, {"only": 5}, {"only": [5]}, {"name": b"x"})
    for choice in choices:
        with pytest.raises(TypeError, match=next(iter(choice)) + " is"):
            convert(b"", **choice)
    with pytest.raises(FileNotFoundError):
        convert(tmp_path / "none.vcs")
    for wrong in ("BEGIN:VCALENDAR\n", io.StringIO("text"), ["text"], [1, 2], 7):
        with pytest.raises(TypeError):
            convert(wrong)  # type: ignore[arg-type]
    with pytest.raises(OSError, match="the disk is gone"):
        convert(broken())
    with pytest.raises(OSError, match="the disk is full"):
        convert(phone, on_note=full)
    target = tmp_path / "target.ics"
    target.write_bytes(b"before")
    with pytest.raises(OSError, match="the disk is gone"):
        qelcalendar.convert_to(broken(), target)
    assert target.read_bytes() == b"before" and os.listdir(tmp_path) == ["target.ics"]
    # An incomplete calendar is not finished.
    with Converter("ics", full) as converter:
        with pytest.raises(OSError, match="the disk is full"):
            converter.add(phone)
            converter.finish()
        with pytest.raises(CalendarError) as order:
            converter.finish()
    assert order.value.code == Result.WRONG_ORDER
    with pytest.raises(CalendarError, match="closed"):
        converter.add(phone)


class Late(Exception):
    pass


def late(*_: object) -> None:
    raise Late


def test_loses_nothing_to_signals(phone: pathlib.Path) -> None:
    data, name = large(phone), phone.name
    [daily] = qelcalendar.rule("FREQ=DAILY", start="2005-06-15")
    whole = qelcalendar.Calendar.read(phone).entries[0]
    calls: list[Callable[[], object]] = [
        lambda: convert(data, name=name),
        lambda: list(daily.dates(through="2300-01-01")),
        lambda: list(whole.occurrences()),
    ]
    expected = [each() for each in calls]
    before, raised = signal.signal(signal.SIGALRM, late), 0
    try:
        for i in range(90):
            try:
                signal.setitimer(signal.ITIMER_REAL, 0.0003 + i * 0.0037 % 0.1)
                assert calls[i % 3]() == expected[i % 3]
                time.sleep(0.2)
            except Late:
                raised += 1
        assert raised == 90
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, before)


def test_refuses_a_converter_in_use(phone: pathlib.Path) -> None:
    def again(_note: object) -> None:
        for use in (lambda: converter.add(phone), converter.finish):
            with pytest.raises(CalendarError, match="in use") as caught:
                use()
            assert caught.value.code == Result.WRONG_ORDER

    with Converter("ics", on_note=again) as converter:
        converter.add(phone)
        assert converter.finish().entries == 7
    closing = Converter("ics", on_note=lambda _note: closing.close())
    with pytest.raises(CalendarError, match="closed"):
        closing.add(phone)
        closing.finish()
    elsewhere = Converter("ics", lambda _piece: None)
    thread = threading.Timer(0.02, elsewhere.close)
    thread.start()
    with pytest.raises(CalendarError, match="closed"):
        while True:
            elsewhere.add(large(phone))
    thread.join()
    # A source that cannot be opened changes nothing; one that fails later leaves half a calendar.
    with Converter("ics") as converter:
        for wrong in ("none.vcs", 7, io.StringIO("text")):
            with pytest.raises((OSError, TypeError)):
                converter.add(wrong)  # type: ignore[arg-type]
        converter.add(phone)
        with pytest.raises(OSError, match="the disk is gone"):
            converter.add(broken())
        for use in (lambda: converter.add(phone), converter.finish):
            with pytest.raises(CalendarError, match="incomplete"):
                use()


def large(phone: pathlib.Path) -> bytes:
    lines = phone.read_bytes().splitlines(keepends=True)
    first = next(i for i, line in enumerate(lines) if line.startswith(b"BEGIN:V") and i > 0)
    return b"".join(lines[:first] + lines[first:-1] * 400 + lines[-1:])


def test_other_threads_run_meanwhile(phone: pathlib.Path) -> None:
    data, go, ran, before = large(phone), threading.Event(), [], sys.getswitchinterval()

    def other() -> None:
        go.wait()
        ran.append(True)

    thread = threading.Thread(target=other)
    thread.start()
    # No thread is made to give way: the other one runs when this one lets go of the GIL.
    sys.setswitchinterval(1000)
    try:
        go.set()
        end = time.monotonic() + 20
        while not ran and time.monotonic() < end:
            convert(data)
        assert ran
    finally:
        sys.setswitchinterval(before)
        thread.join()


def test_threads_convert_at_the_same_time(phone: pathlib.Path) -> None:
    data = large(phone)
    expected = convert(data).bytes
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        assert all(each.bytes == expected for each in pool.map(convert, [data] * 8))
