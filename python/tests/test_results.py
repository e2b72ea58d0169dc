# SPDX-License-Identifier: MIT
"""What a result is in Python: shown, compared, copied, kept."""

import copy
import dataclasses
import errno
import json
import os
import pickle
import unittest
from typing import Any

import numpy as np

import beatatlas
from beatatlas.analysis import WAVE_POINT
from package_test import PackageTest


class ResultsTest(PackageTest):
    def test_the_repr_tells_the_main_answers(self) -> None:
        found = beatatlas.analyze(self.track)
        assert found.key is not None
        for part in (f"{found.bpm:.2f} BPM", found.key.name, found.key.camelot, "track.wav"):
            self.assertIn(part, repr(found))

    def test_the_repr_tells_the_length_rounded_as_a_whole(self) -> None:
        found = beatatlas.analyze(np.zeros(44100), 44100, tempo="off", key=False)
        for seconds, shown in ((59.94, "0:59.9"), (59.96, "1:00.0"), (119.98, "2:00.0"),
                               (60.1, "1:00.1"), (7.0, "0:07.0")):
            long = dataclasses.replace(found, frames=round(seconds * 44100))
            self.assertEqual(repr(long), f"<Analysis of array: {shown}>")

    def test_what_is_shown_in_a_conversation_fits_a_line_or_two(self) -> None:
        found = beatatlas.analyze(self.track, session_key=True)
        assert found.key and found.key_analysis and found.session_key and found.waves
        second = found.key_ranking[1].key
        self.assertEqual(repr(found.key), "<Key 12: A minor, 8A>")
        self.assertIn("key=<Key 12: A minor, 8A>", repr(found.key_ranking[0]))
        for part in (f"A minor (8A, {found.key_analysis.confidence:.0%})", second.name, "A4 at 4"):
            self.assertIn(part, repr(found.key_analysis))
        for part in ("A minor (8A)", found.session_key.ranking[1][0].name):
            self.assertIn(part, repr(found.session_key))
        loudest = found.waves.loud["level"].max()
        for part in ("loud 400 points", f" to {loudest:.0f};", "dots 100 points",
                     f"zoom {len(found.waves.zoom)} points", "150 points a second"):
            self.assertIn(part, repr(found.waves))
        for record in (found, found.key, found.waves, found.audio, found.confidence,
                       found.alternatives[0], found.stretches[0], found.key_analysis,
                       found.session_key, found.key_ranking[0], found.key_analysis.segments[0]):
            self.assertLess(len(repr(record)), 240)
            self.assertNotIn("\n", repr(record))

    def test_empty_waves_are_shown_too(self) -> None:
        empty = np.zeros(0, WAVE_POINT)
        self.assertEqual(repr(beatatlas.Waves(empty, empty, empty)),
                         "<Waves: loud empty; dots empty; zoom empty, 150 points a second>")

    def test_results_are_equal_where_all_their_members_are(self) -> None:
        def analyze(path: str = self.track, **options: Any) -> beatatlas.Analysis:
            return beatatlas.analyze(path, session_key=True, **options)
        one, other = analyze(), analyze()
        self.assertEqual(one, other)
        for part in ("key_analysis", "session_key", "waves", "audio", "confidence"):
            self.assertEqual(getattr(one, part), getattr(other, part))
        self.assertEqual(len({one, other}), 1)
        self.assertEqual(one, pickle.loads(pickle.dumps(one)))
        linked = self.path("linked.wav")
        os.link(self.track, linked)
        moved = dataclasses.replace(one, beats=one.beats + 0.001)
        louder = one.waves and dataclasses.replace(one.waves, loud=one.waves.loud[::-1])
        for different in (analyze(linked), analyze(waves=False), analyze(tempo="constant"), moved,
                          dataclasses.replace(one, waves=louder), one.to_dict(), None):
            self.assertNotEqual(one, different)

    def test_a_key_has_a_number_that_json_takes(self) -> None:
        for number in (np.int64(21), 21.0):
            key = beatatlas.Key(number)  # type: ignore[arg-type]
            self.assertEqual(key, beatatlas.Key(21))
            self.assertIn('"number": 21, "name": "F# minor"', json.dumps(key.to_dict()))
        for number, kind in ((24, ValueError), (-1, ValueError), ("Am", TypeError),
                             (True, TypeError)):
            with self.assertRaisesRegex(kind, "^number must be a whole number from 0 to 23, not"):
                beatatlas.Key(number)  # type: ignore[arg-type]

    def test_keys_can_be_sorted_and_printed_in_columns(self) -> None:
        keys = [beatatlas.Key(number) for number in (12, 0, 23)]
        self.assertEqual([str(key) for key in sorted(keys)], ["A major", "A minor", "G# minor"])
        self.assertEqual(f"{keys[0]:>10}|{keys[0]}", "   A minor|A minor")

    def test_a_missing_file_is_one_to_who_knows_only_the_systems_errors(self) -> None:
        for error in (beatatlas.MissingFileError("a.wav", "is gone"),
                      pickle.loads(pickle.dumps(beatatlas.MissingFileError("a.wav", "is gone")))):
            self.assertEqual((error.errno, error.filename, str(error)),
                             (errno.ENOENT, "a.wav", "a.wav is gone"))
        unreadable = beatatlas.UnreadableFileError("a.wav", "is locked")
        self.assertEqual((unreadable.filename, str(unreadable)), ("a.wav", "a.wav is locked"))

    def test_results_can_be_pickled_and_copied_and_stay_read_only(self) -> None:
        found = beatatlas.analyze(self.track, session_key=True)
        for again in (pickle.loads(pickle.dumps(found)), copy.copy(found), copy.deepcopy(found)):
            self.assertEqual(again.to_dict(True), found.to_dict(True))
            for array in (again.beats, again.key_analysis.chroma, again.session_key.note_counts,
                          again.waves.zoom):
                self.assertFalse(array.flags.writeable)


if __name__ == "__main__":
    unittest.main()
