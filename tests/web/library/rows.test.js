// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { keyChoices } from '../../../web/library/FilterBar.js';
import { namesOf, partsOf, spokenRow } from '../../../web/library/rowContent.js';
import { scanText } from '../../../web/library/ScanStatus.js';
import { Selection } from '../../../web/library/Selection.js';
import { stripBars, Strips } from '../../../web/library/Strips.js';

const kTrack = { id: 1, file: '/music/a/b.mp3', artist: 'Somebody', title: 'Song', seconds: 187,
    bpm: 128, key: { number: 12, name: 'A minor', camelot: '8A' }, confidence: 0.91,
    leastSure: 'key', corrected: true, gone: false };

test('a track is known by its tags, else by its file', () => {
    assert.deepEqual(namesOf(kTrack), { first: 'Song', second: 'Somebody' });
    assert.deepEqual(namesOf({ ...kTrack, artist: '', title: '' }),
        { first: 'b.mp3', second: '/music/a' });
    assert.deepEqual(partsOf('/b.mp3'), { name: 'b.mp3', folder: '/' });
});

test('a row is said in words', () => {
    assert.equal(spokenRow(kTrack),
        'Song, Somebody, 128.00 BPM, A minor, 8A, 3:07, key 91 % sure, corrected');
    assert.equal(spokenRow({ ...kTrack, bpm: null, key: null, confidence: null, corrected: false }),
        'Song, Somebody, no tempo, no key, 3:07');
    assert.match(spokenRow({ ...kTrack, leastSure: null }), /, 91 % sure/);
    assert.equal(spokenRow({ file: '/x.mp3', reason: 'is cut off' }), '/x.mp3: is cut off');
    assert.equal(spokenRow(undefined), 'loading');
});

// Neighbours on the wheel are a fifth apart; the relative has the same number.
test('keys are offered in the order of the wheel', () => {
    const choices = new Map(keyChoices());
    assert.equal(choices.size, 24);
    assert.equal(choices.get('8A'), '8A · A minor');
    assert.equal(choices.get('8B'), '8B · C major');
    assert.equal(choices.get('9A'), '9A · E minor');
    assert.equal(choices.get('1A'), '1A · G# minor');
    assert.equal(choices.get('12B'), '12B · E major');
    assert.equal(choices.get('3B'), '3B · Db major');
    assert.equal(choices.get('12A'), '12A · C# minor');
});

test('the loudest point decides about a bar', () => {
    const bytes = new Uint8Array([8 * 3 + 1, 8 * 31 + 4, 8 * 2, 0]);
    const bars = stripBars(bytes, 2);
    assert.equal(bars.length, 2);
    assert.deepEqual(bars[0], { level: 1, color: 4 });
    assert.ok(bars[1].level > 0 && bars[1].level < 0.3);
    // More bars than points: each point several times.
    assert.equal(stripBars(bytes, 8).length, 8);
});

test('strips are asked for again once tracks may have changed', async () => {
    let level = 1;
    let answer = null;
    const strips = new Strips((ids) => new Promise((resolve) => {
        const text = btoa(String.fromCharCode(8 * level));
        answer = () => resolve(Object.fromEntries(ids.map((id) => [id, text])));
    }), () => {});
    const arrive = async () => {
        strips.want([7]);
        await new Promise((resolve) => { setTimeout(resolve, 80); });
        answer?.();
        await null;
        await null;
    };
    await arrive();
    assert.deepEqual([...strips.of(7)], [8]);
    level = 2;
    strips.renew();
    assert.deepEqual([...strips.of(7)], [8]);
    await arrive();
    assert.deepEqual([...strips.of(7)], [16]);
    // An answer to what was asked before may be of the old state.
    level = 3;
    strips.renew();
    strips.want([7]);
    await new Promise((resolve) => { setTimeout(resolve, 80); });
    strips.renew();
    answer();
    await null;
    await null;
    assert.deepEqual([...strips.of(7)], [16]);
});

test('a selection keeps the order in which tracks were chosen', () => {
    const selection = new Selection();
    for (const id of [3, 1, 2, 1]) selection.toggle(id);
    assert.deepEqual(selection.ids, [3, 2]);
    assert.ok(selection.has(3) && !selection.has(1));
    selection.set([5]);
    assert.equal(selection.size, 1);
    selection.clear();
    assert.equal(selection.size, 0);
});

test('a scan says how far it is', () => {
    assert.equal(scanText(null), null);
    assert.equal(scanText({ planned: 4000, done: 1234, failed: 0 }), 'Scanning: 1,234 of 4,000');
    assert.equal(scanText({ planned: 20, done: 12, failed: 2 }), 'Scanning: 12 of 20, 2 failed');
});
