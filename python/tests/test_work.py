# SPDX-License-Identifier: MIT
"""An analysis while it works: progress, interruption, several at once."""

import multiprocessing
import os
import signal
import threading
import time
import unittest
from typing import Optional

import numpy as np

import beatatlas
from package_test import PackageTest


def threads_of_the_system() -> set[str]:
    return set(os.listdir("/proc/self/task"))


class WorkTest(PackageTest):
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

    def test_works_in_processes_made_after_it_has_worked(self) -> None:
        found = beatatlas.analyze(self.track)
        for method in ("fork", "spawn", "forkserver"):
            with self.subTest(method), multiprocessing.get_context(method).Pool(2) as pool:
                for other in pool.map(beatatlas.analyze, [self.track] * 2):
                    self.assertEqual(other.to_dict(True), found.to_dict(True))


if __name__ == "__main__":
    unittest.main()
