#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""same_answers.py HOST TRACK…: compares what the program, the Python module, a host in C and the
Vamp plugin, as installed, find in each track.

HOST is answers.c, compiled. The first three must agree to the last bit. A Vamp host passes whole
blocks and a block of silence behind them, and prints nanoseconds and six digits: it gets WAVE files
only, cut to whole blocks, and the others hear them with that silence.
"""

import json
import math
import subprocess
import sys
import tempfile
import wave
from pathlib import Path

BLOCK = 1024
PYTHON = """
import sys, beatatlas
track = beatatlas.analyze(sys.argv[1])
print("tempo %.17g" % (track.bpm or 0))
for seconds, number in zip(track.beats, track.beat_numbers):
    print("beat %.17g %d" % (seconds, number))
for candidate in track.key_analysis.ranking if track.key_analysis else ():
    print("key %d %.17g" % (candidate.key.number, candidate.probability))
for point in track.waves.loud:
    print("loud %.17g" % point["level"])
"""


def run(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def lines(text):
    """Each line as a list: what it is, and its numbers."""
    return [[word, *map(float, numbers)] for word, *numbers in map(str.split, text.splitlines())]


def from_program(track):
    found = json.loads(run("beatatlas", "analyze", "--json", "--waves", track))["tracks"][0]
    if "error" in found:
        sys.exit(f"{track} {found['error']}")
    keys = found["key"]["ranking"] if found["key"] else ()
    return ([["tempo", found["tempo"]["bpm"] or 0.0]] +
            [["beat", beat["seconds"], beat["beat"]] for beat in found["beats"]] +
            [["key", key["number"], key["probability"]] for key in keys] +
            [["loud", level] for level in found["waves"]["loud"]["levels"]])


def from_plugin(track):
    """The same lines, with keys in the order of the plugin: C to B major, C to B minor."""
    def features(output):
        for line in run("vamp-simple-host", f"beatatlas:beatatlas:{output}", track).splitlines():
            time, rest = line.split(":", 1)
            yield time.split(",")[0], rest.split()

    keys = [probability for _, values in features("keyranking") for probability in values[:24]]
    return ([["beat", float(time), float(values[0])] for time, values in features("beats")] +
            [["key", number, float(probability)] for number, probability in enumerate(keys)] +
            [["loud", float(values[0])] for _, values in features("loudness")])


def as_plugin(answers):
    """What the plugin says of these answers; it gives tempi by section, not for the track."""
    def number(key):  # 0 is A major, 12 A minor
        return key // 12 * 12 + (key + 9) % 12

    kept = [line for line in answers if line[0] in ("beat", "loud")]
    keys = sorted(["key", number(int(key)), share] for word, key, share in
                  (line for line in answers if line[0] == "key"))
    return kept[:-400] + keys + kept[-400:]


def require(track, who, found, expected, is_same):
    if len(found) != len(expected):
        sys.exit(f"{track}: {len(found)} values of {who}, {len(expected)} of the program")
    for one, other in zip(found, expected):
        if one[0] != other[0] or not all(map(is_same, one[1:], other[1:])):
            sys.exit(f"{track}: {who} says {one}, the program {other}")


def is_printed_so(one, other):
    """Times to a nanosecond, values to six digits."""
    return math.isclose(one, other, rel_tol=1e-5, abs_tol=2e-9)


def for_hosts(track, folder):
    """Two copies: whole blocks, and the same with a block of silence behind."""
    whole, heard = f"{folder}/whole.wav", f"{folder}/heard.wav"
    with wave.open(track) as source:
        frames = source.getnframes() // BLOCK * BLOCK
        audio = source.readframes(frames)
        for name, silence in ((whole, 0), (heard, BLOCK)):
            with wave.open(name, "wb") as target:
                target.setparams(source.getparams())
                target.writeframes(audio)
                target.writeframes(bytes(silence * source.getnchannels() * source.getsampwidth()))
    return whole, heard


def compare(host, track):
    is_wave = Path(track).suffix == ".wav"
    with tempfile.TemporaryDirectory() as folder:
        whole, heard = for_hosts(track, folder) if is_wave else (None, track)
        program = from_program(heard)
        for who, text in (("Python", run("python3", "-c", PYTHON, heard)), ("C", run(host, heard))):
            require(track, who, lines(text), program, lambda one, other: one == other)
        if is_wave:
            require(track, "the plugin", from_plugin(whole), as_plugin(program), is_printed_so)
    beats = sum(line[0] == "beat" for line in program)
    ways = "program, Python, C and Vamp" if is_wave else "program, Python and C (no WAVE file)"
    print(f"{Path(track).name}: {program[0][1]:.2f} BPM, {beats} beats, {len(program)} values: the "
          f"same from {ways}")


def main():
    host, *tracks = sys.argv[1:]
    if not tracks:
        sys.exit("no tracks")
    for track in tracks:
        compare(host, track)


main()
