#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_description.py FOLDER: the description that hosts read without loading the plugin says what
the plugin says of itself: identifiers, names, version, parameters, outputs, units, bounds.

FOLDER has beatatlas.n3 and beatatlas.cat. $VAMP_PATH names the folder of the plugin, of which
vamp-rdf-template-generator writes a description.
"""

import re
import subprocess
import sys
from pathlib import Path

# What the plugin cannot say of itself.
OURS_ALONE = ("vamp:computes_event_type", "dc:title", "dc:description")


def statements(text):
    """The lines about each plugin, parameter and output, by its name."""
    found = {}
    subject = None
    for line in text.splitlines():
        line = " ".join(line.split())
        begin = re.match(r"(plugbase:\w+) (a .*)", line)
        if begin:
            subject = found.setdefault(begin.group(1), set())
            line = begin.group(2)
        if line == ".":
            subject = None
        if subject is not None and line and not line.startswith("#"):
            subject.add(line.rstrip(" .;").replace('" )', '")'))
    return found


def main():
    folder = Path(sys.argv[1])
    of_plugin = statements(subprocess.run(
        ["vamp-rdf-template-generator", "urn:beatatlas:vamp#", "vamp:beatatlas"], check=True,
        capture_output=True, text=True).stdout)
    described = statements((folder / "beatatlas.n3").read_text())
    if described.keys() != of_plugin.keys() or len(of_plugin) < 12:
        sys.exit(f"described are {sorted(described)}, the plugin has {sorted(of_plugin)}")
    wrong = []
    for name, lines in of_plugin.items():
        wrong += [f"{name} lacks: {line}" for line in lines - described[name]]
        wrong += [f"{name} is not so in the plugin: {line}" for line in described[name] - lines
                  if not line.startswith(OURS_ALONE)]
    if wrong:
        sys.exit("\n".join(wrong))
    category = (folder / "beatatlas.cat").read_text()
    if not re.fullmatch(r"vamp:beatatlas:beatatlas::Time > Tempo\n", category):
        sys.exit(f"hosts would not find the category in {category!r}")


main()
