# SPDX-License-Identifier: MIT
"""Builds the shared libraries with CMake and puts them beside the package. No code of them depends
on Python, so one wheel serves all its versions: py3-none-<platform>.

With BEATATLAS_BUNDLE=no in the environment the package is made without them, py3-none-any, for
systems that have the libraries in packages of their own."""

import os
import runpy
import shutil
import subprocess
from pathlib import Path

from setuptools import setup
from setuptools.command.build_py import build_py
from setuptools.command.sdist import sdist
from wheel.bdist_wheel import bdist_wheel

HERE = Path(__file__).resolve().parent
INTERFACE = runpy.run_path(str(HERE / "beatatlas/_version.py"))["INTERFACE"]
BUNDLES = os.environ.get("BEATATLAS_BUNDLE") != "no"
LIBRARIES = {"beatatlas_track": "track", "beatatlas_media_shared": "media"}

# A source archive holds what the libraries are built from; a checkout has it around this folder.
CARRIED = HERE / "libraries"
SOURCE = CARRIED if CARRIED.exists() else HERE.parent
NEEDED = ("CMakeLists.txt", "LICENSE", "cmake", "include", "src", "track", "base", "web", "media",
          "output", "catalogue", "comparison", "app", "vamp")


class BuildLibraries(build_py):
    def run(self):
        super().run()
        if not BUNDLES:
            return
        build = Path(self.get_finalized_command("build").build_temp).resolve() / "libraries"
        configure(build)
        subprocess.run(["cmake", "--build", build, "--target", *LIBRARIES, "--parallel",
                        str(os.cpu_count() or 1)], check=True)
        target = Path(self.build_lib) / "beatatlas" / "lib"
        target.mkdir(parents=True, exist_ok=True)
        for room in LIBRARIES.values():
            name = f"libbeatatlas_{room}.so.{INTERFACE}"
            shutil.copy2(build / room / name, target / name)


def configure(build):
    """They find each other beside themselves, wherever the package is installed."""
    subprocess.run(
        ["cmake", "-S", SOURCE, "-B", build, "-DCMAKE_BUILD_TYPE=Release",
         "-DBEATATLAS_BUILD_TESTS=OFF", "-DBEATATLAS_INSTALL=OFF",
         "-DCMAKE_SHARED_LINKER_FLAGS=-Wl,--strip-all",
         "-DCMAKE_BUILD_WITH_INSTALL_RPATH=ON", "-DCMAKE_INSTALL_RPATH=$ORIGIN"], check=True)


class PlatformWheel(bdist_wheel):
    def finalize_options(self):
        super().finalize_options()
        self.root_is_pure = not BUNDLES

    def get_tag(self):
        return ("py3", "none", super().get_tag()[2]) if BUNDLES else super().get_tag()


class WholeSource(sdist):
    def make_release_tree(self, base_dir, files):
        super().make_release_tree(base_dir, files)
        target = Path(base_dir, "libraries")
        target.mkdir()
        for name in NEEDED:
            place = SOURCE / name
            if place.is_dir():
                shutil.copytree(place, target / name,
                                ignore=shutil.ignore_patterns("__pycache__"))
            else:
                shutil.copy2(place, target / name)


setup(cmdclass={"build_py": BuildLibraries, "bdist_wheel": PlatformWheel, "sdist": WholeSource})
