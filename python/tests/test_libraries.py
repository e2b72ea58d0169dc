# SPDX-License-Identifier: MIT
"""The C libraries below the package."""

import ctypes
import os
import subprocess
import sys
import unittest
from pathlib import Path

import beatatlas
from beatatlas import _library, _read
from beatatlas._version import INTERFACE
from package_test import TOOL, PackageTest


class LibrariesTest(PackageTest):
    def test_says_what_to_install_where_a_library_is_missing(self) -> None:
        Path(self.path("lib")).mkdir()
        name = f"libbeatatlas_track.so.{INTERFACE}"
        Path(self.path("lib"), name).write_text("no library")
        code = "import beatatlas"
        run = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True,
                             env={**os.environ, "BEATATLAS_LIBRARY_PATH": self.path("lib")})
        self.assertIn(f"ImportError: beatatlas cannot load {self.path('lib')}/{name}", run.stderr)
        self.assertIn("apt-get install libavformat59", run.stderr)

    def test_the_version_is_that_of_the_program(self) -> None:
        version = subprocess.run([TOOL, "--version"], check=True, capture_output=True, text=True)
        self.assertIn(beatatlas.__version__, version.stdout.split())


class LayoutTest(unittest.TestCase):
    """The records as the C headers have them; the headers' own tests state the same numbers."""

    def test_records_have_the_sizes_of_the_headers(self) -> None:
        self.assertEqual(ctypes.sizeof(_library.TrackOptions), 88)
        self.assertEqual(ctypes.sizeof(_library.FileOptions), 24)
        self.assertEqual(ctypes.sizeof(_library.FileFacts), 120)
        self.assertEqual((_library.FileFacts.samples.offset,
                          _library.FileFacts.clipped_peak.offset,
                          _library.FileFacts.is_too_loud.offset), (80, 96, 112))
        self.assertEqual((_read._BEAT.itemsize, _read._READING.itemsize), (32, 32))
        self.assertEqual((_read._STRETCH.itemsize, _read._CANDIDATE.itemsize), (24, 24))
        self.assertEqual((_read._SEGMENT.itemsize, _read._KEY_SCORE.itemsize), (32, 16))


if __name__ == "__main__":
    unittest.main()
