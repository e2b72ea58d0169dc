# SPDX-License-Identifier: MIT
"""The package against the program: both must give the same answers.

Needs in the environment: BEATATLAS_TOOL, the program, and BEATATLAS_DEMO, which writes music.
"""

import ctypes
import gc
import json
import math
import os
import pickle
import signal
import subprocess
import sys
import tempfile
import threading
import unittest
import wave
from pathlib import Path

import numpy as np

import beatatlas
from beatatlas import _library, _read

TOOL = os.environ["BEATATLAS_TOOL"]
DEMO = os.environ["BEATATLAS_DEMO"]


def by_tool(path, *options):
    """The program's JSON entry of a file."""
    run = subprocess.run([TOOL, "analyze", "--json", *options, path], check=True,
                         capture_output=True)
    return json.loads(run.stdout)["tracks"][0]


def samples_of(path):
    """Shape (frames, channels), 16-bit integers."""
    with wave.open(str(path)) as file:
        frames = np.frombuffer(file.readframes(file.getnframes()), np.int16)
        return frames.reshape(-1, file.getnchannels()), file.getframerate()


class PackageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.track = os.path.join(cls.folder.name, "track.wav")
        subprocess.run([DEMO, cls.track], check=True)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def path(self, name):
        return os.path.join(self.folder.name, name)

    def test_gives_the_document_of_the_program(self):
        found = beatatlas.analyze(self.track, session_key=True)
        self.assertEqual(found.to_dict(waves=True), by_tool(self.track, "--waves"))
        self.assertEqual(json.loads(found.to_json()), found.to_dict())

    def test_gives_it_in_every_tempo_mode(self):
        for mode in ("constant", "varied", "simple", "off"):
            with self.subTest(mode):
                found = beatatlas.analyze(self.track, tempo=mode, session_key=True)
                self.assertEqual(found.to_dict(), by_tool(self.track, "--tempo", mode))

    def test_brings_the_tempo_into_a_range(self):
        found = beatatlas.analyze(self.track, bpm_range=(200, 400), session_key=True)
        self.assertEqual(found.to_dict(), by_tool(self.track, "--bpm-range", "200:400"))
        self.assertEqual(found.bpm, 2 * found.raw_bpm)

    def test_arrays_give_the_answers_of_their_file(self):
        samples, rate = samples_of(self.track)
        of_file = beatatlas.analyze(self.track).to_dict(waves=True)
        floats = (samples / 32768).astype(np.float32)
        for array in (samples, samples.T, floats, floats.astype(np.float64),
                      np.asfortranarray(floats)):
            found = beatatlas.analyze(array, rate).to_dict(waves=True)
            for part in ("tempo", "beats", "key", "waves", "frames"):
                self.assertEqual(found[part], of_file[part])

    def test_arrays_of_beats(self):
        found = beatatlas.analyze(self.track)
        self.assertEqual(found.beats.dtype, np.float64)
        self.assertEqual(found.beat_frames.dtype, np.int64)
        self.assertEqual(found.beats.shape, found.beat_numbers.shape)
        # Seconds are finer than frames.
        np.testing.assert_allclose(found.beats, found.beat_frames / found.rate, rtol=0,
                                   atol=1 / found.rate)
        np.testing.assert_array_equal(found.downbeats, found.beats[found.beat_numbers == 1])
        self.assertGreater(len(found.downbeats), 4)
        self.assertEqual(found.waves.loud.shape, (400,))
        self.assertEqual(found.waves.dots.shape, (100,))
        with self.assertRaises(ValueError):
            found.beats[0] = 0.0

    def test_other_rates_are_converted(self):
        samples, rate = samples_of(self.track)
        self.assertEqual(rate, 44100)
        half = samples[::2].astype(np.float64) / 32768
        found = beatatlas.analyze(half, 22050)
        self.assertEqual(found.rate, 44100)
        self.assertAlmostEqual(found.bpm, beatatlas.analyze(self.track).bpm, delta=0.05)

    def test_what_was_not_wanted_is_absent(self):
        found = beatatlas.analyze(self.track, tempo="off", key=False, waves=False)
        self.assertEqual((found.bpm, found.key, found.waves, len(found.beats)), (None,) * 3 + (0,))
        self.assertEqual(found.key_ranking, ())
        self.assertFalse({"tempo", "beats", "key", "sessionKey"} & set(found.to_dict(True)))

    def test_silence_has_no_tempo_no_key_and_no_nan(self):
        found = beatatlas.analyze(np.zeros(44100 * 5), 44100)
        self.assertIsNone(found.bpm)
        self.assertIsNone(found.key)
        noise = np.full(44100 * 5, math.nan)
        for track in (found, beatatlas.analyze(noise, 44100)):
            self.assertNotIn("NaN", track.to_json(waves=True, allow_nan=False))
        self.assertIn("no tempo found", repr(found))

    def test_errors_name_the_file(self):
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

    def test_what_is_left_of_a_cut_off_file_is_analysed_on_request(self):
        whole = Path(self.track).read_bytes()
        Path(self.path("half.wav")).write_bytes(whole[:len(whole) // 2])
        found = beatatlas.analyze(self.path("half.wav"), partial=True, session_key=True)
        self.assertTrue(found.audio.partial)
        self.assertEqual(found.to_dict(), by_tool(self.path("half.wav"), "--partial"))

    def test_names_of_any_bytes(self):
        name = os.fsencode(self.folder.name) + b"/\xff\xe9 .wav"
        os.symlink(self.track, name)
        found = beatatlas.analyze(name, session_key=True)
        self.assertEqual(found.to_dict(), by_tool(name))
        self.assertEqual(beatatlas.analyze(Path(os.fsdecode(name))).bpm, found.bpm)

    def test_arguments_out_of_range(self):
        for options in ({"tempo": "quick"}, {"beats_per_bar": 5}, {"bpm_range": (100, 150)},
                        {"bpm_range": (1, 500)}, {"threads": 0}, {"memory": 0}, {"section": 0},
                        {"sensed_seconds": -1}, {"sensed_seconds": math.nan}):
            with self.subTest(options), self.assertRaises(ValueError):
                beatatlas.analyze(self.track, **options)
        with self.assertRaises(TypeError):
            beatatlas.analyze(self.track, 44100)
        with self.assertRaises(TypeError):
            beatatlas.analyze(np.zeros(1000))
        with self.assertRaises(TypeError):
            beatatlas.analyze(np.zeros(1000, np.uint8), 44100)
        for array in (np.zeros(0), np.zeros((0, 2)), np.zeros((100, 100)), np.zeros((2, 2, 2))):
            with self.subTest(array.shape), self.assertRaises(ValueError):
                beatatlas.analyze(array, 44100)
        for options in ({"rate": 44100.5}, {"rate": 44100, "threads": 1.9},
                        {"rate": 44100, "section": 8.7}, {"rate": 44100, "partial": True}):
            with self.subTest(options), self.assertRaises(TypeError):
                beatatlas.analyze(np.zeros(1000), **options)
        with self.assertRaises(ValueError):
            beatatlas.analyze([[0.0] * 70] * 70, 44100)

    def test_samples_are_let_go(self):
        samples = np.zeros(44100, np.float32)
        gc.collect()
        gc.disable()
        try:
            before = sys.getrefcount(samples)
            beatatlas.analyze(samples, 44100)
            self.assertEqual(sys.getrefcount(samples), before)
        finally:
            gc.enable()

    def test_results_are_compared_as_objects(self):
        one, other = beatatlas.analyze(self.track), beatatlas.analyze(self.track)
        self.assertNotEqual(one, other)
        self.assertEqual(len({one, other, one}), 2)

    def test_progress_grows_to_one(self):
        for threads in (1, 2):
            shares = []
            beatatlas.analyze(self.track, threads=threads, progress=shares.append)
            self.assertEqual(shares, sorted(shares))
            self.assertEqual(shares[-1], 1.0)

    def test_what_progress_raises_ends_the_analysis(self):
        def stop(fraction):
            raise RuntimeError("enough")
        with self.assertRaisesRegex(RuntimeError, "enough"):
            beatatlas.analyze(self.track, progress=stop)

    def test_ctrl_c_ends_the_analysis(self):
        long = np.random.default_rng(1).uniform(-1, 1, 44100 * 600)
        timer = threading.Timer(0.5, os.kill, (os.getpid(), signal.SIGINT))
        timer.start()
        with self.assertRaises(KeyboardInterrupt):
            beatatlas.analyze(long, 44100)
        timer.join()

    def test_threads_analyse_side_by_side_with_the_same_results(self):
        alone = beatatlas.analyze(self.track).to_dict(True)
        found = [None] * 4

        def work(index):
            found[index] = beatatlas.analyze(self.track, threads=1 + index % 2).to_dict(True)
        threads = [threading.Thread(target=work, args=(index,)) for index in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(found, [alone] * 4)

    def test_results_can_be_pickled(self):
        found = beatatlas.analyze(self.track)
        again = pickle.loads(pickle.dumps(found))
        self.assertEqual(again.to_dict(True), found.to_dict(True))

    def test_the_repr_tells_the_main_answers(self):
        found = beatatlas.analyze(self.track)
        for part in (f"{found.bpm:.2f} BPM", found.key.name, found.key.camelot, "track.wav"):
            self.assertIn(part, repr(found))

    def test_runs_as_a_module_with_the_document_of_the_program(self):
        missing = os.fsencode(self.folder.name) + b"/\xff"
        names = [self.track, "nothing", missing]
        run = subprocess.run([sys.executable, "-m", "beatatlas", "--json", *names],
                             capture_output=True, env={**os.environ, "PYTHONIOENCODING": "utf-8"})
        tool = subprocess.run([TOOL, "analyze", "--json", *names], capture_output=True)
        self.assertEqual(json.loads(run.stdout), json.loads(tool.stdout))
        self.assertEqual((run.returncode, tool.returncode), (1, 1))

    def test_knows_all_keys_as_the_program_names_them(self):
        ranking = by_tool(self.track)["key"]["ranking"]
        self.assertEqual(len(ranking), 24)
        for entry in ranking:
            key = beatatlas.Key(entry["number"])
            self.assertEqual({**entry, **key.to_dict()}, entry)
        with self.assertRaises(ValueError):
            beatatlas.Key(24)

    def test_the_version_is_that_of_the_program(self):
        version = subprocess.run([TOOL, "--version"], check=True, capture_output=True, text=True)
        self.assertIn(beatatlas.__version__, version.stdout.split())


class LayoutTest(unittest.TestCase):
    """The records as the C headers have them; the headers' own tests state the same numbers."""

    def test_records_have_the_sizes_of_the_headers(self):
        self.assertEqual(ctypes.sizeof(_library.TrackOptions), 88)
        self.assertEqual(ctypes.sizeof(_library.FileOptions), 24)
        self.assertEqual(ctypes.sizeof(_library.FileFacts), 80)
        self.assertEqual((_read._BEAT.itemsize, _read._READING.itemsize), (32, 32))
        self.assertEqual((_read._STRETCH.itemsize, _read._CANDIDATE.itemsize), (24, 24))
        self.assertEqual((_read._SEGMENT.itemsize, _read._KEY_SCORE.itemsize), (32, 16))


if __name__ == "__main__":
    unittest.main()
