# SPDX-License-Identifier: MIT
"""What pip builds the package with: setuptools, once all is there that it takes. What is missing is
said in one sentence with Debian's names, where setuptools and CMake would end in a traceback."""

import os
import shutil
import subprocess
import sys

DEBIAN_PYTHON = "python3-pip python3-setuptools python3-wheel"
DEBIAN_LIBRARIES = (
    "g++ cmake ninja-build pkg-config libavformat-dev libavcodec-dev libavutil-dev "
    "libswresample-dev libsoxr-dev libtag1-dev libcairo2-dev libpango1.0-dev libglib2.0-dev "
    "libsqlitecpp-dev libxxhash-dev libutf8proc-dev zlib1g-dev libcli11-dev libfmt-dev "
    "libcpp-httplib-dev nlohmann-json3-dev")


def give_up(reason):
    sys.exit("beatatlas cannot be built: " + reason)


def refuse_python(lack):
    version = ".".join(map(str, sys.version_info[:3]))
    give_up(f"{sys.executable} (Python {version}) {lack}; a wheel that Debian's Python has built "
            f"fits every Python from 3.9 on: apt-get install {DEBIAN_PYTHON}, and the same command "
            "with /usr/bin/python3")


if sys.version_info < (3, 9):
    refuse_python("is older than 3.9")
try:
    import setuptools
    if int(setuptools.__version__.split(".")[0]) < 64:
        refuse_python(f"has setuptools {setuptools.__version__}, which is older than 64")
    try:
        from setuptools.command.bdist_wheel import bdist_wheel
    except ImportError:  # in older ones it is a package of its own
        from wheel.bdist_wheel import bdist_wheel
    from setuptools.build_meta import *  # noqa: F403: all that pip may ask for
except ImportError as error:
    refuse_python(f"lacks {error.name.split('.')[0]}")


def compile_libraries(source, build, targets):
    """They find each other beside themselves, wherever the package is installed."""
    if not shutil.which("cmake"):
        give_up(f"there is no cmake; on Debian 12: apt-get install {DEBIAN_LIBRARIES}")
    # CMake's own choice is make. Ninja does as well, and may be all there is.
    others = shutil.which("make") or os.environ.get("CMAKE_GENERATOR")
    configured = subprocess.run(
        ["cmake", "-S", source, "-B", build, *([] if others else ["-G", "Ninja"]),
         "-DCMAKE_BUILD_TYPE=Release", "-DBEATATLAS_BUILD_TESTS=OFF", "-DBEATATLAS_INSTALL=OFF",
         "-DCMAKE_SHARED_LINKER_FLAGS=-Wl,--strip-all",
         "-DCMAKE_BUILD_WITH_INSTALL_RPATH=ON", "-DCMAKE_INSTALL_RPATH=$ORIGIN"], check=False)
    if configured.returncode != 0:
        give_up("CMake says above what it did not find; on Debian 12: apt-get install "
                f"{DEBIAN_LIBRARIES}")
    compiled = subprocess.run(["cmake", "--build", build, "--target", *targets, "--parallel",
                               str(os.cpu_count() or 1)], check=False)
    if compiled.returncode != 0:
        give_up("compiler or linker say above what they did not take")
