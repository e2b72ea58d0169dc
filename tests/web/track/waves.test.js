// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { bytesOf } from '../../../web/track/bytes.js';
import {
    dotStrength, highestPoint, kLoudClasses, kLoudSteps, overviewBars, unpackWave, unpackZoom,
} from '../../../web/track/waves.js';

function packedBytes(bytes) {
    return Buffer.from(bytes).toString('base64');
}

function packedFloats(values) {
    const bytes = Buffer.alloc(4 * values.length);
    values.forEach((value, i) => bytes.writeFloatLE(value, 4 * i));
    return bytes.toString('base64');
}

test('every byte comes back from base64', () => {
    const all = Uint8Array.from({ length: 256 }, (_, i) => i);
    assert.deepEqual(bytesOf(packedBytes(all)), all);
    assert.equal(bytesOf('').length, 0);
});

test('a point of the zoom wave holds peak and colour', () => {
    // Level 31 of colour 0, level 4 of colour 7; the peak is the root of the level.
    const zoom = unpackZoom({ pointsPerSecond: 150, points: packedBytes([31 * 8, 4 * 8 + 7]) }, bytesOf);
    assert.equal(zoom.levels[0], 1);
    assert.ok(Math.abs(zoom.levels[1] - Math.sqrt(4 / 31)) < 1e-6);
    assert.deepEqual([...zoom.colors], [0, 7]);
});

test('waves of floats are unpacked with their colours', () => {
    const wave = unpackWave({ levels: packedFloats([0, 16384.5]), colors: packedBytes([5, 2]) }, bytesOf);
    assert.deepEqual([...wave.levels], [0, 16384.5]);
    assert.deepEqual([...wave.colors], [5, 2]);
});

test('the loudest bar of the overview is full height, a silent one has none', () => {
    const bars = overviewBars({ levels: [0, 1000, 500], colors: [5, 0, 1] }, 400);
    assert.deepEqual(bars.map((bar) => bar.step), [7, 0, 3]);
    assert.equal(bars[0].height, 0);
    assert.equal(bars[1].height, 1);
    // Half the level is heard as 0.5 to the power of 0.6.
    assert.ok(Math.abs(bars[2].height - 0.6598) < 1e-3);
});

test('bars that do not fit are joined, the loudest is shown', () => {
    const bars = overviewBars({ levels: [1, 4, 2, 3, 9], colors: [0, 1, 2, 3, 4] }, 3);
    assert.deepEqual(bars.map((bar) => bar.step), [kLoudSteps[1], kLoudSteps[3], kLoudSteps[4]]);
    assert.deepEqual(overviewBars({ levels: [], colors: [] }, 100), []);
});

test('the six colours of the legend are those of the bars', () => {
    assert.deepEqual(kLoudClasses.map(({ step }) => step).sort(), [...kLoudSteps].sort());
});

test('dots grow by decibels between the weakest and the strongest', () => {
    assert.equal(dotStrength(0), null);
    assert.equal(dotStrength(NaN), null);
    assert.equal(dotStrength(1304), 0);
    assert.equal(dotStrength(20674), 1);
    assert.equal(dotStrength(1e9), 1);
    // Halfway in decibels is the geometric mean.
    assert.ok(Math.abs(dotStrength(Math.sqrt(1304 * 20674)) - 0.5) < 1e-9);
});

test('a column shows the highest point of its time', () => {
    const zoom = { perSecond: 10, levels: Float32Array.from([0.1, 0.5, 0.2, 0.9]) };
    assert.equal(highestPoint(zoom, 0, 0.3), 1);
    assert.equal(highestPoint(zoom, 0.2, 0.2), 2);
    assert.equal(highestPoint(zoom, 0.3, 99), 3);
    assert.equal(highestPoint(zoom, -1, 0), -1);
    assert.equal(highestPoint(zoom, 0.4, 1), -1);
});
