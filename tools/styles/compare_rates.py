#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Compares the tool's results for the same music at two sample rates and in several formats.

usage: compare_rates.py TOOL FOLDER... [--tempo auto]

Every audio file of the FOLDERs is converted by FFmpeg: to WAVE of 44,100 and of 48,000 Hz, to
FLAC of its own rate, to MP3 of 192 kbit/s and to Opus of 128 kbit/s. All answers are
compared with that for WAVE of 44,100 Hz. A line for each version gives the deviation of the tempo
in BPM, the largest deviation of a beat in ms, and how many beats have no partner within half an
interval. `FLIPS` marks a version whose tempo is off by more than 0.015 BPM or a beat by more than
5 ms, or in which more than the first and the last beat lack a partner. Exit status 1 if any flips.

MP3 and Opus files state how much silence the encoder added in front; the tool removes it.
"""
import argparse
import glob
import json
import os
import subprocess
import sys
import tempfile

FORMATS = {
    'wave 44100': ('44100.wav', ['-ar', '44100', '-c:a', 'pcm_s16le']),
    'wave 48000': ('48000.wav', ['-ar', '48000', '-c:a', 'pcm_s16le']),
    'flac': ('own.flac', ['-sample_fmt', 's16', '-c:a', 'flac']),
    'mp3 192k': ('192k.mp3', ['-ar', '44100', '-c:a', 'libmp3lame', '-b:a', '192k']),
    'opus 128k': ('128k.opus', ['-ar', '48000', '-c:a', 'libopus', '-b:a', '128k']),
}
REFERENCE = 'wave 44100'
AUDIO = ('.ogg', '.flac', '.wav', '.mp3', '.m4a', '.opus')


def ask(tool, mode, path):
    """(BPM, beats in seconds)"""
    run = subprocess.run([tool, 'analyze', '--json', '-q', '--no-key', '--tempo', mode, '--', path],
                         capture_output=True, check=True)
    track = json.loads(run.stdout)['tracks'][0]
    beats = [beat['seconds'] for beat in track.get('beats') or []]
    return (track.get('tempo') or {}).get('bpm') or 0.0, beats


def compare(reference, other):
    """(deviation in BPM, largest distance in s of beats with a partner, how many have none)"""
    (bpm, beats), (other_bpm, other_beats) = reference, other
    if len(beats) < 2 or len(other_beats) < 2:
        return other_bpm - bpm, 0.0, abs(len(beats) - len(other_beats))
    half = 0.5 * min(b - a for a, b in zip(beats, beats[1:]))
    most = alone = k = 0
    for beat in beats:
        while k + 1 < len(other_beats) and other_beats[k + 1] <= beat:
            k += 1
        apart = min(abs(time - beat) for time in other_beats[k:k + 2])
        if apart < half:
            most = max(most, apart)
        else:
            alone += 1
    return other_bpm - bpm, most, alone + abs(len(other_beats) - len(beats) + alone)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('tool')
    parser.add_argument('folder', nargs='+')
    parser.add_argument('--tempo', default='auto')
    options = parser.parse_args()
    paths = [p for folder in options.folder for p in sorted(glob.glob(os.path.join(folder, '*')))
             if p.endswith(AUDIO)]
    flips = 0
    for path in paths:
        name = os.path.splitext(os.path.basename(path))[0]
        answers = {}
        with tempfile.TemporaryDirectory() as folder:
            for label, (ending, flags) in FORMATS.items():
                copy = os.path.join(folder, ending)
                subprocess.run(['ffmpeg', '-v', 'error', '-i', path, '-vn', '-ac', '2', *flags,
                                copy], check=True)
                answers[label] = ask(options.tool, options.tempo, copy)
                os.remove(copy)
        for label in FORMATS:
            if label == REFERENCE:
                continue
            off, most, alone = compare(answers[REFERENCE], answers[label])
            is_flip = abs(off) > 0.015 or most > 0.005 or alone > 2
            flips += is_flip
            print(f'{name:20} {label:11} {answers[REFERENCE][0]:7.2f} BPM {off:+.2f}, '
                  f'{1000 * most:5.1f} ms, {alone} alone{"  FLIPS" if is_flip else ""}', flush=True)
    print(f'{len(paths)} tracks, {flips} flips')
    sys.exit(1 if flips else 0)


if __name__ == '__main__':
    main()
