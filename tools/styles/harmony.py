# SPDX-License-Identifier: MIT
"""Keys, chord progressions and voicings."""

NAMES = ['C', 'C#', 'D', 'D#', 'E', 'F', 'F#', 'G', 'G#', 'A', 'A#', 'B']
SCALES = {'major': [0, 2, 4, 5, 7, 9, 11], 'minor': [0, 2, 3, 5, 7, 8, 10]}

# Scale degrees from 0, one per slot (a bar, unless the style states otherwise).
PROGRESSIONS = {
    ('pop', 'major'): [[0, 4, 5, 3], [0, 5, 3, 4], [5, 3, 0, 4], [0, 3, 4, 3], [0, 3, 0, 4],
                       [0, 1, 3, 0], [0, 4, 5, 2, 3, 0, 3, 4], [3, 4, 0, 5, 3, 4, 0, 0]],
    ('pop', 'minor'): [[0, 5, 2, 6], [0, 3, 4, 0], [0, 6, 5, 6], [0, 5, 3, 4], [0, 2, 6, 3],
                       [0, 0, 5, 6], [0, 6, 5, 4, 3, 2, 3, 4]],
    ('modal', 'major'): [[0, 0, 3, 0], [0, 0, 0, 0], [0, 6, 0, 6], [0, 1, 0, 1]],
    ('modal', 'minor'): [[0, 0, 0, 0], [0, 0, 5, 6], [0, 3, 0, 3], [0, 6, 0, 6], [0, 0, 3, 3]],
    ('jazz', 'major'): [[1, 4, 0, 0], [0, 5, 1, 4], [2, 5, 1, 4], [0, 3, 1, 4, 2, 5, 1, 4]],
    ('jazz', 'minor'): [[1, 4, 0, 0], [0, 3, 6, 2, 5, 1, 4, 0], [0, 5, 1, 4]],
    ('blues', 'major'): [[0, 0, 0, 0, 3, 3, 0, 0, 4, 3, 0, 4],
                         [0, 3, 0, 0, 3, 3, 0, 0, 4, 3, 0, 4]],
    ('blues', 'minor'): [[0, 0, 0, 0, 3, 3, 0, 0, 5, 4, 0, 0]],
    ('classical', 'major'): [[0, 3, 4, 0, 0, 1, 4, 0], [0, 4, 5, 3, 0, 3, 4, 0],
                             [0, 0, 4, 0, 3, 0, 4, 0], [0, 5, 1, 4, 0, 3, 4, 0]],
    ('classical', 'minor'): [[0, 3, 4, 0, 5, 3, 4, 0], [0, 0, 3, 0, 4, 0, 4, 0],
                             [0, 5, 3, 4, 0, 3, 4, 0]],
}


class Harmony:
    """Which chord sounds when: the progression is cycled in slots of `slot` beats."""

    def __init__(self, rng, kind, mode, tonic, slot):
        self.tonic, self.mode, self.slot, self.kind = tonic, mode, slot, kind
        pool = PROGRESSIONS[kind, mode]
        self.verse = pool[rng.integers(len(pool))]
        self.chorus = pool[rng.integers(len(pool))] if kind == 'pop' else self.verse
        self.scale = [(tonic + s) % 12 for s in SCALES[mode]]

    def name(self):
        return f'{NAMES[self.tonic]} {self.mode}'

    def degree(self, position, section):
        cycle = self.chorus if section.lifted else self.verse
        return cycle[int((position - section.start) / self.slot + 1e-6) % len(cycle)]

    def chord(self, position, section):
        """Pitch classes, root first."""
        d = self.degree(position, section)
        size = 4 if self.kind in ('jazz', 'blues') else 3
        notes = [self.scale[(d + 2 * k) % 7] for k in range(size)]
        if self.mode == 'minor' and d == 4:
            notes[1] = (notes[0] + 4) % 12
        if self.kind == 'blues':
            notes[3] = (notes[0] + 10) % 12
        return notes


def lay(pitch_class, low):
    """The pitch of a pitch class in the octave from `low` on."""
    return low + (pitch_class - low) % 12


def voicing(chord, low):
    return sorted(lay(c, low) for c in chord)
