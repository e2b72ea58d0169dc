# SPDX-License-Identifier: MIT
"""What the tests of the package share: the program beside it, and a track.

Needs in the environment: BEATATLAS_TOOL, the program, and BEATATLAS_DEMO, which writes music.
"""

import json
import os
import struct
import subprocess
import tempfile
import unittest
import wave
from typing import Any, Union

import numpy as np
from numpy.typing import NDArray

TOOL = os.environ["BEATATLAS_TOOL"]
DEMO = os.environ["BEATATLAS_DEMO"]


def by_tool(path: Union[str, bytes], *options: str) -> dict[str, Any]:
    """The program's JSON entry of a file."""
    run = subprocess.run([TOOL, "analyze", "--json", *options, path], check=True,
                         capture_output=True)
    entry: dict[str, Any] = json.loads(run.stdout)["tracks"][0]
    return entry


def write_floats(path: str, samples: NDArray[Any], rate: int) -> None:
    """A WAV file of 32-bit floats, which the standard library cannot write.

    Args:
        samples: shape (frames, channels).
    """
    data = samples.astype("<f4").tobytes()
    channels = samples.shape[1]
    head = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + len(data), b"WAVE", b"fmt ", 16, 3,
                       channels, rate, 4 * channels * rate, 4 * channels, 32, b"data", len(data))
    with open(path, "wb") as file:
        file.write(head + data)


def samples_of(path: str) -> tuple[NDArray[np.int16], int]:
    """Shape (frames, channels), 16-bit integers."""
    with wave.open(str(path)) as file:
        frames = np.frombuffer(file.readframes(file.getnframes()), np.int16)
        return frames.reshape(-1, file.getnchannels()), file.getframerate()


class PackageTest(unittest.TestCase):
    """Has a folder of its own with a track of 30 seconds."""

    folder: "tempfile.TemporaryDirectory[str]"
    track: str

    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = tempfile.TemporaryDirectory()
        cls.track = os.path.join(cls.folder.name, "track.wav")
        subprocess.run([DEMO, cls.track, "--seconds", "30"], check=True)

    @classmethod
    def tearDownClass(cls) -> None:
        cls.folder.cleanup()

    def path(self, name: str) -> str:
        return os.path.join(self.folder.name, name)
