# SPDX-License-Identifier: MIT
"""Why a track could not be analysed."""

from __future__ import annotations

import errno


class AnalysisError(Exception):
    """A track without a result.

    Attributes:
        path: the file's name as it was passed; None for an array.
        reason: why, without the name: ``"is empty"``.
    """

    def __init__(self, path: str | None, reason: str) -> None:
        name = "the array" if path is None else path or "''"
        super().__init__(f"{name} {reason}")
        self.path = path
        self.reason = reason

    def __str__(self) -> str:
        return str(self.args[0])  # Errors of the system would put their number before it.

    def __reduce__(self) -> tuple[type[AnalysisError], tuple[str | None, str]]:
        return type(self), (self.path, self.reason)


class MissingFileError(AnalysisError, FileNotFoundError):
    """There is no such file."""

    def __init__(self, path: str | None, reason: str) -> None:
        super().__init__(path, reason)
        self.errno, self.filename = errno.ENOENT, path


class UnreadableFileError(AnalysisError, OSError):
    """The system does not let the file be read."""

    def __init__(self, path: str | None, reason: str) -> None:
        super().__init__(path, reason)
        self.filename = path


class NotAudioError(AnalysisError):
    """The file holds no audio of a known kind, or nothing."""


class DamagedTrackError(AnalysisError):
    """There is audio, but no whole track: cut off, broken."""
