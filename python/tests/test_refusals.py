# SPDX-License-Identifier: MIT
"""What is refused, and what the refusal says."""

import math
import pickle
import unittest
from pathlib import Path
from typing import Any

import numpy as np

import beatatlas
from package_test import PackageTest


class RefusalsTest(PackageTest):
    def test_errors_name_the_file(self) -> None:
        Path(self.path("text.mp3")).write_text("These are words.")
        Path(self.path("empty.wav")).touch()
        whole = Path(self.track).read_bytes()
        Path(self.path("cut.wav")).write_bytes(whole[:len(whole) // 2])
        cases = {"missing.ogg": beatatlas.MissingFileError, "text.mp3": beatatlas.NotAudioError,
                 "empty.wav": beatatlas.NotAudioError, "cut.wav": beatatlas.DamagedTrackError,
                 "": beatatlas.NotAudioError}
        for name, kind in cases.items():
            with self.subTest(name), self.assertRaises(kind) as raised:
                beatatlas.analyze(self.path(name))
            self.assertEqual(raised.exception.path, self.path(name))
            self.assertEqual(str(raised.exception),
                             f"{self.path(name)} {raised.exception.reason}")
            again = pickle.loads(pickle.dumps(raised.exception))
            self.assertEqual((type(again), str(again)), (kind, str(raised.exception)))
        with self.assertRaises(FileNotFoundError):
            beatatlas.analyze(self.path("missing.ogg"))

    def test_arguments_out_of_range(self) -> None:
        beyond: tuple[dict[str, Any], ...] = (
            {"tempo": "quick"}, {"beats_per_bar": 5}, {"bpm_range": (100, 150)},
            {"bpm_range": (1, 500)}, {"threads": 0}, {"memory": 0},
            {"tempo": "varied", "section": 0}, {"tempo": "varied", "section": 8.7},
            {"tempo": "simple", "sensed_seconds": -1},
            {"tempo": "simple", "sensed_seconds": math.nan},
            {"tempo": "simple", "sensed_seconds": math.inf},
            {"tempo": "off", "bpm_range": (80, 160)}, {"tempo": "varied", "beats_per_bar": 3},
            {"section": 8}, {"tempo": "constant", "sensed_seconds": 30})
        for options in beyond:
            with self.subTest(options), self.assertRaises(ValueError):
                beatatlas.analyze(self.track, **options)
        with self.assertRaises(TypeError):
            beatatlas.analyze(self.track, 44100)
        with self.assertRaises(TypeError):
            beatatlas.analyze(np.zeros(1000))
        for kind in ("u1", "i1", "u2", "i8", "bool", "complex64", "O", "U1"):
            with self.subTest(kind), self.assertRaisesRegex(TypeError, "samples are floats or"):
                beatatlas.analyze(np.zeros(1000, kind), 44100)
        for array in (np.zeros(0), np.zeros((0, 2)), np.zeros((100, 100)), np.zeros((2, 2, 2))):
            with self.subTest(array.shape), self.assertRaises(ValueError):
                beatatlas.analyze(array, 44100)
        wrong: tuple[dict[str, Any], ...] = (
            {"rate": 44100.5}, {"rate": 44100, "threads": 1.9}, {"rate": 44100, "partial": True})
        for options in wrong:
            with self.subTest(options), self.assertRaises(TypeError):
                beatatlas.analyze(np.zeros(1000), **options)
        with self.assertRaises(ValueError):
            beatatlas.analyze(np.zeros((70, 70)), 44100)
        for rate in (0, -44100, 2**31, 10**30, 1):
            with self.subTest(rate), self.assertRaises((ValueError, beatatlas.AnalysisError)):
                beatatlas.analyze(np.zeros(1000), rate)
        self.assertEqual(beatatlas.analyze(np.zeros(1000), 44100.0).frames, 1000)

    def test_an_unknown_option_is_refused_with_the_nearest_one(self) -> None:
        for option, near in (("bpmrange", "bpm_range"), ("thread", "threads"), ("sesion_key",
                                                                               "session_key")):
            with self.assertRaisesRegex(TypeError, f"no option '{option}': did you mean '{near}'"):
                beatatlas.analyze(self.track, **{option: 1})  # type: ignore[arg-type]
        with self.assertRaisesRegex(TypeError, "no option 'xyz'$"):
            beatatlas.analyze(self.track, **{"xyz": 1})  # type: ignore[arg-type]


if __name__ == "__main__":
    unittest.main()
