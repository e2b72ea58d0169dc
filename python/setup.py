# SPDX-License-Identifier: MIT
"""Builds the shared libraries with CMake and puts them beside the package. No code of them depends
on Python, so one wheel serves all its versions: py3-none-<platform>.

BEATATLAS_BUNDLE in the environment says otherwise: "no" makes a package without them, py3-none-any,
for systems that have the libraries in packages of their own; the folder of a CMake build has its
libraries taken."""

import os
import runpy
import shutil
from pathlib import Path

# The first of all: it says so if there is no setuptools.
from build_backend import bdist_wheel, compile_libraries, give_up
from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from setuptools.command.sdist import sdist

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
            compile_libraries(SOURCE, build.resolve(), LIBRARIES)
        take_from(build, Path(self.build_lib) / "beatatlas" / "lib")


def take_from(build, target):
    target.mkdir(parents=True, exist_ok=True)
    for room in LIBRARIES.values():
        name = f"libbeatatlas_{room}.so.{INTERFACE}"
        if not (build / room / name).exists():
            give_up("BEATATLAS_BUNDLE must be \"no\" or the folder of a CMake build, and "
                    f"{build} has no {room}/{name}")
        shutil.copy2(build / room / name, target / name)


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
        shutil.copy2(HERE / "build_backend.py", base_dir)
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
