"""Where calendars come from, and the choices about how they are read."""

from __future__ import annotations

import io
import os
from typing import Any, BinaryIO, Iterable, Iterator, Optional, Union

from . import _library
from ._errors import checked, encoded

Source = Union[bytes, bytearray, memoryview, str, "os.PathLike[str]", BinaryIO, Iterable[bytes]]
"""A calendar: its bytes, the path of a file, a binary file object, or pieces of bytes of any size."""

PIECE = 1 << 18


def _cut(data: Any) -> Iterator[bytes]:
    view = memoryview(data).cast("B")
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
        if not hasattr(source, "read") and not isinstance(
            source, (bytes, bytearray, memoryview, str, os.PathLike)
        ):
            self._source = iter(source)
            self._kept = []
        elif hasattr(source, "read"):
            if isinstance(source, io.TextIOBase):
                raise TypeError("a calendar's file object is binary: open(path, 'rb')")
            if _seekable(source):
                self._at = self._source.tell()
            else:
                self._kept = []
        self.name = self._name() if name is None else name

    def _name(self) -> str:
        if isinstance(self._source, (str, os.PathLike)):
            return os.fspath(self._source)
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


def _seekable(file: Any) -> bool:
    try:
        return bool(file.seekable())
    except AttributeError:
        return False


def _read(file: Any) -> Iterator[bytes]:
    while True:
        piece = file.read(PIECE)
        if not piece:
            return
        if isinstance(piece, str):
            raise TypeError("a calendar's file object is binary: open(path, 'rb')")
        yield bytes(piece)


def chosen(
    zone: Optional[str] = None,
    charset: Optional[str] = None,
    count_means: Optional[str] = None,
    distinct_uids: bool = False,
    only: Union[str, Iterable[str], None] = None,
) -> dict[int, bytes]:
    """Values by the library's number of a choice; an empty one is the default."""
    kinds = only if isinstance(only, str) else ",".join(only or ())
    texts = {
        _library.CHOOSE_ZONE: zone,
        _library.CHOOSE_CHARSET: charset,
        _library.CHOOSE_COUNT_MEANS: count_means,
        _library.CHOOSE_DISTINCT_UIDS: "yes" if distinct_uids else None,
        _library.CHOOSE_ONLY: kinds,
    }
    return {number: encoded(value or "") for number, value in texts.items()}


def choose(owner: str, handle: Any, choices: dict[int, bytes]) -> None:
    """Makes the choices for a reader or a converter."""
    for number, value in choices.items():
        checked(owner + "_choose", handle, number, value)
