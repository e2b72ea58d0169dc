# SPDX-License-Identifier: MIT
"""What an analysis found, in plain values and NumPy arrays."""

from __future__ import annotations

import json
import math
from dataclasses import dataclass, field
from typing import Any

import numpy as np
from numpy.typing import NDArray

from ._records import RecordWithArrays
from .key_analysis import KeyAnalysis, KeyCandidate, SessionKey
from .keys import Key

#: One point of a waveform overview: its height, and its class of colour.
WAVE_POINT = np.dtype([("level", np.float32), ("color", np.int32)])

_ZOOM_RATE = 150  # points a second


@dataclass(frozen=True)
class TempoConfidence:
    """How sure tempo and beats are: each the share of tracks, 0 to 1, on which such an answer was
    right, measured on tracks of known beats.

    Attributes:
        tempo: that the music has this pulse, or a multiple or fraction of it.
        level: that people tap at this multiple of it, if the pulse is right.
        phase: that they tap at these positions, if the level is right.
        bars: that the bars begin at these beats, if the beats are right; 0 if there are too few.
    """

    tempo: float
    level: float
    phase: float
    bars: float

    def to_dict(self) -> dict[str, float]:
        return dict(vars(self))


@dataclass(frozen=True)
class Alternative:
    """Another reading of the beats.

    Attributes:
        kind: ``"double"``, ``"half"``, ``"shifted"``, ``"3:2"``, ``"2:3"`` or ``"other"``.
        bpm: its tempo in beats per minute.
        shift_beats: how far its first beat lies after the beat of the answer before it, in beats of
            the answer, 0 to 1.
        share: its probability, 0 to 1.
    """

    kind: str
    bpm: float
    shift_beats: float
    share: float

    def to_dict(self) -> dict[str, object]:
        return {"kind": self.kind, "bpm": self.bpm, "shiftBeats": self.shift_beats,
                "share": self.share}


@dataclass(frozen=True)
class Stretch:
    """A section of nearly one tempo, from its first beat to that of the next one, in seconds."""

    start: float
    end: float
    bpm: float

    def to_dict(self) -> dict[str, float]:
        return {"from": self.start, "to": self.end, "bpm": self.bpm}


@dataclass(frozen=True, eq=False, repr=False)
class Waves(RecordWithArrays):
    """The waveform overviews: structured arrays of ``level`` and ``color``.

    Attributes:
        loud: shape (400,): loudness over the track, 32768 is full scale; colours 0 (bass) to 5.
        dots: shape (100,): strength of the bass over the track; colour 5.
        zoom: 150 points a second: level 0 to 31, a square law; colour 0 (bass) to 7.
    """

    loud: NDArray[Any]
    dots: NDArray[Any]
    zoom: NDArray[Any]

    def to_dict(self) -> dict[str, object]:
        zoom = {"pointsPerSecond": _ZOOM_RATE, "levels": self.zoom["level"].astype(int).tolist(),
                "colors": self.zoom["color"].tolist()}
        return {"loud": _wave_dict(self.loud), "dots": _wave_dict(self.dots), "zoom": zoom}

    def __repr__(self) -> str:
        return (f"<Waves: loud {_extent(self.loud)}; dots {_extent(self.dots)}; zoom "
                f"{_extent(self.zoom)}, {_ZOOM_RATE} points a second>")


def _extent(wave: NDArray[Any]) -> str:
    if not len(wave):
        return "empty"
    levels = wave["level"]
    return f"{len(wave)} points, level {levels.min():.0f} to {levels.max():.0f}"


def _wave_dict(wave: NDArray[Any]) -> dict[str, object]:
    return {"levels": wave["level"].tolist(), "colors": wave["color"].tolist()}


@dataclass(frozen=True)
class Gap:
    """A section that the file no longer holds, replaced by silence; in seconds."""

    start: float
    length: float


@dataclass(frozen=True)
class Overload:
    """Samples that could not be analysed unchanged.

    Attributes:
        samples: how many the analysis got: at its rate, of left and right, once where both are the
            same.
        clipped: how many of them were beyond full scale, and clipped.
        peak: the loudest of these; full scale is 1, ``math.inf`` is possible; 0: none.
        not_numbers: how many were NaN, and became silence. Of a file: an array with such values is
            refused.
        too_loud: so much was clipped that the results may suffer: more than one sample in a
            hundred, or one of 2.0 (6 dB over full scale) and more.
    """

    samples: int
    clipped: int
    peak: float
    not_numbers: int
    too_loud: bool

    def to_dict(self) -> dict[str, object]:
        """JSON has no infinity: such a peak is None."""
        return {"samples": self.samples, "clipped": self.clipped,
                "peak": self.peak if math.isfinite(self.peak) else None,
                "notNumbers": self.not_numbers, "tooLoud": self.too_loud}


@dataclass(frozen=True)
class AudioFacts:
    """What a file is, and its state.

    Attributes:
        container: FFmpeg's short name; empty for an array.
        codec: FFmpeg's short name.
        channels: at the beginning of the track.
        rate: of the file, in Hz.
        artist: by the file's tags; empty if they lack it.
        title: the same.
        partial: the file was cut off, and this is the result of the part that was left.
        damaged_packets: that could not be decoded, or only in part.
        repeated_packets: that were in the file twice and were taken once.
        gaps: sections that are missing.
        lacks_end: an Ogg file without the mark of its end.
        format_changes: rate or channels change on the way.
        dropped_frames: frames at ``rate`` of the encoder's delay, which was left out.
        overload: samples that could not be analysed unchanged; None if there are none.
    """

    container: str
    codec: str
    channels: int
    rate: int
    artist: str = ""
    title: str = ""
    partial: bool = False
    damaged_packets: int = 0
    repeated_packets: int = 0
    gaps: tuple[Gap, ...] = ()
    lacks_end: bool = False
    format_changes: bool = False
    dropped_frames: int = 0
    overload: Overload | None = None


@dataclass(frozen=True, eq=False, repr=False)
class Analysis(RecordWithArrays):
    """Everything that was found in one track. Values are None, and arrays empty, where nothing was
    found or wanted; nothing is ever NaN. Arrays are read-only, in copies too. It can be pickled and
    copied. Two analyses are equal if all members are, the file's name too.

    Attributes:
        path: the file's name as it was passed; None for an array.
        audio: what the file is.
        rate: of the analysis: 44100 or 48000 Hz, at which frames count.
        frames: length of the track.
        tempo_mode: ``"auto"``, ``"constant"``, ``"varied"``, ``"simple"`` or ``"off"``.
        bpm: tempo of the track, a multiple of 0.01.
        beats: shape (beats,): positions in seconds from the first frame of music.
        beat_frames: shape (beats,): the same in frames.
        beat_numbers: shape (beats,): number within the bar, from 1, the downbeat.
        beat_bpm: shape (beats,): local tempo, a multiple of 0.01.
        steady: one tempo, evenly spaced beats; None unless the mode is auto and a tempo was found,
            like the members that follow.
        raw_bpm: the tempo before ``bpm_range`` doubled or halved it.
        confidence: how sure tempo and beats are.
        stretches: sections of nearly one tempo.
        alternatives: up to five other readings of the beats, the likeliest first.
        key_analysis: the key by evidence, with ranking, segments, chroma and tuning.
        session_key: the key of a session, if it was asked for.
        waves: the waveform overviews.
    """

    path: str | None
    audio: AudioFacts
    rate: int
    frames: int
    tempo_mode: str
    bpm: float | None
    beats: NDArray[np.float64]
    beat_frames: NDArray[np.int64]
    beat_numbers: NDArray[np.int32]
    beat_bpm: NDArray[np.float64]
    steady: bool | None = None
    raw_bpm: float | None = None
    confidence: TempoConfidence | None = None
    stretches: tuple[Stretch, ...] = ()
    alternatives: tuple[Alternative, ...] = ()
    key_analysis: KeyAnalysis | None = None
    session_key: SessionKey | None = None
    waves: Waves | None = None
    _wanted: frozenset[str] = field(default=frozenset(), repr=False)

    @property
    def seconds(self) -> float:
        """Length of the track."""
        return self.frames / self.rate

    @property
    def downbeats(self) -> NDArray[np.float64]:
        """Shape (bars,): where bars begin, in seconds."""
        is_downbeat = self.beat_numbers == 1
        return np.asarray(self.beats[is_downbeat])

    @property
    def key(self) -> Key | None:
        """The likeliest key by evidence."""
        return self.key_analysis.key if self.key_analysis else None

    @property
    def key_ranking(self) -> tuple[KeyCandidate, ...]:
        """All 24 keys, the likeliest first; empty without a key."""
        return self.key_analysis.ranking if self.key_analysis else ()

    def _tempo_dict(self) -> dict[str, object]:
        tempo: dict[str, object] = {"mode": self.tempo_mode, "bpm": self.bpm}
        if self.confidence is None:
            return tempo
        return tempo | {
            "rawBpm": self.raw_bpm,
            "steady": self.steady,
            "confidence": self.confidence.to_dict(),
            "stretches": [stretch.to_dict() for stretch in self.stretches],
            "alternatives": [alternative.to_dict() for alternative in self.alternatives],
        }

    def _beat_dicts(self) -> list[dict[str, object]]:
        columns = zip(self.beat_frames.tolist(), self.beats.tolist(), self.beat_numbers.tolist(),
                      self.beat_bpm.tolist())
        return [{"frame": frame, "seconds": seconds, "beat": number, "bpm": bpm}
                for frame, seconds, number, bpm in columns]

    def _file_dict(self) -> dict[str, object]:
        audio = self.audio
        overload = {"overload": audio.overload.to_dict()} if audio.overload else {}
        return {
            **name_dict(self.path),
            "audio": {"container": audio.container, "codec": audio.codec,
                      "channels": audio.channels, "sampleRate": audio.rate},
            "partial": audio.partial,
            "damagedPackets": audio.damaged_packets,
            "repeatedPackets": audio.repeated_packets,
            "gaps": [dict(vars(gap)) for gap in audio.gaps],
            "lacksEnd": audio.lacks_end,
            "formatChanges": audio.format_changes,
            **overload,
            "origin": {"at": "music", "offsetMs": 0.0, "droppedFrames": audio.dropped_frames,
                       "droppedSeconds": audio.dropped_frames / audio.rate},
            "sampleRate": self.rate,
            "frames": self.frames,
            "seconds": self.seconds,
        }

    def to_dict(self, waves: bool = False) -> dict[str, object]:
        """The entry of this track in the document of ``beatatlas analyze --json``, whose
        ``sessionKey`` takes ``session_key=True``.

        Args:
            waves: with the waveform overviews, as with ``--waves``.
        """
        track = self._file_dict()
        if self.tempo_mode != "off":
            track["tempo"] = self._tempo_dict()
            track["beats"] = self._beat_dicts()
        if "key" in self._wanted:
            track["key"] = self.key_analysis.to_dict() if self.key_analysis else None
        if "session_key" in self._wanted:
            track["sessionKey"] = self.session_key.to_dict() if self.session_key else None
        if waves and self.waves:
            track["waves"] = self.waves.to_dict()
        return track

    def to_json(self, waves: bool = False, **options: Any) -> str:
        """The same as JSON text. Options are those of ``json.dumps``."""
        options.setdefault("ensure_ascii", False)
        return json.dumps(self.to_dict(waves), **options)

    def __repr__(self) -> str:
        parts = []
        if self.bpm is not None:
            manner = {True: ", steady", False: ", changing", None: ""}[self.steady]
            parts.append(f"{self.bpm:.2f} BPM{manner}, {len(self.beats)} beats")
        elif self.tempo_mode != "off":
            parts.append("no tempo found")
        if self.key_analysis:
            key = self.key_analysis.key
            parts.append(f"{key.name} ({key.camelot}, {self.key_analysis.confidence:.0%})")
        minutes, seconds = divmod(round(self.seconds, 1), 60)
        parts.append(f"{int(minutes)}:{seconds:04.1f}")
        name = repr(self.path) if self.path is not None else "array"
        return f"<Analysis of {name}: {'; '.join(parts)}>"


def name_dict(path: str | None) -> dict[str, object]:
    """A file's name as the program's JSON has it: as text, and as bytes if it is no UTF-8."""
    if path is None:
        return {"file": None}
    try:
        path.encode()
    except UnicodeEncodeError:
        raw = path.encode(errors="surrogateescape")
        shown = "".join(f"\\x{byte - 0xDC00:02X}" if 0xDC80 <= byte <= 0xDCFF else chr(byte)
                        for byte in map(ord, path))
        return {"file": shown, "fileBytes": raw.hex()}
    return {"file": path}
