// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { RowWindow } from '../../../web/library/RowWindow.js';

function windowOf(rows, rowHeight, viewHeight) {
    const rowWindow = new RowWindow();
    rowWindow.resize(rows, rowHeight, viewHeight);
    return rowWindow;
}

test('rows stand where a plain list has them', () => {
    const rowWindow = windowOf(1000, 50, 320);
    assert.equal(rowWindow.height, 50000);
    assert.equal(rowWindow.page, 6);
    // 320 pixels from 110 on: the third row, cut, to the ninth, cut.
    assert.deepEqual(rowWindow.visible(110), { first: 2, last: 9, top: 100 });
    assert.deepEqual(rowWindow.visible(49680), { first: 993, last: 1000, top: 49650 });
});

test('an empty or short list shows all that there is', () => {
    assert.deepEqual(windowOf(0, 50, 320).visible(0), { first: 0, last: 0, top: 0 });
    assert.deepEqual(windowOf(3, 50, 320).visible(0), { first: 0, last: 3, top: 0 });
});

// Ten million rows of 50 pixels are beyond what any browser draws.
test('a list taller than browsers allow is reached from end to end', () => {
    const rowWindow = windowOf(1e7, 50, 500);
    assert.equal(rowWindow.height, 8e6);
    assert.equal(rowWindow.visible(0).first, 0);
    const end = rowWindow.visible(8e6 - 500);
    assert.equal(end.last, 1e7);
    // The last row ends where the view ends.
    assert.ok(Math.abs(end.top + (end.last - end.first) * 50 - 8e6) < 0.01);
});

test('a row is brought into view by the shortest way', () => {
    const rowWindow = windowOf(1000, 50, 300);
    assert.equal(rowWindow.scrollTo(4, 0), 0);
    assert.equal(rowWindow.scrollTo(6, 0), 50);
    assert.equal(rowWindow.scrollTo(2, 500), 100);
    assert.equal(rowWindow.scrollTo(999, 0), 49700);
});

for (const rows of [10, 1000, 1e5, 1e7]) {
    test(`every row of ${rows} is seen whole once it is scrolled to`, () => {
        const rowWindow = windowOf(rows, 52, 700);
        let scrollTop = 0;
        for (let i = 0; i < 200; ++i) {
            const row = (i * 7919 * 31) % rows;
            scrollTop = rowWindow.scrollTo(row, scrollTop);
            const { first, top } = rowWindow.visible(scrollTop);
            const at = top + (row - first) * 52 - scrollTop;
            assert.ok(at > -0.01 && at + 52 < 700.01, `${row} at ${at}`);
        }
    });
}
