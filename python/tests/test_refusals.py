# SPDX-License-Identifier: MIT
"""What is refused, and what the refusal says."""

import math
import pickle
import unittest
import warnings
from fractions import Fraction
from pathlib import Path
from typing import Any, Union

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

    def assert_refused(self, argument: str, kind: type[Exception], *arguments: Any,
                       **options: Any) -> None:
        """In one sentence that names the argument and what it takes, on one line."""
        with self.assertRaises(kind) as raised:
            beatatlas.analyze(*arguments, **options)
        self.assertNotIsInstance(raised.exception, UnicodeError)
        self.assertRegex(str(raised.exception), f"^{argument} (must|goes with) .{{,240}}$")
        self.assertTrue(raised.exception.__suppress_context__ or not raised.exception.__context__)

    def test_options_of_the_wrong_kind(self) -> None:
        wrong: dict[str, tuple[Any, ...]] = {
            "tempo": (None, 3, b"auto", ["auto"], np.zeros(2)),
            "bpm_range": (100, "80:160", ("a", 1), (80, None), (True, 160), [[80], [160]]),
            "beats_per_bar": ("4", True, [4], np.array([3, 4]), 4j),
            "progress": (3, "a", True, [], False),
            "threads": ("2", None, True, 1.9, math.nan, [2]),
            "memory": ("1G", None, False, math.inf),
            "key": ("no", None, 2, [], 1.0, np.array([True, False])),
            "session_key": ("no",), "waves": ("no",), "partial": ("no", None)}
        for name, values in wrong.items():
            for value in values:
                with self.subTest(name, value=value):
                    self.assert_refused(name, TypeError, self.track, **{name: value})
        self.assert_refused("memory", TypeError, np.zeros(44100), 44100, memory="1G")
        for value in ("32", True, np.array([8, 16]), {}):
            self.assert_refused("section", TypeError, self.track, tempo="varied", section=value)
        for value in ("30", True, [30], 1j):
            self.assert_refused("sensed_seconds", TypeError, self.track, tempo="simple",
                                sensed_seconds=value)

    def test_options_out_of_range(self) -> None:
        beyond: tuple[tuple[str, dict[str, Any]], ...] = (
            ("tempo", {"tempo": "quick"}), ("beats_per_bar", {"beats_per_bar": 5}),
            ("beats_per_bar", {"beats_per_bar": math.nan}), ("threads", {"threads": 0}),
            ("threads", {"threads": 2**31}), ("memory", {"memory": 0}),
            ("section", {"tempo": "varied", "section": 0}),
            ("section", {"tempo": "varied", "section": 8.7}),
            ("bpm_range", {"tempo": "off", "bpm_range": (80, 160)}),
            ("beats_per_bar", {"tempo": "varied", "beats_per_bar": 3}),
            ("section", {"section": 8}),
            ("sensed_seconds", {"tempo": "constant", "sensed_seconds": 30}))
        self.assert_refused("rate", ValueError, np.zeros(44100), Fraction(10**400, 3))
        for name, options in beyond:
            with self.subTest(options):
                self.assert_refused(name, ValueError, self.track, **options)
        for tempi in ((100, 150), (200, 100), (1, 500), (-80, 160), (600, 1200), (80, math.nan),
                      (80, math.inf), (80,), (80, 160, 320), (10**400, 10**401)):
            with self.subTest(tempi):
                self.assert_refused("bpm_range", ValueError, self.track, bpm_range=tempi)
        for seconds in (-1, 0, math.nan, math.inf, 48696, 10**400):
            with self.subTest(seconds):
                self.assert_refused("sensed_seconds", ValueError, self.track, tempo="simple",
                                    sensed_seconds=seconds)

    def test_options_of_every_type_of_number(self) -> None:
        plain = beatatlas.analyze(self.track, beats_per_bar=4, bpm_range=(80, 160)).to_dict(True)
        kinds: tuple[Any, ...] = (np.int8, np.uint64, np.float32, float, np.array)
        for kind in kinds:
            options: dict[str, Any] = {"beats_per_bar": kind(4), "threads": kind(1), "waves": 1,
                                       "bpm_range": np.array([80, 160]), "key": np.bool_(True)}
            self.assertEqual(beatatlas.analyze(self.track, **options).to_dict(True), plain)

    def test_sources_that_are_neither_a_name_nor_samples(self) -> None:
        no_source: tuple[Any, ...] = (None, 123, 1.5, True, {}, object(), len, self,
                                      (1.0 for _ in "a"), ["a.wav", "b.wav"], [None],
                                      np.array("a.wav"), bytearray(9))
        for source in no_source:
            for words in ((), (44100,)):
                with self.subTest(source, words=words):
                    self.assert_refused("source", TypeError, source, *words)
        for name in ("a\0.wav", b"\0", "\ud800.wav"):
            with self.subTest(name):
                self.assert_refused("source", ValueError, name)

    def test_the_name_of_no_file_is_that_of_a_missing_one(self) -> None:
        names: tuple[Union[str, bytes], ...] = ("", b"")
        for name in names:
            with self.assertRaises(FileNotFoundError) as raised:
                beatatlas.analyze(name)
            self.assertEqual(str(raised.exception),
                             "'' is an empty name, which no file has")

    def test_arrays_of_other_kinds_and_shapes(self) -> None:
        for kind in ("u1", "i1", "u2", "i8", "bool", "complex64", "O", "U1", "S1", "V8", "M8[s]",
                     "f4,f4"):
            with self.subTest(kind):
                self.assert_refused("source", TypeError, np.zeros(1000, kind), 44100)
        for shape in ((0,), (0, 2), (2, 0), (100, 100), (70, 70), (2, 2, 2)):
            with self.subTest(shape):
                self.assert_refused("source", ValueError, np.zeros(shape), 44100)
        masked: Any = np.ma.MaskedArray([0.0, 0.1], [True, False])  # type: ignore[no-untyped-call]
        self.assert_refused("source", ValueError, masked, 44100)
        ragged: Any = [[0.0], [0.0, 0.1]]
        with warnings.catch_warnings(), self.assertRaisesRegex(Exception, "^source must") as raised:
            warnings.simplefilter("ignore")  # of NumPy, where it is old
            beatatlas.analyze(ragged, 44100)
        self.assertIn(type(raised.exception), (TypeError, ValueError))

    def test_rates(self) -> None:
        samples = np.zeros(3000)
        wrong: tuple[Any, ...] = (None, True, "44100", b"1", math.nan, math.inf, 44100.5, [1], 1j)
        for rate in wrong:
            with self.subTest(rate):
                self.assert_refused("rate", TypeError, samples, rate)
        for rate in (0, -44100, 999, 1536001, 2**31, 10**30, 1e30):
            with self.subTest(rate):
                self.assert_refused("rate", ValueError, samples, rate)
        self.assert_refused("rate", TypeError, self.track, 44100)
        self.assert_refused("partial", TypeError, samples, 44100, partial=True)
        # The libraries take all that is not refused.
        taken: tuple[Any, ...] = (1000, 1536000, 44100.0, np.float32(44100), np.int64(44100),
                                  np.array(44100))
        for rate in taken:
            with self.subTest(rate):
                found = beatatlas.analyze(samples, rate, tempo="off", key=False)
                self.assertEqual(found.audio.rate, int(rate))

    def test_an_unknown_option_is_refused_with_the_nearest_one_or_all(self) -> None:
        for option, near in (("bpmrange", "bpm_range"), ("thread", "threads"), ("sesion_key",
                                                                               "session_key")):
            with self.assertRaisesRegex(TypeError, f"no option '{option}': did you mean '{near}'"):
                beatatlas.analyze(self.track, **{option: 1})  # type: ignore[arg-type]
        with self.assertRaisesRegex(TypeError, "no option 'sr': it has source, rate, tempo, .*$"):
            beatatlas.analyze(self.track, **{"sr": 44100})  # type: ignore[arg-type]


if __name__ == "__main__":
    unittest.main()
