// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { emptyFilter, filterOf, hashOf, isNarrowed, parametersOf, placeOf } from '../../../web/library/filter.js';

const kOdd = { ...emptyFilter(), text: 'a&b=c #1%', lowest: '120', highest: '128.5', key: '8A',
    low: true, corrected: true, gone: true, sort: 'bpm', reverse: true };

test('a filter is the same after it stood in an address', () => {
    assert.deepEqual(placeOf(hashOf(kOdd)).filter, kOdd);
    assert.deepEqual(placeOf(hashOf(emptyFilter())).filter, emptyFilter());
    assert.deepEqual(placeOf('').filter, emptyFilter());
});

test('what says nothing is left out of addresses', () => {
    assert.equal(String(parametersOf(emptyFilter())), '');
    assert.equal(String(parametersOf({ ...emptyFilter(), text: '  ' })), '');
    assert.equal(hashOf({ ...emptyFilter(), key: '8A' }), '#tracks?key=8A');
});

test('keys and tempos narrow what is compatible', () => {
    const filter = { ...kOdd, compatible: '7' };
    assert.deepEqual(filterOf(String(parametersOf(filter))), filter);
    for (const name of ['lowest', 'highest', 'key', 'compatible'])
        assert.equal(parametersOf(filter).get(name), filter[name]);
});

test('failures have no other condition', () => {
    assert.equal(String(parametersOf({ ...kOdd, failed: true })), 'failed=1&reverse=1');
});

test('an address that says something unknown leads to everything', () => {
    assert.deepEqual(filterOf('sort=size&low=yes&other=1'), emptyFilter());
    assert.deepEqual(placeOf('#track/x').filter, emptyFilter());
    assert.equal(placeOf('#track/12').track, 12);
});

test('an order alone narrows nothing', () => {
    assert.equal(isNarrowed({ ...emptyFilter(), sort: 'bpm', reverse: true }), false);
    assert.equal(isNarrowed({ ...emptyFilter(), low: true }), true);
    assert.equal(isNarrowed({ ...emptyFilter(), failed: true }), true);
});
