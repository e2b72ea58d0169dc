#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Exports the demo track in every format and has other programs read the files.

    read_back.py SOURCES FOLDER PROGRAM-THAT-MAKES-A-TRACK TOOL [--update]

What they see is compared with the JSON document of the tool, and the table of it with the one in
docs/formats.md, which --update writes anew. The demo track: 2 minutes at 126 BPM in A minor. A second
track is its first minute twice, faster and higher by an eighth the second time. read_tracks.py does
the same for any tracks.
"""
import csv
import importlib.metadata
import io
import json
import os
import re
import shutil
import struct
import subprocess
import sys
from pathlib import Path

import mido

from outside import (MAKE_TRACK, SOURCES, TOOL, analysis_validator, begin, check_labels,
                     check_midi, jams_validator, outside, probed, tool, version)

TRACK = "track.wav"
CHANGING = "changing.wav"
TABLE_BEGIN = "<!-- written by tests/formats/read_back.py -->\n"
TABLE_END = "<!-- end -->\n"


def check_schema_has_teeth(check, document):
    """A schema that accepts anything would pass every test."""
    for change in (
        lambda d: d.update(version=3),
        lambda d: d["tracks"][0].update(surprise=1),
        lambda d: d["tracks"][0]["beats"][0].update(beat=0),
        lambda d: d["tracks"][0]["key"].update(camelot="13A"),
        lambda d: d["tracks"][0]["key"]["ranking"][3].pop("name"),
        lambda d: d["tracks"][0].pop("origin"),
    ):
        damaged = json.loads(json.dumps(document))
        change(damaged)
        assert not check.is_valid(damaged)


def read_json(check):
    odd_name = os.fsencode("odd\n") + b"\xff.wav"
    shutil.copy(TRACK, odd_name)
    Path("empty.wav").write_bytes(b"")
    documents = [
        tool("analyze", "--json", TRACK),
        tool("analyze", "--json", "--waves", TRACK, odd_name),
        tool("analyze", "--json", "--origin=file", "--offset=-12.5", TRACK),
        tool("analyze", "--json", TRACK, "empty.wav", "missing.wav", status=1),
        tool("export", "--to", "json", TRACK),
    ]
    for words in (["--no-key"], *(["--tempo", mode] for mode in
                                  ("constant", "varied", "simple", "off"))):
        documents.append(tool("analyze", "--json", *words, TRACK))
    for text in documents:
        check.validate(json.loads(text))
    check_schema_has_teeth(check, json.loads(documents[0]))
    beats = outside("jq", ".tracks[0].beats | length", data=documents[0]).strip()
    return (f"python3-jsonschema {importlib.metadata.version('jsonschema')}, jq {version('jq', '--version')}",
            f"{len(documents)} documents valid by docs/analysis.schema.json; {beats} beats")


def read_jsonl(track):
    text = tool("export", "--to", "jsonl", TRACK, TRACK)
    bpm = outside("jq", "-c", ".tempo.bpm", data=text).split()
    assert [float(one) for one in bpm] == [track["tempo"]["bpm"]] * 2
    return f"jq {version('jq', '--version')}", f"{len(bpm)} lines, {float(bpm[0]):.2f} BPM each"


def read_csv(track):
    rows = list(csv.DictReader(io.StringIO(tool("export", "--to", "csv", TRACK).decode())))
    assert [int(row["frame"]) for row in rows] == [beat["frame"] for beat in track["beats"]]
    assert [int(row["beat"]) for row in rows] == [beat["beat"] for beat in track["beats"]]
    return "Python's csv", f"{len(rows)} beats, the last in bar {rows[-1]['bar']}"


def read_csv_tracks(track):
    rows = list(csv.DictReader(io.StringIO(
        tool("export", "--to", "csv-tracks", TRACK, "missing.wav", status=1).decode())))
    assert float(rows[0]["bpm"]) == track["tempo"]["bpm"] and rows[1]["error"]
    return "Python's csv", f"{len(rows)} rows; {rows[0]['bpm']} BPM, {rows[0]['key']}"


def read_jams(track):
    check = jams_validator()
    document = json.loads(tool("export", "--to", "jams", TRACK))
    check.validate(document)
    check.validate(json.loads(tool("export", "--to", "jams", "--offset=-60000", TRACK)))
    damaged = json.loads(json.dumps(document))
    damaged["annotations"][2]["data"][0]["value"] = "A minor"
    assert not check.is_valid(damaged)
    data = {one["namespace"]: one["data"] for one in document["annotations"]}
    assert [one["time"] for one in data["beat"]] == [one["seconds"] for one in track["beats"]]
    return (f"python3-jsonschema {importlib.metadata.version('jsonschema')}",
            ", ".join(f"{len(values)} in {name}" for name, values in data.items()) +
            f"; {data['key_mode'][0]['value']}")


def read_audacity(track, kind, chosen):
    labels = check_labels(tool("export", "--to", kind, TRACK),
                          [beat for beat in track["beats"] if chosen(beat)])
    return "Audacity's label grammar", f"{len(labels)} labels, {labels[0]} to {labels[-1]}"


def read_midi(track, changing):
    check_midi(tool("export", "--to", "midi", CHANGING), changing["beats"])
    file, downbeats = check_midi(tool("export", "--to", "midi", TRACK), track["beats"])
    tempos = [one for one in file.tracks[0] if one.type == "set_tempo"]
    return (f"python3-mido {importlib.metadata.version('mido')}",
            f"{len(track['beats'])} notes, {downbeats} of them downbeats, "
            f"{len(tempos)} tempos, the last {mido.tempo2bpm(tempos[-1].tempo):.2f} BPM; less than "
            "1 ms from the beats")


def check_chapters(chapters, changing):
    """Chapters as ffprobe tells them: one for each tempo, which is where the key changes too."""
    assert len(changing["tempo"]["stretches"]) == len(changing["key"]["segments"]) == 2
    assert len(chapters) == 2
    for chapter, stretch in zip(chapters, changing["tempo"]["stretches"]):
        assert chapter["tags"]["title"].startswith(f"{stretch['bpm']:.2f} BPM, ")
    change = changing["tempo"]["stretches"][1]["from"]
    for time, expected in ((chapters[0]["start_time"], 0), (chapters[0]["end_time"], change),
                           (chapters[1]["start_time"], change),
                           (chapters[1]["end_time"], changing["seconds"])):
        assert abs(float(time) - expected) < 1e-4


def read_ffmetadata(changing):
    Path("changing.ffmetadata").write_bytes(tool("export", "--to", "ffmetadata", CHANGING))
    check_chapters(probed("-f", "ffmetadata", "changing.ffmetadata"), changing)
    # Into a file with the sound and out of it again.
    outside("ffmpeg", "-v", "error", "-y", "-i", CHANGING, "-i", "changing.ffmetadata", "-map",
            "0:a", "-map_metadata", "1", "-c:a", "flac", "ffmetadata.mka")
    check_chapters(probed("ffmetadata.mka"), changing)
    return f"ffprobe {version('ffprobe', '-version')}", "2 chapters of the changing track"


def read_matroska(changing):
    Path("changing.xml").write_bytes(tool("export", "--to", "matroska-chapters", CHANGING))
    outside("mkvmerge", "-q", "-o", "mkvmerge.mka", "--chapters", "changing.xml", CHANGING)
    check_chapters(probed("mkvmerge.mka"), changing)
    return (f"mkvmerge {version('mkvmerge', '--version')}, ffprobe "
            f"{version('ffprobe', '-version')} on its file", "2 chapters of the changing track")


def read_waveform():
    data = tool("export", "--to", "waveform", "--samples-per-pixel", "441", TRACK)
    fields = struct.unpack_from("<iIiiIi", data)
    _, flags, rate, per_pixel, length, channels = fields
    assert (fields[0], flags, rate, per_pixel, channels) == (2, 0, 44100, 441, 2)
    assert len(data) == 24 + length * channels * 2 * 2
    values = struct.unpack_from(f"<{length * channels * 2}h", data, 24)
    # The same from FFmpeg's own decoding.
    raw = subprocess.run(["ffmpeg", "-v", "error", "-i", TRACK, "-f", "s16le", "-"],
                         capture_output=True, check=True).stdout
    samples = struct.unpack(f"<{len(raw) // 2}h", raw)
    for pixel in range(0, length, 97):
        left = samples[pixel * 882:(pixel + 1) * 882:2]
        assert values[pixel * 4:pixel * 4 + 2] == (min(left), max(left)), pixel
    return (f"Python's struct; ffmpeg {version('ffmpeg', '-version')} for the samples",
            f"version 2, {channels} channels, {length} pixels of {per_pixel} frames; extremes equal")


def read_waveform_json():
    text = tool("export", "--to", "waveform-json", "--peak-bits", "8", TRACK)
    seen = outside("jq", "-c", "[.version,.channels,.bits,.length*.channels*2==(.data|length),"
                   "(.data|min>=-128 and max<=127)]", data=text).strip()
    assert seen == "[2,2,8,true,true]"
    return f"jq {version('jq', '--version')}", "version 2, 8 bits, as many values as announced"


def read_playlist():
    Path("list.m3u8").write_bytes(tool("export", "--to", "m3u8", TRACK))
    seconds = re.search(r"#EXTINF:(\d+),", Path("list.m3u8").read_text()).group(1)
    lines = [line for line in Path("list.m3u8").read_text().splitlines() if line[:1] != "#"]
    assert [Path(line).samefile(TRACK) for line in lines] == [True]
    probed = outside("ffprobe", "-v", "error", "-show_entries", "format=duration", "-of",
                     "csv=p=0", lines[0])
    assert abs(float(probed) - int(seconds)) < 1
    return f"ffprobe {version('ffprobe', '-version')} on its entry", f"1 track of {seconds} s"


def table():
    check = analysis_validator()
    track, changing = json.loads(tool("analyze", "--json", TRACK, CHANGING))["tracks"]
    every, downbeats = (lambda beat: True), (lambda beat: beat["beat"] == 1)
    rows = {
        "json": read_json(check),
        "jsonl": read_jsonl(track),
        "csv": read_csv(track),
        "csv-tracks": read_csv_tracks(track),
        "jams": read_jams(track),
        "audacity-beats": read_audacity(track, "audacity-beats", every),
        "audacity-bars": read_audacity(track, "audacity-bars", downbeats),
        "audacity-numbers": read_audacity(track, "audacity-numbers", every),
        "midi": read_midi(track, changing),
        "ffmetadata": read_ffmetadata(changing),
        "matroska-chapters": read_matroska(changing),
        "waveform": read_waveform(),
        "waveform-json": read_waveform_json(),
        "m3u8": read_playlist(),
    }
    lines = ["| format | read by | what it saw |", "| --- | --- | --- |"]
    return "\n".join(lines + [f"| `{name}` | {reader} | {saw} |"
                              for name, (reader, saw) in rows.items()]) + "\n", rows


def check_every_format_is_here(rows):
    refusal = subprocess.run([TOOL, "export", "--to", "?", TRACK], capture_output=True, check=False)
    formats = re.search(r"takes one of (.*), not \?", refusal.stderr.decode()).group(1)
    assert formats.split(", ") == list(rows), formats


def without_versions(text):
    """Other releases of the same programs read the same."""
    return re.sub(r"(jsonschema|jq|mido|ffprobe|ffmpeg|mkvmerge) [0-9.]+", r"\1", text)


def main():
    begin()
    subprocess.run([MAKE_TRACK, TRACK], check=True)
    outside("ffmpeg", "-v", "error", "-i", TRACK, "-filter_complex",
            "[0]atrim=0:60[a];[0]atrim=0:60,asetrate=49612,aresample=44100[b];"
            "[a][b]concat=n=2:v=0:a=1", CHANGING)
    found, rows = table()
    check_every_format_is_here(rows)
    document = SOURCES / "docs/formats.md"
    before, rest = document.read_text().split(TABLE_BEGIN)
    shown, after = rest.split(TABLE_END)
    if "--update" in sys.argv:
        document.write_text(before + TABLE_BEGIN + found + TABLE_END + after)
    elif without_versions(shown) != without_versions(found):
        sys.exit(f"docs/formats.md shows\n{shown}and not\n{found}")
    print(found, end="")


main()
