# SPDX-License-Identifier: MIT
"""Reads the note charts of songs for a game in which a guitar is played along: MIDI files whose
quarter notes are the beats of the recording."""
import mido

# The share of a chart's notes that must lie on its sixteenths, or its tempo is not the song's.
ON_THE_GRID = 0.9


class Refusal(Exception):
    """Why a chart has no beats that could be called true."""


def events_of(midi):
    """([tick of a note], {microseconds a quarter})"""
    notes, tempi = set(), set()
    for part in midi.tracks:
        tick = 0
        for message in part:
            tick += message.time
            if message.type == 'set_tempo':
                tempi.add(message.tempo)
            elif message.type == 'note_on' and message.velocity:
                notes.add(tick)
    return sorted(notes), tempi


def beats_of(path):
    """(tempo in BPM, [seconds of a beat]) from the chart's first note to its last."""
    midi = mido.MidiFile(path)
    notes, tempi = events_of(midi)
    if len(tempi) != 1:
        raise Refusal('more tempi than one')
    quarter, sixteenth = midi.ticks_per_beat, midi.ticks_per_beat // 4
    apart = [min(note % sixteenth, -note % sixteenth) for note in notes]
    if sum(ticks <= quarter / 48 for ticks in apart) < ON_THE_GRID * len(notes):
        raise Refusal('its notes are not on its beats')
    seconds = tempi.pop() / 1e6
    first, last = -(-notes[0] // quarter), notes[-1] // quarter
    return 60 / seconds, [index * seconds for index in range(first, last + 1)]
