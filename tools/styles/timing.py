# SPDX-License-Identifier: MIT
"""When a beat sounds: steady tempo, a live drummer, ramps, held notes; swing and the hand's
jitter."""
import numpy as np

DRIFT = 0.02        # a live drummer's tempo stays within this share of the nominal one
JITTER_LIMIT = 0.015  # and a single stroke within this many seconds of its beat


def steady(rng, beats, bpm, meter):
    return np.full(beats, 60 / bpm)


def live(rng, beats, bpm, meter):
    """Slow drift: two sines of 40 to 160 beats and a smoothed random walk, scaled to +-2 %."""
    k = np.arange(beats)
    walk = np.cumsum(rng.normal(0, 1, beats))
    walk -= np.linspace(walk[0], walk[-1], beats)
    walk = np.convolve(np.pad(walk, 8, 'edge'), np.ones(17) / 17, 'valid')
    drift = 0.4 * walk / (np.abs(walk).max() + 1e-9)
    for _ in range(2):
        drift = drift + 0.5 * np.sin(2 * np.pi * (k / rng.uniform(40, 160) + rng.random()))
    return 60 / (bpm * (1 + DRIFT * drift / np.abs(drift).max()))


def ramp(rng, beats, bpm, meter):
    """Two to four sections that speed up, slow down or stay, each change at most a fifth."""
    knots = int(rng.integers(3, 6))
    at = np.linspace(0, beats, knots)
    tempo = bpm * np.exp(np.cumsum(rng.uniform(-0.18, 0.18, knots) * (rng.random(knots) < 0.75)))
    tempo *= bpm / tempo.mean()
    return 60 / np.interp(np.arange(beats), at, tempo)


def step(rng, beats, bpm, meter):
    """Another tempo from one bar line on, a fifth to a third away."""
    cut = meter * int(beats / meter * rng.uniform(0.35, 0.65))
    ratio = rng.choice([0.75, 0.8, 1.2, 1.25, 1.33])
    return np.where(np.arange(beats) < cut, 60 / bpm, 60 / (bpm * ratio))


def phrased(rng, beats, bpm, meter):
    """A performer: slower at the end of every phrase of four bars."""
    k = np.arange(beats) % (4 * meter) / (4 * meter)
    return 60 / bpm * (1 + 0.05 * np.maximum(0, k - 0.7) / 0.3 - 0.015 * np.sin(np.pi * k))


def fermata(rng, beats, bpm, meter):
    """A performer who holds the last beat of every eight bars, after a short ritardando."""
    dt = phrased(rng, beats, bpm, meter)
    for end in range(8 * meter, beats, 8 * meter):
        dt[end - 3:end - 1] *= rng.uniform(1.05, 1.2)
        dt[end - 1] *= rng.uniform(1.8, 3.0)
    return dt


MAPS = dict(steady=steady, live=live, ramp=ramp, step=step, phrased=phrased, fermata=fermata)


class Clock:
    """Seconds of a position in beats; positions between beats swing, notes may jitter."""

    def __init__(self, rng, feel, beats, bpm, meter, lead_in):
        dt = MAPS[feel['map']](rng, beats + 1, bpm, meter)
        self.beat_times = lead_in + np.concatenate([[0.0], np.cumsum(dt)])
        self.swing, self.unit = feel.get('swing', 0.5), feel.get('unit', 1.0)
        self.jitter = feel.get('jitter', 0.0)
        self.rng = rng

    def swung(self, position):
        """The first half of every unit of `unit` beats lasts the share `swing` of it."""
        whole = np.floor(position / self.unit + 1e-9)
        x = min(max(position / self.unit - whole, 0.0), 1.0)
        x = 2 * x * self.swing if x < 0.5 else self.swing + (2 * x - 1) * (1 - self.swing)
        return (whole + x) * self.unit

    def seconds(self, position):
        """The exact time of a position, as written."""
        return float(np.interp(self.swung(position), np.arange(len(self.beat_times)),
                               self.beat_times))

    def played(self, position):
        """The time at which a player hits it."""
        late = np.clip(self.rng.normal(0, self.jitter / 2), -JITTER_LIMIT,
                       JITTER_LIMIT) if self.jitter else 0.0
        return self.seconds(position) + float(late)
