# SPDX-License-Identifier: MIT
"""The package against the program: both must give the same answers."""

import json
import math
import os
import unittest
import warnings
from pathlib import Path

import numpy as np

import beatatlas
from package_test import PackageTest, by_tool, samples_of, write_floats


class AnswersTest(PackageTest):
    def test_gives_the_document_of_the_program(self) -> None:
        found = beatatlas.analyze(self.track, session_key=True)
        self.assertEqual(found.to_dict(waves=True), by_tool(self.track, "--waves"))
        self.assertEqual(json.loads(found.to_json()), found.to_dict())

    def test_gives_it_in_every_tempo_mode(self) -> None:
        for mode in ("constant", "varied", "simple", "off"):
            with self.subTest(mode):
                found = beatatlas.analyze(self.track, tempo=mode, session_key=True)
                self.assertEqual(found.to_dict(), by_tool(self.track, "--tempo", mode))

    def test_brings_the_tempo_into_a_range(self) -> None:
        found = beatatlas.analyze(self.track, bpm_range=(200, 400), session_key=True)
        self.assertEqual(found.to_dict(), by_tool(self.track, "--bpm-range", "200:400"))
        assert found.raw_bpm is not None
        self.assertEqual(found.bpm, 2 * found.raw_bpm)

    def test_arrays_of_beats(self) -> None:
        found = beatatlas.analyze(self.track)
        self.assertEqual(found.beats.dtype, np.float64)
        self.assertEqual(found.beat_frames.dtype, np.int64)
        self.assertEqual(found.beats.shape, found.beat_numbers.shape)
        # Seconds are finer than frames.
        np.testing.assert_allclose(found.beats, found.beat_frames / found.rate, rtol=0,
                                   atol=1 / found.rate)
        np.testing.assert_array_equal(found.downbeats, found.beats[found.beat_numbers == 1])
        self.assertGreater(len(found.downbeats), 4)
        assert found.waves is not None
        self.assertEqual(found.waves.loud.shape, (400,))
        self.assertEqual(found.waves.dots.shape, (100,))
        with self.assertRaises(ValueError):
            found.beats[0] = 0.0

    def test_what_was_not_wanted_is_absent(self) -> None:
        found = beatatlas.analyze(self.track, tempo="off", key=False, waves=False)
        self.assertEqual((found.bpm, found.key, found.waves, len(found.beats)), (None,) * 3 + (0,))
        self.assertEqual(found.key_ranking, ())
        self.assertFalse({"tempo", "beats", "key", "sessionKey"} & set(found.to_dict(True)))

    def test_silence_has_no_tempo_no_key_and_no_nan(self) -> None:
        found = beatatlas.analyze(np.zeros(44100 * 5), 44100)
        self.assertIsNone(found.bpm)
        self.assertIsNone(found.key)
        self.assertNotIn("NaN", found.to_json(waves=True, allow_nan=False))
        self.assertIn("no tempo found", repr(found))

    def test_what_is_left_of_a_cut_off_file_is_analysed_on_request(self) -> None:
        whole = Path(self.track).read_bytes()
        Path(self.path("half.wav")).write_bytes(whole[:len(whole) // 2])
        found = beatatlas.analyze(self.path("half.wav"), partial=True, session_key=True)
        self.assertTrue(found.audio.partial)
        self.assertEqual(found.to_dict(), by_tool(self.path("half.wav"), "--partial"))

    def test_says_of_a_file_what_could_not_be_analysed_unchanged(self) -> None:
        samples, rate = samples_of(self.track)
        floats = samples / 32768
        path = self.path("loud.wav")
        for value, clipped, peak, too_loud in ((3.0, 8, 3.0, True), (-math.inf, 8, math.inf, True),
                                               (1.5, 8, 1.5, False), (math.nan, 0, 0.0, False)):
            with self.subTest(value), warnings.catch_warnings():
                warnings.simplefilter("ignore")
                floats[1000:1008, 1] = value
                write_floats(path, floats, rate)
                found = beatatlas.analyze(path, session_key=True)
                overload = found.audio.overload
                assert overload is not None
                self.assertEqual((overload.clipped, overload.peak, overload.not_numbers),
                                 (clipped, peak, 8 - clipped))
                self.assertEqual((overload.samples, overload.too_loud), (samples.size, too_loud))
                self.assertEqual(found.to_dict(waves=True), by_tool(path, "--waves"))
                self.assertEqual(json.loads(found.to_json(allow_nan=False)), found.to_dict())

    def test_warns_of_a_file_that_is_too_loud(self) -> None:
        samples, rate = samples_of(self.track)
        path = self.path("too loud.wav")
        floats = samples / 32768
        floats[1000:1002, 1] = 3.0
        write_floats(path, floats, rate)
        words = f"^{path} is too loud: .* the peak is 3, and 2 of {samples.size} samples were"
        with self.assertWarnsRegex(UserWarning, words) as warned:
            beatatlas.analyze(path)
        self.assertEqual(warned.filename, __file__)
        floats[1000:1002, 1] = 1.9
        write_floats(path, floats, rate)
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            self.assertIsNotNone(beatatlas.analyze(path).audio.overload)
            self.assertIsNone(beatatlas.analyze(self.track).audio.overload)

    def test_names_of_any_bytes(self) -> None:
        name = os.fsencode(self.folder.name) + b"/\xff\xe9 .wav"
        os.symlink(self.track, name)
        found = beatatlas.analyze(name, session_key=True)
        self.assertEqual(found.to_dict(), by_tool(name))
        self.assertEqual(beatatlas.analyze(Path(os.fsdecode(name))).bpm, found.bpm)

    def test_knows_all_keys_as_the_program_names_them(self) -> None:
        ranking = by_tool(self.track)["key"]["ranking"]
        self.assertEqual(len(ranking), 24)
        for entry in ranking:
            key = beatatlas.Key(entry["number"])
            self.assertEqual({**entry, **key.to_dict()}, entry)
        with self.assertRaises(ValueError):
            beatatlas.Key(24)


if __name__ == "__main__":
    unittest.main()
