// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { ListPages } from '../../../web/library/ListPages.js';

/** A program with a list of numbered tracks, which notes what it is asked for. */
function makePages(total, seen = () => {}) {
    const asked = [];
    const errors = [];
    const program = { total, fails: false, mark: 'old' };
    const load = async (offset, limit, signal) => {
        asked.push(offset);
        await null;
        if (signal?.aborted) throw Object.assign(new Error(), { name: 'AbortError' });
        if (program.fails) throw new Error('no answer');
        const count = Math.max(0, Math.min(limit, program.total - offset));
        return { total: program.total,
            tracks: Array.from({ length: count }, (_, i) => ({ id: offset + i + 1, mark: program.mark })) };
    };
    const pages = new ListPages(load, (error) => {
        errors.push(error);
        seen(pages);
    });
    return { pages, asked, errors, program };
}

const settled = () => new Promise((resolve) => { setTimeout(resolve, 0); });

test('only pages that are to be seen are asked for, and once', async () => {
    const { pages, asked } = makePages(100000);
    pages.want(0, 10);
    pages.want(0, 10);
    await settled();
    pages.want(5, 20);
    assert.deepEqual(asked, [0]);
    assert.equal(pages.total, 100000);
    assert.equal(pages.row(19).id, 20);
    assert.equal(pages.row(200), undefined);
    pages.want(195, 205);
    await settled();
    assert.deepEqual(asked, [0, 200]);
    assert.equal(pages.row(204).id, 205);
});

test('what is passed while it is loading is given up', async () => {
    const { pages } = makePages(100000);
    pages.want(0, 10);
    pages.want(50000, 50010);
    await settled();
    assert.equal(pages.row(0), undefined);
    assert.equal(pages.row(50000).id, 50001);
});

test('old rows stay until the new ones have come', async () => {
    const { pages, program } = makePages(300);
    pages.want(0, 10);
    await settled();
    program.mark = 'new';
    pages.renew();
    pages.want(0, 10);
    assert.equal(pages.row(0).mark, 'old');
    await settled();
    assert.equal(pages.row(0).mark, 'new');
});

test('another list shows nothing of the one before', async () => {
    const { pages } = makePages(300);
    pages.want(0, 10);
    await settled();
    pages.clear();
    assert.equal(pages.total, null);
    assert.equal(pages.row(0), undefined);
});

test('a stretch of rows is loaded whole', async () => {
    const { pages, asked } = makePages(1000);
    const rows = await pages.between(150, 650);
    assert.deepEqual([rows.length, rows[0].id, rows.at(-1).id], [501, 151, 651]);
    assert.deepEqual(asked, [150]);
});

test('a long stretch is loaded whole while the first rows are to be seen', async () => {
    const { pages, asked } = makePages(20000, (seen) => seen.want(0, 30));
    pages.want(0, 30);
    const chosen = pages.between(0, 19999);
    pages.want(0, 30);
    const rows = await chosen;
    assert.equal(rows.length, 20000);
    rows.forEach((row, i) => assert.equal(row.id, i + 1));
    // The page that is seen, and a thousand rows at a time.
    assert.equal(asked.length, 1 + 20);
    assert.equal(pages.row(29).id, 30);
});

test('a stretch that is given up, or that cannot be loaded, is not a shorter one', async () => {
    const { pages, program } = makePages(20000);
    const controller = new AbortController();
    const chosen = pages.between(0, 19999, controller.signal);
    controller.abort();
    await assert.rejects(chosen, { name: 'AbortError' });
    program.fails = true;
    await assert.rejects(pages.between(0, 500), { message: 'no answer' });
});

test('a failure is said, and asked for again', async () => {
    const { pages, errors, program } = makePages(300);
    program.fails = true;
    pages.want(0, 10);
    await settled();
    assert.equal(errors[0].message, 'no answer');
    program.fails = false;
    pages.want(0, 10);
    await settled();
    assert.equal(errors[1], null);
    assert.equal(pages.row(0).id, 1);
});

test('far pages are dropped', async () => {
    const { pages } = makePages(100000);
    for (let first = 0; first < 80 * 200; first += 200) {
        pages.want(first, first + 10);
        await settled();
    }
    assert.equal(pages.row(0), undefined);
    assert.equal(pages.row(79 * 200).id, 79 * 200 + 1);
});
