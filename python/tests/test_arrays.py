# SPDX-License-Identifier: MIT
"""Samples in memory, of every kind and layout."""

import gc
import math
import sys
import unittest
import warnings
from typing import Any

import numpy as np
from numpy.typing import NDArray

import beatatlas
from package_test import PackageTest, samples_of, write_floats


class ArraysTest(PackageTest):
    def test_arrays_give_the_answers_of_their_file(self) -> None:
        samples, rate = samples_of(self.track)
        of_file = beatatlas.analyze(self.track).to_dict(waves=True)
        floats = (samples / 32768).astype(np.float32)
        locked = samples.copy()
        locked.setflags(write=False)
        spread = np.zeros((len(samples), 5), np.int16)
        spread[:, 1:4:2] = samples
        arrays: tuple[NDArray[Any], ...] = (
            samples, samples.T, locked, spread[:, 1:4:2], samples[::-1][::-1],
            samples.astype(">i2"), samples.astype(np.int32) * 65536, samples.astype(">i4") * 65536,
            floats, floats.astype(">f4"), floats.astype(np.float64), floats.astype(">f8"),
            np.asfortranarray(floats), samples.astype(np.longdouble) / 32768)
        for array in arrays:
            with self.subTest(f"{array.dtype} {array.strides}"):
                before = array.copy()
                found = beatatlas.analyze(array, rate).to_dict(waves=True)
                for part in ("tempo", "beats", "key", "waves", "frames"):
                    self.assertEqual(found[part], of_file[part])
                np.testing.assert_array_equal(array, before)

    def test_mono_is_the_same_in_one_axis_and_in_two(self) -> None:
        samples, rate = samples_of(self.track)
        mono = samples[:, 0]
        one = beatatlas.analyze(mono, rate)
        self.assertEqual((one.audio.channels, one.frames), (1, len(mono)))
        others: tuple[NDArray[Any], ...] = (mono[:, np.newaxis], mono[np.newaxis], samples[:, :1])
        for array in others:
            self.assertEqual(beatatlas.analyze(array, rate).to_dict(True), one.to_dict(True))

    def test_other_rates_are_converted(self) -> None:
        samples, rate = samples_of(self.track)
        self.assertEqual(rate, 44100)
        half = samples[::2].astype(np.float64) / 32768
        found = beatatlas.analyze(half, 22050)
        self.assertEqual(found.rate, 44100)
        of_file = beatatlas.analyze(self.track)
        assert found.bpm is not None and of_file.bpm is not None
        self.assertAlmostEqual(found.bpm, of_file.bpm, delta=0.05)

    def test_values_that_are_no_numbers_are_refused_with_their_place(self) -> None:
        for value in (math.nan, math.inf, -math.inf):
            samples = np.zeros((200000, 2))
            samples[150000:, 1] = value
            arrays: tuple[NDArray[Any], ...] = (samples, samples.T, samples.astype(np.float32),
                                                samples.astype(">f8"))
            for array in arrays:
                with self.assertRaisesRegex(ValueError, f"source must .* frame 150000 has {value}"):
                    beatatlas.analyze(array, 44100)
        with self.assertRaisesRegex(ValueError, "frame 7 has inf"):
            beatatlas.analyze(np.array([0.0] * 7 + [1e300] * 100), 44100)

    def test_says_where_samples_are_far_beyond_full_scale(self) -> None:
        once, often = np.zeros(1000), np.zeros(1000)
        once[3], often[:11] = 2.0, 1.5  # 2.0 is the limit for one, 1 % for many
        for loud, words in ((once, "the peak is 2, and 1 of 1000 samples"),
                            (often, "the peak is 1.5, and 11 of 1000 samples")):
            with self.assertWarnsRegex(UserWarning, words) as warned:
                beatatlas.analyze(loud, 44100, tempo="off", key=False)
            self.assertEqual(warned.filename, __file__)
        once[3], often[10] = 1.9, 0.0
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            beatatlas.analyze(once, 44100, tempo="off", key=False)
            beatatlas.analyze(often, 44100, tempo="off", key=False)

    def test_counts_what_is_clipped_as_in_a_file(self) -> None:
        samples, rate = samples_of(self.track)
        floats = samples / 32768
        floats[1000:1008, 1] = 1.5
        write_floats(self.path("loud.wav"), floats, rate)
        overload = beatatlas.Overload(samples.size, 8, 1.5, 0, False)
        for found in (beatatlas.analyze(self.path("loud.wav")), beatatlas.analyze(floats, rate)):
            self.assertEqual(found.audio.overload, overload)

    def test_samples_are_let_go(self) -> None:
        samples = np.zeros(44100, np.float32)
        gc.collect()
        gc.disable()
        try:
            before = sys.getrefcount(samples)
            beatatlas.analyze(samples, 44100)
            self.assertEqual(sys.getrefcount(samples), before)
        finally:
            gc.enable()


if __name__ == "__main__":
    unittest.main()
