#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_members.py XML HTML: every member of a public structure, by Doxygen's XML, must have its
explanation on a page. A page shows structures without members unless it is asked for them."""

import sys
from pathlib import Path
from xml.etree import ElementTree

from sphinx.util.inventory import InventoryFile


def members(xml: Path) -> set[str]:
    found = set()
    for file in xml.glob("struct*.xml"):
        for structure in ElementTree.parse(file).iter("compounddef"):
            for member in structure.iter("memberdef"):
                if member.get("kind") == "variable" and member.get("prot") == "public":
                    found.add(f"{structure.findtext('compoundname')}::{member.findtext('name')}")
    return found


def explained(html: Path) -> set[str]:
    with open(html / "objects.inv", "rb") as file:
        inventory = InventoryFile.load(file, "", lambda base, page: page)
    return {name.replace(".", "::") for kind in ("c:member", "cpp:member")
            for name in inventory.get(kind, {})}


xml, html = map(Path, sys.argv[1:])
lacking = sorted(members(xml) - explained(html))
for name in lacking:
    print(f"no page explains {name}", file=sys.stderr)
print(f"{len(members(xml))} members of structures, {len(lacking)} unexplained")
sys.exit(1 if lacking else 0)
