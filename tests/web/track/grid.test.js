// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { bytesOf } from '../../../web/track/bytes.js';
import {
    barLength, barsOf, beatAt, firstBeatFrom, readingsOf, redivided, simpleRatio,
    unpackBeats,
} from '../../../web/track/grid.js';

/** Beats at equal distances. */
function steady(count, interval, first = 0, bar = 4) {
    return Array.from({ length: count }, (_, i) =>
        ({ seconds: first + i * interval, number: (i % bar) + 1, bpm: 60 / interval }));
}

function times(grid) {
    return grid.map((beat) => Number(beat.seconds.toFixed(6)));
}

test('beats are unpacked from little-endian numbers', () => {
    // 22,050 and 44,100 frames; 1 and 2 in the bar; 12,000 hundredths of a BPM.
    const packed = {
        frames: Buffer.from([0x22, 0x56, 0, 0, 0x44, 0xac, 0, 0]).toString('base64'),
        numbers: Buffer.from([1, 2]).toString('base64'),
        bpm: Buffer.from([0xe0, 0x2e, 0, 0, 0xe0, 0x2e, 0, 0]).toString('base64'),
    };
    assert.deepEqual(unpackBeats(packed, 44100, bytesOf), [
        { seconds: 0.5, number: 1, bpm: 120 }, { seconds: 1, number: 2, bpm: 120 }]);
    assert.deepEqual(unpackBeats({ frames: '', numbers: '', bpm: '' }, 44100, bytesOf), []);
});

test('a beat is found by the time at which it begins', () => {
    const grid = steady(3, 0.5, 1);
    assert.equal(beatAt(grid, 0.99), -1);
    assert.equal(beatAt(grid, 1), 0);
    assert.equal(beatAt(grid, 1.49), 0);
    assert.equal(beatAt(grid, 99), 2);
    assert.equal(firstBeatFrom(grid, 1), 0);
    assert.equal(firstBeatFrom(grid, 1.01), 1);
    assert.equal(firstBeatFrom(grid, 2.01), 3);
    assert.equal(beatAt([], 1), -1);
});

test('bars are numbered by their downbeats', () => {
    const grid = steady(5, 1).slice(1);
    assert.deepEqual(barsOf(grid), [{ seconds: 4, bar: 1 }]);
});

test('bars are as long as most of them are', () => {
    assert.equal(barLength(steady(16, 0.5, 0, 3)), 3);
    assert.equal(barLength(steady(16, 0.5, 0, 5)), 5);
    // The last bar is not whole.
    assert.equal(barLength(steady(18, 0.5, 0, 4)), 4);
    assert.equal(barLength([]), 4);
});

test('half the beats keep the first downbeat', () => {
    // The track begins with an upbeat: its second beat begins the first bar.
    const grid = steady(9, 0.5).map((beat, i) => ({ ...beat, number: ((i + 3) % 4) + 1 }));
    const half = redivided(grid, 2, 0);
    assert.deepEqual(times(half), [0.5, 1.5, 2.5, 3.5]);
    assert.deepEqual(half.map((beat) => beat.number), [1, 2, 3, 4]);
    assert.equal(half[0].bpm, 60);
});

test('twice the beats lie between those of a tempo that changes', () => {
    const grid = [0, 1, 1.6].map((seconds, i) => ({ seconds, number: i + 1, bpm: 60 }));
    assert.deepEqual(times(redivided(grid, 1 / 2, 0)), [0, 0.5, 1, 1.3, 1.6]);
});

test('three beats come for two, at even distances between the old ones', () => {
    assert.deepEqual(times(redivided(steady(5, 0.6), 2 / 3, 0)), [0, 0.4, 0.8, 1.2, 1.6, 2, 2.4]);
});

test('shifted beats lie between the old ones and keep their numbers', () => {
    const shifted = redivided(steady(5, 1), 1, 0.5);
    assert.deepEqual(times(shifted), [0.5, 1.5, 2.5, 3.5]);
    assert.deepEqual(shifted.map((beat) => beat.number), [1, 2, 3, 4]);
});

test('beats before the first downbeat are kept, with the numbers of the bar before', () => {
    const grid = steady(9, 1).map((beat, i) => ({ ...beat, number: ((i + 2) % 4) + 1 }));
    const same = redivided(grid, 1, 0);
    assert.deepEqual(times(same), times(grid));
    assert.deepEqual(same.map((beat) => beat.number), grid.map((beat) => beat.number));
});

test('too few beats have no other reading', () => {
    assert.deepEqual(redivided(steady(1, 1), 1, 0), []);
    const tempo = { bpm: 60, rawBpm: 60, alternatives: [{ kind: 'half', bpm: 30, shiftBeats: 0 }] };
    assert.equal(readingsOf(steady(1, 1), tempo).length, 1);
    assert.equal(readingsOf(steady(9, 1), { bpm: 60 }).length, 1);
    assert.equal(readingsOf(steady(9, 1), undefined)[0].bpm, null);
});

test('ratios of rounded tempos are the fractions that they come from', () => {
    assert.equal(simpleRatio(124.01 / 186.0), 2 / 3);
    assert.equal(simpleRatio(105 / 140), 3 / 4);
    assert.equal(simpleRatio(110.02 / 220.03), 1 / 2);
    assert.equal(simpleRatio(1.0001), 1);
    assert.equal(simpleRatio(0.7071), 0.7071);
});

test('readings of one tempo and shift lie on different beats', () => {
    const tempo = { bpm: 60, rawBpm: 60, alternatives: [
        { kind: 'half', bpm: 30, shiftBeats: 0, share: 0.2 },
        { kind: 'half', bpm: 30, shiftBeats: 0, share: 0.1 }] };
    const [found, likelier, other] = readingsOf(steady(9, 1), tempo);
    assert.equal(found.kind, 'found');
    assert.deepEqual(times(likelier.grid), [0, 2, 4, 6, 8]);
    assert.deepEqual(times(other.grid), [1, 3, 5, 7]);
    assert.equal(other.share, 0.1);
});

test('readings relate to the beats before these were brought into a range', () => {
    // Found at 60 BPM and doubled into the range: what was read as 90 has three beats for two of 60.
    const tempo = { bpm: 120, rawBpm: 60, alternatives: [
        { kind: '3:2', bpm: 90, shiftBeats: 0, share: 0.1 },
        { kind: 'shifted', bpm: 60, shiftBeats: 0.5, share: 0.1 }] };
    const [, three, shifted] = readingsOf(steady(9, 0.5), tempo);
    assert.deepEqual(times(three.grid),
        [0, 2 / 3, 4 / 3, 2, 8 / 3, 10 / 3, 4].map((each) => Number(each.toFixed(6))));
    assert.deepEqual(times(shifted.grid), [0.5, 1.5, 2.5, 3.5]);
});
