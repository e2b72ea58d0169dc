# SPDX-License-Identifier: MIT
"""What the scripts of this folder share: the tool, other programs, schemas. Both take the arguments
SOURCES FOLDER PROGRAM-THAT-MAKES-A-TRACK TOOL, and work in FOLDER."""
import json
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

import jsonschema

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


def probed(*words):
    return json.loads(outside("ffprobe", "-v", "error", "-show_chapters", "-of", "json",
                              *words))["chapters"]
