#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""compare_with_mir_eval.py TOOL: every figure of `beatatlas compare` for 200 drawn pairs of beats,
bars, tempos and keys is that of mir_eval (Debian: python3-mir-eval). Exits with 77 where that is
missing."""
import json
import random
import subprocess
import sys
import tempfile

try:
    import mir_eval
    import numpy
except ImportError:
    print("python3-mir-eval is not installed: nothing was compared (./x test installs it)")
    sys.exit(77)

CASES = 200
NOTES = ["A", "Bb", "B", "C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab"]
READINGS = ["same", "shifted", "double", "half", "otherHalf"]  # in mir_eval's order


def drawn_beats(draw):
    """Beats of some tempo with stumbles, gaps and doublings; now and then hardly any."""
    count = draw.choice([0, 1, 2, 3, 30, 100, 300])
    spacing = draw.uniform(0.25, 1.2)
    at, beats = draw.uniform(0.0, 3.0), []
    for _ in range(count):
        if draw.random() < 0.95:
            beats.append(at)
        if draw.random() < 0.03:
            beats.append(at + draw.uniform(0.0, 0.1))
        at += spacing * draw.gauss(1.0, 0.01)
    return sorted(round(beat, 6) for beat in beats)


def varied(draw, beats):
    """What another listener might have tapped."""
    kind = draw.randrange(5)
    if kind == 1:
        beats = beats[draw.randrange(2)::2]
    if kind == 2:
        beats = [beat + 0.3 for beat in beats]
    if kind == 3:
        return drawn_beats(draw)
    jitter = draw.choice([0.0, 0.005, 0.02, 0.05])
    return sorted(round(abs(beat + draw.gauss(0.0, jitter)), 6) for beat in beats)


def write_jams(path, beats, bpm, key):
    """Each fourth beat is a downbeat."""
    annotations = [
        {"namespace": "beat",
         "data": [{"time": beat, "duration": 0, "value": index % 4 + 1}
                  for index, beat in enumerate(beats)]},
        {"namespace": "tempo", "data": [{"time": 0, "duration": 60, "value": bpm}]},
        {"namespace": "key_mode",
         "data": [{"time": 0, "duration": 60, "value": key.replace(" ", ":")}]},
    ]
    with open(path, "w", encoding="utf-8") as file:
        json.dump({"annotations": annotations}, file)


def expected(own, reference, window):
    variations = mir_eval.beat._get_reference_beat_variations(numpy.array(reference))
    return [mir_eval.beat.f_measure(variation, numpy.array(own), window)
            for variation in variations]


def f_measure(own, reference, window):
    return mir_eval.beat.f_measure(numpy.array(reference), numpy.array(own), window)


def lateness_ms(own, reference):
    """By how much the own beats lie behind; None where a beat has more than one partner or none
    has any, so that the pairs could be others."""
    close = numpy.abs(numpy.subtract.outer(reference, own)) <= 0.07
    if not close.any() or close.sum(0).max() > 1 or close.sum(1).max() > 1:
        return None
    pairs = mir_eval.util.match_events(numpy.array(reference), numpy.array(own), 0.07)
    return 1000.0 * numpy.median([own[mine] - reference[theirs] for theirs, mine in pairs])


def further_pairs(found, own, reference):
    """Of bars and of the distance in between."""
    pairs = []
    if found["downbeats"] is not None:
        pairs += [(found["downbeats"][name], f_measure(own[::4], reference[::4], window))
                  for name, window in (("within70ms", 0.07), ("within20ms", 0.02))]
    expected_ms = lateness_ms(own, reference) if own and reference else None
    if expected_ms is not None:
        pairs.append((found["latenessMs"], expected_ms))
    return pairs


def faults_of(tool, folder, draw):
    reference = drawn_beats(draw)
    own = varied(draw, reference)
    keys = [draw.choice(NOTES) + draw.choice([" major", " minor"]) for _ in range(2)]
    tempos = [round(draw.uniform(60, 180), 2) for _ in range(2)]
    for name, beats, bpm, key in (("a", own, tempos[0], keys[0]),
                                  ("b", reference, tempos[1], keys[1])):
        write_jams(f"{folder}/{name}.jams", beats, bpm, key)
    printed = subprocess.run([tool, "compare", "--json", f"{folder}/a.jams", f"{folder}/b.jams"],
                             check=True, capture_output=True).stdout
    found = json.loads(printed)
    pairs = [(found["key"]["score"], mir_eval.key.weighted_score(keys[1], keys[0])),
             (found["tempoRatio"], tempos[0] / tempos[1])]
    # Four beats have a whole bar.
    assert (found["downbeats"] is not None) >= (len(own) > 4 and len(reference) > 4)
    pairs += further_pairs(found, own, reference)
    if own or reference:
        for window, member in ((0.07, "within70ms"), (0.02, "within20ms")):
            # mir_eval cannot vary what it has none of.
            wanted = expected(own, reference, window) if reference else [0.0] * len(READINGS)
            pairs += [(found["beats"][name][member], figure)
                      for name, figure in zip(READINGS, wanted)]
            if window == 0.07:
                pairs.append((found["beats"][found["likeliest"]][member], max(wanted)))
    return [pair for pair in pairs if abs(pair[0] - pair[1]) > 1e-9], len(pairs)


def main():
    draw = random.Random(1)
    compared, failed = 0, 0
    with tempfile.TemporaryDirectory() as folder:
        for case in range(CASES):
            faults, count = faults_of(sys.argv[1], folder, draw)
            compared += count
            failed += len(faults)
            for own, figure in faults:
                print(f"case {case}: {own} and not {figure}")
    print(f"{compared} figures of {CASES} cases compared, {failed} differ")
    return 1 if failed or compared < 12 * CASES else 0


if __name__ == "__main__":
    sys.exit(main())
