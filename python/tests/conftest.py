"""What the tests share. They run on the installed package."""

from __future__ import annotations

import os
import pathlib
import subprocess
from typing import Callable

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]


@pytest.fixture(scope="session")
def phone() -> pathlib.Path:
    return ROOT / "examples/phone.vcs"


@pytest.fixture(scope="session")
def golden() -> list[pathlib.Path]:
    return sorted(each for each in (ROOT / "tests/calendar/golden").iterdir() if each.suffix in (".ics", ".vcs"))


@pytest.fixture(scope="session")
def native() -> Callable[..., bytes]:
    """The bytes of the program's own conversion."""
    program = os.environ.get("QELUTIL", str(ROOT / "build/release/bin/qelutil"))

    def convert(*options: object) -> bytes:
        words = [program, "convert", *map(str, options)]
        return subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout

    return convert
