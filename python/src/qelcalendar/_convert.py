"""Conversions."""

from __future__ import annotations

import contextlib
import ctypes
import os
import secrets
from dataclasses import dataclass
from typing import Any, BinaryIO, Callable, Generator, Iterable, Optional, Union

from . import _library
from ._errors import checked, encoded, failure
from ._input import Input, Source, choose, chosen
from ._library import Counts, NoteFn, Result, WriteFn, call
from ._notes import KindOfNote, Note, kind_of_note, note_of

_FORMATS = {None: _library.OTHER, "ics": _library.ICALENDAR, "vcs": _library.VCALENDAR}
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


class Converter:
    """Converts any number of calendars into one. A `with` statement frees it early.

    `to` is "ics" (iCalendar), "vcs" (vCalendar 1.0) or None, the other format than the first
    calendar's. `output` receives the result in pieces, `on_note` every note at once; an exception of
    either ends the conversion and comes out of the call that was under way.
    """

    def __init__(
        self,
        to: Optional[str] = None,
        output: Optional[Callable[[bytes], object]] = None,
        *,
        on_note: Optional[Callable[[Note], object]] = None,
    ) -> None:
        self._handle: Any = None
        if to not in _FORMATS:
            raise ValueError(f'to is "ics", "vcs" or None, not {to!r}')
        self._problem: Optional[BaseException] = None
        self._kinds: dict[int, KindOfNote] = {}

        def write(_context: Any, address: int, size: int) -> int:
            return self._guarded(output, ctypes.string_at(address, size))

        def note(_context: Any, handle: Any) -> int:
            return self._guarded(self._noted, handle, on_note)

        # The callbacks must last as long as the converter.
        self._write = WriteFn(write) if output is not None else WriteFn(0)
        self._note = NoteFn(note)
        self._handle = call("converter_new", _FORMATS[to], self._write, None)
        if not self._handle:
            raise MemoryError
        checked("converter_on_note", self._handle, self._note, None)

    def _guarded(self, function: Any, *arguments: Any) -> int:
        try:
            function(*arguments)
        except BaseException as problem:  # it may not pass through the library
            self._problem = problem
            return 1
        return 0

    def _noted(self, handle: Any, on_note: Optional[Callable[[Note], object]]) -> None:
        code = call("note_code_of", handle)
        kind = self._kinds.get(code)
        if kind is None or on_note is not None:
            note = note_of(handle)
            if on_note is not None:
                on_note(note)
            if kind is None:
                self._kinds[code] = kind_of_note(note)
                return
        kind.count += 1

    def _call(self, name: str, *arguments: Any) -> None:
        if not self._handle:
            raise failure(Result.WRONG_ORDER, "the converter is closed")
        result = call("converter_" + name, self._handle, *arguments)
        if self._problem is not None:
            problem, self._problem = self._problem, None
            raise problem
        if result != Result.OK:
            raise failure(result)

    def add(
        self,
        source: Source,
        *,
        name: Optional[str] = None,
        zone: Optional[str] = None,
        charset: Optional[str] = None,
        count_means: Optional[str] = None,
        distinct_uids: bool = False,
        only: Union[str, Iterable[str], None] = None,
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
        if not self._handle:
            raise failure(Result.WRONG_ORDER, "the converter is closed")
        file = Input(source, name)
        choose("converter", self._handle, choices)
        self._call("begin_file", encoded(file.name))
        if not one_pass:
            for piece in file.pieces(True):
                self._call("scan", piece, len(piece))
        for piece in file.pieces(False):
            self._call("write", piece, len(piece))
            yield
        self._call("end_file")

    def finish(self) -> Summary:
        """Ends the calendar, passes on what is left of it, and closes the converter."""
        self._call("finish")
        counts = Counts()
        self._call("counts", counts)
        target = call("converter_target", self._handle)
        self.close()
        return Summary(
            format=_NAMES.get(target),
            notes=tuple(self._kinds[code] for code in sorted(self._kinds)),
            **{name: getattr(counts, name) for name, _ in Counts._fields_},
        )

    def close(self) -> None:
        """Frees it, finished or not."""
        handle, self._handle = self._handle, None
        if handle:
            call("converter_free", handle)

    def __enter__(self) -> Converter:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        self.close()


def convert_pieces(
    source: Source,
    to: Optional[str] = None,
    *,
    name: Optional[str] = None,
    zone: Optional[str] = None,
    charset: Optional[str] = None,
    count_means: Optional[str] = None,
    distinct_uids: bool = False,
    only: Union[str, Iterable[str], None] = None,
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
    to: Optional[str] = None,
    *,
    name: Optional[str] = None,
    zone: Optional[str] = None,
    charset: Optional[str] = None,
    count_means: Optional[str] = None,
    distinct_uids: bool = False,
    only: Union[str, Iterable[str], None] = None,
    one_pass: bool = False,
    on_note: Optional[Callable[[Note], object]] = None,
) -> Converted:
    """Converts a calendar: bytes, the path of a file, a binary file object or pieces of bytes.

    :param to: "ics" (iCalendar) or "vcs" (vCalendar 1.0); by default the other than the input's
    :param name: the input's name, for its notes; by default the path
    :param zone: the zone of local times that name none: "Europe/Berlin"
    :param charset: the character set of texts that name none: "windows-1251"
    :param count_means: what the number after # counts in a vCalendar rule with several days in a
        period: "dates", the default, or "periods"
    :param distinct_uids: gives another UID to an entry whose UID an earlier one has
    :param only: the kinds of entries that are read, "events", "todos", "notes" or several of them
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
    to: Optional[str] = None,
    **options: Any,
) -> Summary:
    """Converts a calendar into a file, which a path names, or into a binary file object. A file of
    that name is replaced at the end of a conversion that succeeds, and may be the source itself. The
    options are those of `convert`."""
    if not isinstance(target, (str, os.PathLike)):
        return _written(source, target.write, to, options)
    unfinished = os.path.join(
        os.path.dirname(os.path.abspath(target)), f".qelcalendar-{secrets.token_hex(8)}"
    )
    try:
        with open(unfinished, "xb") as file:
            summary = _written(source, file.write, to, options)
        with contextlib.suppress(FileNotFoundError):
            os.chmod(unfinished, os.stat(target).st_mode & 0o777)
        os.replace(unfinished, target)
    except BaseException:
        with contextlib.suppress(FileNotFoundError):
            os.unlink(unfinished)
        raise
    return summary


def _written(
    source: Source, write: Callable[[bytes], object], to: Optional[str], options: dict[str, Any]
) -> Summary:
    with Converter(to, write, on_note=options.pop("on_note", None)) as converter:
        converter.add(source, **options)
        return converter.finish()
