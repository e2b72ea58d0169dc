# SPDX-License-Identifier: MIT
"""What an answer is worth, by the measures of Debian's mir_eval."""
import warnings

import mir_eval
import numpy

# The factors by which a pulse may be read (Gouyon and others, "An Experimental Comparison of Audio
# Tempo Induction Algorithms", 2006: Accuracy 2).
FACTORS = (1, 2, 1 / 2, 3, 1 / 3)
TOLERANCE = 0.07


def is_near(bpm, wanted, share):
    return abs(bpm - wanted) <= share * wanted


def score_tempo(found, true, level_known):
    """{figure: 0 or 1}: "acc1" and "acc2" within 4 %, "fine" within 1 % of one of the levels. Where
    musicians disagree on the level there is no acc1."""
    found = found or 0.0
    out = {'acc2': float(any(is_near(found, true * factor, 0.04) for factor in FACTORS)),
           'fine': float(any(is_near(found, true * factor, 0.01) for factor in FACTORS))}
    if level_known:
        out['acc1'] = float(is_near(found, true, 0.04))
    return out


def within(times, truth):
    """The times in the stretch whose beats are known. Nobody is asked where the music stops."""
    times = numpy.asarray(times, dtype=float)
    return times[(times >= truth[0] - TOLERANCE) & (times <= truth[-1] + TOLERANCE)]


def prepare(found, truth):
    """Both as mir_eval wants them; the first five seconds are left out, as it recommends."""
    trim = mir_eval.beat.trim_beats
    return trim(numpy.asarray(truth, dtype=float)), trim(within(sorted(found or []), truth))


def score_beats(found, truth):
    """{figure: 0 … 1}: the F-measure within 70 ms, and the share that is tracked when half and
    double tempo and the off-beat are allowed, too (AMLt)."""
    truth, found = prepare(found, truth)
    with warnings.catch_warnings():
        warnings.simplefilter('ignore')
        f_measure = mir_eval.beat.f_measure(truth, found, TOLERANCE)
        tracked = mir_eval.beat.continuity(truth, found)[3] if len(found) > 1 else 0.0
    return {'f': float(f_measure), 'amlt': float(tracked)}


def score_bars(found, truth):
    truth, found = prepare(found, truth)
    with warnings.catch_warnings():
        warnings.simplefilter('ignore')
        return {'bars': float(mir_eval.beat.f_measure(truth, found, TOLERANCE))}


def score_key(found, true):
    """{figure: 0 … 1}; the weighted score is that of MIREX."""
    if not found:
        return {'key': 0.0, 'weighted': 0.0}
    weighted = mir_eval.key.weighted_score(true, found)
    return {'key': float(weighted == 1.0), 'weighted': float(weighted)}


def score(truth, answer, answers):
    """{figure: value} of the questions that the program answers and whose truth is known."""
    out = {}
    if 'bpm' in answers and truth.get('bpm'):
        out.update(score_tempo(answer.get('bpm'), truth['bpm'], truth['level_known']))
    if 'beats' in answers and truth.get('beats'):
        out.update(score_beats(answer.get('beats'), truth['beats']))
    if 'bars' in answers and truth.get('bars'):
        out.update(score_bars(answer.get('bars'), truth['bars']))
    if 'key' in answers and truth.get('key'):
        out.update(score_key(answer.get('key'), truth['key']))
    return out
