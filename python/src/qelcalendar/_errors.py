"""Failures of the library as exceptions."""

from __future__ import annotations

from typing import Any, TypeVar

from ._library import Result, call, text


_T = TypeVar("_T")


class CalendarError(Exception):
    """A call that failed: `code` is the library's number, `text` its reason in one sentence."""

    def __init__(self, code: int, reason: str) -> None:
        super().__init__(reason)
        self.code = Result(code)
        self.text = reason

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (int(self.code), self.text)


class CalendarValueError(CalendarError, ValueError):
    """An argument that the library does not take: an unknown zone, a text that is no rule."""


class Unpicklable:
    """Objects that never change and need the calendar or the rule that they come from."""

    def __copy__(self: _T) -> _T:
        return self

    def __deepcopy__(self: _T, _memo: Any) -> _T:
        return self

    def __reduce__(self) -> Any:
        raise TypeError(
            f"{type(self).__name__} cannot be pickled: its dates are calculated by the library; "
            "pickle the calendar's bytes or the rule's text, and read them again"
        )


_VALUES = {Result.INVALID_ARGUMENT, Result.INVALID_TEXT, Result.UNKNOWN_NAME}


def failure(result: int, reason: str = "") -> CalendarError:
    """The exception for a result that is not OK."""
    reason = reason or text(call("last_error")) or text(call("result_text", result))
    return (CalendarValueError if result in _VALUES else CalendarError)(result, reason)


def checked(name: str, *arguments: Any) -> None:
    """Calls qelcal_NAME, whose result must be OK."""
    result = call(name, *arguments)
    if result != Result.OK:
        raise failure(result)


def encoded(value: str) -> bytes:
    """A text for the library, whose texts end at the first NUL."""
    if not isinstance(value, str):
        raise TypeError(f"a str is expected, not {value!r}")
    if "\0" in value:
        raise CalendarValueError(Result.INVALID_ARGUMENT, "the text contains a NUL character")
    return value.encode("utf-8", "surrogateescape")
