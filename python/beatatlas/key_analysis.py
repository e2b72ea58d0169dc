# SPDX-License-Identifier: MIT
"""What an analysis found of keys."""

from __future__ import annotations

from dataclasses import dataclass

import numpy as np
from numpy.typing import NDArray

from ._records import RecordWithArrays
from .keys import Key

NOTES = ("A", "Bb", "B", "C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#")


@dataclass(frozen=True)
class KeyCandidate:
    """A key and the evidence for it.

    Attributes:
        score: compares keys of one track only.
        probability: 0 to 1; those of all 24 keys add up to 1.
    """

    key: Key
    score: float
    probability: float

    def to_dict(self) -> dict[str, object]:
        return {**self.key.to_dict(), "score": self.score, "probability": self.probability}


@dataclass(frozen=True)
class KeySegment:
    """A section in one key.

    Attributes:
        start: in seconds from the first frame of music, like ``end``.
        confidence: as that of the whole track, 0 to 1.
    """

    start: float
    end: float
    key: Key
    confidence: float

    def to_dict(self) -> dict[str, object]:
        bounds: dict[str, object] = {"from": self.start, "to": self.end}
        return {**bounds, **self.key.to_dict(), "confidence": self.confidence}


@dataclass(frozen=True, eq=False, repr=False)
class KeyAnalysis(RecordWithArrays):
    """The key by evidence.

    Attributes:
        key: the likeliest one.
        confidence: the share of tracks of known key, 0 to 1, on which such an answer was right;
            below 0.8 the second key of the ranking is worth showing.
        ranking: all 24 keys, the likeliest first.
        segments: the keys along the track, without gaps; one unless the key changes.
        chroma: shape (12,): how strongly each note sounds, from A upward; adds up to 1.
        tuning_cents: above A4 = 440 Hz, -50 to 50.
        tuning_hz: the frequency of A4.
    """

    key: Key
    confidence: float
    ranking: tuple[KeyCandidate, ...]
    segments: tuple[KeySegment, ...]
    chroma: NDArray[np.float64]
    tuning_cents: float
    tuning_hz: float

    def to_dict(self) -> dict[str, object]:
        return {
            **self.key.to_dict(),
            "confidence": self.confidence,
            "ranking": [candidate.to_dict() for candidate in self.ranking],
            "segments": [segment.to_dict() for segment in self.segments],
            "chroma": [{"note": note, "share": share}
                       for note, share in zip(NOTES, self.chroma.tolist())],
            "tuning": {"cents": self.tuning_cents, "hz": self.tuning_hz},
        }

    def __repr__(self) -> str:
        changes = f"{len(self.segments)} segments; " if len(self.segments) > 1 else ""
        return (f"<KeyAnalysis: {self.key} ({self.key.camelot}, {self.confidence:.0%}), before "
                f"{self.ranking[1].key}; {changes}A4 at {self.tuning_hz:.1f} Hz>")


@dataclass(frozen=True, eq=False, repr=False)
class SessionKey(RecordWithArrays):
    """The key of a session, which needs a pass of its own (``session_key=True``).

    Attributes:
        ranking: all 24 keys with their scores, best first.
        note_counts: shape (12,): how many of the 12 strongest semitone bands have the note.
        note_shares: shape (12,): of those bands' energy; adds up to 1.
    """

    ranking: tuple[tuple[Key, float], ...]
    note_counts: NDArray[np.int32]
    note_shares: NDArray[np.float64]

    @property
    def key(self) -> Key:
        return self.ranking[0][0]

    @property
    def runner_up_distance(self) -> float:
        """How far the second key lies behind the first, as a share of its score: 0 to 1."""
        first, second = self.ranking[0][1], self.ranking[1][1]
        return (first - second) / first

    def to_dict(self) -> dict[str, object]:
        return {
            **self.key.to_dict(),
            "runnerUpDistance": self.runner_up_distance,
            "ranking": [_scored(key, score) for key, score in self.ranking],
            "notes": [{"note": note, "count": count, "share": share} for note, count, share in
                      zip(NOTES, self.note_counts.tolist(), self.note_shares.tolist())],
        }

    def __repr__(self) -> str:
        return (f"<SessionKey: {self.key} ({self.key.camelot}), {self.runner_up_distance:.1%} "
                f"before {self.ranking[1][0]}>")


def _scored(key: Key, score: float) -> dict[str, object]:
    return {**key.to_dict(), "score": score}
