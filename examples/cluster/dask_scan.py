#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""dask_scan.py [--scheduler HOST:PORT] [--workers N] <NAMES >RESULTS.jsonl

Analyses the files whose names come by standard input, one a line, on a Dask cluster, and writes a
line of JSON for each as it is ready: what `beatatlas export --to jsonl` writes. Without a scheduler
the workers run on this machine, as many as there are processors.
"""

import argparse
import contextlib
import json
import os
import sys

import distributed

import beatatlas
import beatatlas.dask


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[1])
    parser.add_argument("--scheduler", metavar="HOST:PORT")
    parser.add_argument("--workers", type=int, default=os.cpu_count())
    return parser.parse_args()


@contextlib.contextmanager
def client_of(arguments):
    if arguments.scheduler:
        with distributed.Client(arguments.scheduler) as client:
            yield client
        return
    with distributed.LocalCluster(n_workers=arguments.workers, threads_per_worker=1,
                                  dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            yield client


def main():
    arguments = parse_arguments()
    names = (os.fsdecode(line.rstrip(b"\n")) for line in sys.stdin.buffer)
    with client_of(arguments) as client:
        for name, found in beatatlas.dask.scan(client, names, waves=False):
            if isinstance(found, beatatlas.Analysis):
                entry = found.to_dict()
            else:
                entry = {"file": name, "error": found.reason}
            print(json.dumps(entry), flush=True)


if __name__ == "__main__":
    main()
