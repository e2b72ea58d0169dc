// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { test } from 'node:test';

import {
    clockTime, grouped, keyText, percentText, readingText, sentence, spokenTime,
} from '../../../web/track/format.js';

test('times are rounded to the nearest, with carry', () => {
    assert.equal(clockTime(0), '0:00');
    assert.equal(clockTime(7.49), '0:07');
    assert.equal(clockTime(59.5), '1:00');
    assert.equal(clockTime(187.257, true), '3:07.26');
    assert.equal(clockTime(187.254, true), '3:07.25');
    assert.equal(clockTime(59.996, true), '1:00.00');
    assert.equal(clockTime(3599.996, true), '1:00:00.00');
    assert.equal(clockTime(-1, true), '0:00.00');
    // 0.29 is 0.28999… in binary.
    assert.equal(clockTime(0.29, true), '0:00.29');
});

test('times are said in words', () => {
    assert.equal(spokenTime(0.4), '0 seconds');
    assert.equal(spokenTime(59.5), '1 minute');
    assert.equal(spokenTime(61), '1 minute 1 second');
    assert.equal(spokenTime(7322), '2 hours 2 minutes 2 seconds');
});

test('a share that is not 0 is not shown as 0', () => {
    assert.equal(percentText(0), '0 %');
    assert.equal(percentText(0.001), '< 1 %');
    assert.equal(percentText(0.88), '88 %');
});

test('thousands are separated', () => {
    assert.equal(grouped(100), '100');
    assert.equal(grouped(44100), '44,100');
    assert.equal(grouped(12345678), '12,345,678');
});

test('keys are named as was asked for', () => {
    const key = { name: 'A minor', camelot: '8A', german: 'a-Moll' };
    assert.equal(keyText(key, null), 'A minor (8A)');
    assert.equal(keyText(key, 'german'), 'a-Moll');
});

test('remarks become sentences', () => {
    assert.equal(sentence(', perhaps 186.00'), 'Perhaps 186.00');
    assert.equal(sentence('; hardly a clear pulse'), 'Hardly a clear pulse');
    assert.equal(sentence(''), '');
});

test('readings say where their beats lie', () => {
    assert.equal(readingText({ kind: 'found' }), 'As found');
    assert.equal(readingText({ kind: 'shifted', shiftBeats: 0.5, turn: 0 }), 'Shifted, half a beat later');
    assert.equal(readingText({ kind: 'half', shiftBeats: 0, turn: 1 }), 'Half, on other beats');
    assert.equal(readingText({ kind: '3:2', shiftBeats: 1 / 3, turn: 0 }),
        'Three for two, a third of a beat later');
    assert.equal(readingText({ kind: 'other', shiftBeats: 5 / 6, turn: 0 }),
        'Another tempo, 0.83 beats later');
});
