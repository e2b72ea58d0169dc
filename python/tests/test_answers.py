# SPDX-License-Identifier: MIT
"""The package against the program: both must give the same answers."""

import json
import os
import unittest
from pathlib import Path

import numpy as np

import beatatlas
from package_test import PackageTest, by_tool


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
