# SPDX-License-Identifier: MIT
"""Plays tracker modules, and says when each of their rows begins.

A module holds its notes in patterns of rows, and a clock that says how long a row lasts. The player
(libopenmpt) gives the sound and the row that is heard, so the beats of the sound are known exactly.
"""
import ctypes
import ctypes.util
import wave
from array import array

RATE = 44100
# The clock is looked at so often, in frames: 1.5 ms.
STEP = 64


class Refusal(Exception):
    """Why a module has no beats that could be called true."""


def open_library():
    name = ctypes.util.find_library('openmpt')
    if name is None:
        raise FileNotFoundError('libopenmpt is not installed: apt-get install libopenmpt0')
    library = ctypes.CDLL(name)
    handle, pointer = ctypes.c_void_p, ctypes.c_void_p
    library.openmpt_module_create_from_memory2.restype = handle
    library.openmpt_module_create_from_memory2.argtypes = [ctypes.c_char_p, ctypes.c_size_t] + \
        [pointer] * 7
    library.openmpt_module_read_interleaved_stereo.restype = ctypes.c_size_t
    library.openmpt_module_read_interleaved_stereo.argtypes = [
        handle, ctypes.c_int32, ctypes.c_size_t, pointer]
    library.openmpt_module_destroy.argtypes = [handle]
    library.openmpt_module_destroy.restype = None
    for getter in ('order', 'pattern', 'row', 'speed', 'tempo'):
        function = getattr(library, f'openmpt_module_get_current_{getter}')
        function.restype, function.argtypes = ctypes.c_int32, [handle]
    library.openmpt_module_get_pattern_num_rows.restype = ctypes.c_int32
    library.openmpt_module_get_pattern_num_rows.argtypes = [handle, ctypes.c_int32]
    library.openmpt_module_get_metadata.restype = ctypes.c_void_p
    library.openmpt_module_get_metadata.argtypes = [handle, ctypes.c_char_p]
    library.openmpt_free_string.restype = None
    library.openmpt_free_string.argtypes = [ctypes.c_void_p]
    return library


class Module:
    """A module that is played once, from its beginning to where it would start again."""

    def __init__(self, data):
        self._library = open_library()
        self._handle = self._library.openmpt_module_create_from_memory2(
            data, len(data), *[None] * 7)
        if not self._handle:
            raise Refusal('no module')

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._library.openmpt_module_destroy(self._handle)

    def title(self):
        text = self._library.openmpt_module_get_metadata(self._handle, b'title')
        words = ctypes.string_at(text).decode('utf-8', 'replace')
        self._library.openmpt_free_string(text)
        return ' '.join(words.split())

    def play(self, limit):
        """At most `limit` seconds: (samples, rows); a row is (frame, row, rows of its pattern,
        ticks a row, tempo number)."""
        samples, rows = array('h'), []
        block = (ctypes.c_int16 * (2 * STEP))()
        last = None
        while len(samples) < 2 * limit * RATE:
            frame = len(samples) // 2
            count = self._library.openmpt_module_read_interleaved_stereo(
                self._handle, RATE, STEP, block)
            if count == 0:
                break
            samples.frombytes(bytes(block)[:4 * count])
            place = (self._current('order'), self._current('row'))
            if place != last:
                last = place
                length = self._library.openmpt_module_get_pattern_num_rows(
                    self._handle, self._current('pattern'))
                rows.append((frame, place[1], length, self._current('speed'),
                             self._current('tempo')))
        return samples, rows

    def _current(self, what):
        return getattr(self._library, f'openmpt_module_get_current_{what}')(self._handle)


def rows_per_beat(ticks):
    """By the trackers' own convention a beat is 24 ticks, four rows of six. A beat has a power of
    two of rows; where none lasts 24 ticks to a fifth, the level of the beat is open."""
    for rows in (1, 2, 4, 8, 16):
        if abs(rows * ticks - 24) <= 24 / 5:
            return rows
    raise Refusal(f'rows of {ticks} ticks: the level of its beat is open')


def clock_of(rows):
    """(ticks a row, tempo number) of a module that keeps its clock."""
    clocks = {(ticks, tempo) for _, _, _, ticks, tempo in rows[1:]}
    if len(clocks) != 1:
        raise Refusal('its clock changes')
    return clocks.pop()


def beats_of(rows):
    """(tempo in BPM, [seconds of a beat], [seconds of a bar line])"""
    if len(rows) < 64:
        raise Refusal('fewer than 64 rows')
    ticks, tempo = clock_of(rows)
    group = rows_per_beat(ticks)
    nominal = tempo * 24 / (ticks * group)
    if any(length % (4 * group) for _, _, length, _, _ in rows):
        raise Refusal('a pattern is no whole number of bars of four beats')
    beats = [frame / RATE for frame, row, _, _, _ in rows if row % group == 0]
    bars = [frame / RATE for frame, row, _, _, _ in rows if row % (4 * group) == 0]
    # Half a row late or early is another rhythm: a jump into the middle of a pattern, or a delay.
    allowed = 0.5 * 60 / nominal / group
    if any(abs(b - a - 60 / nominal) > allowed for a, b in zip(beats, beats[1:])):
        raise Refusal('its beats are not evenly spaced')
    # A tick is a whole number of frames, so the tempo that is heard is a little off the number.
    return 60 * (len(beats) - 1) / (beats[-1] - beats[0]), beats, bars


def write_wave(samples, path):
    with wave.open(path, 'wb') as out:
        out.setnchannels(2)
        out.setsampwidth(2)
        out.setframerate(RATE)
        out.writeframes(samples.tobytes())
