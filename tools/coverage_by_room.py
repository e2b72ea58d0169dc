#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Sums what `llvm-cov export -summary-only` says of each file to a line for each room.

usage: llvm-cov export ... -summary-only | coverage_by_room.py
"""
import json
import os
import sys
from collections import defaultdict


def main():
    rooms = defaultdict(lambda: [0, 0, 0, 0])
    for file in json.load(sys.stdin)['data'][0]['files']:
        room = os.path.dirname(os.path.relpath(file['filename']))
        lines, branches = file['summary']['lines'], file['summary']['branches']
        counts = (lines['count'], lines['covered'], branches['count'], branches['covered'])
        rooms[room] = [a + b for a, b in zip(rooms[room], counts)]
    rooms['all'] = [sum(column) for column in zip(*rooms.values())]
    print('| room | lines | reached | branches | reached |\n|---|---|---|---|---|')
    for room, (lines, reached, branches, taken) in rooms.items():
        print(f'| {room} | {lines} | {share(reached, lines)} | {branches} '
              f'| {share(taken, branches)} |')


def share(part, whole):
    return f'{100 * part / whole:.1f} %' if whole else '-'


if __name__ == '__main__':
    main()
