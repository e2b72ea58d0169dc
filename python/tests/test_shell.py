# SPDX-License-Identifier: MIT
"""The package from a shell: python3 -m beatatlas."""

import json
import os
import subprocess
import sys
import unittest
from typing import Union

import beatatlas
from package_test import TOOL, PackageTest, samples_of, write_floats


class ShellTest(PackageTest):
    def as_module(self, *words: str, **environment: str) -> "subprocess.CompletedProcess[str]":
        return subprocess.run([sys.executable, "-m", "beatatlas", *words], capture_output=True,
                              text=True, env={**os.environ, **environment})

    def test_runs_as_a_module_with_the_document_of_the_program(self) -> None:
        missing = os.fsencode(self.folder.name) + b"/\xff"
        names: list[Union[str, bytes]] = [self.track, "nothing", missing]
        run = subprocess.run([sys.executable, "-m", "beatatlas", "--json", *names],
                             capture_output=True)
        tool = subprocess.run([TOOL, "analyze", "--json", *names], capture_output=True)
        self.assertEqual(json.loads(run.stdout), json.loads(tool.stdout))
        self.assertEqual((run.returncode, tool.returncode), (1, 1))

    def test_the_module_says_a_line_for_each_file(self) -> None:
        other = self.path("träck 2.wav")
        os.link(self.track, other)
        run = self.as_module(self.track, other, PYTHONIOENCODING="ascii")
        first, second = run.stdout.splitlines()
        self.assertEqual(first, repr(beatatlas.analyze(self.track)))
        self.assertEqual(second, first.replace("/track.wav", "/tr\\xe4ck 2.wav"))
        self.assertEqual((run.returncode, run.stderr), (0, ""))

    def test_the_module_tells_by_its_status_what_went_wrong(self) -> None:
        failed = self.as_module(self.path("none"), self.track)
        self.assertEqual(failed.stderr, f"beatatlas: {self.path('none')} cannot be opened: "
                                        "No such file or directory\n")
        self.assertEqual((failed.returncode, len(failed.stdout.splitlines())), (1, 1))
        self.assertEqual(self.as_module().returncode, 2)
        self.assertEqual(self.as_module("--tempo", "quick", self.track).returncode, 2)
        described = self.as_module("--help")
        self.assertEqual(described.returncode, 0)
        for option in ("--json", "--tempo", "--waves", "FILE"):
            self.assertIn(option, described.stdout)

    def test_the_module_says_in_a_line_which_file_is_too_loud(self) -> None:
        samples, rate = samples_of(self.track)
        write_floats(self.path("loud.wav"), samples / 8192, rate)
        run = self.as_module("--json", self.path("loud.wav"))
        self.assertRegex(run.stderr, rf"\Abeatatlas: {self.path('loud.wav')} is too loud: .*\n\Z")
        self.assertEqual((run.returncode, len(json.loads(run.stdout)["tracks"])), (0, 1))


if __name__ == "__main__":
    unittest.main()
