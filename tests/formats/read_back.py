#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Exports the demo track in every format and has other programs read the files.

    read_back.py SOURCES FOLDER PROGRAM-THAT-MAKES-A-TRACK TOOL [--update]

What they see is compared with the JSON document of the tool, and the table of it with the one in
docs/formats.md, which --update writes anew. The demo track: 2 minutes at 126 BPM in A minor.
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
import xml.etree.ElementTree
from pathlib import Path

import jsonschema
import mido

SOURCES, FOLDER, MAKE_TRACK, TOOL = (Path(word).absolute() for word in sys.argv[1:5])
TRACK = "track.wav"
TABLE_BEGIN = "<!-- written by tests/formats/read_back.py -->\n"
TABLE_END = "<!-- end -->\n"


def tool(*words, status=0, **options):
    """What the tool writes to standard output."""
    run = subprocess.run([TOOL, *words], capture_output=True, check=False, **options)
    assert run.returncode == status, (words, run.returncode, run.stderr.decode())
    return run.stdout


def outside(*words, data=None):
    """What another program writes to standard output; it has to succeed."""
    return subprocess.run(words, input=data, capture_output=True, check=True).stdout.decode()


def version(*words):
    return re.search(r"[0-9]+\.[0-9]+(\.[0-9]+)?", outside(*words)).group()


def closed(schema):
    """The schema without room for members that it does not name."""
    if isinstance(schema, list):
        return [closed(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    result = {name: closed(part) for name, part in schema.items()}
    names_members = "properties" in schema and isinstance(schema["properties"], dict)
    is_name_alone = names_members and "camelot" in schema["properties"]
    if names_members and not is_name_alone and ("required" in schema or "allOf" in schema):
        result["unevaluatedProperties"] = False
    return result


def validator(path):
    schema = json.loads(path.read_text())
    kind = jsonschema.validators.validator_for(schema)
    kind.check_schema(schema)
    return kind


def analysis_validator():
    path = SOURCES / "docs/analysis.schema.json"
    kind = validator(path)
    return kind(closed(json.loads(path.read_text())))


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
    path = SOURCES / "tests/formats/jams.schema.json"
    check = validator(path)(json.loads(path.read_text()))
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


# "Each label is on a line of its own: start and end time in seconds, tab, label."
LABEL = re.compile(r"^(-?\d+\.\d{6})\t(-?\d+\.\d{6})\t([^\t\n]*)$")


def read_audacity(track, kind, chosen):
    lines = tool("export", "--to", kind, TRACK).decode().splitlines()
    labels = [LABEL.match(line).groups() for line in lines]
    seconds = [beat["seconds"] for beat in track["beats"] if chosen(beat)]
    assert len(labels) == len(seconds)
    for (start, end, _), expected in zip(labels, seconds):
        assert start == end and abs(float(start) - expected) < 1e-6
    return "Audacity's label grammar", f"{len(labels)} labels, {labels[0][2]} to {labels[-1][2]}"


def read_midi(track):
    file = mido.MidiFile(file=io.BytesIO(tool("export", "--to", "midi", TRACK)))
    assert file.type == 1 and len(file.tracks) == 2
    seconds, clicks, bars = 0.0, [], 0
    for message in file:
        seconds += message.time
        if message.type == "note_on":
            clicks.append(seconds)
            bars += message.note == 76
    tempos = [one for one in file.tracks[0] if one.type == "set_tempo"]
    assert len(clicks) == len(track["beats"])
    error = max(abs(one - beat["seconds"]) for one, beat in zip(clicks, track["beats"]))
    assert error < 0.001
    return (f"python3-mido {importlib.metadata.version('mido')}",
            f"{len(clicks)} notes, {bars} downbeats, {len(tempos)} tempos, the last "
            f"{mido.tempo2bpm(tempos[-1].tempo):.2f} BPM; less than 1 ms from the beats")


def read_ffmetadata(track):
    Path("track.ffmetadata").write_bytes(tool("export", "--to", "ffmetadata", TRACK))
    probed = json.loads(outside("ffprobe", "-v", "error", "-f", "ffmetadata", "-show_chapters",
                                "-of", "json", "track.ffmetadata"))
    chapters = probed["chapters"]
    assert abs(float(chapters[-1]["end_time"]) - track["seconds"]) < 1e-4
    # Into a file with the sound and out of it again.
    outside("ffmpeg", "-v", "error", "-y", "-i", TRACK, "-i", "track.ffmetadata", "-map", "0:a",
            "-map_metadata", "1", "-t", "1", "chapters.mka")
    return (f"ffprobe {version('ffprobe', '-version')}",
            f"{len(chapters)} chapter: {chapters[0]['tags']['title']}")


def read_matroska(track):
    tree = xml.etree.ElementTree.fromstring(tool("export", "--to", "matroska-chapters", TRACK))
    atoms = tree.findall("./EditionEntry/ChapterAtom")
    assert tree.tag == "Chapters" and atoms
    for atom in atoms:
        for name in ("ChapterTimeStart", "ChapterTimeEnd"):
            assert re.fullmatch(r"\d\d:[0-5]\d:[0-5]\d\.\d{9}", atom.findtext(name))
    hours, minutes, seconds = atoms[-1].findtext("ChapterTimeEnd").split(":")
    end = int(hours) * 3600 + int(minutes) * 60 + float(seconds)
    assert abs(end - track["seconds"]) < 1e-6
    title = atoms[0].findtext("./ChapterDisplay/ChapterString")
    return "Python's ElementTree (expat)", f"{len(atoms)} chapter: {title}"


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
    track = json.loads(tool("analyze", "--json", TRACK))["tracks"][0]
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
        "midi": read_midi(track),
        "ffmetadata": read_ffmetadata(track),
        "matroska-chapters": read_matroska(track),
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
    return re.sub(r"(jsonschema|jq|mido|ffprobe|ffmpeg) [0-9.]+", r"\1", text)


def main():
    os.environ["XDG_CONFIG_HOME"] = str(FOLDER / "settings")
    shutil.rmtree(FOLDER, ignore_errors=True)
    FOLDER.mkdir(parents=True)
    os.chdir(FOLDER)
    subprocess.run([MAKE_TRACK, TRACK], check=True)
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
