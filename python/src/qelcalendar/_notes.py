"""Notes: what the library reports about a calendar."""

from __future__ import annotations

import enum
import functools
from dataclasses import dataclass
from typing import Any, Mapping

from . import _library
from ._errors import checked
from ._library import call, text


class Severity(str, enum.Enum):
    """How serious a note is."""

    NOTE = "note"
    WARNING = "warning"
    ERROR = "error"


class Fate(str, enum.Enum):
    """What became of the data that a note is about."""

    UNCHANGED = "unchanged"
    KEPT = "kept elsewhere"
    LOST = "lost"


_SEVERITIES = tuple(Severity)
_FATES = tuple(Fate)


@dataclass(frozen=True)
class NoteKind:
    """A row of the catalogue of notes; `code` and `name` are stable."""

    code: int
    name: str
    severity: Severity
    fate: Fate
    sentence: str
    """With `{0}`, `{1}` for its values, `{q0}` for one in quotes."""
    meaning: str
    """What it means for the person whose calendar it is."""
    advice: str
    """What to do."""


@functools.lru_cache(maxsize=1)
def _catalogue() -> Mapping[int, NoteKind]:
    kinds = {}
    row = _library.NoteKind()
    for index in range(call("note_kind_count")):
        checked("note_kind_at", index, row)
        kinds[row.code] = NoteKind(
            row.code,
            text(row.name),
            _SEVERITIES[row.severity],
            _FATES[row.fate],
            text(row.sentence),
            text(row.meaning),
            text(row.advice),
        )
    return kinds


def note_kinds() -> list[NoteKind]:
    """Every kind of note that the library has, by code."""
    return list(_catalogue().values())


@dataclass(frozen=True)
class Note:
    """One message about the input or the result."""

    code: int
    name: str
    severity: Severity
    fate: Fate
    file: str
    """The input's name; empty where no file is meant."""
    line: int
    """Of the input, 1 for the first; 0 where no line is meant."""
    text: str
    """One sentence without a full stop. It may contain control characters of the input."""
    values: tuple[str, ...]
    """What the sentence mentions, as the input has it."""

    @property
    def meaning(self) -> str:
        """What it means for the person whose calendar it is."""
        return _catalogue()[self.code].meaning

    @property
    def advice(self) -> str:
        """What to do."""
        return _catalogue()[self.code].advice

    def __str__(self) -> str:
        return self.text


def note_of(handle: Any) -> Note:
    """A copy of a note of the library's."""
    return Note(
        call("note_code_of", handle),
        text(call("note_name", handle)),
        _SEVERITIES[call("note_severity", handle)],
        _FATES[call("note_fate", handle)],
        text(call("note_file", handle)),
        call("note_line", handle),
        text(call("note_text", handle)),
        tuple(text(call("note_value", handle, i)) for i in range(call("note_value_count", handle))),
    )


@dataclass
class KindOfNote:
    """How often a kind of note came in a conversion, and the first of them."""

    code: int
    name: str
    severity: Severity
    fate: Fate
    meaning: str
    advice: str
    count: int
    first: Note

    def __str__(self) -> str:
        return self.first.text if self.count == 1 else f"{self.first.text} ({self.count} times)"


def kind_of_note(first: Note) -> KindOfNote:
    """A count that begins with one note."""
    return KindOfNote(
        first.code, first.name, first.severity, first.fate, first.meaning, first.advice, 1, first
    )
