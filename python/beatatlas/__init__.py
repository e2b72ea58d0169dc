# SPDX-License-Identifier: MIT
"""Beat Atlas: tempo, beat grid, key and waveform overviews of music.

    >>> import beatatlas
    >>> track = beatatlas.analyze("track.mp3")
    >>> track.bpm, track.key.name
"""

from ._analyze import analyze
from .analysis import (
    Alternative,
    Analysis,
    AudioFacts,
    Gap,
    KeyAnalysis,
    KeyCandidate,
    KeySegment,
    SessionKey,
    Stretch,
    TempoConfidence,
    Waves,
)
from .errors import (
    AnalysisError,
    DamagedTrackError,
    MissingFileError,
    NotAudioError,
    UnreadableFileError,
)
from ._version import __version__
from .keys import Key

__all__ = [
    "Alternative",
    "Analysis",
    "AnalysisError",
    "AudioFacts",
    "DamagedTrackError",
    "Gap",
    "Key",
    "KeyAnalysis",
    "KeyCandidate",
    "KeySegment",
    "MissingFileError",
    "NotAudioError",
    "SessionKey",
    "Stretch",
    "TempoConfidence",
    "UnreadableFileError",
    "Waves",
    "__version__",
    "analyze",
]
