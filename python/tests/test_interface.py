"""The declarations for ctypes are those of the header."""

from __future__ import annotations

import re
from ctypes import POINTER, c_char_p, c_int, c_int64, c_size_t, c_uint64, c_void_p

from conftest import ROOT
from qelcalendar import _library

HEADER = re.sub(r"/\*.*?\*/", "", (ROOT / "include/QelCalendar/qelcalendar.h").read_text(), flags=re.DOTALL)

STRUCTURES = {
    "time": _library.Time,
    "note_kind": _library.NoteKind,
    "alarm": _library.Alarm,
    "counts": _library.Counts,
}
TYPES = {
    "void": None,
    "int": c_int,
    "size_t": c_size_t,
    "int64_t": c_int64,
    "uint64_t": c_uint64,
    "char*": c_char_p,
    "void*": c_void_p,
    "int64_t*": POINTER(c_int64),
    "qelcal_note_fn": _library.NoteFn,
    "qelcal_time_fn": _library.TimeFn,
    "qelcal_write_fn": _library.WriteFn,
    "qelcal_time": _library.Time,
} | {f"qelcal_{name}*": POINTER(type_) for name, type_ in STRUCTURES.items()}


def ctype(declared: str, name: str) -> object:
    if (declared, name) == ("const void*", "bytes"):
        return c_char_p
    plain = declared.replace("const ", "")
    if plain not in TYPES and plain.startswith("qelcal_"):
        return POINTER(c_void_p) if plain.endswith("**") else c_void_p
    return TYPES[plain]


def declaration(text: str) -> tuple[str, str]:
    """ "const char* name" as type and name."""
    match = re.fullmatch(r"(.*[*\s])(\w+)", " ".join(text.split()))
    assert match, text
    return match[1].strip(), match[2]


def test_functions() -> None:
    pattern = r"QELCALENDAR_API ([\w* ]+?)\s+QELCALENDAR_CALL\s+qelcal_(\w+)\(([^)]*)\);"
    declared = {name: (result, arguments) for result, name, arguments in re.findall(pattern, HEADER)}
    assert len(declared) > 100
    for name, signature in _library.FUNCTIONS.items():
        result, arguments = declared[name]
        expected = [ctype(result, "")]
        if arguments != "void":
            expected += [ctype(*declaration(each)) for each in arguments.split(",")]
        assert list(signature) == expected, name


def test_structures() -> None:
    for name, structure in STRUCTURES.items():
        match = re.search(rf"typedef struct qelcal_{name} {{(.*?)}}", HEADER, re.DOTALL)
        assert match, name
        fields = [declaration(each) for each in match[1].split(";") if each.strip()]
        assert [(field, ctype(type_, field)) for type_, field in fields] == list(structure._fields_), name


def test_numbers() -> None:
    values = {name: int(number) for name, number in re.findall(r"QELCAL_(\w+) = (\d+)", HEADER)}
    assert {each.name: each.value for each in _library.Result}.items() <= values.items()
    names = [name for name in vars(_library) if re.match("FORM_|CHOOSE_", name)]
    names += ["FLOATING", "UTC", "ZONED", "OTHER", "ICALENDAR", "VCALENDAR"]
    assert {name: getattr(_library, name) for name in names}.items() <= values.items()
