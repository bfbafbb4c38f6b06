"""The recipe for Conan 2: `conan create .` makes a package of this tree.

The time zone database is compiled in: the machine needs its text and zic (Debian: tzdata, libc-bin).
"""

import os
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load

required_conan_version = ">=2.0"


class QelUtility(ConanFile):
    name = "qelutility"
    description = "Calendars of old phones and iCalendar read, converted and explained"
    license = "Apache-2.0"
    topics = ("calendar", "icalendar", "vcalendar", "recurrence")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "program": [True, False]}
    default_options = {"shared": True, "program": False}
    exports_sources = (
        "CMakeLists.txt", "LICENSE", "UTILITY/*", "calendar/*", "cmake/*", "docs/*", "include/*", "python/*",
        "tools/*", "*.md")

    def set_version(self):
        header = load(self, os.path.join(self.recipe_folder, "include", "QelUtility", "QelVersion.h"))
        self.version = re.search(r'QELUTILITY_VERSION "([^"]+)"', header).group(1)

    def requirements(self):
        self.requires("openssl/[>=3 <4]")
        if self.options.program:
            self.requires("cli11/[>=2.3 <3]")
            self.requires("nlohmann_json/[>=3.11 <4]")
            self.requires("zlib/[>=1.2.13 <2]")

    def validate_build(self):
        # The headers need C++11 alone.
        check_min_cppstd(self, 20)

    def validate(self):
        if self.settings.compiler == "msvc":
            raise ConanInvalidConfiguration("MSVC can call the libraries but not build them; MinGW can")

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["QEL_BUILD_SHARED"] = bool(self.options.shared)
        toolchain.cache_variables["QEL_BUILD_PROGRAM"] = bool(self.options.program)
        toolchain.cache_variables["QEL_BUILD_TESTS"] = False
        toolchain.cache_variables["QEL_INSTALL"] = True
        toolchain.cache_variables["QEL_WARNINGS_AS_ERRORS"] = False
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        licences = os.path.join(self.package_folder, "licenses")
        copy(self, "LICENSE", self.source_folder, licences)
        copy(self, "licences.md", os.path.join(self.source_folder, "docs"), licences)

    def package_info(self):
        # CMake projects use the package's own files, which know both libraries.
        self.cpp_info.set_property("cmake_find_mode", "none")
        # CMakeToolchain looks for the folder at the components, CMakeConfigDeps at the package.
        folders = [os.path.join("lib", "cmake", "QelUtility")]
        self.cpp_info.builddirs = folders
        utility = self.cpp_info.components["utility"]
        utility.builddirs = folders
        utility.libs = ["QelUtility"]
        utility.requires = ["openssl::crypto"]
        utility.set_property("pkg_config_name", "qelutility")
        calendar = self.cpp_info.components["calendar"]
        calendar.libs = ["QelCalendar"]
        calendar.builddirs = folders
        calendar.requires = ["utility"]
        calendar.set_property("pkg_config_name", "qelcalendar")
        if not self.options.shared:
            utility.defines = ["QELUTILITY_STATIC"]
            calendar.defines = ["QELCALENDAR_STATIC"]
        if self.settings.os in ("Linux", "FreeBSD"):
            utility.system_libs = ["pthread", "dl"]
        if self.settings.os == "Windows":
            utility.system_libs = ["advapi32", "user32", "shell32", "ole32", "ws2_32"]
        if self.options.program:
            program = self.cpp_info.components["program"]
            program.libs = []
            program.requires = ["calendar", "cli11::cli11", "nlohmann_json::nlohmann_json", "zlib::zlib"]
