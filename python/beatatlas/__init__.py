# SPDX-License-Identifier: MIT
"""Beat Atlas: tempo, beat grid, key and waveform overviews of music.

    >>> import beatatlas
    >>> track = beatatlas.analyze("track.mp3")
    >>> track.bpm, track.key.name
"""

from . import _library
from ._analyze import analyze
from ._version import __version__
from .analysis import (
    Alternative,
    Analysis,
    AudioFacts,
    Gap,
    Overload,
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
from .key_analysis import KeyAnalysis, KeyCandidate, KeySegment, SessionKey
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
    "Overload",
    "SessionKey",
    "Stretch",
    "TempoConfidence",
    "UnreadableFileError",
    "Waves",
    "__version__",
    "analyze",
]

# What is missing is told by the import, not by the first analysis.
_library.media_library()
