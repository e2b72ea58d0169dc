#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What two threads of one Python program gain over one: the interpreter's lock is released while a
track is analysed.

    bench/pythonThreads.py [--threads N] [--rounds N] FILE...

Analyses each of the files, one after the other, then N of them at a time, each on one thread of the
library, and prints both throughputs, in seconds of music per second, side by side. The two are taken in
turns, and the best round of each counts: others use the machine as well. Finds the package where Python
does; with $BEATATLAS_LIBRARY_PATH and $PYTHONPATH that of a build.
"""

import argparse
import time
from concurrent.futures import ThreadPoolExecutor

import beatatlas


def timed(threads, files):
    """Seconds of the clock, of the processors, and of the music."""
    clock, processor = time.perf_counter(), time.process_time()
    with ThreadPoolExecutor(threads) as pool:
        music = sum(track.seconds for track in pool.map(beatatlas.analyze, files))
    return time.perf_counter() - clock, time.process_time() - processor, music


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("files", nargs="+", metavar="FILE")
    parser.add_argument("--threads", type=int, default=2)
    parser.add_argument("--rounds", type=int, default=3)
    arguments = parser.parse_args()
    counts = (1, arguments.threads)
    timed(1, arguments.files[:1])  # what is loaded and looked up once
    rounds = [[timed(count, arguments.files) for count in counts] for _ in range(arguments.rounds)]
    best = [min(column) for column in zip(*rounds)]
    for count, (clock, processor, music) in zip(counts, best):
        print(f"{count} thread{'s' if count > 1 else ''}: {music / clock:.0f} seconds of music a second; "
              f"{clock:.2f} s, {processor:.2f} s of the processors")
    print(f"{best[0][0] / best[1][0]:.2f} times the throughput of one thread")


main()
