# SPDX-License-Identifier: MIT
"""The programs that are compared: how each is called, and how its answer is read.

Every program is called as its manual says, with its own defaults, and reads the same WAVE file.
"""
import json
import os
import re
import resource
import subprocess

RATE = 44100
KEYS = ('C', 'Db', 'D', 'Eb', 'E', 'F', 'F#', 'G', 'Ab', 'A', 'Bb', 'B')


def numbers_of(text):
    return [float(word) for word in text.split()]


def read_atlas(text, _):
    track = json.loads(text)['tracks'][0]
    beats = track['beats'] or []
    return {'bpm': (track['tempo'] or {}).get('bpm'), 'beats': [beat['seconds'] for beat in beats],
            'bars': [beat['seconds'] for beat in beats if beat['beat'] == 1],
            'key': track['key']['name'] if track['key'] else None}


def read_first_number(text, _):
    match = re.search(r'\d+(\.\d+)?', text)
    return {'bpm': float(match.group()) if match else None}


def read_detected_rate(text, _):
    match = re.search(r'Detected BPM rate (\d+(\.\d+)?)', text)
    return {'bpm': float(match.group(1)) if match else None}


def read_beats(text, _):
    return {'beats': numbers_of(text)}


def read_features(text):
    """[(seconds, words)] of what vamp-simple-host prints: a frame, the length of the stretch if it
    is known, and what is there."""
    out = []
    for line in text.splitlines():
        place, _, words = line.partition(':')
        out.append((int(place.split(',')[0]) / RATE, words.split()))
    return out


def longest(features, seconds):
    """The words of the feature that is valid for the longest time in all, or None."""
    lasted = {}
    ends = [at for at, _ in features[1:]] + [seconds]
    for (at, words), end in zip(features, ends):
        lasted[tuple(words)] = lasted.get(tuple(words), 0.0) + end - at
    return max(lasted, key=lasted.get) if lasted else None


def read_longest_tempo(text, seconds):
    words = longest(read_features(text), seconds)
    return {'bpm': float(words[0]) if words else None}


def read_counted_beats(text, _):
    """The number of the beat in its bar stands beside it."""
    beats = read_features(text)
    return {'beats': [at for at, _ in beats],
            'bars': [at for at, words in beats if words[0] == '1']}


def read_feature_times(text, _):
    return {'beats': [at for at, _ in read_features(text)]}


def read_longest_key(text, seconds):
    """Keys are numbered from C major as 1 and C minor as 13; 0 and 25 mean none."""
    words = longest(read_features(text), seconds)
    number = int(float(words[0])) - 1 if words else -1
    if not 0 <= number < 24:
        return {'key': None}
    return {'key': f"{KEYS[number % 12]} {'minor' if number >= 12 else 'major'}"}


class Program:
    """A program with the questions that it answers; `command` is for a shell, with $FILE."""

    def __init__(self, name, package, command, answers, read):
        self.name, self.package, self.command = name, package, command
        self.answers, self._read = answers, read

    def run(self, wave, seconds, environment):
        """(answer, seconds of processor time, its own and the system's)"""
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        run = subprocess.run(['sh', '-c', self.command], env={**environment, 'FILE': wave},
                             capture_output=True, check=False)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        if run.returncode != 0:
            raise RuntimeError(f'{self.command}: {run.stderr.decode(errors="replace")[-500:]}')
        spent = after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime
        said = run.stdout + run.stderr if self._read is read_detected_rate else run.stdout
        return self._read(said.decode(errors='replace'), seconds), spent


def vamp(plugin):
    return f'vamp-simple-host -s {plugin} "$FILE"'


PROGRAMS = (
    Program('Beat Atlas', None, '"$BEATATLAS" analyze --json --quiet "$FILE"',
            ('bpm', 'beats', 'bars', 'key'), read_atlas),
    Program('aubio tempo', 'aubio-tools', 'aubio tempo "$FILE"', ('bpm',), read_first_number),
    Program('aubio beat', 'aubio-tools', 'aubio beat "$FILE"', ('beats',), read_beats),
    Program('aubiotrack', 'aubio-tools', 'aubiotrack "$FILE"', ('beats',), read_beats),
    Program('bpm', 'bpm-tools', 'sox -V1 "$FILE" -r 44100 -e float -c 1 -t raw - | bpm', ('bpm',),
            read_first_number),
    Program('soundstretch', 'soundstretch', 'soundstretch "$FILE" -bpm', ('bpm',),
            read_detected_rate),
    Program('fixedtempo', 'vamp-examples', vamp('vamp-example-plugins:fixedtempo:tempo'), ('bpm',),
            read_longest_tempo),
    Program('qm-tempotracker, tempo', 'ardour',
            vamp('libardourvampplugins:qm-tempotracker:tempo'), ('bpm',), read_longest_tempo),
    Program('qm-tempotracker, beats', 'ardour',
            vamp('libardourvampplugins:qm-tempotracker:beats'), ('beats',), read_feature_times),
    Program('qm-barbeattracker', 'ardour', vamp('libardourvampplugins:qm-barbeattracker:beats'),
            ('beats', 'bars'), read_counted_beats),
    Program('qm-keydetector', 'ardour', vamp('libardourvampplugins:qm-keydetector:key'), ('key',),
            read_longest_key),
)
