# SPDX-License-Identifier: MIT
"""Machine music: disco, house, techno, trance, drum and bass, and long intros and breaks."""
from styles_band import PADS, SONG_RHYTHMS

FOUR = ['X...X...X...X...']
OFFBEAT = ['..x...x...x...x.', '..X...X...X...X.']
CLAPS = ['....X.......X...', '....X.......X...', '................']
STABS = ['x..x..x.........', '..x..x....x..x..', 'x..x..x...x..x..', '..x...x...x...x.',
         'x.....x..x......', '...x..x....x..x.']
SIXTEEN = ['xoxoxoxoxoxoxoxo', 'xxxxxxxxxxxxxxxx', 'oxoxoxoxoxoxoxox', 'xx.xxx.xxx.xxx.x']
ARPS = ['0121012101210121', '0120120120120120', '0213021302130213', '0.1.2.3.2.1.2.1.',
        '0..1..2.0..1..2.']
DANCE_BASS = ['..r...r...r...r.', 'r-r-r-r-r-r-r-r-', '.rrr.rrr.rrr.rrr', 'r..r..r...r.r...',
              '..rr..rr..rr..rr', 'r-------..r-r---']
SYNTHS = [80, 81, 62, 63, 54, 84, 87]
MACHINES = [24, 25, 0]

STYLES = {
    'disco': dict(
        bpm=(108, 130), harmony='pop', slot=[4, 8],
        feel=dict(map=['steady', 'steady', 'live'], jitter=[0.0, 0.004]),
        drums=[dict(kick=FOUR, snare=['....X.......X...', '....X..o....X..o'], open=OFFBEAT,
                    hat=['x...x...x...x...', 'xo.oxo.oxo.oxo.o']),
               dict(kick=FOUR, snare=['....X.......X...'], hat=SIXTEEN)],
        bass=['r-8-r-8-r-8-r-8-', 'r.8.r.8.r.88r.8.', 'r--rr-8-r--rr-8-', 'r-..r-8-..r-5-8-'],
        chords=['..x...x...x...x.', 'x.xx.xx.x.xx.xx.', '.xx..xx..xx..xx.'],
        second=['x---------------', 'x--x--x-........'], melody=SONG_RHYTHMS,
        sounds=dict(drums=[0, 8, 16], bass=[33, 36, 38], chords=[28, 27, 4], second=[48, 61, 50],
                    lead=[53, 48, 56, 65])),
    'house8': dict(
        bpm=(116, 130), harmony='modal', slot=[4, 8, 2],
        drums=[dict(kick=FOUR, clap=CLAPS, open=OFFBEAT,
                    hat=['................', 'x...x...x...x...', 'x.x.x.x.x.x.x.x.'])],
        bass=DANCE_BASS, chords=STABS, melody=SONG_RHYTHMS, breaks=True,
        fills=[0, 0, 0, 1],
        sounds=dict(drums=MACHINES, bass=[38, 39, 33], chords=[4, 0, 16, 81, 62],
                    lead=[53, 80, 81, 65, 0], pad=PADS)),
    'house16': dict(
        bpm=(117, 130), harmony='modal', slot=[4, 8],
        feel=dict(map='steady', swing=[0.5, 0.5, 0.55, 0.6], unit=0.5),
        drums=[dict(kick=FOUR, clap=CLAPS, hat=SIXTEEN, open=OFFBEAT + ['................'],
                    shaker=['................', 'xoxoxoxoxoxoxoxo']),
               dict(kick=FOUR, snare=['....X.......X..o'], hat=SIXTEEN,
                    conga=['..x..x.x..x..xx.', '................'])],
        bass=DANCE_BASS, chords=STABS, arp=ARPS, melody=SONG_RHYTHMS, breaks=True,
        fills=[0, 0, 0, 1],
        sounds=dict(drums=MACHINES, bass=[38, 39, 33], chords=[4, 0, 16, 81], arp=SYNTHS,
                    lead=[53, 80, 65, 0], pad=PADS)),
    'techno': dict(
        bpm=(124, 142), harmony='modal', modes=['minor'], slot=[8, 16, 4],
        drums=[dict(kick=FOUR, open=OFFBEAT, hat=['................'] + SIXTEEN, clap=CLAPS,
                    rim=['................', '...x..x....x..x.', '..x..x..x..x..x.'],
                    low_tom=['................', '.......x......x.'])],
        bass=['.rrr.rrr.rrr.rrr', '..r...r...r...r.', 'rrrrrrrrrrrrrrrr', 'r..r..r..r..r.r.'],
        chords=['...x.....x......', 'x..x..x.........', '......x.........', '..x..x..x..x..x.'],
        arp=ARPS,
        melody=['x---x---x---x---', 'x-------x-------'], breaks=True, fills=[0, 0, 0, 1],
        sounds=dict(drums=MACHINES[:2], bass=[38, 39], chords=[81, 62, 4, 84], arp=SYNTHS,
                    pad=PADS)),
    'trance': dict(
        bpm=(130, 145), harmony='pop', modes=['minor'], slot=[4, 8],
        drums=[dict(kick=FOUR, clap=CLAPS, open=OFFBEAT, hat=SIXTEEN)],
        bass=['..r...r...r...r.', '.rrr.rrr.rrr.rrr', '..rr..rr..rr..rr'],
        chords=['x..x..x..x..x.x.', 'x-x-x-x-x-x-x-x-', '..x...x...x...x.'],
        arp=ARPS[:3], melody=SONG_RHYTHMS, breaks=True, fills=[0, 0, 2],
        sounds=dict(drums=MACHINES, bass=[38, 39], chords=[81, 62, 90], arp=[81, 80, 84],
                    lead=[81, 80, 53], pad=PADS)),
    'dnb': dict(
        bpm=(164, 179), harmony='modal', modes=['minor'], slot=[4, 8],
        drums=[dict(kick=['X.........x.....', 'X.........X...x.', 'X..x......x.....',
                          'X.x.......x.....'],
                    snare=['....X.......X...', '....X..o.o..X...', '....X..o.o..X..o'],
                    hat=['x.x.x.x.x.x.x.x.', 'x.xxx.xxx.xxx.xx', 'xoxoxoxoxoxoxoxo',
                         'x...x...x...x...'])],
        bass=['r-------....r-..', 'r---------r---r-', 'r-----5-----8---', 'r-------r-------'],
        chords=['x---------------', 'x-----x---......', '..........x-....'],
        arp=ARPS + ['0...1...2...1...'],
        melody=['x---x---x---x---', 'x-------x---x---', 'x-----x-----x---'],
        breaks=True, fills=[0, 0, 1],
        sounds=dict(drums=[0, 16, 24], bass=[38, 39], chords=[4, 88, 81], arp=SYNTHS,
                    lead=[53, 80, 73], pad=PADS)),
    'breakbeat': dict(
        bpm=(118, 140), harmony='modal', modes=['minor', 'major'], slot=[4, 8],
        drums=[dict(kick=['X..x......x..x..', 'X.x.......xx....', 'X..x..x...x.....'],
                    snare=['....X..o.o..X...', '....X..o....X..o', '....X.......X.o.'],
                    hat=['x.x.x.x.x.x.x.x.', 'xoxoxoxoxoxoxoxo'])],
        bass=DANCE_BASS[1:], chords=STABS, arp=ARPS, melody=SONG_RHYTHMS,
        breaks=True, fills=[0, 1, 2],
        sounds=dict(drums=[0, 16, 24], bass=[38, 39, 33], chords=[4, 16, 81], arp=SYNTHS,
                    lead=[53, 80, 73])),
    'long_intro': dict(
        bpm=(96, 138), harmony='pop', slot=[4, 8], intro=(12, 24), breaks=True,
        drums=[dict(kick=FOUR, clap=CLAPS, open=OFFBEAT), dict(kick=FOUR, clap=CLAPS, hat=SIXTEEN),
               dict(kick=['X.......X.x.....', 'X.....x.X.......'], snare=['....X.......X...'],
                    hat=['x.x.x.x.x.x.x.x.'])],
        bass=DANCE_BASS, chords=STABS + ['x-x-x-x-x-x-x-x-'],
        melody=['x-------x-------', 'x---------------', '....x-------x---'],
        sounds=dict(drums=MACHINES, bass=[38, 33], chords=[4, 0, 81], lead=[53, 73, 48], pad=PADS)),
}
