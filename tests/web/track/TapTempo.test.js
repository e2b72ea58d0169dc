// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { TapTempo } from '../../../web/track/TapTempo.js';

test('four even taps give the tempo', () => {
    const taps = new TapTempo();
    assert.equal(taps.tap(1000), null);
    assert.equal(taps.tap(1500), null);
    assert.equal(taps.tap(2000), null);
    assert.equal(taps.tap(2500), 120);
});

test('a late tap moves the tempo little', () => {
    const taps = new TapTempo();
    let bpm = null;
    // The eighth of sixteen taps is 40 ms late, the last interval alone would be 8 % off.
    for (let i = 0; i < 16; ++i) bpm = taps.tap(500 * i + (i === 7 ? 40 : 0));
    assert.ok(Math.abs(bpm - 120) < 0.5, String(bpm));
});

test('after a pause counting begins anew', () => {
    const taps = new TapTempo();
    for (let i = 0; i < 8; ++i) taps.tap(500 * i);
    assert.equal(taps.tap(9000), null);
    assert.equal(taps.count, 1);
});

test('old taps are forgotten when somebody taps another tempo', () => {
    const taps = new TapTempo();
    let time = 0;
    for (let i = 0; i < 24; ++i) taps.tap(time += 500);
    let bpm = null;
    for (let i = 0; i < 24; ++i) bpm = taps.tap(time += 400);
    assert.ok(Math.abs(bpm - 150) < 1e-9, String(bpm));
});
