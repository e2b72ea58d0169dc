# SPDX-License-Identifier: MIT
"""What a result is in Python: shown, compared, copied, kept."""

import copy
import pickle
import unittest

import beatatlas
from package_test import PackageTest


class ResultsTest(PackageTest):
    def test_the_repr_tells_the_main_answers(self) -> None:
        found = beatatlas.analyze(self.track)
        assert found.key is not None
        for part in (f"{found.bpm:.2f} BPM", found.key.name, found.key.camelot, "track.wav"):
            self.assertIn(part, repr(found))

    def test_results_are_compared_as_objects(self) -> None:
        one, other = beatatlas.analyze(self.track), beatatlas.analyze(self.track)
        self.assertNotEqual(one, other)
        self.assertEqual(len({one, other, one}), 2)

    def test_results_can_be_pickled_and_copied_and_stay_read_only(self) -> None:
        found = beatatlas.analyze(self.track, session_key=True)
        for again in (pickle.loads(pickle.dumps(found)), copy.copy(found), copy.deepcopy(found)):
            self.assertEqual(again.to_dict(True), found.to_dict(True))
            for array in (again.beats, again.key_analysis.chroma, again.session_key.note_counts,
                          again.waves.zoom):
                self.assertFalse(array.flags.writeable)


if __name__ == "__main__":
    unittest.main()
