# SPDX-License-Identifier: MIT
"""The C interfaces of libbeatatlas_track and libbeatatlas_media, as ctypes sees them."""

from __future__ import annotations

import ctypes
import functools
import os
from ctypes import (
    CFUNCTYPE,
    POINTER,
    Structure,
    c_char_p,
    c_double,
    c_float,
    c_int,
    c_int32,
    c_int64,
    c_size_t,
    c_void_p,
)
from pathlib import Path
from typing import Any

from ._version import INTERFACE

TEMPO_MODES = {"constant": 0, "varied": 1, "simple": 2, "off": 3, "auto": 4}
READING_KINDS = ("double", "half", "shifted", "3:2", "2:3", "other")
WAVES = {"loud": 0, "dots": 1, "zoom": 2}

OK, BAD_ARGUMENT, NO_MEMORY, STOPPED, MISSING, UNREADABLE, NOT_AUDIO, DAMAGED = range(8)

ProgressCall = CFUNCTYPE(c_int, c_void_p, c_double)


class TrackOptions(Structure):
    _fields_ = [
        ("size", c_size_t),
        ("tempo", c_int32),
        ("section_beats", c_int32),
        ("range_seconds", c_double),
        ("wants_key", c_int32),
        ("wants_waves", c_int32),
        ("threads", c_int32),
        ("reserved", c_int32),
        ("progress", ProgressCall),
        ("progress_host", c_void_p),
        ("lowest_bpm", c_double),
        ("highest_bpm", c_double),
        ("beats_per_bar", c_int32),
        ("reserved_bar", c_int32),
        ("wants_session_key", c_int32),
        ("reserved_key", c_int32),
    ]


class FileOptions(Structure):
    _fields_ = [
        ("size", c_size_t),
        ("memory_bytes", c_int64),
        ("accepts_cut_off", c_int32),
        ("reserved", c_int32),
    ]


class FileFacts(Structure):
    _fields_ = [
        ("container", c_char_p),
        ("codec", c_char_p),
        ("artist", c_char_p),
        ("title", c_char_p),
        ("damaged_packets", c_int64),
        ("repeated_packets", c_int64),
        ("dropped_frames", c_int64),
        ("channels", c_int32),
        ("file_rate", c_int32),
        ("format_changes", c_int32),
        ("is_cut_off", c_int32),
        ("lacks_end", c_int32),
        ("reserved", c_int32),
        ("samples", c_int64),
        ("clipped_samples", c_int64),
        ("clipped_peak", c_double),
        ("not_numbers", c_int64),
        ("is_too_loud", c_int32),
        ("reserved_level", c_int32),
    ]


class Confidence(Structure):
    _fields_ = [(name, c_double) for name in ("tempo", "level", "phase", "bars")]


_TRACK_CALLS: dict[str, tuple[Any, list[Any]]] = {
    "BA_TrackOptionsInit": (None, [POINTER(TrackOptions), c_size_t]),
    "BA_TrackRate": (c_int32, [c_void_p]),
    "BA_TrackFrames": (c_int64, [c_void_p]),
    "BA_TrackBpm": (c_double, [c_void_p]),
    "BA_TrackRawBpm": (c_double, [c_void_p]),
    "BA_TrackIsSteady": (c_int32, [c_void_p]),
    "BA_TrackTempoConfidence": (c_int32, [c_void_p, POINTER(Confidence)]),
    "BA_TrackKey": (c_int32, [c_void_p]),
    "BA_TrackKeyConfidence": (c_double, [c_void_p]),
    "BA_TrackTuningCents": (c_double, [c_void_p]),
    "BA_TrackTuningHz": (c_double, [c_void_p]),
    "BA_TrackSessionKey": (c_int32, [c_void_p]),
    "BA_TrackWave": (c_size_t, [c_void_p, c_int, c_void_p, c_size_t]),
}
_LISTS = ("Beats", "Readings", "TempoStretches", "KeyRanking", "KeySegments", "Chroma",
          "SessionKeyRanking", "Notes")
_TRACK_CALLS |= {f"BA_Track{name}": (c_size_t, [c_void_p, c_void_p, c_size_t]) for name in _LISTS}

_FILE_CALLS: dict[str, tuple[Any, list[Any]]] = {
    "BA_FileOptionsInit": (None, [POINTER(FileOptions), c_size_t]),
    "BA_FileAnalyze": (
        c_int,
        [c_char_p, POINTER(TrackOptions), POINTER(FileOptions), POINTER(c_void_p)],
    ),
    "BA_FileAnalyzeSamples": (
        c_int,
        [POINTER(c_float), c_int32, c_int32, c_int64, POINTER(TrackOptions), POINTER(c_void_p)],
    ),
    "BA_FileRelease": (None, [c_void_p]),
    "BA_FileTrack": (c_void_p, [c_void_p]),
    "BA_FileReason": (c_char_p, [c_void_p]),
    "BA_FileFactsOf": (c_int32, [c_void_p, POINTER(FileFacts), c_size_t]),
    "BA_FileGaps": (c_size_t, [c_void_p, c_void_p, c_size_t]),
    "BA_FileShowMessages": (None, [c_int32]),
}


_DEBIAN_12 = "libavformat59 libavcodec59 libavutil57 libswresample4 libsoxr0 libfmt9"


def _whats_missing(place: str, error: OSError) -> str:
    """The system's loader names the file that it lacks."""
    if os.sep not in place:
        return (f"beatatlas needs {place}, which is neither in the package nor among the system's "
                f"libraries: {error}. Install a wheel that holds it, or the system's package of it")
    return (f"beatatlas cannot load {place}: {error}. It needs FFmpeg's libraries, soxr and fmt "
            f"of the system it was built for; on Debian 12: apt-get install {_DEBIAN_12}")


def _open(name: str, calls: dict[str, tuple[Any, list[Any]]]) -> ctypes.CDLL:
    """Opens a library and states the types of its functions.

    It is looked for in ``$BEATATLAS_LIBRARY_PATH`` if that is set, else beside this package (where
    wheels have it), else where the system finds libraries.
    """
    file = f"lib{name}.so.{INTERFACE}"
    named = os.environ.get("BEATATLAS_LIBRARY_PATH")
    folders = [Path(folder) for folder in named.split(os.pathsep) if folder] if named else []
    places = [folder / file for folder in (*folders, Path(__file__).parent / "lib")]
    place = next((str(path) for path in places if path.exists()), file)
    try:
        library = ctypes.CDLL(place)
    except OSError as error:
        raise ImportError(_whats_missing(place, error)) from error
    for call, (result, arguments) in calls.items():
        function = getattr(library, call)
        function.restype = result
        function.argtypes = arguments
    return library


@functools.cache
def track_library() -> ctypes.CDLL:
    """Where the functions ``BA_Track…`` are."""
    return _open("beatatlas_track", _TRACK_CALLS)


@functools.cache
def media_library() -> ctypes.CDLL:
    """Where the functions ``BA_File…`` are. Messages of FFmpeg are switched off."""
    track_library()
    library = _open("beatatlas_media", _FILE_CALLS)
    library.BA_FileShowMessages(0)
    return library
