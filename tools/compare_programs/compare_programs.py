#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Compares Beat Atlas with the analysis programs of Debian 12, on music whose beats are known.

usage: compare_programs.py TOOL FOLDER RESULTS [--styles STYLES] [--only TEXT]

TOOL is the built program, build/release/app/beatatlas. FOLDER keeps what is downloaded, 110 MB.
RESULTS becomes a JSON file with the figures of every track; write_tables.py makes tables of it.
STYLES is the folder that tools/styles/make_styles.py wrote. With --only, only tracks with that text
in their name are taken.

For each track all programs run in turn, on one WAVE file. What is measured is processor time, the
program's own and the system's, over all of its threads: it depends little on what else is running.

Needs Debian's aubio-tools, bpm-tools, ffmpeg, libaubio5, libopenmpt0, libqm-dsp0, python3-mido,
python3-mir-eval, python3-numpy, sox, soundstretch and vamp-examples.
"""
import argparse
import json
import os
import subprocess
import sys
import sysconfig
import tempfile
import wave

import figures
import music
from programs import PROGRAMS


def seconds_of(path):
    with wave.open(path) as file:
        return file.getnframes() / file.getframerate()


def environment_of(tool, packages):
    """What the programs need: where the tool is and where the plugins are."""
    places = [f'{folder}/usr/lib/ardour7/vamp' for entry, folder in packages
              if entry['package'] == 'ardour']
    places.append(f"/usr/lib/{sysconfig.get_config_var('MULTIARCH')}/vamp")
    return {**os.environ, 'BEATATLAS': os.path.abspath(tool), 'VAMP_PATH': ':'.join(places),
            'LC_ALL': 'C.UTF-8'}


def versions_of(environment):
    """{package: version} of everything that took part."""
    names = sorted({p.package for p in PROGRAMS if p.package not in (None, 'ardour')} |
                   {'sox', 'libopenmpt0', 'libqm-dsp0', 'python3-mir-eval', 'ffmpeg'})
    out = {}
    for name in names:
        run = subprocess.run(['dpkg-query', '-W', '-f=${Version}', name], check=True,
                             capture_output=True, text=True)
        out[name] = run.stdout
    tool = subprocess.run([environment['BEATATLAS'], '--version'], check=True, capture_output=True,
                          text=True)
    out['beatatlas'] = tool.stdout.split('\n')[0].split()[-1]
    return out


def examine(track, folder, environment):
    """The record of a track: its truth in short, and for each program figures and time."""
    path = os.path.join(folder, 'track.wav')
    truth = track.write(path)
    seconds = seconds_of(path)
    record = {'kind': track.kind, 'name': track.name, 'feel': track.feel,
              'seconds': round(seconds, 2), 'bpm': truth.get('bpm') and round(truth['bpm'], 3),
              'programs': {}}
    for program in PROGRAMS:
        answer, spent = program.run(path, seconds, environment)
        values = figures.score(truth, answer, program.answers)
        values['cpu'] = spent
        if 'bpm' in program.answers:
            values['bpm'] = answer['bpm'] or 0.0
        record['programs'][program.name] = {key: round(v, 3) for key, v in values.items()}
    return record


def write_results(path, header, tracks):
    """One line for each track: a change of one of them is a change of one line."""
    with open(path + '.part', 'w', encoding='utf-8') as file:
        lines = [f' {json.dumps(key)}: {json.dumps(value)},' for key, value in header.items()]
        file.write('{\n' + '\n'.join(lines) + '\n "tracks": [\n')
        file.write(',\n'.join(json.dumps(track, separators=(',', ':')) for track in tracks))
        file.write('\n]}\n')
    os.replace(path + '.part', path)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('tool')
    parser.add_argument('folder')
    parser.add_argument('results')
    parser.add_argument('--styles')
    parser.add_argument('--only', default='')
    options = parser.parse_args()
    packages = music.fetch_all(os.path.abspath(options.folder))
    environment = environment_of(options.tool, packages)
    versions = versions_of(environment)
    versions.update({entry['package']: entry['version'] for entry, _ in packages})
    refused, tracks = {}, []
    with tempfile.TemporaryDirectory(dir=options.folder) as scratch:
        for track in music.all_tracks(options.styles, packages, refused):
            if options.only in track.name:
                tracks.append(examine(track, scratch, environment))
                print(f'{len(tracks)} {track.name}', file=sys.stderr)
    write_results(options.results, {'versions': versions, 'refused': refused}, tracks)


if __name__ == '__main__':
    main()
