# SPDX-License-Identifier: MIT
"""Many tracks on a cluster of this machine, one of whose workers is killed on the way.

Needs in the environment: BEATATLAS_DEMO, which writes music.
"""

import json
import os
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from typing import Any, Union

import distributed

import beatatlas
import beatatlas.dask

DEMO = os.environ["BEATATLAS_DEMO"]
TRACKS = 12
Outcomes = list[tuple[str, Union[beatatlas.Analysis, beatatlas.AnalysisError]]]


def worker_pids(client: Any) -> list[int]:
    return list(client.run(os.getpid).values())


class ClusterTest(unittest.TestCase):
    def test_a_killed_worker_loses_nothing_and_repeats_nothing(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            track = Path(folder, "0.wav")
            subprocess.run([DEMO, track], check=True)
            names = [str(track)]
            for number in range(1, TRACKS):
                names.append(str(Path(folder, f"{number}.wav")))
                os.link(track, names[-1])
            text = Path(folder, "text.mp3")
            text.write_text("These are words.")
            expected = beatatlas.analyze(track)
            found = self.scan_with_a_kill([*names, str(text)])
        self.assertEqual(sorted(name for name, _ in found), sorted([*names, str(text)]))
        for name, result in found:
            if name == str(text):
                self.assertIsInstance(result, beatatlas.NotAudioError)
                self.assertEqual(result.path, name)
            else:
                assert isinstance(result, beatatlas.Analysis)
                self.assertEqual({**result.to_dict(True), "file": str(track)},
                                 expected.to_dict(True))

    def scan_with_a_kill(self, names: list[str]) -> Outcomes:
        with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                      dashboard_address=None) as cluster:
            with distributed.Client(cluster) as client:
                before = worker_pids(client)
                found: Outcomes = []
                for outcome in beatatlas.dask.scan(client, names, in_flight=len(names)):
                    if not found:
                        os.kill(before[0], signal.SIGKILL)
                    found.append(outcome)
                client.wait_for_workers(2)
                self.assertNotIn(before[0], worker_pids(client))
        return found

    def test_the_example_writes_a_line_for_each_file(self) -> None:
        example = Path(__file__).parents[2] / "examples/cluster/dask_scan.py"
        with tempfile.TemporaryDirectory() as folder:
            track = Path(folder, "track.wav")
            subprocess.run([DEMO, track], check=True)
            names = f"{track}\n{folder}/nothing\n{track}\n"
            run = subprocess.run([sys.executable, example, "--workers", "2"], input=names,
                                 capture_output=True, text=True, check=True)
            expected = beatatlas.analyze(track).to_dict()
        entries = [json.loads(line) for line in run.stdout.splitlines()]
        entries.sort(key=lambda entry: str(entry["file"]))
        self.assertEqual(entries[0], {"file": f"{folder}/nothing", "error":
                                      "cannot be opened: No such file or directory"})
        self.assertEqual(entries[1:], [expected] * 2)

    def test_refuses_what_cannot_travel(self) -> None:
        with self.assertRaises(TypeError):
            next(beatatlas.dask.scan(None, ["a"], progress=print))
        with self.assertRaisesRegex(TypeError, "did you mean 'tempo'"):
            next(beatatlas.dask.scan(None, ["a"], tmpo="off"))
        with self.assertRaisesRegex(ValueError, "^in_flight must be a whole number"):
            next(beatatlas.dask.scan(None, ["a"], in_flight=0))
        for no_list in ("track.wav", b"track.wav", Path("track.wav"), 3, None):
            with self.assertRaisesRegex(TypeError, "^paths must be a list of names"):
                next(beatatlas.dask.scan(None, no_list))  # type: ignore[arg-type]
        with self.assertRaisesRegex(TypeError, "^client must be a distributed.Client, not 'tcp:"):
            next(beatatlas.dask.scan("tcp://host:8786", ["a"]))

    def test_options_that_mean_nothing_end_the_scan_without_being_tried_again(self) -> None:
        with self.one_worker() as cluster, distributed.Client(cluster) as client:
            # What a worker raises is logged there each time.
            with self.assertRaisesRegex(AssertionError, "^no logs"):
                with self.assertLogs("distributed.worker", "WARNING"):
                    with self.assertRaisesRegex(ValueError, "^tempo must be one of"):
                        list(beatatlas.dask.scan(client, ["a", "b"], tempo="quick"))

    def test_a_name_of_nothing_is_a_missing_file(self) -> None:
        with self.one_worker() as cluster, distributed.Client(cluster) as client:
            (name, found), = beatatlas.dask.scan(client, [""])
        self.assertEqual(name, "")
        self.assertIsInstance(found, beatatlas.MissingFileError)

    def one_worker(self) -> Any:
        return distributed.LocalCluster(n_workers=1, threads_per_worker=1, processes=False,
                                        dashboard_address=None)


if __name__ == "__main__":
    unittest.main()
