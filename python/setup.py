# SPDX-License-Identifier: MIT
"""Builds the shared libraries with CMake and puts them beside the package. No code of them depends
on Python, so one wheel serves all its versions: py3-none-<platform>.

BEATATLAS_BUNDLE in the environment says otherwise: "no" makes a package without them, py3-none-any,
for systems that have the libraries in packages of their own; the folder of a CMake build has its
libraries taken."""

import os
import runpy
import shutil
import subprocess
from pathlib import Path

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from setuptools.command.sdist import sdist
from wheel.bdist_wheel import bdist_wheel

HERE = Path(__file__).resolve().parent
INTERFACE = runpy.run_path(str(HERE / "beatatlas/_version.py"))["INTERFACE"]
BUNDLE = os.environ.get("BEATATLAS_BUNDLE", "")
LIBRARIES = {"beatatlas_track": "track", "beatatlas_media_shared": "media"}

# A source archive holds what the libraries are built from; a checkout has it around this folder.
CARRIED = HERE / "libraries"
SOURCE = CARRIED if CARRIED.exists() else HERE.parent
NEEDED = ("CMakeLists.txt", "LICENSE", "cmake", "include", "src", "track", "base", "web", "media",
          "output", "catalogue", "comparison", "app", "vamp")


class BuildLibraries(build_py):
    def run(self):
        # pip builds in this folder: what an earlier build left would get into the wheel.
        shutil.rmtree(Path(self.build_lib) / "beatatlas", ignore_errors=True)
        super().run()
        if BUNDLE == "no":
            return
        build = Path(BUNDLE or self.get_finalized_command("build").build_temp + "/libraries")
        if not BUNDLE:
            compile_in(build.resolve())
        target = Path(self.build_lib) / "beatatlas" / "lib"
        target.mkdir(parents=True, exist_ok=True)
        for room in LIBRARIES.values():
            name = f"libbeatatlas_{room}.so.{INTERFACE}"
            shutil.copy2(build / room / name, target / name)


def compile_in(build):
    """They find each other beside themselves, wherever the package is installed."""
    subprocess.run(
        ["cmake", "-S", SOURCE, "-B", build, "-DCMAKE_BUILD_TYPE=Release",
         "-DBEATATLAS_BUILD_TESTS=OFF", "-DBEATATLAS_INSTALL=OFF",
         "-DCMAKE_SHARED_LINKER_FLAGS=-Wl,--strip-all",
         "-DCMAKE_BUILD_WITH_INSTALL_RPATH=ON", "-DCMAKE_INSTALL_RPATH=$ORIGIN"], check=True)
    subprocess.run(["cmake", "--build", build, "--target", *LIBRARIES, "--parallel",
                    str(os.cpu_count() or 1)], check=True)


class Platform(Distribution):
    def has_ext_modules(self):
        return BUNDLE != "no"


class PlatformWheel(bdist_wheel):
    def get_tag(self):
        python, abi, platform = super().get_tag()
        return (python, abi, platform) if BUNDLE == "no" else ("py3", "none", platform)


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


setup(distclass=Platform,
      cmdclass={"build_py": BuildLibraries, "bdist_wheel": PlatformWheel, "sdist": WholeSource})
