# SPDX-License-Identifier: MIT
"""Builds the shared libraries with CMake and puts them beside the package. No code of them depends
on Python, so one wheel serves all its versions: py3-none-<platform>."""

import os
import shutil
import subprocess
from pathlib import Path

from setuptools import setup
from setuptools.command.build_py import build_py
from wheel.bdist_wheel import bdist_wheel

SOURCE = Path(__file__).resolve().parent.parent
LIBRARIES = {"beatatlas_track": "track", "beatatlas_media_shared": "media"}


class BuildLibraries(build_py):
    def run(self):
        super().run()
        build = Path(self.get_finalized_command("build").build_temp).resolve() / "libraries"
        configure(build)
        subprocess.run(["cmake", "--build", build, "--target", *LIBRARIES, "--parallel",
                        str(os.cpu_count() or 1)], check=True)
        target = Path(self.build_lib) / "beatatlas" / "lib"
        target.mkdir(parents=True, exist_ok=True)
        for room in LIBRARIES.values():
            name = f"libbeatatlas_{room}.so.1"
            shutil.copy2(build / room / name, target / name)


def configure(build):
    """They find each other beside themselves, wherever the package is installed."""
    subprocess.run(
        ["cmake", "-S", SOURCE, "-B", build, "-DCMAKE_BUILD_TYPE=Release",
         "-DBEATATLAS_BUILD_TESTS=OFF", "-DBEATATLAS_INSTALL=OFF",
         "-DCMAKE_BUILD_WITH_INSTALL_RPATH=ON", "-DCMAKE_INSTALL_RPATH=$ORIGIN"], check=True)


class PlatformWheel(bdist_wheel):
    def finalize_options(self):
        super().finalize_options()
        self.root_is_pure = False

    def get_tag(self):
        return "py3", "none", super().get_tag()[2]


setup(cmdclass={"build_py": BuildLibraries, "bdist_wheel": PlatformWheel})
