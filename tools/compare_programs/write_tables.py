#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Writes the tables of documents from the figures of compare_programs.py.

usage: write_tables.py RESULTS DOCUMENT…

A table stands in a document between the lines <!-- table NAME --> and <!-- end -->.
"""
import argparse
import json
import os
import re
import statistics

KINDS = ('styles', 'modules', 'songs')
PROGRAM = 'Beat Atlas'
# By how much another program's F-measure must be higher to be listed.
CLEARLY = 0.1
FEELS = {'steady': 'steady', 'live': 'live', 'phrased': 'expressive', 'fermata': 'expressive',
         'step': 'expressive', 'ramp': 'expressive'}

# What of each package answers which question, together.
PACKAGES = {
    'Beat Atlas': ('Beat Atlas',),
    'aubio-tools': ('aubio tempo', 'aubiotrack'),
    'bpm-tools': ('bpm',),
    'soundstretch': ('soundstretch',),
    'vamp-examples': ('fixedtempo',),
    'ardour (plugins)': ('qm-tempotracker, tempo', 'qm-barbeattracker', 'qm-keydetector')}


def mean(values):
    return statistics.fmean(values) if values else None


def shown(value, digits=2):
    return '–' if value is None else f'{value:.{digits}f}'


def values_of(results, kind, program, figure, feel=None):
    return [track['programs'][program][figure] for track in results['tracks']
            if track['kind'] == kind and figure in track['programs'][program] and
            (feel is None or FEELS[track['feel']] == feel)]


def programs_of(results, figure):
    """Those that answer the question, in the order in which they ran."""
    first = results['tracks'][0]['programs']
    return [name for name in first
            if any(figure in track['programs'][name] for track in results['tracks'])]


def table(head, rows):
    lines = ['| ' + ' | '.join(head) + ' |', '|' + '---|' * len(head)]
    return '\n'.join(lines + ['| ' + ' | '.join(row) + ' |' for row in rows])


def kinds_with(results, figure):
    return [kind for kind in KINDS if values_of(results, kind, PROGRAM, figure)]


def music_table(results):
    rows = []
    for kind in KINDS:
        tracks = [track for track in results['tracks'] if track['kind'] == kind]
        counts = [str(len(values_of(results, kind, PROGRAM, figure)))
                  for figure in ('acc2', 'f', 'bars', 'key')]
        minutes = sum(track['seconds'] for track in tracks) / 60
        rows.append([kind, str(len(tracks)), f'{minutes:.0f}'] + counts)
    return table(['music', 'tracks', 'minutes', 'tempo known', 'beats', 'bars', 'key'], rows)


def share(values):
    return f'{sum(values):.0f} of {len(values)}' if values else '–'


def tempo_table(results):
    kinds = kinds_with(results, 'acc2')
    head = ['program'] + [f'{kind}: {what}' for kind in kinds for what in ('4 %', 'level', '1 %')]
    rows = [[name] + [share(values_of(results, kind, name, figure)) for kind in kinds
                      for figure in ('acc1', 'acc2', 'fine')]
            for name in programs_of(results, 'acc2')]
    return table(head, rows)


def mean_and_median(values):
    return f'{shown(mean(values))} / {shown(statistics.median(values))}' if values else '–'


def beats_table(results):
    kinds = kinds_with(results, 'f')
    head = ['program'] + [f'{kind}: {what}' for kind in kinds for what in ('F', 'AMLt')]
    rows = [[name] + [mean_and_median(values_of(results, kind, name, figure)) for kind in kinds
                      for figure in ('f', 'amlt')] for name in programs_of(results, 'f')]
    return table(head, rows)


def bars_table(results):
    kinds = kinds_with(results, 'bars')
    rows = [[name] + [mean_and_median(values_of(results, kind, name, 'bars')) for kind in kinds]
            for name in programs_of(results, 'bars')]
    return table(['program'] + kinds, rows)


def key_table(results):
    rows = [[name, share(values_of(results, 'styles', name, 'key')),
             shown(mean(values_of(results, 'styles', name, 'weighted')))]
            for name in programs_of(results, 'key')]
    return table(['program', 'right', 'weighted'], rows)


def feel_table(results):
    feels = ('steady', 'live', 'expressive')
    head = ['program']
    for feel in feels:
        head.append(f"{feel} ({len(values_of(results, 'styles', PROGRAM, 'f', feel))})")
    rows = [[name] + [mean_and_median(values_of(results, 'styles', name, 'f', feel))
                      for feel in feels] for name in programs_of(results, 'f')]
    return table(head, rows)


def seconds_per_hour(results, name):
    spent = sum(track['programs'][name]['cpu'] for track in results['tracks'])
    return spent / sum(track['seconds'] for track in results['tracks']) * 3600


def speed_table(results):
    rows = []
    for name in programs_of(results, 'cpu'):
        ratios = [track['programs'][name]['cpu'] / track['programs'][PROGRAM]['cpu']
                  for track in results['tracks']]
        rows.append([name, f'{seconds_per_hour(results, name):.1f}',
                     shown(statistics.median(ratios))])
    return table(['program', 'seconds an hour of music', f'of the time of {PROGRAM}'], rows)


def stronger_table(results):
    """Tracks on which another program is clearly better."""
    rows = []
    for track in results['tracks']:
        own = track['programs'][PROGRAM]
        beats = {name: p['f'] for name, p in track['programs'].items() if 'f' in p}
        best = max(beats, key=beats.get)
        right = [name for name, p in track['programs'].items() if p.get('acc1') == 1.0]
        worse = beats[best] >= own['f'] + CLEARLY
        missed = own.get('acc1') == 0.0 and right
        if worse or missed:
            rows.append([track['name'], shown(own['f']),
                         f'{best} {shown(beats[best])}' if worse else '–',
                         shown(track['bpm'], 1) if missed else '–',
                         shown(own['bpm'], 1) if missed else '–',
                         ', '.join(right) if missed else '–'])
    return table(['track', f'F of {PROGRAM}', 'better F', 'true BPM', f'BPM of {PROGRAM}',
                  'right tempo'], rows)


def overall(results, names, figure):
    """The mean over all tracks, of the first of these programs that answers the question."""
    for name in names:
        values = [value for kind in KINDS for value in values_of(results, kind, name, figure)]
        if values:
            return shown(mean(values))
    return shown(None)


def short_table(results):
    """One row a package: what the README shows."""
    figures = ('acc1', 'acc2', 'f', 'bars', 'key')
    rows = []
    for title, names in PACKAGES.items():
        spent = sum(seconds_per_hour(results, name) for name in names)
        rows.append([title] + [overall(results, names, figure) for figure in figures] +
                    [f'{spent:.0f} s'])
    return table(['', 'tempo', 'to its level', 'beats', 'bars', 'key', 'an hour of music takes'],
                 rows)


def refused_table(results):
    reasons = {}
    for reason in results['refused'].values():
        words = 'the level of its beat is open' if 'level' in reason else reason
        reasons[words] = reasons.get(words, 0) + 1
    rows = [[reason, str(count)] for reason, count in
            sorted(reasons.items(), key=lambda item: (-item[1], item[0]))]
    return table(['left out, because', 'files'], rows)


def versions_table(results):
    return table(['package', 'version'], [[f'`{name}`', version] for name, version in
                                          sorted(results['versions'].items())])


TABLES = {'music': music_table, 'refused': refused_table, 'tempo': tempo_table,
          'beats': beats_table, 'feel': feel_table, 'bars': bars_table, 'key': key_table,
          'speed': speed_table, 'stronger': stronger_table, 'short': short_table,
          'versions': versions_table}


def fill(text, results):
    """The document with its tables as the results give them."""
    def replace(match):
        return f'<!-- table {match.group(1)} -->\n{TABLES[match.group(1)](results)}\n<!-- end -->'
    return re.sub(r'<!-- table (\w+) -->\n.*?<!-- end -->', replace, text, flags=re.DOTALL)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('results')
    parser.add_argument('document', nargs='+')
    options = parser.parse_args()
    with open(options.results, encoding='utf-8') as file:
        results = json.load(file)
    for document in options.document:
        with open(document, encoding='utf-8') as file:
            text = file.read()
        filled = fill(text, results)
        if filled == text:
            continue
        with open(document + '.part', 'w', encoding='utf-8') as file:
            file.write(filled)
        os.replace(document + '.part', document)


if __name__ == '__main__':
    main()
