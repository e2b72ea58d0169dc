#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Fits the weights of a choice between hypotheses (which beat, which bar) on music whose answer is
known.

usage: fit_weights.py DUMP.jsonl CORPUSDIR... [--ridge 2] [--cap NAME=VALUE ...] [--real 3]

DUMP.jsonl is the output of `beatatlas_tempo_features --features` (bench/tempoFeatures.cpp): one line
for each group, which is a piece and a kind of choice:
  {"id": "waltz-0", "kind": "level", "features": ["l", "on_lm", ...],
   "hypotheses": [{"name": "12/0", "times": [0.51, 1.02, ...], "values": [0.1, 0.7, ...]}, ...]}
times are the beats (kind "level") or downbeats (kind "bar") of the hypothesis, in seconds; values are its features, in the order of the names. CORPUSDIRs hold corpus.json and
beats/ as make_styles.py writes them; ids are unique.

The right hypotheses of a group are those whose F-measure (+-70 ms) against the truth is at least
0.9 of the best; a group whose best is below 0.8 shows nothing and is left out. The model is a
softmax over the group's hypotheses of a weighted sum of features; the weights maximise the
likelihood of the right ones (the sum, if there are several) less a ridge penalty on standardised
weights. Pieces of the half "judge" are never used in the fit. Pieces without a style (real music)
have weight --real, pieces of ambiguous octave half the weight. Printed for each kind: the weights,
the share of right choices and mean F for each half, the same with every style left out in turn, and
how often a probability was right (calibration).

Needs Debian's python3-numpy and python3-scipy.
"""
import argparse
import json
import os
from bisect import bisect_left

import numpy as np
from scipy.optimize import minimize

TOLERANCE = 0.07
BINS = [0.0, 0.5, 0.7, 0.85, 0.95, 0.99, 1.0001]


def f_measure(estimate, truth):
    """F-measure of the beats, matched one to one, within the annotated section."""
    if not truth:
        return 0.0
    estimate = [t for t in estimate if truth[0] - TOLERANCE <= t <= truth[-1] + TOLERANCE]
    hits, after = 0, 0
    for t in truth:
        i = max(after, bisect_left(estimate, t - TOLERANCE))
        if i < len(estimate) and estimate[i] <= t + TOLERANCE:
            hits, after = hits + 1, i + 1
    return 2 * hits / max(1, len(estimate) + len(truth))


def read_truth(folders):
    """{id: (entry of the corpus, beats, downbeats)}"""
    truth = {}
    for folder in folders:
        with open(f'{folder}/corpus.json') as f:
            entries = json.load(f)
        for e in entries:
            if not e.get('beats'):
                continue
            with open(os.path.join(folder, e['beats'])) as f:
                lines = [line.split() for line in f]
            beats = [float(t) for t, _ in lines]
            bars = [float(t) for t, first in lines if first == '1']
            truth[e['id']] = e, beats, bars
    return truth


class Group:
    """A piece's hypotheses: features, F-measures, which are right, and how much the piece
    counts."""

    def __init__(self, line, truth, real):
        entry, beats, bars = truth[line['id']]
        wanted = beats if line['kind'] == 'level' else bars
        self.kind, self.names = line['kind'], line['features']
        self.style, self.half = entry.get('style', entry['id']), entry.get('half', 'fit')
        self.x = np.array([h['values'] for h in line['hypotheses']], float)
        self.f = np.array([f_measure(h['times'], wanted) for h in line['hypotheses']])
        self.right = self.f >= 0.9 * self.f.max()
        self.usable = self.f.max() > 0.8
        self.weight = 0.5 if 'octave_unsure' in entry['flags'] else 1.0
        if 'style' not in entry:
            self.weight = real


def loss(theta, groups, scale, ridge):
    """Negative log likelihood and its gradient."""
    value, slope = ridge * (theta ** 2).sum(), 2 * ridge * theta
    for g in groups:
        x = g.x / scale
        s = x @ theta
        p = np.exp(s - s.max())
        p /= p.sum()
        right = p * g.right
        total = right.sum() + 1e-12
        value -= g.weight * np.log(total)
        slope -= g.weight * (right / total - p) @ x
    return value, slope


def fit(groups, ridge, caps):
    """Weights for the features in their original scale."""
    scale = np.concatenate([g.x for g in groups]).std(0) + 1e-9
    limits = [(None, caps[n] * s if n in caps else None) for n, s in zip(groups[0].names, scale)]
    start = np.zeros(len(scale))
    best = minimize(loss, start, (groups, scale, ridge), jac=True, method='L-BFGS-B',
                    bounds=limits, options={'maxiter': 500})
    return best.x / scale


def choices(groups, weights):
    """(F of the chosen, is it right, its probability) of each group."""
    out = []
    for g in groups:
        s = g.x @ weights
        p = np.exp(s - s.max())
        p /= p.sum()
        k = int(s.argmax())
        out.append((g.f[k], g.right[k], p[k]))
    return np.array(out, float)


def left_out(groups, ridge, caps, folds=12):
    """Choices for every group by weights fitted without its style."""
    styles = sorted({g.style for g in groups})
    fold = dict(zip(styles, np.random.default_rng(0).permutation(len(styles)) % folds))
    out = np.zeros((len(groups), 3))
    for q in range(folds):
        weights = fit([g for g in groups if fold[g.style] != q], ridge, caps)
        for i, g in enumerate(groups):
            if fold[g.style] == q:
                out[i] = choices([g], weights)[0]
    return out


def report(title, groups, result):
    parts = []
    for half in ('fit', 'judge'):
        r = result[[g.half == half for g in groups]]
        if len(r):
            right, f = r[:, 1].mean(), r[:, 0].mean()
            parts.append(f'{half}: {len(r)} groups, right {right:.3f}, F {f:.3f}')
    print(f'  {title:18}' + '; '.join(parts))


def calibration(title, result):
    print(f'  {title}: probability, how many, share right')
    for low, high in zip(BINS, BINS[1:]):
        r = result[(result[:, 2] >= low) & (result[:, 2] < high)]
        if len(r):
            print(f'    {low:.2f}-{min(high, 1):.2f} {len(r):5d}  {r[:, 1].mean():.3f}')


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('dump')
    parser.add_argument('corpus', nargs='+')
    parser.add_argument('--ridge', type=float, default=2.0)
    parser.add_argument('--cap', action='append', default=[], metavar='NAME=VALUE')
    parser.add_argument('--real', type=float, default=3.0)
    a = parser.parse_args()
    caps = {k: float(v) for k, v in (c.split('=') for c in a.cap)}
    truth = read_truth(a.corpus)
    with open(a.dump) as f:
        lines = [json.loads(line) for line in f if line.strip()]
    groups = [Group(line, truth,
                    a.real) for line in lines if line['id'] in truth and line['hypotheses']]
    for kind in sorted({g.kind for g in groups}):
        some = [g for g in groups if g.kind == kind and g.usable]
        weights = fit([g for g in some if g.half != 'judge'], a.ridge, caps)
        print(f'{kind}: {len(some)} groups')
        for name, w in zip(some[0].names, weights):
            print(f'  {name:12} {w:9.4f}')
        ours, without = choices(some, weights), left_out(some, a.ridge, caps)
        report('fitted', some, ours)
        report('style left out', some, without)
        calibration('fit half, style left out', without[[g.half != 'judge' for g in some]])
        calibration('judge half, fitted', ours[[g.half == 'judge' for g in some]])


if __name__ == '__main__':
    main()
