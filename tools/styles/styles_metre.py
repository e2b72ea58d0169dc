# SPDX-License-Identifier: MIT
"""Threes, fives, swing, dances of the Americas, marches, and music without drums."""
from styles_band import EIGHTHS, LEADS, PADS, PIANOS, SONG_RHYTHMS

SHUFFLE_RHYTHMS = ['x-xx-xx--x--', 'x--x-xx-xx--', '..xx-xx--x--', 'x-xx--x-xx--', 'x-----x-xx--']
TERNARY = ['x--x-xx--x-x', 'x-xx--x-xx--', 'x-----x--x--', 'x--x--x-xx--', 'xxxx--xxxx--', 'x--xxxx--x--']
SWING_RHYTHMS = ['x-xx-xx-xx-x', 'x--..x..xx--', '..xx-x..xx-x', 'x-x..x..xx--', '..x..xx-xx--', 'x----xx--x--']
CLASSICAL_RHYTHMS = ['x---x---x---x---', 'x-----x-x---x---', 'x-x-x-x-x---x---', 'x-------x---x---', 'x---x-x-x-x-x-x-', 'x-xxx-x-x---x---']

STYLES = {
    'shuffle': dict(
        bpm=(96, 150), grid=3, harmony='blues', modes=['major'], feel=dict(map=['steady', 'live'], jitter=[0.0, 0.006]),
        drums=[dict(kick=['X.....X.....', 'X..X..X..X..', 'X.....X.x...', 'X....xX.....'], snare=['...X.....X..', '...X.....X.o', '..oX.o..oX.o'],
                    hat=['x.xx.xx.xx.x', 'X.oX.oX.oX.o']),
               dict(kick=['X.....X.....'], snare=['...X.....X..'], ride=['x.xx.xx.xx.x', 'x..x.xx..x.x'])],
        bass=['r--r--r--r--', 'r-rr-rr-rr-r', 'r-r5-58-85-5', 'r--3--5--8--'],
        chords=['x-xx-xx-xx-x', '...x-....x-.', '..x..x..x..x', 'x-----......'], melody=SHUFFLE_RHYTHMS,
        sounds=dict(drums=[0, 8, 16], bass=[33, 32, 34], chords=[27, 29, 0, 16], lead=[22, 29, 65, 66, 0])),
    'shuffle_slow': dict(
        bpm=(62, 92), grid=6, harmony='pop', slot=[4], feel=dict(map=['steady', 'live'], jitter=[0.0, 0.006]),
        drums=[dict(kick=['X...........X...........', 'X....x......X...........', 'X...........X...x.......'],
                    snare=['......X...........X.....', '......X..o.....o..X..o..'],
                    hat=['x.xx.xx.xx.xx.xx.xx.xx.x', 'x..x.xx..x.xx..x.xx..x.x', 'x..x..x..x..x..x..x..x..'])],
        bass=['r-----r-----r-----r-----', 'r----r......r----rr-....', 'r-........r-r-....5-....'],
        chords=['x-----------------------', '......x-..........x-....', 'x--x--x--x--x--x--x--x--'],
        melody=['x-----x--x--x-----x-----', 'x--x-xx-----x--x--x-----', '...x--x--x--x-----------'],
        sounds=dict(drums=[0, 8, 16], bass=[33, 36, 32], chords=PIANOS + [27], lead=LEADS)),
    'swing': dict(
        bpm=(104, 168), harmony='jazz', grid=3, slot=[4, 2], feel=dict(map=['steady', 'live'], jitter=[0.0, 0.006]),
        drums=[dict(ride=['x..x.xx..x.x', 'X..x.xX..x.x', 'x..x..x..x.x'], pedal=['...x.....x..'],
                    kick=['............', 'o..o..o..o..', 'x...........'], snare=['............', '.....o......', '...........o', '.....o..o...'])],
        bass='walking', chords=['x....x......', '.....x.....x', 'x--..x-.....', '..x.....x...', '..x.....x--.'],
        melody=SWING_RHYTHMS, sounds=dict(drums=[32, 40, 0], bass=[32, 32, 33], chords=[0, 26, 26, 11], lead=[65, 66, 56, 71, 26, 0])),
    'swing_fast': dict(
        bpm=(170, 222), harmony='jazz', slot=[4, 4, 8], feel=dict(map=['steady', 'live'], swing=(0.56, 0.63), jitter=[0.0, 0.006]), grid=2,
        drums=[dict(ride=['x.xxx.xx', 'X.xxX.xx', 'x.x.x.xx'], pedal=['..x...x.'], kick=['........', 'o.o.o.o.', 'x.......'],
                    snare=['........', '...o....', '.......o'])],
        bass='walking', chords=['x..x....', '...x...x', 'x-..x-..', '.x...x..'], melody=['x-xxx-xx', 'x..xx-x-', '.xx.xxx-', 'x---x-x-'],
        sounds=dict(drums=[32, 40, 0], bass=[32, 32, 33], chords=[0, 26, 11], lead=[65, 66, 56, 71, 26, 0])),
    'big_band': dict(
        bpm=(112, 176), harmony='jazz', grid=3, slot=[4], feel=dict(map='steady', jitter=[0.0, 0.006]),
        drums=[dict(kick=['x..x..x..x..', 'X.....X.....'], snare=['...X.....X..', '............', '...x.....x.o'], ride=['x..x.xx..x.x'], pedal=['...x.....x..'])],
        bass='walking', chords=['x.....x..x..', '.....x......', 'x--..x-.....', '.....x-....x'], second=['x..x..x..x..'], melody=SWING_RHYTHMS,
        sounds=dict(drums=[0, 32, 8], bass=[32], chords=[61, 57, 65], second=[26, 0], lead=[56, 66, 71, 61])),
    'waltz': dict(
        bpm=(84, 132), meter=3, harmony='pop', modes=['major', 'major', 'minor'], slot=[3, 3, 6],
        feel=dict(map=['steady', 'live', 'phrased'], jitter=[0.0, 0.006]),
        drums=[dict(kick=['X...........'], snare=['....x...x...'], hat=['x...x...x...', 'x.x.x.x.x.x.']),
               dict(kick=['X...........', 'X.........x.'], snare=['........X...', '....X.......'], hat=['x.x.x.x.x.x.'])],
        bass=['r-----------', 'r---....5-..', 'r-------5---'], chords=['....x-..x-..', 'x---x---x---', '....x---x---'],
        arp=['0.1.2.1.2.1.', '0.1.2.3.2.1.'], melody=['x---x---x---', 'x-------x---', 'x-----x-x---', 'x-x-x-x-x---'],
        sounds=dict(drums=[0, 8, 40], bass=[32, 33], chords=[0, 24, 25, 21], arp=[24, 0, 46], lead=[110, 21, 73, 53, 40])),
    'waltz_fast': dict(
        bpm=(150, 192), meter=3, grid=2, harmony='classical', slot=[3, 6], feel=dict(map=['steady', 'phrased'], jitter=[0.0, 0.005]),
        bass=['r-....', 'r-....r-....5-....5-....'], chords=['..x.x.', '..x-x-'], second=['x-----', '......', 'x---x-'],
        melody=['x-x-x-', 'x---x-', 'x-----', 'x-xxx-', '..x-x-'],
        sounds=dict(bass=[43, 42, 32], chords=[48, 45, 60, 0], second=[49, 60], lead=[48, 40, 73, 0])),
    'jazz_waltz': dict(
        bpm=(120, 176), meter=3, grid=3, harmony='jazz', slot=[3, 6], feel=dict(map=['steady', 'live'], jitter=[0.0, 0.006]),
        drums=[dict(ride=['x..x.xx..', 'x..x..x.x', 'x..x.xx.x'], pedal=['...x.....', '...x..x..'], kick=['x........', '.........'], snare=['.........', '.....o...'])],
        bass=['r--5--8--', 'r-----5--', 'r--------'], chords=['x....x...', '..x..x...', 'x--..x---'],
        melody=['x--x.xx--', 'x-xx-xx--', '..xx--x-x', 'x-----x--'],
        sounds=dict(drums=[32, 40], bass=[32, 33], chords=[0, 26, 4], lead=[65, 66, 71, 73, 0])),
    'six_eight': dict(
        bpm=(50, 84), meter=2, grid=6, harmony='pop', slot=[2, 2, 4], feel=dict(map=['steady', 'live'], jitter=[0.0, 0.006]),
        drums=[dict(kick=['X...........', 'X.........x.', 'X...x.......'], snare=['......X.....', '......X...o.'], hat=['x.x.x.x.x.x.', 'X.o.o.X.o.o.', 'xoxoxoxoxoxo'])],
        bass=['r-----r-----', 'r---r-5-----', 'r-----------'], chords=['x-----------', 'x-x-x-x-x-x-', 'x-----x-----'],
        arp=['0.1.2.3.2.1.', '0.1.2.0.1.2.', '012321012321'], melody=['x---x-x---x-', 'x-----x---x-', 'x-x-x-x-----', 'x---x-x-----'],
        sounds=dict(drums=[0, 8, 16], bass=[32, 33], chords=PIANOS + [25, 29], arp=[0, 24, 25], lead=LEADS, pad=PADS)),
    'jig': dict(
        bpm=(96, 132), meter=2, grid=3, harmony='pop', slot=[2, 2, 4], feel=dict(map=['steady', 'live'], jitter=[0.0, 0.006]),
        drums=[dict(kick=['X..X..', 'X.....'], snare=['...X..', '..o..o', '......'], tambourine=['xoxxox', 'x.xx.x', '......'])],
        bass=['r--5--', 'r-----', 'r--r--'], chords=['x-xx-x', 'x--x--', 'x-----'], melody=['xxxxxx', 'x-xx-x', 'x-xxxx', 'xxxx--', 'x--x-x'],
        sounds=dict(drums=[0, 8], bass=[32, 33], chords=[25, 21, 24, 0], lead=[110, 73, 21, 40, 105])),
    'twelve_eight': dict(
        bpm=(52, 80), grid=3, harmony='pop', slot=[4, 2], feel=dict(map=['steady', 'live'], jitter=[0.0, 0.006]),
        drums=[dict(kick=['X.....X.....', 'X.....X.x...', 'X....xX.....'], snare=['...X.....X..', '...X.....X.o'], hat=['xxxxxxxxxxxx', 'XooXooXooXoo'])],
        bass=['r-----r-----', 'r--r--5--5--', 'r----rr-----'], chords=['xxxxxxxxxxxx', 'x-----------', 'x--x--x--x--'], arp=['012321012321', '012012012012'],
        melody=TERNARY, sounds=dict(drums=[0, 8], bass=[32, 33], chords=[0, 4, 16, 25], arp=[0, 24], lead=LEADS, pad=PADS)),
    'five_four': dict(
        bpm=(104, 176), meter=5, grid=2, harmony='modal', slot=[5, 10], feel=dict(map=['steady', 'live'], swing=[0.5, 0.62], jitter=[0.0, 0.005]),
        drums=[dict(kick=['X.....X...', 'X..x..X...', 'X.....X.x.'], snare=['....X...X.', '..X.....X.', '........X.'], ride=['x.xxx.xxx.', 'x.x.x.x.x.', 'xxxxxxxxxx'])],
        bass=['r--r--5-5-', 'r-----5-8-', 'r-..r-5-r-'], chords=['x--x--x-x-', 'x-----x---', '...x....x-'], melody=['x--x--x-x-', 'x-x-x-x---', 'x-x-x-x-x-', 'x-----x-x-'],
        sounds=dict(drums=[0, 8, 32], bass=[32, 33], chords=[0, 27, 4, 26], lead=LEADS)),
    'bossa': dict(
        bpm=(116, 148), harmony='jazz', slot=[4, 8], octave_unsure=True, feel=dict(map=['steady', 'live'], jitter=[0.0, 0.006]),
        drums=[dict(kick=['X.....x.X.....x.', 'x.......x.......'], rim=['x.....x.....x.......x.......x...', '..x...x...x.......x...x...x.....'],
                    hat=['x.x.x.x.x.x.x.x.', 'xxxxxxxxxxxxxxxx'], shaker=['................', 'x.x.x.x.x.x.x.x.'])],
        bass=['r-----5-5-----r-', 'r-----r-5-----5-', 'r-------5-------'],
        chords=['x---x-..x---..x-', 'x-..x-..x-x-..x-..x-..x-x-..x-..', '..x---x-..x-x---'],
        melody=SONG_RHYTHMS[:6], sounds=dict(drums=[0, 40, 32], bass=[32], chords=[24, 24, 0, 26], lead=[73, 66, 53, 71, 0])),
    'samba': dict(
        bpm=(90, 114), meter=2, harmony='jazz', slot=[2, 4, 4], feel=dict(map=['steady', 'live'], jitter=[0.0, 0.005]),
        drums=[dict(surdo=['o...X...'], shaker=['xooxxoox', 'xooxxoxx', 'XoxoXoxo'], tambourine=['x.x.xx.x.x.x.xx.', '................', '.x.x.xx.x.x.xx.x'],
                    kick=['X..xX..x', 'x..xX..x', '........'], cowbell=['........', 'x.x.xx.x.x.x.xx.'])],
        bass=['r--5r--5', 'r--r5---', 'r---5---'], chords=['x.x.xx.x.x.x.xx.', '.x.x.xx.x.x.xx..', 'x--x--x-'],
        melody=['x-x-xx-x', 'x--x--x-', '.x-x-xx-', 'x---x-x-'], sounds=dict(drums=[0, 8], bass=[32, 33], chords=[24, 25, 0], lead=[73, 56, 53, 66])),
    'latin': dict(
        bpm=(88, 112), harmony='pop', modes=['minor', 'major'], slot=[4, 8], feel=dict(map=['steady', 'live'], jitter=[0.0, 0.005]),
        drums=[dict(conga=['....x.....x.x...', 'x...X...x...X.X.'], conga_low=['......xx......xx', '............xx..'], cowbell=['x...x...x...x...', 'x.x.x.x.x.x.x.x.'],
                    claves=['x..x..x...x.x...', '..x.x...x..x..x.', '................'], shaker=['x.x.x.x.x.x.x.x.', '................'])],
        bass=['...r--5-...r--5-', 'r--r--5-r--r--5-', 'r-....5-..r-....'], chords=['x.xx.x.xx.x.x.x.', 'x.x.xx.x.x.xx.x.', '..x...x...x...x.'],
        melody=SONG_RHYTHMS, sounds=dict(drums=[0, 8], bass=[32, 33], chords=[0, 24], lead=[56, 73, 57, 53])),
    'march': dict(
        bpm=(106, 126), meter=2, grid=4, harmony='classical', slot=[2, 4], feel=dict(map=['steady', 'phrased'], jitter=[0.0, 0.005]),
        drums=[dict(kick=['X...X...', 'X.......'], snare=['x.xxx.xx', 'X.x.X.xx', '..x...x.', 'x.x.x.x.x.x.xxxx'], crash=['........', '....o...'])],
        bass=['r---5---', 'r-..5-..'], chords=['..x...x.', '..x-..x-'], melody=['x---x---', 'x--xx---', 'x-x-x-x-', 'x---x-x-'],
        sounds=dict(drums=[48, 0, 8], bass=[58, 57], chords=[60, 61, 57], lead=[56, 61, 72, 73])),
    'march_compound': dict(
        bpm=(104, 126), meter=2, grid=3, harmony='classical', slot=[2, 4], feel=dict(map=['steady', 'phrased'], jitter=[0.0, 0.005]),
        drums=[dict(kick=['X..X..', 'X.....'], snare=['x.xx.x', 'X..X.x', 'x..xxx'])],
        bass=['r--5--'], chords=['..x..x', '..x..x', 'x-xx-x'], melody=['x--x-x', 'x-xx--', 'x-xx-x', 'xxxx--'],
        sounds=dict(drums=[48, 0], bass=[58], chords=[60, 61], lead=[56, 72, 73])),
    'polka': dict(
        bpm=(104, 132), meter=2, harmony='classical', modes=['major'], slot=[2, 4], feel=dict(map=['steady', 'live'], jitter=[0.0, 0.006]),
        drums=[dict(kick=['X...X...'], snare=['..x...x.', '..x...xx'], hat=['........', 'x.x.x.x.'])],
        bass=['r---5---', 'r-..5-..'], chords=['..x...x.', '..x-..x-'], melody=['x-x-x-x-', 'xxxxx-x-', 'x-xxx-x-', 'x---x---', 'xxxxxxxx'],
        sounds=dict(drums=[0, 8], bass=[58, 32], chords=[21, 24, 57], lead=[21, 71, 56, 110])),
    'classical_strings': dict(
        bpm=(72, 128), harmony='classical', slot=[4, 2], feel=dict(map=['phrased', 'steady', 'live'], jitter=[0.003, 0.007]),
        bass=['r---r---r---r---', 'r-r-r-r-r-r-r-r-', 'r-------5-------', 'r---8---5---r---'],
        chords=['x-x-x-x-x-x-x-x-', 'x---x---x---x---', '....x---....x---', 'x-------x-------'], arp=['0.2.1.2.0.2.1.2.', '0121012101210121'],
        melody=CLASSICAL_RHYTHMS, sounds=dict(bass=[42, 43, 45], chords=[48, 45, 41], arp=[45, 46, 40], lead=[40, 48, 73, 68])),
    'classical_piano': dict(
        bpm=(80, 144), harmony='classical', slot=[4, 2], feel=dict(map=['phrased', 'phrased', 'steady'], jitter=[0.003, 0.007]),
        bass=['r-------r-------', 'r---5---r---5---', 'r---------------'], arp=['0.2.1.2.0.2.1.2.', '0212021202120212', '0.1.2.1.0.1.2.1.'],
        melody=CLASSICAL_RHYTHMS, sounds=dict(bass=[0, 6], arp=[0, 6], lead=[0, 6])),
    'minuet': dict(
        bpm=(96, 140), meter=3, grid=2, harmony='classical', slot=[3, 3, 6], feel=dict(map=['phrased', 'steady'], jitter=[0.003, 0.007]),
        bass=['r---5-', 'r-----', 'r-3-5-'], chords=['..x-x-', 'x-----'], melody=['x-xxxx', 'x-x-x-', 'x-xxx-', 'x---x-', 'xxxxx-'],
        sounds=dict(bass=[42, 6, 0], chords=[6, 48, 0], lead=[40, 73, 6, 0, 68])),
    'fermata': dict(
        bpm=(68, 112), harmony='classical', slot=[4, 2, 1], feel=dict(map='fermata', jitter=[0.003, 0.006]),
        bass=['r---r---r---r---', 'r---5---r---5---', 'r-r-5-5-r-r-5-5-'], chords=['x---x---x---x---', 'x-------x---x---'],
        melody=CLASSICAL_RHYTHMS[:4], sounds=dict(bass=[19, 43, 52, 0], chords=[19, 48, 52, 0], lead=[19, 48, 52, 0])),
    'acoustic': dict(
        bpm=(84, 128), harmony='pop', slot=[4, 4, 8], feel=dict(map=['live', 'steady'], jitter=[0.003, 0.008]),
        drums=[dict(shaker=EIGHTHS), dict(kick=['X.......X.......'], rim=['....x.......x...'], shaker=['xoxoxoxoxoxoxoxo']), dict(tambourine=['....x.......x...'])],
        bass=['r-------r-----5-', 'r---....r---....'], chords=['x---x-x-..x-x-x-', 'x-x-x-x-x-x-x-x-', 'x---x-xxx---x-xx'], arp=['0.1.2.1.3.2.1.2.', '0213021302130213'],
        melody=SONG_RHYTHMS, sounds=dict(drums=[0, 8], bass=[32], chords=[25, 24], arp=[24, 25], lead=[53, 73, 22, 40])),
}
