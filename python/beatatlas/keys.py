# SPDX-License-Identifier: MIT
"""Keys and how they are written."""

from __future__ import annotations

from dataclasses import dataclass

from ._arguments import whole

_SHARPS = ("A", "A#", "B", "C", "C#", "D", "D#", "E", "F", "F#", "G", "G#")
_FLATS = ("A", "Bb", "B", "C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab")
# The usual one of two names of a black key: fewer signs in the signature.
_USUAL_MAJOR = ("A", "Bb", "B", "C", "Db", "D", "Eb", "E", "F", "F#", "G", "Ab")
_USUAL_MINOR = ("A", "Bb", "B", "C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#")
_GERMAN = {"A": "A", "A#": "Ais", "Bb": "B", "B": "H", "C": "C", "C#": "Cis", "Db": "Des",
           "D": "D", "Eb": "Es", "E": "E", "F": "F", "F#": "Fis", "G": "G", "G#": "Gis",
           "Ab": "As"}
_SOLFEGE = {"A": "La", "B": "Si", "C": "Do", "D": "Re", "E": "Mi", "F": "Fa", "G": "Sol"}


@dataclass(frozen=True, order=True, repr=False)
class Key:
    """One of the 24 major and minor keys, in the order of their numbers.

    Attributes:
        number: 0 to 11: A, Bb, B … Ab major; 12 to 23: A, Bb, B … G# minor.
    """

    number: int

    def __post_init__(self) -> None:
        # Of Python's own type: JSON takes no other.
        object.__setattr__(self, "number", whole("number", self.number, 0, 23))

    @property
    def is_minor(self) -> bool:
        return self.number >= 12

    @property
    def mode(self) -> str:
        """``"major"`` or ``"minor"``."""
        return "minor" if self.is_minor else "major"

    @property
    def tonic(self) -> str:
        """The usual name of the tonic: ``"F#"``, ``"Bb"``."""
        return (_USUAL_MINOR if self.is_minor else _USUAL_MAJOR)[self.number % 12]

    @property
    def name(self) -> str:
        """``"A minor"``, ``"Bb major"``."""
        return f"{self.tonic} {self.mode}"

    @property
    def sharps(self) -> str:
        """Written with sharps alone: ``"A# major"``."""
        return f"{_SHARPS[self.number % 12]} {self.mode}"

    @property
    def flats(self) -> str:
        """Written with flats alone: ``"Gb minor"``."""
        return f"{_FLATS[self.number % 12]} {self.mode}"

    @property
    def _fifths(self) -> int:
        """Steps upward on the circle of fifths from C major or A minor, 0 to 11."""
        from_c = self.number % 12 - (0 if self.is_minor else 3)
        return from_c * 7 % 12

    @property
    def camelot(self) -> str:
        """``"8A"`` is A minor, ``"8B"`` C major."""
        return f"{(self._fifths + 7) % 12 + 1}{'A' if self.is_minor else 'B'}"

    @property
    def open_key(self) -> str:
        """``"1m"`` is A minor, ``"1d"`` C major."""
        return f"{self._fifths + 1}{'m' if self.is_minor else 'd'}"

    @property
    def german(self) -> str:
        """``"a-Moll"``, ``"B-Dur"`` for Bb major."""
        tonic = _GERMAN[self.tonic]
        return f"{tonic.lower()}-Moll" if self.is_minor else f"{tonic}-Dur"

    @property
    def solfege(self) -> str:
        """``"La minor"``, ``"Sib major"``."""
        return f"{_SOLFEGE[self.tonic[0]]}{self.tonic[1:]} {self.mode}"

    def to_dict(self) -> dict[str, object]:
        """Number and all names, as in the program's JSON."""
        return {"number": self.number, "name": self.name, "sharps": self.sharps,
                "flats": self.flats, "camelot": self.camelot, "openKey": self.open_key,
                "german": self.german, "solfege": self.solfege}

    def __str__(self) -> str:
        return self.name

    def __format__(self, width: str) -> str:
        return format(self.name, width)

    def __repr__(self) -> str:
        return f"<Key {self.number}: {self.name}, {self.camelot}>"
