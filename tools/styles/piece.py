# SPDX-License-Identifier: MIT
"""One piece: form, players, notes, and the truth about it."""
import numpy as np

import parts
from harmony import Harmony, lay
from timing import Clock

LEAD_IN = (0.0, 1.5)  # seconds before the first beat
FEEL = dict(swing=0.5, jitter=0.0, map='steady')  # unless a style sets another
# FluidSynth starts a note in the next block of 64 samples after its millisecond; with the sounds'
# own attack a drum sounds 3 to 5 ms after the tick (measured with claves, hats, snares and kicks
# of seven kits).
ATTACK = 0.004


class Section:
    def __init__(self, start, beats, layers, lifted=False, fill=0, crash=False):
        self.start, self.beats, self.layers = start, beats, layers
        self.lifted, self.fill, self.crash = lifted, fill, crash


def choose(rng, pool):
    """A random element of a list; anything else is returned unchanged."""
    return pool[rng.integers(len(pool))] if isinstance(pool, list) else pool


class Piece:
    """Plays a style with the choices of one seed."""

    def __init__(self, style, seed):
        self.style, self.rng = style, np.random.default_rng(seed)
        rng, meter = self.rng, style['meter']
        self.grid = style.get('grid', 4)
        self.bpm = round(float(rng.uniform(*style['bpm'])), 2 if rng.random() < 0.5 else 0)
        feel = dict(style.get('feel', dict(map='steady')))
        for name in ('swing', 'jitter', 'map'):
            if isinstance(feel.get(name), tuple):
                feel[name] = float(rng.uniform(*feel[name]))
            feel[name] = choose(rng, feel.get(name, FEEL[name]))
        bars = max(12, int(round(rng.uniform(62, 82) * self.bpm / 60 / meter / 4)) * 4)
        self.feel, self.bars = feel, bars
        self.clock = Clock(rng, feel, bars * meter + meter, self.bpm, meter,
                           float(rng.uniform(*LEAD_IN)))
        mode = choose(rng, style.get('modes', ['major', 'minor']))
        slot = choose(rng, style.get('slot', [meter]))
        self.harmony = Harmony(rng, style['harmony'], mode, int(rng.integers(12)), slot)
        self.bass_low, self.chord_low = int(rng.integers(28, 36)), int(rng.integers(50, 58))
        self.lead_low = int(rng.integers(58, 66))
        self.notes, self.first_beat = [], 0
        self.programs = {parts.CHANNELS[k]: int(choose(rng, v)) for k, v in style['sounds'].items()}
        self.levels = {parts.CHANNELS[k]: int(rng.integers(*LEVELS[k])) for k in style['sounds']}
        self.play(self.form())

    def touch(self, velocity):
        return int(np.clip(velocity + self.rng.normal(0, 5), 20, 127))

    def note(self, part, at, beats, pitch, velocity):
        start = self.clock.played(at)
        end = max(start + 0.03, self.clock.seconds(at + beats))
        self.notes.append((start, end, parts.CHANNELS[part], int(np.clip(pitch, 12, 110)),
                           velocity))

    def melodic(self, degree, at, section, strong):
        """Pitch of a scale degree; on a beat, the nearest chord tone."""
        scale = sorted(lay(c, self.lead_low) for c in self.harmony.scale)
        pitch = scale[degree % 7] + 12 * (degree // 7)
        if strong:
            chord = self.harmony.chord(at, section)
            tones = [lay(c, self.lead_low) + 12 * k for c in chord for k in (0, 1)]
            pitch = min(tones, key=lambda t: abs(t - pitch))
        return pitch

    def form(self):
        """Sections of four and eight bars; instruments come and go, the last bars end on the
        tonic."""
        meter, rng, sections, bar = self.style['meter'], self.rng, [], 0
        layers = [p for p in self.style['sounds'] if p not in self.style.get('late', [])]
        intro = self.style.get('intro')
        if intro:
            count = int(round(rng.uniform(*intro) * self.bpm / 60 / meter / 4 + 0.5)) * 4
            beatless = [p for p in ('pad', 'lead') if p in layers]
            sections.append(Section(0, count * meter, beatless[:1 + int(rng.integers(2))]))
            bar, self.first_beat = count, count * meter
        elif rng.random() < 0.6:
            keep = [p for p in layers if p != 'lead' and rng.random() < 0.7] or layers
            sections.append(Section(0, 4 * meter, keep, fill=self.fill_length()))
            bar = 4
        lifted = False
        while bar < self.bars:
            count = min(self.bars - bar, int(rng.choice([4, 8, 8])))
            part = layers if lifted or rng.random() < 0.3 else [p for p in layers if p != 'pad']
            if self.style.get('breaks') and not lifted and bar > 8 and rng.random() < 0.5:
                part = [p for p in layers if p in ('pad', 'lead', 'chords')][:2]
                count = min(count, 4)
            sections.append(Section(bar * meter, count * meter, part, lifted, self.fill_length(),
                                    rng.random() < 0.7))
            bar += count
            lifted = not lifted
        return sections

    def fill_length(self):
        fills = self.style.get('fills', [0, 0, 1, 2])
        return choose(self.rng, fills)

    def play(self, sections):
        style, rng = self.style, self.rng
        grooves = None
        if style.get('drums'):
            grooves = [self.groove() for _ in range(2)]
        pitched = [k for k in ('bass', 'chords', 'arp', 'second') if k in style]
        lines = {k: [choose(rng, style[k]) for _ in range(2)] for k in pitched}
        if rng.random() < 0.5:
            grooves = grooves and [grooves[0]] * 2
            lines = {k: [v[0]] * 2 for k, v in lines.items()}
        for s in sections:
            for part in s.layers:
                self.play_part(part, s, grooves, lines)
        self.ending(sections[-1])

    def groove(self):
        """A pattern for every drum of one of the style's sets."""
        return {d: choose(self.rng, p) for d, p in choose(self.rng, self.style['drums']).items()}

    def play_part(self, part, s, grooves, lines):
        if part == 'drums':
            parts.drums(self, s, grooves[s.lifted])
        elif part == 'bass' and self.style['bass'] == 'walking':
            parts.walking(self, s)
        elif part == 'bass':
            parts.bass(self, s, lines['bass'][s.lifted])
        elif part in ('chords', 'second'):
            parts.comping(self, s, lines[part][s.lifted], part)
        elif part == 'arp':
            parts.arpeggio(self, s, lines['arp'][s.lifted])
        elif part == 'pad':
            parts.pad(self, s)
        elif part == 'lead' and self.rng.random() < 0.85:
            parts.melody(self, s, self.style['melody'])

    def ending(self, last):
        """The tonic on the bar line after the last bar."""
        at = self.bars * self.style['meter']
        tonic = [self.harmony.scale[k] for k in (0, 2, 4)]
        for part, low in (('bass', self.bass_low), ('chords', self.chord_low),
                          ('arp', self.chord_low)):
            if part in self.style['sounds']:
                for c in tonic[:1] if part == 'bass' else tonic:
                    self.note(part, at, self.style['meter'] - 0.2, lay(c, low), 90)
        if 'drums' in self.style['sounds'] and self.style.get('fills', True):
            self.note('drums', at, 0.5, parts.DRUMS['crash'], 100)

    def truth(self):
        """(seconds, 1 on the first beat of a bar) of every beat, from the first rhythmic bar on."""
        last, meter = self.bars * self.style['meter'], self.style['meter']
        return [(float(self.clock.beat_times[b]) + ATTACK, int(b % meter == 0))
                for b in range(self.first_beat, last + 1)]


LEVELS = dict(drums=(90, 115), bass=(85, 110), chords=(60, 90), arp=(55, 85), lead=(75, 105),
              pad=(45, 75), second=(55, 85))
