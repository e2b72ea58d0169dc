#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Scores the tempo, beats and bars that the tool finds on music of known tempo, beats and bars.

usage: score_tempo.py TOOL FOLDER... [--tempo auto,constant,varied,simple] [--keep DIR]
                      [--tracks] [--calibration]

A FOLDER holds ID.flac, ID.ogg ... and corpus.json with beats/ID.txt as make_styles.py writes
them; or, without a corpus.json, NAME.ogg next to NAME.beats.txt. Every file goes through
`TOOL analyze --json --tempo MODE`; with --keep the tool's answers are stored in DIR and read
from there the next time. Prints a table in Markdown with a line for each folder, half (of a
style set) and mode:

Acc1    share of tracks of constant tempo within 4 % of the true one (without those of
        ambiguous octave: flag octave_unsure, or approx_bpm)
Acc2    the same, but twice, half, three times or a third of it also count; of all tracks
.05     share within 0.05 BPM after that correction
F70     F-measure of the beats within 70 ms, one to one, over the annotated section; F20 within
        20 ms (not of tracks flagged phase_uncertain)
any     F70 if twice or half the true beats are accepted too
bars    F-measure of the downbeats, within 70 ms

--tracks adds a line for each track. --calibration adds, for the mode auto, how often an answer
of each stated confidence was right: the tempo up to a factor of two or three; its level, if the
tempo was; the beats, if the level was; the bars, if the beats were. Beats and bars are right from
an F-measure of 0.8, a level if the number of its beats is within a tenth of the true one.
"""
import argparse
import glob
import json
import os
import subprocess
import sys
from bisect import bisect_left

FACTORS = (1.0, 2.0, 0.5, 3.0, 1 / 3)
RIGHT = 0.8
COLUMNS = ('Acc1', 'Acc2', '.05', 'F70', 'any', 'F20', 'bars')
STAGES = ('tempo', 'level', 'phase', 'bars')


class Track:
    """A track's truth."""

    def __init__(self, entry, folder):
        self.id, self.half = entry['id'], entry.get('half', '')
        self.flags = entry.get('flags', [])
        self.bpm = entry.get('bpm') if entry.get('constant', True) else None
        self.beats, self.bars = [], []
        if entry.get('beats'):
            with open(os.path.join(folder, entry['beats'])) as f:
                lines = [line.split() for line in f]
            self.beats = [float(time) for time, _ in lines]
            self.bars = [float(time) for time, first in lines if first == '1']
        names = glob.glob(os.path.join(folder, self.id + '.*'))
        self.path = next((n for n in sorted(names) if not n.endswith('.txt')), None)


def read_folder(folder):
    """The tracks of a folder that has audio for them."""
    corpus = os.path.join(folder, 'corpus.json')
    if os.path.exists(corpus):
        with open(corpus) as f:
            entries = json.load(f)
    else:
        found = sorted(glob.glob(os.path.join(folder, '*.beats.txt')))
        entries = [{'id': os.path.basename(name)[:-10], 'beats': os.path.basename(name)}
                   for name in found]
    tracks = [Track(entry, folder) for entry in entries]
    for track in tracks:
        if track.bpm is None and not os.path.exists(corpus):
            track.bpm = 60 * (len(track.beats) - 1) / (track.beats[-1] - track.beats[0])
    return [track for track in tracks if track.path]


def ask_tool(tool, mode, track):
    run = subprocess.run([tool, 'analyze', '--json', '-q', '--no-key', '--tempo', mode, '--',
                          track.path], capture_output=True, check=False)
    if run.returncode != 0:
        sys.exit(f'{track.path}: {run.stderr.decode()}')
    return json.loads(run.stdout)['tracks'][0]


def answers_of(tool, mode, folder, tracks, keep):
    """{id: the tool's answer}"""
    name = f'{os.path.basename(os.path.normpath(folder))}.{mode}.json'
    path = os.path.join(keep, name) if keep else None
    if path and os.path.exists(path):
        with open(path) as f:
            return json.load(f)
    answers = {track.id: ask_tool(tool, mode, track) for track in tracks}
    if path:
        with open(path, 'w') as f:
            json.dump(answers, f)
    return answers


def f_measure(found, truth, tolerance):
    """Harmonic mean of the shares of found and of true times that have a partner."""
    if len(truth) > 1:
        found = found[bisect_left(found, truth[0] - 0.07):bisect_left(found, truth[-1] + 0.07)]
    if not found or not truth:
        return 0.0
    hits = i = k = 0
    while i < len(found) and k < len(truth):
        apart = found[i] - truth[k]
        if abs(apart) <= tolerance:
            # Nearer ones come first.
            while i + 1 < len(found) and abs(found[i + 1] - truth[k]) < abs(found[i] - truth[k]):
                i += 1
            hits, i, k = hits + 1, i + 1, k + 1
        elif apart < 0:
            i += 1
        else:
            k += 1
    return 2 * hits / (len(found) + len(truth))


def doubled(beats):
    return sorted(beats + [(a + b) / 2 for a, b in zip(beats, beats[1:])])


def score(track, answer):
    """{column: 0 ... 1}, only columns for which the truth of the track is known."""
    row = {}
    bpm = (answer.get('tempo') or {}).get('bpm') or 0.0
    beats = [beat['seconds'] for beat in answer.get('beats') or []]
    bars = [beat['seconds'] for beat in answer.get('beats') or [] if beat['beat'] == 1]
    if track.bpm:
        factor = min(FACTORS, key=lambda f: abs(bpm - track.bpm * f) / f)
        wanted = track.bpm * factor
        row['Acc2'] = float(abs(bpm - wanted) <= 0.04 * wanted)
        if 'approx_bpm' not in track.flags:
            row['.05'] = float(bpm > 0 and abs(bpm / factor - track.bpm) <= 0.05)
            if 'octave_unsure' not in track.flags:
                row['Acc1'] = float(abs(bpm - track.bpm) <= 0.04 * track.bpm)
    if track.beats:
        row['F70'] = f_measure(beats, track.beats, 0.07)
        levels = (doubled(track.beats), track.beats[::2], track.beats[1::2])
        row['any'] = max([row['F70']] + [f_measure(beats, level, 0.07) for level in levels])
        if 'phase_uncertain' not in track.flags:
            row['F20'] = f_measure(beats, track.beats, 0.02)
    if track.bars:
        row['bars'] = f_measure(bars, track.bars, 0.07)
    return row


def mean(values):
    return sum(values) / len(values) if values else None


def print_row(name, mode, rows):
    cells = [mean([row[column] for row in rows if column in row]) for column in COLUMNS]
    cells = ['-' if cell is None else f'{cell:.3f}' for cell in cells]
    print('| ' + ' | '.join([name, str(len(rows)), mode] + cells) + ' |')


def beats_within(times, truth):
    """The number of beats in the annotated section."""
    return bisect_left(times, truth[-1] + 0.07) - bisect_left(times, truth[0] - 0.07)


def stages_right(track, answer, row):
    """Which of the four stages are right; up to the first that is not, since the later ones
    rest on it."""
    bpm = (answer.get('tempo') or {}).get('bpm') or 0.0
    times = [beat['seconds'] for beat in answer.get('beats') or []]
    if not row:
        return []
    pulse = row['Acc2'] > 0 if 'Acc2' in row else row.get('any', 0.0) >= RIGHT
    out = [pulse]
    if not pulse or 'approx_bpm' in track.flags:
        return out
    if track.beats:
        found = beats_within(times, track.beats)
        out.append(abs(found - len(track.beats)) <= 0.1 * len(track.beats))
    else:
        out.append(abs(bpm - track.bpm) <= 0.04 * track.bpm)
    if out[-1] and track.beats:
        out.append(row['F70'] >= RIGHT)
        if out[-1] and track.bars:
            out.append(row['bars'] >= RIGHT)
    return out


def print_calibration(counted):
    """counted: {(stage, stated): {name: [right or not, ...]}}"""
    names = sorted({name for by_name in counted.values() for name in by_name})
    print('\n| confidence of | stated | ' + ' | '.join(names) + ' |')
    print('|---' * (2 + len(names)) + '|')
    for stage in STAGES:
        for key in sorted(k for k in counted if k[0] == stage):
            cells = []
            for name in names:
                hits = counted[key].get(name, [])
                cells.append(f'{mean(hits):.2f} of {len(hits)}' if hits else '-')
            print(f'| {stage} | {key[1]:.2f} | ' + ' | '.join(cells) + ' |')


def count_stages(counted, name, track, answer, row):
    confidence = (answer.get('tempo') or {}).get('confidence') or {}
    for stage, right in zip(STAGES, stages_right(track, answer, row)):
        if stage in confidence:
            cell = counted.setdefault((stage, confidence[stage]), {})
            cell.setdefault(name, []).append(float(right))


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('tool')
    parser.add_argument('folder', nargs='+')
    parser.add_argument('--tempo', default='constant,varied,simple,auto')
    parser.add_argument('--keep')
    parser.add_argument('--tracks', action='store_true')
    parser.add_argument('--calibration', action='store_true')
    options = parser.parse_args()
    if options.keep:
        os.makedirs(options.keep, exist_ok=True)
    counted, lines = {}, []
    print('| music | tracks | session | ' + ' | '.join(COLUMNS) + ' |')
    print('|---' * (3 + len(COLUMNS)) + '|')
    for folder in options.folder:
        tracks = read_folder(folder)
        for mode in options.tempo.split(','):
            answers = answers_of(options.tool, mode, folder, tracks, options.keep)
            rows = {track.id: score(track, answers[track.id]) for track in tracks}
            lines += [(mode, track.id, rows[track.id]) for track in tracks]
            for half in sorted({track.half for track in tracks}):
                name = f'{os.path.basename(os.path.normpath(folder))} {half}'.strip()
                some = [track for track in tracks if track.half == half]
                print_row(name, mode, [rows[track.id] for track in some])
                if mode == 'auto':
                    for track in some:
                        count_stages(counted, name, track, answers[track.id], rows[track.id])
    if options.tracks:
        print()
        for mode, name, row in lines:
            print(mode, name, ' '.join(f'{key} {value:.3f}' for key, value in row.items()))
    if options.calibration:
        print_calibration(counted)


if __name__ == '__main__':
    main()
