#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Writes synthesised pieces of many styles with exact tempo, beats, bars and key.

usage: make_styles.py OUTDIR [--seeds N] [--only STYLE,...] [--jobs N] [--midi-only]

OUTDIR receives corpus.json, beats/ID.txt (seconds, a tab, 1 on the first beat of a bar),
midi/ID.mid and ID.flac (44.1 kHz, 16 bits). Every style has N seeds (4); the same seed gives the
same piece everywhere. Pieces of even seeds are the half for fitting weights (half: "fit"), those of
odd seeds the half for judging ("judge"), so both halves contain every style.

The beat is the one listeners tap: the dotted quarter of a jig, the quarter of a waltz. Where
musicians disagree on the octave (half-time trap, bossa nova) the piece is flagged octave_unsure. A
beatless intro has no beats in the truth.

Needs Debian's fluidsynth, fluid-soundfont-gm, ffmpeg and python3-numpy.
"""
import argparse
import json
import os
import subprocess
import wave
import zlib
from multiprocessing.pool import ThreadPool

import midi
import styles_band
import styles_dance
import styles_metre
from piece import Piece

SOUNDFONT = '/usr/share/sounds/sf2/FluidR3_GM.sf2'
RATE = 44100
STYLES = {**styles_band.STYLES, **styles_dance.STYLES, **styles_metre.STYLES}


def compose(name, seed):
    style = dict(STYLES[name])
    style.setdefault('meter', 4)
    return Piece(style, zlib.crc32(f'{name} {seed}'.encode()))


def render(midi_path, wav_path):
    """FluidSynth faster than real time; the output file is replaced as a whole or not at all."""
    part = wav_path + '.part'
    command = ['fluidsynth', '-n', '-i', '-q', '-g', '0.45', '-r', str(RATE), '-O', 's16', '-T',
               'wav', '-F', part, SOUNDFONT, midi_path]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.replace(part, wav_path)
    with wave.open(wav_path) as w:
        return w.getnframes() / w.getframerate()


def entry(name, seed, piece, seconds):
    """The piece's line in corpus.json."""
    steady = piece.feel['map'] == 'steady'
    beats = piece.truth()
    tempo = piece.bpm if steady else 60 * (len(beats) - 1) / (beats[-1][0] - beats[0][0])
    return {'id': f'{name}-{seed}', 'real': False, 'duration': round(seconds, 3),
            'bpm': round(tempo, 4), 'constant': steady,
            'flags': ['octave_unsure'] if piece.style.get('octave_unsure') else [],
            'first_beat': round(beats[0][0], 4),
            'beats': f'beats/{name}-{seed}.txt', 'key': piece.harmony.name(), 'style': name,
            'half': ('fit', 'judge')[seed % 2],
            'meter': piece.style['meter'], 'feel': piece.feel['map'], 'licence': 'MIT',
            'truth': 'exact by construction, rendered with FluidSynth and FluidR3_GM'}


def make(out, name, seed, midi_only):
    piece, base = compose(name, seed), f'{name}-{seed}'
    midi_path, wav_path = f'{out}/midi/{base}.mid', f'{out}/{base}.wav'
    midi.write(midi_path, piece.notes, piece.programs, piece.levels)
    seconds = piece.clock.beat_times[-1]
    if not midi_only:
        seconds = render(midi_path, wav_path)
        subprocess.run(['ffmpeg', '-v', 'error', '-y', '-i', wav_path, f'{out}/{base}.flac'],
                       check=True)
        os.remove(wav_path)
    with open(f'{out}/beats/{base}.txt', 'w') as f:
        f.writelines(f'{t:.4f}\t{d}\n' for t, d in piece.truth())
    return entry(name, seed, piece, seconds)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('outdir')
    parser.add_argument('--seeds', type=int, default=4)
    parser.add_argument('--only', default='')
    parser.add_argument('--jobs', type=int, default=os.cpu_count())
    parser.add_argument('--midi-only', action='store_true')
    a = parser.parse_args()
    for folder in ('midi', 'beats'):
        os.makedirs(f'{a.outdir}/{folder}', exist_ok=True)
    names = [n for n in STYLES if not a.only or n in a.only.split(',')]
    work = [(a.outdir, n, s, a.midi_only) for n in names for s in range(a.seeds)]
    with ThreadPool(a.jobs) as pool:
        corpus = pool.starmap(make, work, chunksize=1)
    with open(f'{a.outdir}/corpus.json', 'w') as f:
        json.dump(corpus, f, indent=0)
    minutes = sum(e['duration'] for e in corpus) / 60
    print(f'{len(corpus)} pieces, {minutes:.0f} minutes, in {a.outdir}')


if __name__ == '__main__':
    main()
