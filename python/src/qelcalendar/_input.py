"""Where calendars come from, and the choices about how they are read."""

from __future__ import annotations

import datetime as dt
import enum
import io
import os
from typing import Any, BinaryIO, Iterable, Iterator, Literal, Optional, Union

from . import _library
from ._errors import checked, encoded


class Kind(str, enum.Enum):
    """What an entry is."""

    EVENT = "event"
    TODO = "to-do"
    NOTE = "note"


_ONLY = {Kind.EVENT: "events", Kind.TODO: "todos", Kind.NOTE: "notes"}

CountMeans = Literal["dates", "periods"]
Zone = Union[str, dt.tzinfo]
"""A zone's name, or a zone of the standard library that has one."""
KindName = Literal["events", "todos", "notes"]
Only = Union[KindName, Kind, Iterable[Union[KindName, Kind]]]

Source = Union[bytes, bytearray, memoryview, str, "os.PathLike[str]", BinaryIO, Iterable[bytes]]
"""A calendar: its bytes, the path of a file, a binary file object, or pieces of bytes of any size."""

PIECE = 1 << 18


def _cut(data: Any) -> Iterator[bytes]:
    view = memoryview(data)
    view = view.cast("B") if view.contiguous else memoryview(view.tobytes())
    if isinstance(data, bytes) and len(data) <= PIECE:
        yield data
        return
    for at in range(0, len(view), PIECE):
        yield bytes(view[at : at + PIECE])


class Input:
    """A source that can be gone through several times, if need be from memory."""

    def __init__(self, source: Source, name: Optional[str]) -> None:
        self._kept: Optional[list[bytes]] = None
        self._at = 0
        self._source: Any = source
        if isinstance(source, str) and "\n" in source:
            raise TypeError("a str is the path of a file; a calendar's text is given as text.encode()")
        if _has_bytes(source):
            if not isinstance(source, bytes):
                self._source = memoryview(self._source)  # of a memory map too, which could be read as a file
        elif isinstance(source, (str, os.PathLike)):
            pass
        elif not hasattr(source, "read"):
            try:
                self._source = iter(source)
            except TypeError:
                raise TypeError(
                    "a calendar is bytes, a path, a binary file object or pieces of bytes, not "
                    + type(source).__name__
                ) from None
            self._kept = []
        else:
            if isinstance(source, io.TextIOBase):
                raise TypeError("a calendar's file object is binary: open(path, 'rb')")
            if _seekable(source):
                self._at = self._source.tell()
            else:
                self._kept = []
        if name is not None and not isinstance(name, str):
            raise TypeError(f"name is a str, not {type(name).__name__}")
        self.name = self._name() if name is None else name

    def _name(self) -> str:
        if isinstance(self._source, (str, os.PathLike)):
            return os.fsdecode(self._source)
        name = getattr(self._source, "name", "")
        return name if isinstance(name, str) else ""

    def pieces(self, again: bool) -> Iterator[bytes]:
        """All of it in pieces; `again`: it is gone through once more later."""
        if self._kept is None:
            yield from self._replayed()
            return
        yield from self._kept
        for piece in self._rest():
            if again:
                self._kept.append(piece)
            yield piece

    def whole(self) -> bytes:
        """All of it."""
        return self._source if isinstance(self._source, bytes) else b"".join(self.pieces(False))

    def _replayed(self) -> Iterator[bytes]:
        source = self._source
        if isinstance(source, (str, os.PathLike)):
            with open(source, "rb") as file:
                yield from _read(file)
        elif hasattr(source, "read"):
            source.seek(self._at)
            yield from _read(source)
        else:
            yield from _cut(source)

    def _rest(self) -> Iterator[bytes]:
        if hasattr(self._source, "read"):
            yield from _read(self._source)
            return
        for piece in self._source:
            if not isinstance(piece, (bytes, bytearray, memoryview)):
                raise TypeError(f"a calendar comes in pieces of bytes, not of {type(piece).__name__}")
            yield from _cut(piece)


def _has_bytes(source: Any) -> bool:
    try:
        memoryview(source)
    except TypeError:
        return False
    return True


def _seekable(file: Any) -> bool:
    try:
        return bool(file.seekable())
    except AttributeError:
        return False


def _read(file: Any) -> Iterator[bytes]:
    while True:
        piece = file.read(PIECE)
        if piece is None:
            raise BlockingIOError("the file object has no bytes yet; one that does not block cannot be read")
        if not piece:
            return
        if isinstance(piece, str):
            raise TypeError("a calendar's file object is binary: open(path, 'rb')")
        yield bytes(piece)


def chosen(
    zone: Optional[Zone] = None,
    charset: Optional[str] = None,
    count_means: Optional[CountMeans] = None,
    distinct_uids: bool = False,
    only: Optional[Only] = None,
) -> dict[int, bytes]:
    """Values by the library's number of a choice; an empty one is the default."""
    named: dict[str, Any] = {"zone": zone, "charset": charset, "count_means": count_means}
    if isinstance(zone, dt.tzinfo):
        key: Any = getattr(zone, "key", None)
        named["zone"] = "UTC" if zone is dt.timezone.utc else key or zone
    for name, value in named.items():
        if value is not None and not isinstance(value, str):
            expected = "the name of a zone or a ZoneInfo" if name == "zone" else "a str"
            raise TypeError(f"{name} is {expected}, not {value!r}")
    texts: dict[int, Optional[str]] = {
        _library.CHOOSE_ZONE: named["zone"],
        _library.CHOOSE_CHARSET: charset,
        _library.CHOOSE_COUNT_MEANS: count_means,
        _library.CHOOSE_DISTINCT_UIDS: "yes" if distinct_uids else None,
        _library.CHOOSE_ONLY: None if only is None else _kinds(only),
    }
    return {number: encoded(value or "") for number, value in texts.items()}


def _kinds(only: Any) -> str:
    expected = '"events", "todos", "notes", a Kind, or several of them'
    try:
        kinds = [only] if isinstance(only, str) else list(only)
    except TypeError:
        kinds = [only]
    if not all(isinstance(each, str) for each in kinds):
        raise TypeError(f"only is {expected}, not {only!r}")
    if not any(kinds):
        raise ValueError(f"only is {expected}; nothing would be read")
    return ",".join(_ONLY[each] if isinstance(each, Kind) else each for each in kinds)


def choose(owner: str, handle: Any, choices: dict[int, bytes]) -> None:
    """Makes the choices for a reader or a converter."""
    for number, value in choices.items():
        checked(owner + "_choose", handle, number, value)
