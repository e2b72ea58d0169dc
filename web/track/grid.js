// SPDX-License-Identifier: MIT
// Beats of a track: finding them by time, and other readings of the same music.
//
// A grid is a list of beats in order of time, each with `seconds` from the first frame of music,
// `number` in its bar (1 is the downbeat) and `bpm`, the tempo there.

const kUsualBar = 4;
const kShortestBar = 3;
const kLongestBar = 8;

// Readings relate to the answer by small whole numbers; tempos come rounded to hundredths.
const kLargestDenominator = 8;
const kRatioTolerance = 0.004;

// Positions are counted in beats; sums of thirds and sixths come out a little beside them.
const kTiny = 1e-6;

/** The beats of a track as `data.beats` packs them. @param rate frames a second */
export function unpackBeats(packed, rate, bytesOf) {
    const frames = new DataView(bytesOf(packed.frames).buffer);
    const numbers = bytesOf(packed.numbers);
    const hundredths = new DataView(bytesOf(packed.bpm).buffer);
    return Array.from(numbers, (number, i) => ({
        seconds: frames.getInt32(4 * i, true) / rate,
        number,
        bpm: hundredths.getInt32(4 * i, true) / 100,
    }));
}

/** The first beat at or after a time; the number of beats when there is none. */
export function firstBeatFrom(grid, seconds) {
    let low = 0;
    let high = grid.length;
    while (low < high) {
        const middle = (low + high) >> 1;
        if (grid[middle].seconds < seconds) low = middle + 1;
        else high = middle;
    }
    return low;
}

/** The last beat at or before a time; -1 before the first. */
export function beatAt(grid, seconds) {
    const after = firstBeatFrom(grid, seconds);
    return after < grid.length && grid[after].seconds === seconds ? after : after - 1;
}

/** The downbeats with the numbers of their bars, from 1. */
export function barsOf(grid) {
    return grid.filter((beat) => beat.number === 1)
        .map((beat, i) => ({ seconds: beat.seconds, bar: i + 1 }));
}

/** How many beats most bars have. */
export function barLength(grid) {
    const counts = new Array(kLongestBar + 1).fill(0);
    for (const { number } of grid) if (number <= kLongestBar) counts[number] += 1;
    let length = 0;
    for (let number = kShortestBar; number <= kLongestBar; ++number) {
        if (counts[number] > 0 && 2 * counts[number] >= counts[1] - 1) length = number;
    }
    return length || kUsualBar;
}

/** A ratio of two tempos as the fraction of small numbers that it is; else as it stands. */
export function simpleRatio(value) {
    for (let denominator = 1; denominator <= kLargestDenominator; ++denominator) {
        const numerator = Math.round(value * denominator);
        if (numerator > 0 && Math.abs(numerator / denominator - value) < kRatioTolerance * value)
            return numerator / denominator;
    }
    return value;
}

function secondsAt(grid, position) {
    const index = Math.min(Math.floor(position), grid.length - 1);
    const rest = position - index;
    if (rest < kTiny || index + 1 >= grid.length) return grid[index].seconds;
    return grid[index].seconds + rest * (grid[index + 1].seconds - grid[index].seconds);
}

/** The grid divided anew. It follows a tempo that varies, and its first downbeat stays one when
 *  the offset is 0.
 *  @param step    from one new beat to the next, in old beats
 *  @param offset  how far the new beats lie behind the old first downbeat, in old beats */
export function redivided(grid, step, offset) {
    if (grid.length < 2) return [];
    const anchor = Math.max(0, grid.findIndex((beat) => beat.number === 1)) + offset;
    const before = Math.floor(anchor / step + kTiny);
    const bar = barLength(grid);
    const beats = [];
    for (let i = -before; ; ++i) {
        const position = Math.max(0, anchor + i * step);
        if (position > grid.length - 1 + kTiny) return beats;
        const old = grid[Math.min(Math.floor(position + kTiny), grid.length - 1)];
        const number = (((i % bar) + bar) % bar) + 1;
        beats.push({ seconds: secondsAt(grid, position), number, bpm: old.bpm / step });
    }
}

/** The beats before they were brought into a range of tempos; readings relate to those. */
function rawGrid(grid, tempo) {
    if (!tempo.rawBpm || !tempo.bpm || tempo.rawBpm === tempo.bpm) return grid;
    return redivided(grid, simpleRatio(tempo.bpm / tempo.rawBpm), 0);
}

/** What can be heard against the music: the answer first, then each alternative that was named,
 *  with its grid. Where several have the same tempo and shift, they lie on other beats each.
 *  @param tempo  as in docs/json.md, may be absent */
export function readingsOf(grid, tempo) {
    const readings = [{ kind: 'found', bpm: tempo?.bpm ?? null, share: null, grid }];
    if (!tempo?.alternatives || grid.length < 2) return readings;
    const raw = rawGrid(grid, tempo);
    const used = new Map();
    for (const { kind, bpm, shiftBeats, share } of tempo.alternatives) {
        const place = `${bpm} ${shiftBeats.toFixed(3)}`;
        const turn = used.get(place) ?? 0;
        used.set(place, turn + 1);
        const step = simpleRatio(tempo.rawBpm / bpm);
        const moved = redivided(raw, step, shiftBeats + turn);
        readings.push({ kind, bpm, share, shiftBeats, turn, grid: moved });
    }
    return readings;
}
