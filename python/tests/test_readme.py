"""The README's programs print what it says."""

from __future__ import annotations

import pathlib
import re
import shutil
import subprocess
import sys

from conftest import ROOT


def test_readme(tmp_path: pathlib.Path, phone: pathlib.Path) -> None:
    shutil.copy(phone, tmp_path)
    text = (ROOT / "python/README.md").read_text("utf-8")
    programs = re.findall(r"```python\n(.*?)```.*?```text\n(.*?)```", text, re.DOTALL)
    assert len(programs) == text.count("```python")
    for program, expected in programs:
        done = subprocess.run([sys.executable, "-c", program], cwd=tmp_path, stdout=subprocess.PIPE, check=True)
        assert done.stdout.decode() == expected
