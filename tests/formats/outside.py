# SPDX-License-Identifier: MIT
"""What the scripts of this folder share: the tool, other programs, schemas. Both take the arguments
SOURCES FOLDER PROGRAM-THAT-MAKES-A-TRACK TOOL, and work in FOLDER."""
import io
import json
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import jsonschema
import mido

SOURCES, FOLDER, MAKE_TRACK, TOOL = (Path(word).absolute() for word in sys.argv[1:5])


def begin():
    """In an empty folder, with nobody's settings."""
    os.environ["XDG_CONFIG_HOME"] = str(FOLDER / "settings")
    shutil.rmtree(FOLDER, ignore_errors=True)
    FOLDER.mkdir(parents=True)
    os.chdir(FOLDER)


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


def jams_validator():
    path = SOURCES / "tests/formats/jams.schema.json"
    return validator(path)(json.loads(path.read_text()))


# "Each label is on a line of its own: start and end time in seconds, tab, label."
LABEL = re.compile(r"^(-?\d+\.\d{6})\t(-?\d+\.\d{6})\t([^\t\n]*)$")


def check_labels(text, beats):
    """One label at each of the beats. Returns their texts."""
    labels = [LABEL.match(line).groups() for line in text.decode().splitlines()]
    assert len(labels) == len(beats)
    for (start, end, _), beat in zip(labels, beats):
        assert start == end and abs(float(start) - beat["seconds"]) < 1e-6
    return [label for _, _, label in labels]


def check_midi(data, beats):
    """One note at each of the beats, those of downbeats higher. Returns the file and how many are."""
    file = mido.MidiFile(file=io.BytesIO(data))
    assert file.type == 1 and len(file.tracks) == 2
    seconds, clicks = 0.0, []
    for message in file:
        seconds += message.time
        if message.type == "note_on":
            clicks.append((seconds, message.note == 76))
    assert len(clicks) == len(beats)
    for (seconds, is_downbeat), beat in zip(clicks, beats):
        assert abs(seconds - beat["seconds"]) < 0.001 and is_downbeat == (beat["beat"] == 1)
    return file, sum(is_downbeat for _, is_downbeat in clicks)


def probed(*words):
    return json.loads(outside("ffprobe", "-v", "error", "-show_chapters", "-of", "json",
                              *words))["chapters"]
