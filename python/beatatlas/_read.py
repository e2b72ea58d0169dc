# SPDX-License-Identifier: MIT
"""From a handle of the C interface to an Analysis."""

from __future__ import annotations

import ctypes
import functools
from typing import Any, Callable

import numpy as np
from numpy.typing import NDArray

from . import _library
from .analysis import (
    WAVE_POINT,
    Alternative,
    Analysis,
    AudioFacts,
    Gap,
    Overload,
    Stretch,
    TempoConfidence,
    Waves,
)
from .key_analysis import KeyAnalysis, KeyCandidate, KeySegment, SessionKey
from .keys import Key

Handle = ctypes.c_void_p

# The records of the C interface, field by field.
_BEAT = np.dtype([("seconds", "f8"), ("bpm", "f8"), ("frame", "i8"), ("number", "i4"),
                  ("reserved", "i4")])
_READING = np.dtype([("bpm", "f8"), ("share", "f8"), ("shift", "f8"), ("kind", "i4"),
                     ("reserved", "i4")])
_STRETCH = np.dtype([("from", "f8"), ("to", "f8"), ("bpm", "f8")])
_CANDIDATE = np.dtype([("key", "i4"), ("reserved", "i4"), ("score", "f8"), ("probability", "f8")])
_SEGMENT = np.dtype([("from", "f8"), ("to", "f8"), ("confidence", "f8"), ("key", "i4"),
                     ("reserved", "i4")])
_KEY_SCORE = np.dtype([("key", "i4"), ("reserved", "i4"), ("score", "f8")])
_NOTE = np.dtype([("count", "i4"), ("reserved", "i4"), ("share", "f8")])
_GAP = np.dtype([("start", "f8"), ("length", "f8")])


def _records(call: Callable[..., int], dtype: np.dtype[Any], *handle: Any) -> NDArray[Any]:
    """Copies a list: asks for its length, makes room, asks again."""
    records = np.empty(call(*handle, None, 0), dtype)
    call(*handle, records.ctypes.data_as(ctypes.c_void_p), len(records))
    return records


def _column(records: NDArray[Any], name: str) -> NDArray[Any]:
    """An array of its own, which nobody changes by mistake."""
    column = np.ascontiguousarray(records[name])
    column.setflags(write=False)
    return column


def read_analysis(handle: Handle, path: str | None, mode: str, wanted: frozenset[str]) -> Analysis:
    """Everything that the handle holds."""
    library = _library.track_library()
    track = _library.media_library().BA_FileTrack(handle)
    beats = _records(library.BA_TrackBeats, _BEAT, track)
    return Analysis(
        path=path,
        audio=_audio(handle),
        rate=library.BA_TrackRate(track),
        frames=library.BA_TrackFrames(track),
        tempo_mode=mode,
        bpm=library.BA_TrackBpm(track) or None,
        beats=_column(beats, "seconds"),
        beat_frames=_column(beats, "frame"),
        beat_numbers=_column(beats, "number"),
        beat_bpm=_column(beats, "bpm"),
        key_analysis=_key(track),
        session_key=_session_key(track),
        waves=_waves(track) if "waves" in wanted else None,
        _wanted=wanted,
        **_judgement(track),
    )


def _audio(handle: Handle) -> AudioFacts:
    library = _library.media_library()
    facts = _library.FileFacts()
    library.BA_FileFactsOf(handle, ctypes.byref(facts), ctypes.sizeof(facts))
    gaps = _records(library.BA_FileGaps, _GAP, handle)
    return AudioFacts(
        container=_text(facts.container),
        codec=_text(facts.codec),
        channels=facts.channels,
        rate=facts.file_rate,
        artist=_text(facts.artist),
        title=_text(facts.title),
        partial=bool(facts.is_cut_off),
        damaged_packets=facts.damaged_packets,
        repeated_packets=facts.repeated_packets,
        gaps=tuple(Gap(*gap) for gap in gaps.tolist()),
        lacks_end=bool(facts.lacks_end),
        format_changes=bool(facts.format_changes),
        dropped_frames=facts.dropped_frames,
        overload=_overload(facts),
    )


def _overload(facts: _library.FileFacts) -> Overload | None:
    if not facts.clipped_samples and not facts.not_numbers:
        return None
    return Overload(
        samples=facts.samples,
        clipped=facts.clipped_samples,
        peak=facts.clipped_peak,
        not_numbers=facts.not_numbers,
        too_loud=bool(facts.is_too_loud),
    )


def _text(text: bytes | None) -> str:
    return (text or b"").decode(errors="replace")


def _judgement(track: Handle) -> dict[str, Any]:
    """What the auto tempo says besides tempo and beats."""
    library = _library.track_library()
    confidence = _library.Confidence()
    if not library.BA_TrackTempoConfidence(track, ctypes.byref(confidence)):
        return {}
    stretches = _records(library.BA_TrackTempoStretches, _STRETCH, track).tolist()
    readings = _records(library.BA_TrackReadings, _READING, track).tolist()
    return {
        "steady": library.BA_TrackIsSteady(track) == 1,
        "raw_bpm": library.BA_TrackRawBpm(track),
        "confidence": TempoConfidence(confidence.tempo, confidence.level, confidence.phase,
                                      confidence.bars),
        "stretches": tuple(Stretch(*stretch) for stretch in stretches),
        "alternatives": tuple(Alternative(_library.READING_KINDS[kind], bpm, shift, share)
                              for bpm, share, shift, kind, _ in readings),
    }


def _key(track: Handle) -> KeyAnalysis | None:
    library = _library.track_library()
    number = library.BA_TrackKey(track)
    if number < 0:
        return None
    candidates = _records(library.BA_TrackKeyRanking, _CANDIDATE, track).tolist()
    segments = _records(library.BA_TrackKeySegments, _SEGMENT, track).tolist()
    chroma = _records(library.BA_TrackChroma, np.dtype("f8"), track)
    chroma.setflags(write=False)
    return KeyAnalysis(
        key=Key(number),
        confidence=library.BA_TrackKeyConfidence(track),
        ranking=tuple(KeyCandidate(Key(key), score, probability)
                      for key, _, score, probability in candidates),
        segments=tuple(KeySegment(start, end, Key(key), confidence)
                       for start, end, confidence, key, _ in segments),
        chroma=chroma,
        tuning_cents=library.BA_TrackTuningCents(track),
        tuning_hz=library.BA_TrackTuningHz(track),
    )


def _session_key(track: Handle) -> SessionKey | None:
    library = _library.track_library()
    if library.BA_TrackSessionKey(track) < 0:
        return None
    ranking = _records(library.BA_TrackSessionKeyRanking, _KEY_SCORE, track).tolist()
    notes = _records(library.BA_TrackNotes, _NOTE, track)
    return SessionKey(
        ranking=tuple((Key(key), score) for key, _, score in ranking),
        note_counts=_column(notes, "count"),
        note_shares=_column(notes, "share"),
    )


def _waves(track: Handle) -> Waves:
    call = _library.track_library().BA_TrackWave

    def wave(kind: int) -> NDArray[Any]:
        points = _records(functools.partial(call, track, kind), WAVE_POINT)
        points.setflags(write=False)
        return points

    return Waves(**{name: wave(kind) for name, kind in _library.WAVES.items()})
