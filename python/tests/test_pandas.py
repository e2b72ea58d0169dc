# SPDX-License-Identifier: MIT
"""Results as tables of pandas."""

import unittest

import pandas

import beatatlas
from package_test import PackageTest


class PandasTest(PackageTest):
    def test_beats_are_rows_of_plain_columns(self) -> None:
        found = beatatlas.analyze(self.track, waves=False)
        table = pandas.DataFrame(found.to_dict()["beats"])
        self.assertEqual(list(table), ["frame", "seconds", "beat", "bpm"])
        self.assertEqual([kind.kind for kind in table.dtypes], ["i", "f", "i", "f"])
        self.assertEqual(table.seconds.tolist(), found.beats.tolist())

    def test_tracks_are_rows_with_their_answers_as_columns(self) -> None:
        found = [beatatlas.analyze(self.track, key=wants_key) for wants_key in (True, False)]
        table = pandas.json_normalize([track.to_dict() for track in found])
        self.assertEqual(table["tempo.bpm"].tolist(), [track.bpm for track in found])
        self.assertEqual(table["key.camelot"].dropna().tolist(), ["8A"])
        self.assertEqual(table["tempo.confidence.level"].dtype.kind, "f")

    def test_keys_group_and_sort_tracks(self) -> None:
        keys = [beatatlas.Key(number) for number in (21, 0, 21)]
        table = pandas.DataFrame({"key": keys, "bpm": [120.0, 126.0, 130.0]})
        means = table.groupby("key").bpm.mean()
        self.assertEqual(means.to_dict(), {keys[0]: 125.0, keys[1]: 126.0})
        self.assertEqual(table.sort_values("key").bpm.tolist(), [126.0, 120.0, 130.0])

    def test_numbers_and_samples_from_a_table_are_taken(self) -> None:
        # A column with holes is one of floats.
        table = pandas.DataFrame({"rate": [44100, None], "bar": [4, None]})
        found = beatatlas.analyze(pandas.Series([0.0] * 1000).to_numpy(), table.rate[0],
                                  beats_per_bar=table.bar[0])
        self.assertEqual(found.frames, 1000)


if __name__ == "__main__":
    unittest.main()
