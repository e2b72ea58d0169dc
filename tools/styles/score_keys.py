#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Scores the keys that the tool finds on tracks of known key, and measures how sure they are.

usage: score_keys.py TOOL FOLDER... [--jobs N] [--misses] [--excerpt SECONDS]

TOOL is the built program, build/release/app/beatatlas. A FOLDER holds corpus.json, as
make_styles.py writes it, and the audio of its entries next to it, ID.flac or in any other format.
Entries without a key are left out.

Printed for each folder, and for the halves "fit" and "judge" if there are any: how many keys
are exactly right, and a weighted score (the same key 1, a fifth up 0.5, the relative key 0.3, the
parallel one 0.2), by evidence and of the session. Then the calibration over all folders: for each
class of the probability computed from the scores, how many tracks fell into it and the share of
them that was right; and for how many tracks a change of key is reported.

With --excerpt only that many seconds of each track are analysed, starting at its twelfth second
(FFmpeg's program cuts them out), and compared with the key of the whole track.
"""
import argparse
import glob
import json
import os
import subprocess
import tempfile
from multiprocessing.pool import ThreadPool

NOTES = {'C': 0, 'D': 2, 'E': 4, 'F': 5, 'G': 7, 'A': 9, 'B': 11}
CLASSES = [0.0, 0.3, 0.5, 0.65, 0.8, 0.9, 0.96, 1.01]


def parse_key(text):
    """'Bb minor' as (tonic from C, is it minor)."""
    tonic, mode = text.split()
    return (NOTES[tonic[0]] + tonic.count('#') - tonic.count('b')) % 12, mode == 'minor'


def score(found, true):
    if found is None:
        return 0.0
    interval = (found[0] - true[0]) % 12
    if found == true:
        return 1.0
    if found[1] == true[1]:
        return 0.5 if interval == 7 else 0.0
    if interval == 0:
        return 0.2
    return 0.3 if interval == (3 if true[1] else 9) else 0.0


def key_of(entry):
    return parse_key(entry['name']) if entry else None


def cut_out(file, seconds, folder):
    """Cuts an excerpt out of a file into a file of its own."""
    excerpt = f'{folder}/{os.path.basename(file)}.wav'
    subprocess.run(['ffmpeg', '-v', 'error', '-ss', '12', '-t', str(seconds), '-i', file, excerpt],
                   check=True)
    return excerpt


def examine(tool, folder, entry, seconds):
    """The tool's answer for an entry, or None if there is no audio."""
    files = [f for f in sorted(glob.glob(f"{glob.escape(folder)}/{glob.escape(entry['id'])}.*"))
             if not f.endswith(('.txt', '.mid', '.json'))]
    if not files:
        return None
    with tempfile.TemporaryDirectory() as temporary:
        file = cut_out(files[0], seconds, temporary) if seconds else files[0]
        run = subprocess.run([tool, 'analyze', '--json', '-q', '--', file], check=True,
                             capture_output=True)
    track = json.loads(run.stdout)['tracks'][0]
    key, session = track['key'], track['sessionKey']
    true = parse_key(entry['key'])
    return {'id': entry['id'], 'true': entry['key'], 'half': entry.get('half'),
            'found': key['name'] if key else 'none',
            'score': score(key_of(key), true), 'session': score(key_of(session), true),
            'probability': key['ranking'][0]['probability'] if key else 0.0,
            'segments': len(key['segments']) if key else 0}


def print_scores(title, tracks):
    def row(field):
        exact = sum(t[field] == 1.0 for t in tracks) / len(tracks)
        return f'{exact:.3f} / {sum(t[field] for t in tracks) / len(tracks):.3f}'
    print(f"| {title} | {len(tracks)} | {row('score')} | {row('session')} |")


def print_calibration(tracks):
    print('\n| probability | tracks | right |\n|---|---|---|')
    for low, high in zip(CLASSES, CLASSES[1:]):
        part = [t for t in tracks if low <= t['probability'] < high]
        right = sum(t['score'] == 1.0 for t in part)
        share = f'{right / len(part):.2f}' if part else '–'
        print(f'| {low:g} to {min(high, 1):g} | {len(part)} | {share} |')


def main():
    parser = argparse.ArgumentParser(
        usage='score_keys.py TOOL FOLDER... [--jobs N] [--misses] [--excerpt SECONDS]')
    parser.add_argument('tool')
    parser.add_argument('folders', nargs='+')
    parser.add_argument('--jobs', type=int, default=1)
    parser.add_argument('--misses', action='store_true', help='list the wrong answers')
    parser.add_argument('--excerpt', type=float, metavar='SECONDS')
    args = parser.parse_args()
    everything = []
    print('| tracks | number | by evidence, exact / weighted | session |\n|---|---|---|---|')
    for folder in args.folders:
        with open(f'{folder}/corpus.json', encoding='utf-8') as f:
            entries = [e for e in json.load(f) if e.get('key')]
        with ThreadPool(args.jobs) as pool:
            answers = pool.map(lambda e: examine(args.tool, folder, e, args.excerpt), entries,
                               chunksize=1)
        tracks = [t for t in answers if t]
        if not tracks:
            continue
        print_scores(folder, tracks)
        for half in sorted({t['half'] for t in tracks if t['half']}):
            print_scores(f'{folder}, half "{half}"', [t for t in tracks if t['half'] == half])
        everything += tracks
    print_calibration(everything)
    print(f"\ntold with a change of key: {sum(t['segments'] > 1 for t in everything)}"
          f' of {len(everything)}')
    for t in everything if args.misses else []:
        if t['score'] < 1.0:
            print(f"{t['id']}: {t['found']} ({t['probability']:.2f}), is {t['true']}")


if __name__ == '__main__':
    main()
