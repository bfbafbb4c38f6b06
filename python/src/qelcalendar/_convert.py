"""Conversions."""

from __future__ import annotations

import contextlib
import ctypes
import itertools
import os
import secrets
import threading
from dataclasses import dataclass
from typing import Any, BinaryIO, Callable, Generator, Iterator, Literal, Optional, Union

from . import _library
from ._calls import Stop, apart
from ._errors import checked, encoded, failure
from ._input import PIECE, CountMeans, Input, Only, Source, Zone, choose, chosen
from ._library import Counts, NoteFn, Result, WriteFn, call
from ._notes import KindOfNote, Note, kind_of_note, note_of

Format = Literal["ics", "vcs"]

_FORMATS: dict[Optional[str], int] = {None: _library.OTHER, "ics": _library.ICALENDAR, "vcs": _library.VCALENDAR}
_NAMES = {_library.ICALENDAR: "ics", _library.VCALENDAR: "vcs"}


@dataclass(frozen=True)
class Summary:
    """What a conversion came to."""

    format: Optional[str]
    """Of the result, "ics" or "vcs"; None when there was nothing to convert."""
    calendars: int
    entries: int
    alarms: int
    changed: int
    """Entries that are not the same in the result."""
    warnings: int
    errors: int
    lost: int
    """Properties and entries that the result cannot hold."""
    notes: tuple[KindOfNote, ...]
    """Each kind of message once."""


@dataclass(frozen=True)
class Converted(Summary):
    """A calendar after its conversion, with the summary."""

    bytes: bytes

    @property
    def calendar(self) -> str:
        """The bytes as text."""
        return self.bytes.decode("utf-8")


class _Native:
    """The library's converter; it lasts as long as a call uses it, beyond `close` too."""

    handle: Any = None

    def __init__(self, to: int, writes: bool, every_note: bool) -> None:
        stop = self.stop = Stop()
        ready: list[Union[bytes, Note, int]] = []
        self.ready = ready
        """Bytes, notes and, of notes whose kind is known, their codes."""
        known: set[int] = set()

        def write(_context: Any, address: int, size: int) -> int:
            try:
                ready.append(ctypes.string_at(address, size))
                return stop.asked
            except BaseException as problem:  # it may not pass through the library
                return stop.failed(problem)

        def note(_context: Any, handle: Any) -> int:
            try:
                code = call("note_code_of", handle)
                ready.append(note_of(handle) if every_note or code not in known else code)
                known.add(code)
                return stop.asked
            except BaseException as problem:
                return stop.failed(problem)

        # The callbacks must last as long as the converter.
        self._write = WriteFn(write) if writes else WriteFn(0)
        self._note = NoteFn(note)
        self.handle = call("converter_new", to, self._write, None)
        if not self.handle:
            raise MemoryError
        checked("converter_on_note", self.handle, self._note, None)

    def __del__(self) -> None:
        call("converter_free", self.handle)

    def run(self, steps: tuple[tuple[Any, ...], ...]) -> list[Union[bytes, Note, int]]:
        """Calls the library's functions, and gives what their callbacks received."""

        def work() -> None:
            for name, *arguments in steps:
                result = call("converter_" + name, self.handle, *arguments)
                if result != Result.OK:
                    raise self.stop.problem or failure(result)

        apart(self.stop, work)
        ready = self.ready[:]
        self.ready.clear()
        return ready


class Converter:
    """Converts any number of calendars into one. A `with` statement frees it early.

    `to` is "ics" (iCalendar), "vcs" (vCalendar 1.0) or None, the other format than the first
    calendar's. `output` receives the result in pieces, `on_note` every note, both soon after the input
    that they come from. What they raise ends the conversion and comes out of the call that was under
    way, as Ctrl-C does; the calendar then stays incomplete, and later calls say so. One call at a time
    may use a converter; only `close` may come at any time.
    """

    def __init__(
        self,
        to: Optional[Format] = None,
        output: Optional[Callable[[bytes], object]] = None,
        *,
        on_note: Optional[Callable[[Note], object]] = None,
    ) -> None:
        if to not in tuple(_FORMATS):  # a tuple, for what has no hash
            raise ValueError(f'to is "ics", "vcs" or None, not {to!r}')
        self._output = output
        self._on_note = on_note
        self._kinds: dict[int, KindOfNote] = {}
        self._incomplete = False
        self._busy = threading.Lock()
        self._native: Optional[_Native] = _Native(
            _FORMATS[to], output is not None, on_note is not None
        )

    @contextlib.contextmanager
    def _used(self) -> Iterator[None]:
        if not self._busy.acquire(blocking=False):
            raise failure(Result.WRONG_ORDER, "the converter is in use")
        try:
            yield
        finally:
            self._busy.release()

    def _unclosed(self) -> _Native:
        native = self._native
        if native is None:
            raise failure(Result.WRONG_ORDER, "the converter is closed")
        return native

    def _complete(self) -> _Native:
        native = self._unclosed()
        if self._incomplete:
            raise failure(
                Result.WRONG_ORDER, "the calendar is incomplete: an exception ended its conversion"
            )
        return native

    def _run(self, *steps: tuple[Any, ...]) -> None:
        for each in self._unclosed().run(steps):
            if not isinstance(each, bytes):
                self._noted(each)
            elif self._output is not None:
                self._output(each)

    def _noted(self, note: Union[Note, int]) -> None:
        if isinstance(note, int):
            self._kinds[note].count += 1
            return
        kind = self._kinds.get(note.code)
        if kind is None:
            self._kinds[note.code] = kind_of_note(note)
        else:
            kind.count += 1
        if self._on_note is not None:
            self._on_note(note)

    def add(
        self,
        source: Source,
        *,
        name: Optional[str] = None,
        zone: Optional[Zone] = None,
        charset: Optional[str] = None,
        count_means: Optional[CountMeans] = None,
        distinct_uids: bool = False,
        only: Optional[Only] = None,
        one_pass: bool = False,
    ) -> None:
        """Converts one calendar. The choices are those of `convert`."""
        for _ in self._steps(
            source, name, chosen(zone, charset, count_means, distinct_uids, only), one_pass
        ):
            pass

    def _steps(
        self, source: Source, name: Optional[str], choices: dict[int, bytes], one_pass: bool
    ) -> Generator[None, None, None]:
        with self._used():
            native = self._complete()
            file = Input(source, name)
            passes = [("scan", file.pieces(True))] if not one_pass else []
            passes.append(("write", file.pieces(False)))
            steps: list[tuple[Any, ...]] = [("begin_file", encoded(file.name))]
            # A source that cannot be opened leaves the converter as it is.
            head = list(itertools.islice(passes[0][1], 1))
            choose("converter", native.handle, choices)
            self._incomplete = True
            size = 0
            for step, pieces in passes:
                for piece in itertools.chain(head, pieces):
                    steps.append((step, piece, len(piece)))
                    size += len(piece)
                    if one_pass or size >= PIECE:
                        self._run(*steps)
                        steps, size = [], 0
                        yield
                head = []
            self._run(*steps, ("end_file",))
            self._incomplete = False

    def finish(self) -> Summary:
        """Ends the calendar, passes on what is left of it, and closes the converter."""
        with self._used():
            native = self._complete()
            self._incomplete = True
            self._run(("finish",))
            counts = Counts()
            checked("converter_counts", native.handle, counts)
            target = call("converter_target", native.handle)
            self.close()
        return Summary(
            format=_NAMES.get(target),
            notes=tuple(self._kinds[code] for code in sorted(self._kinds)),
            **{name: getattr(counts, name) for name, _ in Counts._fields_},
        )

    def close(self) -> None:
        """Frees it, finished or not, at the end of a call that is under way."""
        self._native = None

    def __enter__(self) -> Converter:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()


def convert_pieces(
    source: Source,
    to: Optional[Format] = None,
    *,
    name: Optional[str] = None,
    zone: Optional[Zone] = None,
    charset: Optional[str] = None,
    count_means: Optional[CountMeans] = None,
    distinct_uids: bool = False,
    only: Optional[Only] = None,
    one_pass: bool = False,
    on_note: Optional[Callable[[Note], object]] = None,
) -> Generator[bytes, None, Summary]:
    """Converts a calendar in pieces, as they are ready; the generator returns the summary. The
    arguments are those of `convert`."""
    ready: list[bytes] = []

    def taken() -> bytes:
        piece = b"".join(ready)
        ready.clear()
        return piece

    choices = chosen(zone, charset, count_means, distinct_uids, only)
    with Converter(to, ready.append, on_note=on_note) as converter:
        for _ in converter._steps(source, name, choices, one_pass):
            if ready:
                yield taken()
        summary = converter.finish()
        if ready:
            yield taken()
        return summary


def convert(
    source: Source,
    to: Optional[Format] = None,
    *,
    name: Optional[str] = None,
    zone: Optional[Zone] = None,
    charset: Optional[str] = None,
    count_means: Optional[CountMeans] = None,
    distinct_uids: bool = False,
    only: Optional[Only] = None,
    one_pass: bool = False,
    on_note: Optional[Callable[[Note], object]] = None,
) -> Converted:
    """Converts a calendar: bytes, the path of a file, a binary file object or pieces of bytes.

    :param to: "ics" (iCalendar) or "vcs" (vCalendar 1.0); by default the other than the input's
    :param name: the input's name, for its notes; by default the path
    :param zone: the zone of local times that name none: "Europe/Berlin", or a ZoneInfo
    :param charset: the character set of texts that name none: "windows-1251"
    :param count_means: what the number after # counts in a vCalendar rule with several days in a
        period: "dates", the default, or "periods"
    :param distinct_uids: gives another UID to an entry whose UID an earlier one has
    :param only: the kinds of entries that are read, "events", "todos", "notes", a `Kind`, or several
        of them
    :param one_pass: converts while the input comes. Else it is gone through twice, if need be from
        memory, so that zones which are described after their entries are found, and texts that name
        no character set are compared with one another before one is guessed
    :param on_note: receives every note at once
    """
    parts: list[bytes] = []
    with Converter(to, parts.append, on_note=on_note) as converter:
        converter.add(
            source,
            name=name,
            zone=zone,
            charset=charset,
            count_means=count_means,
            distinct_uids=distinct_uids,
            only=only,
            one_pass=one_pass,
        )
        summary = converter.finish()
    return Converted(bytes=b"".join(parts), **vars(summary))


def convert_to(
    source: Source,
    target: Union[str, "os.PathLike[str]", BinaryIO],
    to: Optional[Format] = None,
    *,
    name: Optional[str] = None,
    zone: Optional[Zone] = None,
    charset: Optional[str] = None,
    count_means: Optional[CountMeans] = None,
    distinct_uids: bool = False,
    only: Optional[Only] = None,
    one_pass: bool = False,
    on_note: Optional[Callable[[Note], object]] = None,
) -> Summary:
    """Converts a calendar into a file, which a path names, or into a binary file object. A file of
    that name, or the one that a symbolic link of that name leads to, is replaced at the end of a
    conversion that succeeds, and may be the source itself. The options are those of `convert`."""

    def written(write: Callable[[bytes], object]) -> Summary:
        with Converter(to, write, on_note=on_note) as converter:
            converter.add(
                source,
                name=name,
                zone=zone,
                charset=charset,
                count_means=count_means,
                distinct_uids=distinct_uids,
                only=only,
                one_pass=one_pass,
            )
            return converter.finish()

    if not isinstance(target, (str, os.PathLike)):
        if not hasattr(target, "write"):
            raise TypeError(
                f"the target is a path or a binary file object, not {type(target).__name__}"
            )
        return written(target.write)
    path = os.path.realpath(os.fsdecode(target))
    unfinished = os.path.join(os.path.dirname(path), f".qelcalendar-{secrets.token_hex(8)}")
    try:
        with open(unfinished, "xb") as file:
            summary = written(file.write)
        with contextlib.suppress(FileNotFoundError):
            os.chmod(unfinished, os.stat(path).st_mode & 0o777)
        os.replace(unfinished, path)
    except BaseException as problem:
        with contextlib.suppress(FileNotFoundError):
            os.unlink(unfinished)
        if isinstance(problem, OSError) and problem.filename == unfinished:
            raise OSError(problem.errno, problem.strerror, os.fspath(target)) from None
        raise
    return summary
