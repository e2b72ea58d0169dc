# SPDX-License-Identifier: MIT
"""The package against the program: both must give the same answers.

Needs in the environment: BEATATLAS_TOOL, the program, and BEATATLAS_DEMO, which writes music.
"""

import copy
import ctypes
import gc
import json
import math
import multiprocessing
import os
import pickle
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import warnings
import wave
from pathlib import Path
from typing import Any, Optional, Union

import numpy as np
from numpy.typing import NDArray

import beatatlas
from beatatlas import _library, _read
from beatatlas._version import INTERFACE

TOOL = os.environ["BEATATLAS_TOOL"]
DEMO = os.environ["BEATATLAS_DEMO"]


def by_tool(path: Union[str, bytes], *options: str) -> dict[str, Any]:
    """The program's JSON entry of a file."""
    run = subprocess.run([TOOL, "analyze", "--json", *options, path], check=True,
                         capture_output=True)
    entry: dict[str, Any] = json.loads(run.stdout)["tracks"][0]
    return entry


def samples_of(path: str) -> tuple[NDArray[np.int16], int]:
    """Shape (frames, channels), 16-bit integers."""
    with wave.open(str(path)) as file:
        frames = np.frombuffer(file.readframes(file.getnframes()), np.int16)
        return frames.reshape(-1, file.getnchannels()), file.getframerate()


def threads_of_the_system() -> set[str]:
    return set(os.listdir("/proc/self/task"))


class PackageTest(unittest.TestCase):
    folder: "tempfile.TemporaryDirectory[str]"
    track: str

    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = tempfile.TemporaryDirectory()
        cls.track = os.path.join(cls.folder.name, "track.wav")
        subprocess.run([DEMO, cls.track, "--seconds", "30"], check=True)

    @classmethod
    def tearDownClass(cls) -> None:
        cls.folder.cleanup()

    def path(self, name: str) -> str:
        return os.path.join(self.folder.name, name)

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

    def test_values_that_are_no_numbers_are_refused_with_their_place(self) -> None:
        for value in (math.nan, math.inf, -math.inf):
            samples = np.zeros((200000, 2))
            samples[150000:, 1] = value
            arrays: tuple[NDArray[Any], ...] = (samples, samples.T, samples.astype(np.float32),
                                                samples.astype(">f8"))
            for array in arrays:
                with self.assertRaisesRegex(ValueError, f"frame 150000 has {value}"):
                    beatatlas.analyze(array, 44100)
        with self.assertRaisesRegex(ValueError, "frame 7 has inf"):
            beatatlas.analyze(np.array([0.0] * 7 + [1e300] * 100), 44100)

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

    def test_other_rates_are_converted(self) -> None:
        samples, rate = samples_of(self.track)
        self.assertEqual(rate, 44100)
        half = samples[::2].astype(np.float64) / 32768
        found = beatatlas.analyze(half, 22050)
        self.assertEqual(found.rate, 44100)
        of_file = beatatlas.analyze(self.track)
        assert found.bpm is not None and of_file.bpm is not None
        self.assertAlmostEqual(found.bpm, of_file.bpm, delta=0.05)

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

    def test_says_where_samples_are_far_beyond_full_scale(self) -> None:
        once, often = np.zeros(1000), np.zeros(1000)
        once[3], often[:11] = 2.0, 1.5  # 2.0 is the limit for one, 1 % for many
        for loud, words in ((once, "they reach 2, and 1 of them"), (often, "reach 1.5, and 11")):
            with self.assertWarnsRegex(UserWarning, words) as warned:
                beatatlas.analyze(loud, 44100, tempo="off", key=False)
            self.assertEqual(warned.filename, __file__)
        once[3], often[10] = 1.9, 0.0
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            beatatlas.analyze(once, 44100, tempo="off", key=False)
            beatatlas.analyze(often, 44100, tempo="off", key=False)

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

    def test_results_are_compared_as_objects(self) -> None:
        one, other = beatatlas.analyze(self.track), beatatlas.analyze(self.track)
        self.assertNotEqual(one, other)
        self.assertEqual(len({one, other, one}), 2)

    def test_progress_grows_to_one(self) -> None:
        for threads in (1, 2):
            shares: list[float] = []
            beatatlas.analyze(self.track, threads=threads, progress=shares.append)
            self.assertEqual(shares, sorted(shares))
            self.assertEqual(shares[-1], 1.0)

    def test_what_progress_raises_ends_the_analysis(self) -> None:
        def stop(fraction: float) -> None:
            raise RuntimeError("enough")
        with self.assertRaisesRegex(RuntimeError, "enough"):
            beatatlas.analyze(self.track, progress=stop)

    def test_ctrl_c_ends_the_analysis_at_once(self) -> None:
        long = np.random.default_rng(1).uniform(-1, 1, 44100 * 600).astype(np.float32)
        before = threads_of_the_system()
        sent: list[float] = []

        def interrupt() -> None:
            sent.append(time.process_time())
            os.kill(os.getpid(), signal.SIGINT)

        for most in (1, 2):
            timer = threading.Timer(0.5, interrupt)
            timer.start()
            with self.assertRaises(KeyboardInterrupt):
                beatatlas.analyze(long, 44100, threads=most)
            # Of the processor, which others may keep busy; all of it would take many seconds.
            self.assertLess(time.process_time() - sent[-1], 0.5)
            timer.join()
            # A thread that was waited for may take the system a moment more.
            for _ in range(1000):
                if threads_of_the_system() == before:
                    break
                time.sleep(0.01)
            self.assertEqual(threads_of_the_system(), before)
            self.assertEqual(threading.active_count(), 1)

    def test_threads_analyse_side_by_side_with_the_same_results(self) -> None:
        alone = beatatlas.analyze(self.track).to_dict(True)
        found: list[Optional[dict[str, object]]] = [None] * 4

        def work(index: int) -> None:
            found[index] = beatatlas.analyze(self.track, threads=1 + index % 2).to_dict(True)
        threads = [threading.Thread(target=work, args=(index,)) for index in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(found, [alone] * 4)

    def test_results_can_be_pickled_and_copied_and_stay_read_only(self) -> None:
        found = beatatlas.analyze(self.track, session_key=True)
        for again in (pickle.loads(pickle.dumps(found)), copy.copy(found), copy.deepcopy(found)):
            self.assertEqual(again.to_dict(True), found.to_dict(True))
            for array in (again.beats, again.key_analysis.chroma, again.session_key.note_counts,
                          again.waves.zoom):
                self.assertFalse(array.flags.writeable)

    def test_works_in_processes_made_after_it_has_worked(self) -> None:
        found = beatatlas.analyze(self.track)
        for method in ("fork", "spawn", "forkserver"):
            with self.subTest(method), multiprocessing.get_context(method).Pool(2) as pool:
                for other in pool.map(beatatlas.analyze, [self.track] * 2):
                    self.assertEqual(other.to_dict(True), found.to_dict(True))

    def test_the_repr_tells_the_main_answers(self) -> None:
        found = beatatlas.analyze(self.track)
        assert found.key is not None
        for part in (f"{found.bpm:.2f} BPM", found.key.name, found.key.camelot, "track.wav"):
            self.assertIn(part, repr(found))

    def test_runs_as_a_module_with_the_document_of_the_program(self) -> None:
        missing = os.fsencode(self.folder.name) + b"/\xff"
        names: list[Union[str, bytes]] = [self.track, "nothing", missing]
        run = subprocess.run([sys.executable, "-m", "beatatlas", "--json", *names],
                             capture_output=True)
        tool = subprocess.run([TOOL, "analyze", "--json", *names], capture_output=True)
        self.assertEqual(json.loads(run.stdout), json.loads(tool.stdout))
        self.assertEqual((run.returncode, tool.returncode), (1, 1))

    def as_module(self, *words: str, **environment: str) -> "subprocess.CompletedProcess[str]":
        return subprocess.run([sys.executable, "-m", "beatatlas", *words], capture_output=True,
                              text=True, env={**os.environ, **environment})

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

    def test_says_what_to_install_where_a_library_is_missing(self) -> None:
        Path(self.path("lib")).mkdir()
        name = f"libbeatatlas_track.so.{INTERFACE}"
        Path(self.path("lib"), name).write_text("no library")
        code = "import beatatlas"
        run = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True,
                             env={**os.environ, "BEATATLAS_LIBRARY_PATH": self.path("lib")})
        self.assertIn(f"ImportError: beatatlas cannot load {self.path('lib')}/{name}", run.stderr)
        self.assertIn("apt-get install libavformat59", run.stderr)

    def test_knows_all_keys_as_the_program_names_them(self) -> None:
        ranking = by_tool(self.track)["key"]["ranking"]
        self.assertEqual(len(ranking), 24)
        for entry in ranking:
            key = beatatlas.Key(entry["number"])
            self.assertEqual({**entry, **key.to_dict()}, entry)
        with self.assertRaises(ValueError):
            beatatlas.Key(24)

    def test_the_version_is_that_of_the_program(self) -> None:
        version = subprocess.run([TOOL, "--version"], check=True, capture_output=True, text=True)
        self.assertIn(beatatlas.__version__, version.stdout.split())


class LayoutTest(unittest.TestCase):
    """The records as the C headers have them; the headers' own tests state the same numbers."""

    def test_records_have_the_sizes_of_the_headers(self) -> None:
        self.assertEqual(ctypes.sizeof(_library.TrackOptions), 88)
        self.assertEqual(ctypes.sizeof(_library.FileOptions), 24)
        self.assertEqual(ctypes.sizeof(_library.FileFacts), 80)
        self.assertEqual((_read._BEAT.itemsize, _read._READING.itemsize), (32, 32))
        self.assertEqual((_read._STRETCH.itemsize, _read._CANDIDATE.itemsize), (24, 24))
        self.assertEqual((_read._SEGMENT.itemsize, _read._KEY_SCORE.itemsize), (32, 16))


if __name__ == "__main__":
    unittest.main()
