#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_plugin.py FOLDER DEMO TOOL: the plugin in a host of another maker against the program.

$VAMP_PATH names the folder of the plugin. The host passes whole blocks and a block of silence at the
end: the music is a whole number of blocks long, and the program hears it with that silence.
"""

import json
import re
import subprocess
import sys
import wave
from pathlib import Path

PLUGIN = "beatatlas:beatatlas"
BLOCK = 1024
SECONDS = 102.4  # 4410 blocks at 44100 Hz, 4800 at 48000 Hz
NAMES = ("C", "Db", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B")


def features(output, track):
    """What the host prints: time, duration or None, values, label."""
    run = subprocess.run(["vamp-simple-host", f"{PLUGIN}:{output}", track], check=True,
                         capture_output=True, text=True)
    found = []
    for line in run.stdout.splitlines():
        time, rest = line.split(":", 1)
        start, _, duration = time.partition(",")
        found.append((float(start), float(duration) if duration else None, rest.split()))
    return found


def expect(what, found, expected):
    if found != expected:
        sys.exit(f"{what}: the plugin gives {found!r}, the program {expected!r}")


def expect_near(what, found, expected, tolerance):
    if len(found) != len(expected):
        sys.exit(f"{what}: {len(found)} values in the plugin, {len(expected)} in the program")
    for index, (one, other) in enumerate(zip(found, expected)):
        if abs(one - other) > tolerance * max(1.0, abs(other)):
            sys.exit(f"{what}, value {index}: {one} in the plugin, {other} in the program")


def with_silence(track):
    """A copy with a block of silence behind it."""
    copy = track.replace(".wav", "-silence.wav")
    with wave.open(track) as source, wave.open(copy, "wb") as target:
        target.setparams(source.getparams())
        expect("length", source.getnframes() % BLOCK, 0)
        target.writeframes(source.readframes(source.getnframes()))
        target.writeframes(bytes(BLOCK * source.getnchannels() * source.getsampwidth()))
    return copy


def check(track, tool):
    run = subprocess.run([tool, "analyze", "--json", "--waves", with_silence(track)], check=True,
                         capture_output=True)
    truth = json.loads(run.stdout)["tracks"][0]

    beats = features("beats", track)
    expect_near("beats", [beat[0] for beat in beats],
                [beat["seconds"] for beat in truth["beats"]], 1e-8)
    expect("numbers", [beat[2] for beat in beats],
           [[str(beat["beat"])] for beat in truth["beats"]])
    expect_near("bars", [bar[0] for bar in features("bars", track)],
                [beat["seconds"] for beat in truth["beats"] if beat["beat"] == 1], 1e-8)

    stretches = truth["tempo"]["stretches"]
    tempo = features("tempo", track)
    expect("tempo", [" ".join(stretch[2][1:]) for stretch in tempo],
           [f"{stretch['bpm']:.2f} BPM" for stretch in stretches])
    expect_near("stretches", [stretch[0] for stretch in tempo],
                [stretch["from"] for stretch in stretches], 1e-8)

    keys = features("key", track)
    expect("keys", [" ".join(key[2][1:]) for key in keys],
           [segment["name"] for segment in truth["key"]["segments"]])
    for key in keys:
        number = int(key[2][0]) - 1
        expect("tonic", key[2][1], re.sub("Db", "C#", NAMES[number % 12]).replace("Ab", "G#")
               if number >= 12 else NAMES[number % 12])
    (_, _, ranking), = features("keyranking", track)
    expect("sum of 24 probabilities", (len(ranking) - 2, round(sum(map(float, ranking[:24])), 4)),
           (24, 1.0))
    expect_near("largest", [max(map(float, ranking[:24]))],
                [truth["key"]["ranking"][0]["probability"]], 1e-5)

    for output, wave in (("loudness", "loud"), ("bass", "dots"), ("zoom", "zoom")):
        expect_near(output, [float(point[2][0]) for point in features(output, track)],
                    truth["waves"][wave]["levels"], 1e-5)


def main():
    folder, demo, tool = sys.argv[1:]
    Path(folder).mkdir(parents=True, exist_ok=True)
    listed = subprocess.run(["vamp-simple-host", "-l"], check=True, capture_output=True, text=True)
    if 'Beat Atlas, "beatatlas"' not in listed.stdout:
        sys.exit("the host does not list the plugin")
    for options in ((), ("--rate", "48000", "--tempo", "93.5", "--key", "F#")):
        track = f"{folder}/track.wav"
        subprocess.run([demo, track, "--seconds", str(SECONDS), *options], check=True)
        check(track, tool)


main()
