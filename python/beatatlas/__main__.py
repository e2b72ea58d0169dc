# SPDX-License-Identifier: MIT
"""``python3 -m beatatlas FILE…``: one line for each file, or JSON."""

from __future__ import annotations

import argparse
import json
import os
import sys

from . import AnalysisError, __version__, analyze
from .analysis import name_dict


def main() -> int:
    parser = argparse.ArgumentParser(prog="python3 -m beatatlas", description="Analyses music.")
    parser.add_argument("files", nargs="+", metavar="FILE")
    parser.add_argument("--tempo", default="auto",
                        choices=("auto", "constant", "varied", "simple", "off"))
    parser.add_argument("--json", action="store_true", help="a document instead of lines")
    parser.add_argument("--waves", action="store_true", help="with the overviews, in JSON")
    parser.add_argument("--version", action="version", version=f"beatatlas {__version__}")
    arguments = parser.parse_args()
    tracks: list[dict[str, object]] = []
    failures = 0
    for file in arguments.files:
        try:
            found = analyze(file, tempo=arguments.tempo, waves=arguments.waves,
                            session_key=arguments.json)
        except AnalysisError as error:
            failures += 1
            tracks.append(name_dict(file) | {"error": error.reason})
            print(f"beatatlas: {name_dict(file)['file']} {error.reason}", file=sys.stderr)
            continue
        tracks.append(found.to_dict(arguments.waves))
        if not arguments.json:
            print(found)
    if arguments.json:
        json.dump({"format": "beatatlas.analysis", "version": 2, "tool": __version__,
                   "tracks": tracks}, sys.stdout, ensure_ascii=False)
        print()
    return 1 if failures else 0


if __name__ == "__main__":
    try:
        status = main()
        sys.stdout.flush()
        sys.exit(status)
    except KeyboardInterrupt:
        sys.exit(130)
    except BrokenPipeError:
        # Whoever read the results has seen enough. What is still buffered goes nowhere.
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        sys.exit(1)
