# SPDX-License-Identifier: MIT
"""``python3 -m beatatlas FILE…``: one line for each file, or JSON."""

from __future__ import annotations

import argparse
import io
import json
import os
import sys
import warnings

from . import AnalysisError, __version__, analyze
from ._library import TEMPO_MODES
from .analysis import name_dict


def main() -> int:
    parser = argparse.ArgumentParser(
        prog="python3 -m beatatlas",
        description="Finds tempo, beats, key and waveform overviews of music files.",
        epilog="Ends with 0; with 1 if a file has no result; with 2 if the arguments mean nothing.")
    parser.add_argument("files", nargs="+", metavar="FILE", help="of any kind that FFmpeg reads")
    parser.add_argument("--tempo", default="auto", choices=TEMPO_MODES,
                        help="how it is found; auto, unless told: whether it is steady, too")
    parser.add_argument("--json", action="store_true", help="a document instead of lines")
    parser.add_argument("--waves", action="store_true", help="with the overviews, in JSON")
    parser.add_argument("--version", action="version", version=f"beatatlas {__version__}")
    arguments = parser.parse_args()
    _write_any_name(as_utf8=arguments.json)
    warnings.formatwarning = _as_line
    tracks: list[dict[str, object]] = []
    failures = 0
    for file in arguments.files:
        try:
            found = analyze(file, tempo=arguments.tempo, waves=arguments.waves,
                            session_key=arguments.json)
        except AnalysisError as error:
            failures += 1
            tracks.append(name_dict(file) | {"error": error.reason})
            name = name_dict(file)["file"] or "''"
            print(f"beatatlas: {name} {error.reason}", file=sys.stderr)
            continue
        tracks.append(found.to_dict(arguments.waves))
        if not arguments.json:
            print(found)
    if arguments.json:
        json.dump({"format": "beatatlas.analysis", "version": 2, "tool": __version__,
                   "tracks": tracks}, sys.stdout, ensure_ascii=False)
        print()
    return 1 if failures else 0


def _as_line(message: Warning | str, category: type[Warning], filename: str, lineno: int,
             line: str | None = None) -> str:
    """Of use to who called the program is what is wrong with the file, not where it was found."""
    return f"beatatlas: {message}\n"


def _write_any_name(as_utf8: bool) -> None:
    """Names of files may have characters that the terminal lacks. JSON is UTF-8 everywhere."""
    if isinstance(sys.stdout, io.TextIOWrapper):
        if as_utf8:
            sys.stdout.reconfigure(encoding="utf-8")
        else:
            sys.stdout.reconfigure(errors="backslashreplace")


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
