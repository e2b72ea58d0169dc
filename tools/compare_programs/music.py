# SPDX-License-Identifier: MIT
"""The music on which the programs are compared, with what is known of it.

Styles are the synthesised pieces of tools/styles, modules and songs come from Debian's packages of
games (packages.json). A track is written as a WAVE file when it is its turn.
"""
import glob
import gzip
import hashlib
import json
import os
import re
import subprocess
import wave

import numpy

import charts
import modules

HERE = os.path.dirname(os.path.abspath(__file__))
# Shorter modules are jingles; none is played for longer than the second, in seconds.
SHORTEST, LONGEST = 40, 600
MODULE = re.compile(r'\.(xm|mod|it|s3m)(\.gz)?$', re.IGNORECASE)


class Track:
    """`write(path)` makes the WAVE file and returns what is true of it."""

    def __init__(self, kind, name, write, feel='steady'):
        self.kind, self.name, self.write, self.feel = kind, name, write, feel


def fetch(entry, folder):
    """The folder of an unpacked package of that very version and content."""
    name, version = entry['package'], entry['version']
    place = os.path.join(folder, f"{name}-{version.replace(':', '_')}")
    if os.path.isdir(place):
        return place
    os.makedirs(folder, exist_ok=True)
    subprocess.run(['apt-get', 'download', '-qq', f'{name}={version}'], cwd=folder, check=True)
    file = max(glob.glob(f'{folder}/{name}_*.deb'), key=os.path.getmtime)
    with open(file, 'rb') as deb:
        found = hashlib.sha256(deb.read()).hexdigest()
    if found != entry['sha256']:
        raise RuntimeError(f"{file}: sha256 {found} instead of {entry['sha256']}")
    subprocess.run(['dpkg-deb', '-x', file, place + '.part'], check=True)
    os.rename(place + '.part', place)
    return place


def fetch_all(folder):
    """[(entry of packages.json, its folder)]"""
    with open(f'{HERE}/packages.json', encoding='utf-8') as file:
        return [(entry, fetch(entry, folder)) for entry in json.load(file)]


def convert(inputs, path):
    """One or several files, mixed without a change of level, as a WAVE file."""
    command = ['ffmpeg', '-v', 'error', '-y']
    for file in inputs:
        command += ['-i', file]
    if len(inputs) > 1:
        # Half the level each: the sum cannot be clipped.
        command += ['-filter_complex', f'amix=inputs={len(inputs)}:duration=longest']
    command += ['-ac', '2', '-ar', '44100', '-c:a', 'pcm_s16le', '-bitexact', path]
    subprocess.run(command, check=True)


def sounding(path):
    """(first, last) second at which a WAVE file is louder than a hundredth of its peak."""
    with wave.open(path) as file:
        rate = file.getframerate()
        samples = numpy.frombuffer(file.readframes(file.getnframes()), dtype='<i2')
    level = numpy.abs(samples.reshape(-1, 2).astype(numpy.int32)).max(axis=1)
    loud = numpy.flatnonzero(level > level.max() / 100)
    return (loud[0] / rate, loud[-1] / rate) if len(loud) else (0.0, 0.0)


def audible(times, path):
    first, last = sounding(path)
    return [at for at in times if first - 0.05 <= at <= last]


def write_style(folder, entry, path):
    convert([f"{folder}/{entry['id']}.flac"], path)
    with open(f"{folder}/{entry['beats']}", encoding='utf-8') as file:
        lines = [line.split() for line in file]
    return {'bpm': entry['bpm'] if entry['constant'] else None,
            'level_known': 'octave_unsure' not in entry['flags'], 'key': entry['key'],
            'beats': [float(at) for at, _ in lines],
            'bars': [float(at) for at, first in lines if first == '1']}


def styles_of(folder):
    """The pieces of odd seeds, on which no weight was fitted."""
    with open(f'{folder}/corpus.json', encoding='utf-8') as file:
        entries = [entry for entry in json.load(file) if entry['half'] == 'judge']
    return [Track('styles', entry['id'],
                  lambda path, entry=entry: write_style(folder, entry, path), entry['feel'])
            for entry in entries]


def write_module(played, path):
    samples, (bpm, beats, bars) = played
    modules.write_wave(samples, path)
    return {'bpm': bpm, 'level_known': True, 'beats': audible(beats, path),
            'bars': audible(bars, path)}


def read_module(file):
    with open(file, 'rb') as packed:
        data = packed.read()
    return gzip.decompress(data) if file.endswith('.gz') else data


def play_module(data):
    """(title, (samples, (tempo, beats, bars)))"""
    with modules.Module(data) as module:
        samples, rows = module.play(LONGEST)
        if len(samples) < 2 * SHORTEST * modules.RATE:
            raise modules.Refusal(f'shorter than {SHORTEST} s')
        return module.title(), (samples, modules.beats_of(rows))


def modules_of(package, folder, refused, seen):
    """Those whose beats are certain; `refused` gets the name and the reason of each other one. Of
    several of one content, or of one title in a package, only the first is taken: `seen` has what
    was there before."""
    files = sorted(f for f in glob.glob(f'{folder}/usr/**/*', recursive=True) if MODULE.search(f))
    for file in files:
        name = f'{package}/{os.path.basename(file)}'
        data = read_module(file)
        if data in seen:
            refused[name] = 'it was there before'
            continue
        try:
            title, played = play_module(data)
        except modules.Refusal as reason:
            refused[name] = str(reason)
            continue
        if title and (package, title) in seen:
            refused[name] = 'its title was there before'
            continue
        seen |= {data, (package, title)}
        yield Track('modules', name, lambda path, played=played: write_module(played, path))


def write_song(folder, truth, path):
    bpm, beats = truth
    convert(sorted(glob.glob(f'{glob.escape(folder)}/*.ogg')), path)
    return {'bpm': bpm, 'level_known': True, 'beats': audible(beats, path)}


def songs_of(folder, refused):
    """The recordings whose note charts keep one tempo."""
    for chart in sorted(glob.glob(f'{folder}/usr/**/notes.mid', recursive=True)):
        place = os.path.dirname(chart)
        name = '/'.join(place.split('/')[-2:])
        try:
            truth = charts.beats_of(chart)
        except charts.Refusal as reason:
            refused[name] = str(reason)
            continue
        yield Track('songs', name,
                    lambda path, place=place, truth=truth: write_song(place, truth, path))


def all_tracks(styles, packages, refused):
    seen = set()
    if styles:
        yield from styles_of(styles)
    for entry, folder in packages:
        if entry['holds'] == 'modules':
            yield from modules_of(entry['package'], folder, refused, seen)
        elif entry['holds'] == 'songs':
            yield from songs_of(folder, refused)
