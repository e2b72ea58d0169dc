# SPDX-License-Identifier: MIT
"""The analysis itself."""

from __future__ import annotations

import ctypes
import functools
import os
import threading
import warnings
from typing import Any, Callable, Optional, TypeVar, Union, cast

import numpy as np
from numpy.typing import NDArray

from . import _library
from ._arguments import (
    file_name,
    flag,
    number,
    one_of,
    one_word,
    refuse_unknown,
    shown,
    tempo_range,
    whole,
)
from ._read import Handle, read_analysis
from ._samples import as_frames, interleaved
from .analysis import Analysis, name_dict
from .errors import (
    AnalysisError,
    DamagedTrackError,
    MissingFileError,
    NotAudioError,
    UnreadableFileError,
)

Source = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]", NDArray[Any]]
Progress = Callable[[float], object]
Function = TypeVar("Function", bound=Callable[..., Any])

_PHRASES = (4, 8, 16, 32, 64, 128, 256)
_LONGEST_SENSED = 48695  # seconds: 2^31 - 1 frames at 44,100 Hz
_LOWEST_RATE, _HIGHEST_RATE = 1000, 1536000  # that can be converted

_ERRORS: dict[int, type[AnalysisError]] = {
    _library.MISSING: MissingFileError,
    _library.UNREADABLE: UnreadableFileError,
    _library.NOT_AUDIO: NotAudioError,
    _library.DAMAGED: DamagedTrackError,
}


def _suggesting(function: Function) -> Function:
    @functools.wraps(function)
    def checked(*arguments: Any, **options: Any) -> Any:
        refuse_unknown(function, options)
        return function(*arguments, **options)

    return cast(Function, checked)


@_suggesting
def analyze(
    source: Source,
    rate: Optional[float] = None,
    *,
    tempo: str = "auto",
    bpm_range: Optional[tuple[float, float]] = None,
    beats_per_bar: Optional[int] = None,
    section: Optional[int] = None,
    sensed_seconds: Optional[float] = None,
    key: bool = True,
    session_key: bool = False,
    waves: bool = True,
    partial: bool = False,
    threads: int = 1,
    memory: int = 1 << 30,
    progress: Optional[Progress] = None,
) -> Analysis:
    """Finds tempo, beats, bars, key and waveform overviews of a track.

    The interpreter's lock is released while it works, so several threads may analyse at once.
    Ctrl-C in the main thread stops it.

    Args:
        source: the name of an audio file, or an array of shape (frames,), (frames, channels) or
            (channels, frames), the longer axis being the frames, with 1 to 64 channels: floats with
            full scale ±1.0, or signed integers of 16 or 32 bits; of any byte order and layout in
            memory. It is only read. Every value must be finite.
        rate: frames per second of an array, a whole number from 1000 to 1536000; other rates than
            44100 and 48000 Hz are converted.
        tempo: ``"auto"`` finds out whether the tempo is steady; ``"constant"``, ``"varied"``,
            ``"simple"`` (sensed at the beginning) or ``"off"``.
        bpm_range: two tempi in BPM, 20 to 1000, the upper one at least twice the lower one: the
            tempo is doubled or halved into it. Auto tempo only.
        beats_per_bar: 3 or 4 if known. Auto tempo only.
        section: length in beats of the phrase over which the tempo is measured: 4, 8, 16, 32, 64,
            128 or 256; unless given, 32. Varied tempo only.
        sensed_seconds: how much of the beginning the tempo is sensed in, at least 1; unless given,
            one minute. Simple tempo only.
        key: find the key by evidence.
        session_key: also find the key of a session; takes another pass.
        waves: make the waveform overviews.
        partial: analyse what is left of a file that was cut off instead of refusing it. Files only.
        threads: the most threads for this track, at least 1. Results never depend on it.
        memory: bytes for the decoded track of a file; a longer one is decoded again for a second
            pass.
        progress: called now and then with the share of the work that is done, 0 to 1, from another
            thread than the calling one. What it raises ends the analysis and is raised here.

    Returns:
        What was found.

    Warns:
        UserWarning: where the track is far beyond full scale: 2.0 and more, or more than one in a
            hundred samples beyond 1.0. What is beyond is clipped; ``audio.overload`` counts it.

    Raises:
        ValueError: for an argument out of range or of no meaning with that tempo, and for an array
            with NaN or infinite values, whose first frame it names.
        TypeError: for an argument of the wrong kind.
        AnalysisError: for a track without a result, as one of MissingFileError (also a
            FileNotFoundError), UnreadableFileError (also an OSError), NotAudioError,
            DamagedTrackError.
        MemoryError: when memory runs out.
    """
    options = _track_options(tempo, bpm_range, beats_per_bar, section, sensed_seconds, key,
                             session_key, waves, threads)
    memory = whole("memory", memory, 1, 2**63 - 1)
    if progress is not None and not callable(progress):
        raise TypeError("progress must be a function that takes the share that is done, not "
                        f"{shown(progress)}")
    if isinstance(source, (str, bytes, os.PathLike)):
        if rate is not None:
            raise TypeError("rate must be given with an array only: a file has its own")
        path: Optional[str] = str(os.fsdecode(source))  # also where NumPy has a type of its own
        work = _file_work(file_name(source), options, partial, memory)
    else:
        array = as_frames(source)
        if rate is None:
            raise TypeError("rate must be given with an array: how many frames it has per second")
        if flag("partial", partial):
            raise TypeError("partial must be given with a file only: an array is whole")
        hertz = whole("rate", rate, _LOWEST_RATE, _HIGHEST_RATE)
        path = None
        work = _array_work(interleaved(array), hertz, options)
    wanted = frozenset(name for name, is_wanted in
                       (("key", key), ("session_key", session_key), ("waves", waves)) if is_wanted)
    with _Run(work, options, progress) as handle:
        _raise_unless_good(handle.status, handle.pointer, path)
        found = read_analysis(handle.pointer, path, str(tempo), wanted)
    _warn_if_too_loud(found)
    return found


def _track_options(tempo: str, bpm_range: Optional[tuple[float, float]],
                   beats_per_bar: Optional[int], section: Optional[int],
                   sensed_seconds: Optional[float], key: bool, session_key: bool, waves: bool,
                   threads: int) -> _library.TrackOptions:
    options = _library.TrackOptions()
    _library.track_library().BA_TrackOptionsInit(ctypes.byref(options), ctypes.sizeof(options))
    options.tempo = _library.TEMPO_MODES[one_word("tempo", tempo, _library.TEMPO_MODES)]
    for name, value, mode in (("bpm_range", bpm_range, "auto"),
                              ("beats_per_bar", beats_per_bar, "auto"),
                              ("section", section, "varied"),
                              ("sensed_seconds", sensed_seconds, "simple")):
        if value is not None and tempo != mode:
            raise ValueError(f"{name} goes with tempo={mode!r}, not {tempo!r}")
    if bpm_range is not None:
        options.lowest_bpm, options.highest_bpm = tempo_range(bpm_range)
    if beats_per_bar is not None:
        options.beats_per_bar = one_of("beats_per_bar", beats_per_bar, (3, 4))
    if section is not None:
        options.section_beats = one_of("section", section, _PHRASES)
    if sensed_seconds is not None:
        options.range_seconds = _sensed(sensed_seconds)
    options.wants_key = flag("key", key)
    options.wants_session_key = flag("session_key", session_key)
    options.wants_waves = flag("waves", waves)
    options.threads = whole("threads", threads, 1, 2**31 - 1)
    return options


def _sensed(seconds: float) -> float:
    wanted = f"a number of seconds from 1 to {_LONGEST_SENSED}"
    if not 1 <= number("sensed_seconds", seconds, wanted) <= _LONGEST_SENSED:
        raise ValueError(f"sensed_seconds must be {wanted}, not {shown(seconds)}")
    return float(seconds)


def _file_work(name: bytes, track: _library.TrackOptions, partial: bool, memory: int) -> Any:
    library = _library.media_library()
    options = _library.FileOptions()
    library.BA_FileOptionsInit(ctypes.byref(options), ctypes.sizeof(options))
    options.memory_bytes = memory
    options.accepts_cut_off = flag("partial", partial)
    return lambda out: library.BA_FileAnalyze(name, ctypes.byref(track), ctypes.byref(options), out)


def _array_work(samples: NDArray[np.float32], rate: int, track: _library.TrackOptions) -> Any:
    frames, channels = samples.shape
    pointer = samples.ctypes.data_as(ctypes.POINTER(ctypes.c_float))
    call = _library.media_library().BA_FileAnalyzeSamples

    def work(out: Any) -> int:
        assert samples.flags.c_contiguous  # and keeps the array alive
        return int(call(pointer, rate, channels, frames, ctypes.byref(track), out))

    return work


class _Run:
    """One analysis, in a thread of its own: so the calling thread hears Ctrl-C, and no exception
    of a callback gets lost in C."""

    def __init__(self, work: Any, options: _library.TrackOptions,
                 progress: Optional[Progress]) -> None:
        self.pointer: Handle = ctypes.c_void_p()
        self.status = _library.STOPPED
        self._work = work
        self._shown = progress
        self._is_stopped = False
        self._has_ended = threading.Event()
        self._raised: Optional[BaseException] = None
        # Kept here, since the options hold a bare pointer.
        self._call = _library.ProgressCall(self._progress)
        options.progress = self._call

    def _progress(self, _host: object, fraction: float) -> int:
        if not self._is_stopped and self._shown is not None:
            try:
                self._shown(fraction)
            except BaseException as raised:  # raised again in the caller's thread
                self._raised = raised
                self._is_stopped = True
        return int(self._is_stopped)

    def _analyze(self) -> None:
        try:
            if not self._is_stopped:
                self.status = self._work(ctypes.byref(self.pointer))
        finally:
            # The callback refers to this object in a circle, which would keep the samples.
            self._work = None
            self._has_ended.set()

    def __enter__(self) -> _Run:
        thread = threading.Thread(target=self._analyze, name="beatatlas", daemon=True)
        try:
            thread.start()
        except BaseException:
            self._is_stopped = True  # Ctrl-C at once: if it was started, it ends by itself.
            raise
        interrupt: Optional[BaseException] = None
        # An interrupted join() would hold the thread to have ended.
        while not self._has_ended.is_set():
            try:
                self._has_ended.wait()
            except BaseException as raised:  # Ctrl-C, perhaps more than once
                self._is_stopped = True
                interrupt = raised
        thread.join()
        if interrupt is not None:
            self.__exit__()
            raise interrupt
        if self._raised is not None:
            self.__exit__()
            raise self._raised
        return self

    def __exit__(self, *_: object) -> None:
        _library.media_library().BA_FileRelease(self.pointer)
        self.pointer = ctypes.c_void_p()


def _raise_unless_good(status: int, pointer: Handle, path: Optional[str]) -> None:
    if status == _library.OK:
        return
    if status == _library.NO_MEMORY:
        raise MemoryError("there is not enough memory to analyse the track")
    if status == _library.BAD_ARGUMENT:
        raise ValueError("an argument is out of range")
    reason = _library.media_library().BA_FileReason(pointer).decode(errors="replace")
    raise _ERRORS.get(status, AnalysisError)(path, reason)


def _warn_if_too_loud(found: Analysis) -> None:
    """Of arrays, most are integers that were made floats without being divided."""
    overload = found.audio.overload
    if overload and overload.too_loud:
        name = name_dict(found.path)["file"]
        whose = "the samples are" if name is None else f"{name} is"
        warnings.warn(f"{whose} too loud: full scale is 1, the peak is {overload.peak:g}, and "
                      f"{overload.clipped} of {overload.samples} samples were clipped",
                      stacklevel=4)
