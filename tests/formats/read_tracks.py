#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Exports tracks in every format, from the files and from a catalogue, and has other programs read
what comes out: as read_back.py, but of any tracks.

    read_tracks.py SOURCES FOLDER PROGRAM-THAT-MAKES-A-TRACK TOOL [--stored] [TRACK...]

What they see is compared with the JSON document of the tool. With --stored all but the waveforms come
from the catalogue alone, so that each track is analysed only once. Without tracks some are made: the demo
track in several kinds of file, one that changes, silence, and a name of odd bytes. Prints a table of
what was seen in all tracks together.
"""
import csv
import io
import json
import math
import os
import re
import shutil
import struct
import subprocess
import sys
from collections import Counter
from pathlib import Path
from urllib.parse import unquote_to_bytes

from outside import (MAKE_TRACK, analysis_validator, begin, check_labels, check_midi,
                     jams_validator, outside, probed, tool)

OFTEN = 256  # frames of a pixel
IS_STORED = "--stored" in sys.argv
seen = Counter()


def exported(kind, track):
    return tool("export", "--to", kind, "--", track)


def stored(kind, track):
    """The whole path is a text that no other track has."""
    return tool("export", "--catalogue", "c.sqlite", "--text", os.path.abspath(track), "--to", kind)


def found(kind, track):
    return stored(kind, track) if IS_STORED else exported(kind, track)


def made_tracks():
    subprocess.run([MAKE_TRACK, "demo.wav"], check=True)
    outside("ffmpeg", "-v", "error", "-f", "lavfi", "-i", "anullsrc=r=44100:d=3", "silence.wav")
    for name, words in (("a.mp3", ["-c:a", "libmp3lame"]), ("b.m4a", ["-c:a", "aac"]),
                        ("c.opus", ["-c:a", "libopus"]), ("--d.flac", ["-ar", "22050"])):
        outside("ffmpeg", "-v", "error", "-t", "20", "-i", "demo.wav", *words, f"./{name}")
    odd = os.fsencode("odd\n,\"<&>=;#") + b"\xff.flac"
    shutil.copy("--d.flac", odd)
    return [os.fsencode(name) for name in ("silence.wav", "a.mp3", "b.m4a", "c.opus",
                                           "--d.flac")] + [odd]


def read_json(path, track):
    text = found("json", path)
    analysis_validator().validate(json.loads(text))
    assert json.loads(text)["tracks"] == [track]
    count = outside("jq", ".tracks[0].beats | length", data=text)
    assert int(count) == len(track["beats"])
    assert json.loads(outside("jq", "-c", ".", data=found("jsonl", path))) == track
    seen["json"] += int(count)
    seen["jsonl"] += 1


def read_tables(path, track):
    rows = list(csv.DictReader(io.StringIO(found("csv", path).decode(), newline="")))
    assert [(int(row["frame"]), int(row["beat"])) for row in rows] == [
        (beat["frame"], beat["beat"]) for beat in track["beats"]]
    seen["csv"] += len(rows)
    row, = csv.DictReader(io.StringIO(found("csv-tracks", path).decode(), newline=""))
    assert row["file"] == track["file"] and int(row["beats"]) == len(track["beats"])
    assert float(row["bpm"] or "nan") == track["tempo"]["bpm"] or not row["bpm"]
    assert row["key"] == (track["key"]["name"] if track["key"] else "")
    seen["csv-tracks"] += 1


def read_jams(path, track):
    document = json.loads(found("jams", path))
    jams_validator().validate(document)
    data = {one["namespace"]: one["data"] for one in document["annotations"]}
    assert [one["time"] for one in data["beat"]] == [one["seconds"] for one in track["beats"]]
    assert len(data["key_mode"]) == (len(track["key"]["segments"]) if track["key"] else 0)
    assert bool(data["tempo"]) == (track["tempo"]["bpm"] is not None)
    seen["jams"] += sum(len(values) for values in data.values())


def read_labels(path, track):
    downbeats = [beat for beat in track["beats"] if beat["beat"] == 1]
    for kind, beats in (("beats", track["beats"]), ("numbers", track["beats"]),
                        ("bars", downbeats)):
        seen[f"audacity-{kind}"] += len(check_labels(found(f"audacity-{kind}", path), beats))


def read_midi(path, track):
    check_midi(found("midi", path), track["beats"])
    seen["midi"] += len(track["beats"])


def read_chapters(path, track):
    Path("t.ffmetadata").write_bytes(found("ffmetadata", path))
    chapters = probed("-f", "ffmetadata", "t.ffmetadata")
    assert float(chapters[0]["start_time"]) == 0.0
    assert abs(float(chapters[-1]["end_time"]) - track["seconds"]) < 1e-4
    for before, after in zip(chapters, chapters[1:]):
        assert before["end"] == after["start"]
    Path("t.xml").write_bytes(found("matroska-chapters", path))
    # Into a file of any sound; mkvmerge does not know every kind.
    outside("mkvmerge", "-q", "-o", "t.mka", "--chapters", "t.xml", "carrier.wav")
    others = probed("t.mka")
    assert [one["tags"]["title"] for one in others] == [one["tags"]["title"] for one in chapters]
    for one, other in zip(chapters, others):
        assert abs(float(one["start_time"]) - float(other["start_time"])) < 1e-4
    seen["ffmetadata"] += len(chapters)
    seen["matroska-chapters"] += len(others)


def read_waveform(path, track):
    data = exported("waveform", path)
    kind, _, rate, per_pixel, length, channels = struct.unpack_from("<iIiiIi", data)
    assert (kind, rate, per_pixel, channels) == (2, track["sampleRate"], OFTEN, 2)
    assert length == math.ceil(track["frames"] / OFTEN) and len(data) == 24 + length * 8
    values = struct.unpack_from(f"<{length * 4}h", data, 24)
    assert all(low <= high for low, high in zip(values[::2], values[1::2]))
    document = json.loads(outside("jq", "-c", ".", data=exported("waveform-json", path)))
    assert document["data"] == list(values)
    seen["waveform"] += length
    seen["waveform-json"] += document["length"]


def read_playlist(path, track):
    lines = found("m3u8", path).decode().splitlines()
    entry = lines[2]
    place = unquote_to_bytes(entry.removeprefix("file://")) if entry[0] != "/" else entry
    assert os.path.samefile(place, path)
    seconds = int(re.search(r"#EXTINF:(\d+),", lines[1]).group(1))
    assert len(lines) == 3 and abs(seconds - track["seconds"]) <= 0.5
    probe = outside("ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0",
                    place)
    # An encoder's delay and the last packet count for ffprobe.
    assert abs(float(probe) - track["seconds"]) < 0.2
    seen["m3u8"] += 1


def read_catalogue(paths):
    """What a catalogue exports is what the files themselves do."""
    for path in paths:
        name = os.path.abspath(path)
        for kind in ("csv", "csv-tracks", "jams", "midi", "audacity-beats", "ffmetadata",
                     "matroska-chapters", "m3u8"):
            assert stored(kind, name) == exported(kind, name), (name, kind)
            seen["from the catalogue"] += 1


def main():
    tracks = [os.fsencode(os.path.abspath(word)) for word in sys.argv[5:] if word != "--stored"]
    begin()
    tracks = tracks or made_tracks()
    outside("ffmpeg", "-v", "error", "-f", "lavfi", "-i", "anullsrc=r=8000:d=3600", "carrier.wav")
    tool("scan", "-q", "--catalogue", "c.sqlite", "--", *tracks)
    for path in tracks:
        track, = json.loads(found("json", path))["tracks"]
        for read in (read_json, read_tables, read_jams, read_labels, read_midi, read_chapters,
                     read_waveform, read_playlist):
            read(path, track)
    if not IS_STORED:
        read_catalogue(tracks)
    print(f"{len(tracks)} tracks")
    for kind, count in seen.items():
        print(f"{kind}: {count}")


main()
