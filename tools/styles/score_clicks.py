#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""score_clicks.py TOOL: the tempo of a metronome alone, a minute at 60, 70 ... 190 BPM, by the auto
tempo and by the mode for a constant tempo, as rows of a table.

Two sounds: a woody click that rings for 50 ms, and a tick of 5 ms at 1 kHz."""
import json
import subprocess
import sys
import tempfile
import wave
from pathlib import Path

import numpy as np

RATE = 44100
SECONDS = 60
TEMPI = range(60, 200, 10)


def click(age):
    return np.exp(-age / 800) * np.sin(age * 0.02)


def tick(age):
    return np.where(age < RATE // 200, np.sin(2 * np.pi * 1000 * age / RATE), 0)


def write(path, samples):
    stereo = np.repeat((samples * 20000).astype('<i2'), 2)
    with wave.open(str(path), 'wb') as file:
        file.setnchannels(2)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(stereo.tobytes())


def tempi_of(tool, mode, paths):
    result = subprocess.run([tool, 'analyze', '--json', '--quiet', '--tempo', mode, *paths],
                            stdout=subprocess.PIPE, check=True)
    return [track['tempo']['bpm'] for track in json.loads(result.stdout)['tracks']]


def reading(found, true):
    """How many times too fast, or "right"."""
    if not found:
        return 'none'
    for name, factor in (('right', 1), ('half', 0.5), ('double', 2), ('3/2', 1.5), ('3/4', 0.75),
                         ('triple', 3)):
        if abs(found / true / factor - 1) < 0.01:
            return name
    return f'{found:.2f}'


def main():
    tool = sys.argv[1]
    with tempfile.TemporaryDirectory() as folder:
        print('| sound | mode | ' + ' | '.join(str(bpm) for bpm in TEMPI) + ' |')
        print('|---' * (2 + len(TEMPI)) + '|')
        for sound in (click, tick):
            paths = []
            for bpm in TEMPI:
                age = np.arange(SECONDS * RATE) % (RATE * 60 / bpm)
                paths.append(Path(folder) / f'{sound.__name__}-{bpm}.wav')
                write(paths[-1], sound(age))
            for mode in ('auto', 'constant'):
                found = tempi_of(tool, mode, paths)
                print(f'| {sound.__name__} | {mode} | '
                      + ' | '.join(map(reading, found, TEMPI)) + ' |')


if __name__ == '__main__':
    main()
