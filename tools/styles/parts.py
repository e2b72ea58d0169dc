# SPDX-License-Identifier: MIT
"""Players: each reads a pattern and the harmony and adds notes.

A pattern is a string of cells, `grid` cells a beat, one or more bars long. '.' is a rest and '-'
holds the preceding note.

Drums: X loud, x plain, o ghost. Bass: r root, 5 fifth, 8 octave, 3 third, a: a semitone below the
next root. Chords: x, X. Arpeggios: a digit for the chord tone, continuing into the next octave.
Melody rhythms: x.
"""
from harmony import lay, voicing

DRUMS = dict(kick=36, snare=38, rim=37, clap=39, hat=42, open=46, pedal=44, ride=51, bell=53,
             crash=49, shaker=70, tambourine=54, cowbell=56, conga=63, conga_low=64, claves=75,
             low_tom=41, tom=45, high_tom=48, brush=40, cabasa=69, triangle=81, surdo=41)
LOUDNESS = {'X': 116, 'x': 92, 'o': 52}
CHANNELS = dict(bass=0, chords=1, arp=2, lead=3, pad=4, second=5, drums=9)


def cells(pattern, piece, section):
    """(position, symbol, cells held) of every onset of the section."""
    bar = piece.style['meter'] * piece.grid
    assert len(pattern) % bar == 0, pattern
    step, n = 1 / piece.grid, len(pattern)
    for k in range(int(round(section.beats * piece.grid))):
        symbol = pattern[k % n]
        if symbol in '.-':
            continue
        held = 1
        while (k + held) % n and pattern[(k + held) % n] == '-':
            held += 1
        yield section.start + k * step, symbol, held * step


def drums(piece, section, groove):
    last_bar = section.start + section.beats - piece.style['meter']
    fill_from = last_bar + piece.style['meter'] - section.fill
    for drum, pattern in groove.items():
        for at, symbol, _ in cells(pattern, piece, section):
            if section.fill and at >= fill_from - 1e-6 and drum not in ('hat', 'ride', 'shaker'):
                continue
            piece.note('drums', at, 0.1, DRUMS[drum], piece.touch(LOUDNESS[symbol]))
    if section.crash:
        piece.note('drums', section.start, 0.5, DRUMS['crash'], 100)
    fill(piece, fill_from, section.fill)


def fill(piece, start, beats):
    """Strokes across the toms, on the grid, with random density, always one on each beat."""
    voices = ['snare', 'high_tom', 'tom', 'low_tom']
    count = int(round(beats * piece.grid))
    for k in range(count):
        if k % piece.grid and piece.rng.random() > 0.65:
            continue
        drum = voices[min(3, k * 4 // max(1, count))]
        piece.note('drums', start + k / piece.grid, 0.1, DRUMS[drum], piece.touch(100))


def bass(piece, section, pattern):
    low = piece.bass_low
    for at, symbol, held in cells(pattern, piece, section):
        chord = piece.harmony.chord(at, section)
        root = lay(chord[0], low)
        following = lay(piece.harmony.chord(at + held, section)[0], low)
        pitch = {'r': root, '5': lay(chord[2], low), '8': root + 12, '3': lay(chord[1], low),
                 'a': following - 1}[symbol]
        piece.note('bass', at, held * 0.92, pitch, piece.touch(98))


def walking(piece, section):
    """A note a beat: root on a change, then steps towards the next root; now and then a skipped
    eighth."""
    beats = int(round(section.beats))
    for b in range(beats):
        at = section.start + b
        chord, following = piece.harmony.chord(at, section), piece.harmony.chord(at + 1, section)
        changed = b == 0 or piece.harmony.chord(at - 1,
                                                section) != chord or b % piece.style['meter'] == 0
        target = lay(following[0], piece.bass_low)
        options = [lay(c, piece.bass_low) for c in chord[1:]]
        pitch = lay(chord[0],
                    piece.bass_low) if changed else options[piece.rng.integers(len(options))]
        if following != chord:
            pitch = target + (1 if piece.rng.random() < 0.5 else -1)
        if changed:
            pitch = lay(chord[0], piece.bass_low)
        piece.note('bass', at, 0.9, pitch, piece.touch(96))
        if piece.rng.random() < 0.12:
            piece.note('bass', at + 0.5, 0.3, pitch, piece.touch(76))


def comping(piece, section, pattern, part='chords'):
    for at, symbol, held in cells(pattern, piece, section):
        for pitch in voicing(piece.harmony.chord(at, section), piece.chord_low):
            piece.note(part, at, held * 0.9, pitch, piece.touch(96 if symbol == 'X' else 80))


def arpeggio(piece, section, pattern):
    for at, symbol, held in cells(pattern, piece, section):
        tones = voicing(piece.harmony.chord(at, section), piece.chord_low + 5)
        k = int(symbol)
        piece.note('arp', at, held * 0.95, tones[k % len(tones)] + 12 * (k // len(tones)),
                   piece.touch(82))


def pad(piece, section):
    """One sustained chord per slot."""
    count = int(section.beats / piece.harmony.slot + 1e-6)
    for k in range(count):
        at = section.start + k * piece.harmony.slot
        for pitch in voicing(piece.harmony.chord(at, section), piece.chord_low):
            piece.note('pad', at, piece.harmony.slot * 0.98, pitch, piece.touch(66))


def melody(piece, section, rhythms, part='lead'):
    """Phrases of four bars: a motif of two bars, taken up again with other notes, its answer, and
    a rest."""
    rng, bar = piece.rng, piece.style['meter']
    motif = [rhythms[rng.integers(len(rhythms))] for _ in range(2)]
    answer = rhythms[rng.integers(len(rhythms))]
    steps = rng.choice([-2, -1, -1, 0, 1, 1, 2], 64)
    note = int(rng.integers(4, 9))
    for b in range(int(section.beats / bar + 1e-6)):
        line = answer if b % 4 == 3 else motif[b % 2]
        if b % 2 == 0:
            k, degree = 0, note + int(rng.integers(-1, 2))
        sub = Span(section, section.start + b * bar, bar)
        for at, _, held in cells(line[:bar * piece.grid], piece, sub):
            if b % 8 == 7 and at - sub.start > bar / 2:
                continue
            degree = min(12, max(1, degree + int(steps[k % 64])))
            k += 1
            strong = abs(at - round(at)) < 1e-6
            piece.note(part, at, held * 0.9, piece.melodic(degree, at, section, strong),
                       piece.touch(100 if strong else 88))


class Span:
    """A range of a section."""

    def __init__(self, section, start, beats):
        self.start, self.beats, self.lifted, self.fill = start, beats, section.lifted, 0
