"""The wheel: pure Python with the calendar library inside. One wheel serves every Python 3 of its
platform, because the library is reached by ctypes and not through the interpreter's own interface.

The version is that of the library; QEL_PYTHON_LIBRARY is the library, libQelCalendar.so, where CMake has
built its target python_library. `./dev python` of the repository calls this.
"""

import os
import re
import shutil
import subprocess

from setuptools import setup
from setuptools.command.build_py import build_py
from setuptools.dist import Distribution
from wheel.bdist_wheel import bdist_wheel

library = os.environ["QEL_PYTHON_LIBRARY"]


def platform() -> str:
    """The oldest Linux that has all that the library needs, "manylinux_2_34_x86_64"."""
    symbols = subprocess.run(["objdump", "-T", library], check=True, capture_output=True, text=True).stdout
    needed = max((int(minor) for minor in re.findall(r"GLIBC_2\.(\d+)", symbols)), default=17)
    return f"manylinux_2_{needed}_{os.uname().machine}"


class WithLibrary(build_py):
    def run(self) -> None:
        super().run()
        shutil.copy(library, os.path.join(self.build_lib, "qelcalendar"))


class OfPlatform(bdist_wheel):
    def get_tag(self):
        return "py3", "none", platform()


class Binary(Distribution):
    def has_ext_modules(self) -> bool:
        return True


setup(
    version=os.environ["QEL_PYTHON_VERSION"],
    distclass=Binary,
    cmdclass={"build_py": WithLibrary, "bdist_wheel": OfPlatform},
)
