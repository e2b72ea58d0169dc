#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_links.py FOLDER: every link between the pages of FOLDER leads to a page and, behind #, to a
place that are there, and no page takes anything from elsewhere: scripts, styles, pictures, fonts."""

import re
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

# What a browser loads by itself; an `a` it follows only when told.
LOADED = {"script": "src", "link": "href", "img": "src", "source": "src", "iframe": "src",
          "audio": "src", "video": "src"}


class Page(HTMLParser):
    """The places of a page, and what it links to and loads."""

    def __init__(self, text):
        super().__init__()
        self.places, self.links, self.loads = set(), [], []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        self.places.update(filter(None, (attributes.get("id"), attributes.get("name"))))
        if tag == "a" and attributes.get("href"):
            self.links.append(attributes["href"])
        elif attributes.get(LOADED.get(tag)):
            self.loads.append(attributes[LOADED[tag]])


def is_elsewhere(link):
    parts = urlsplit(link)
    return parts.scheme not in ("", "data") or bool(parts.netloc)


def faults_of_page(path, pages):
    """What is wrong with the links of one page, in words."""
    page = pages[path]
    for link in page.loads:
        if is_elsewhere(link):
            yield f"loads {link}"
    for link in page.links + page.loads:
        parts = urlsplit(link)
        if is_elsewhere(link) or parts.scheme:
            continue
        if parts.path.startswith("/"):
            yield f"{link}: leaves the site"
            continue
        goal = (path.parent / unquote(parts.path)).resolve() if parts.path else path
        if not goal.is_file():
            yield f"{link}: there is no such file"
        elif parts.fragment and goal in pages and \
                unquote(parts.fragment) not in pages[goal].places:
            yield f"{link}: there is no such place"


def faults_of_style(text):
    for link in re.findall(r"""(?:url\(|@import )\s*["']?([^"')\s;]+)""", text):
        if is_elsewhere(link) or link.startswith("/"):
            yield f"loads {link}"


def main():
    folder = Path(sys.argv[1]).resolve()
    pages = {path: Page(path.read_text()) for path in sorted(folder.rglob("*.html"))}
    faults = [f"{path.relative_to(folder)}: {fault}" for path in pages
              for fault in faults_of_page(path, pages)]
    for path in sorted(folder.rglob("*.css")):
        faults += [f"{path.relative_to(folder)}: {fault}"
                   for fault in faults_of_style(path.read_text())]
    print(*faults, sep="\n", end="\n" if faults else "", file=sys.stderr)
    count = sum(len(page.links) for page in pages.values())
    print(f"{len(pages)} pages, {count} links, {len(faults)} faults")
    sys.exit(1 if faults or not count else 0)


if __name__ == "__main__":
    main()
