#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Types beginnings of names into bash, presses Tab and Enter, and compares what the program is given.

    complete_names.py COMPLETION FOLDER

Bash runs at a terminal of its own, since it is readline that quotes what is completed and replaces a
part of the line by it.
"""
import fcntl
import os
import pty
import select
import shutil
import sys
import termios
import time
from pathlib import Path

FILES = ["new\nline.mp3", "with space.wav", "it's.mp3", 'say"so.mp3', "cash$x.mp3", "back\\slash.mp3",
         "star*.mp3", "semi;colon.mp3", " lead.mp3", "-dash.mp3", "~tilde.mp3", "(a) [b].mp3", "line.mp3",
         "b:side one.ogg", "b:side two.ogg", "x=y.mp3", "x=z w.mp3", "own settings.ini",
         "my folder/in side.mp3", "two\nlines/deep.mp3", ".hidden.mp3", "$list.mp3"]

# What is typed behind "beatatlas analyze ", and the last argument that comes of it.
CASES = [
    ("new", "new\nline.mp3"), ("'new", "new\nline.mp3"), ('"new', "new\nline.mp3"),
    ("tw", "two\nlines/"),
    ("wi", "with space.wav"), ("with\\ s", "with space.wav"), ("'with s", "with space.wav"),
    ('"with s', "with space.wav"), ("with' 's", "with space.wav"),
    ("it", "it's.mp3"), ("it\\'", "it's.mp3"), ('"it\'', "it's.mp3"),
    ("say", 'say"so.mp3'), ('"say\\"', 'say"so.mp3'), ("'say\"", 'say"so.mp3'),
    ("cash", "cash$x.mp3"), ("cash\\$", "cash$x.mp3"), ("'cash$", "cash$x.mp3"),
    ("back", "back\\slash.mp3"), ("back\\\\", "back\\slash.mp3"), ("'back\\", "back\\slash.mp3"),
    ("star", "star*.mp3"), ("star\\*", "star*.mp3"), ("semi", "semi;colon.mp3"),
    ("\\ ", " lead.mp3"), ("-- -d", "-dash.mp3"), ("\\~", "~tilde.mp3"),
    ("\\(a", "(a) [b].mp3"), ("line", "line.mp3"), (".hi", ".hidden.mp3"),
    ("b:side\\ o", "b:side one.ogg"), ('"b:side t', "b:side two.ogg"), ("b:", "b:side "),
    ("x=z", "x=z w.mp3"), ("x=y", "x=y.mp3"),
    ("my", "my folder/"), ("my\\ folder/", "my folder/in side.mp3"),
    ("my' 'folder/i", "my folder/in side.mp3"),
    ("~/mu", "HOME/music at home.mp3"), ("$HOME/mu", "HOME/music at home.mp3"),
    ("${HOME}/mu", "HOME/music at home.mp3"), ("\\$li", "$list.mp3"),
    ("--config own", "own settings.ini"),
    ("--config=own", "--config=own settings.ini"),
    ("nothing", "nothing"), ("-o x -d my", "my folder/"),
]

LONGEST_WAIT = 20.0


class Bash:
    def __init__(self, completion, home, noted):
        self.noted = noted
        child, self.terminal = pty.fork()
        if child == 0:
            os.environ.update(HOME=str(home), PS1="> ", TERM="dumb", INPUTRC="/dev/null",
                              HISTFILE="/dev/null")
            os.execvp("bash", ["bash", "--norc", "--noprofile", "-i"])
        # As wide as any line here: readline scrolls within a narrow one.
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, b"\x28\x00\xe8\x03\0\0\0\0")
        self.last_argument(f"source '{completion}'; beatatlas() {{ printf '%s\\0' \"${{@: -1}}\" >>"
                           f" '{noted}'; }}; beatatlas ready")

    def last_argument(self, line):
        """What the program is given last when this line is typed."""
        before = self.noted.stat().st_size if self.noted.exists() else 0
        os.write(self.terminal, line.encode() + b"\n")
        end = time.monotonic() + LONGEST_WAIT
        while time.monotonic() < end:
            if select.select([self.terminal], [], [], 0.02)[0]:
                os.read(self.terminal, 65536)
            words = self.noted.read_bytes()[before:] if self.noted.exists() else b""
            if words.endswith(b"\0"):
                return words[:-1].decode()
        sys.exit(f"{line!r}: bash does not answer")


def make_files(folder):
    shutil.rmtree(folder, ignore_errors=True)
    for name in FILES:
        path = folder / "files" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.touch()
    home = folder / "home"
    home.mkdir()
    (home / "music at home.mp3").touch()
    return home


def main():
    completion, folder = (Path(word).resolve() for word in sys.argv[1:])
    if not shutil.which("bash"):
        print("There is no bash here: not tested")
        sys.exit(77)
    home = make_files(folder)
    os.chdir(folder / "files")
    bash = Bash(completion, home, folder / "noted")
    faults = 0
    for typed, expected in CASES:
        given = bash.last_argument(f"beatatlas analyze {typed}\t")
        if given != expected.replace("HOME", str(home)):
            print(f"{typed!r} becomes {given!r}, not {expected!r}")
            faults += 1
    print(f"{len(CASES)} names completed, {faults} of them wrong")
    sys.exit(faults > 0)


main()
