# SPDX-License-Identifier: MIT
"""Standard MIDI files timed in seconds.

A player that follows a tempo map rounds at every tempo change, and the rounding errors add up. So
the file has a single tempo (120 BPM) and ticks of a tenth of a millisecond, and every note has its
absolute time.
"""
import struct

TICKS_PER_QUARTER = 5000
TICKS_PER_SECOND = 2 * TICKS_PER_QUARTER
QUARTER_MICROSECONDS = 500000
DRUM_CHANNEL = 9


def variable_length(n):
    """The bytes of a delta time."""
    out = [n & 127]
    while n > 127:
        n >>= 7
        out.append(n & 127 | 128)
    return bytes(reversed(out))


def note_events(notes):
    """Note on and note off messages, (tick, order, bytes); an off goes before an on of the same
    tick."""
    for start, end, channel, pitch, velocity in notes:
        a = max(0, round(start * TICKS_PER_SECOND))
        b = max(a + 1, round(end * TICKS_PER_SECOND))
        yield a, 1, bytes([0x90 | channel, pitch, velocity])
        yield b, 0, bytes([0x80 | channel, pitch, 0])


def write(path, notes, programs, levels):
    """Write a one-track file.

    notes: (start seconds, end seconds, channel, pitch, velocity); programs: {channel: General MIDI
    program, from 0, or the
    kit of the drum channel}; levels: {channel: volume 0-127}.
    """
    events = [(0, -1, bytes([0xC0 | c, p])) for c, p in sorted(programs.items())]
    events += [(0, -1, bytes([0xB0 | c, 7, v])) for c, v in sorted(levels.items())]
    events += sorted(note_events(notes))
    body, last = bytearray(b'\x00\xff\x51\x03' + QUARTER_MICROSECONDS.to_bytes(3, 'big')), 0
    for tick, _, message in events:
        body += variable_length(tick - last) + message
        last = tick
    body += b'\x00\xff\x2f\x00'
    with open(path, 'wb') as f:
        f.write(b'MThd' + struct.pack('>IHHH', 6, 0, 1, TICKS_PER_QUARTER))
        f.write(b'MTrk' + struct.pack('>I', len(body)) + body)
