// SPDX-License-Identifier: MIT
// The application over a catalogue: the list, and the page of a track. Which of them is seen, and
// with which conditions, stands behind '#' in the address, so that it is the same after a reload.
import { make } from '../track/dom.js';
import { grouped } from '../track/format.js';
import { exportList, listTracks, loadState, loadStrips, loadTrack, Unreachable } from './api.js';
import { ExportBar } from './ExportBar.js';
import { emptyFilter, hashOf, parametersOf, placeOf } from './filter.js';
import { FilterBar } from './FilterBar.js';
import { ListPages } from './ListPages.js';
import { ScanStatus } from './ScanStatus.js';
import { Selection } from './Selection.js';
import { Strips } from './Strips.js';
import { TrackPage } from './TrackPage.js';
import { TrackTable } from './TrackTable.js';

const kMostChosen = 100000;

class Library {
    #filter = emptyFilter();
    #companion = null;
    #list = document.getElementById('library');
    #notice = document.getElementById('notice');
    #empty = make('p', { class: 'empty', role: 'status', hidden: true });
    #selection = new Selection();
    #choosing = new AbortController();
    #strips = new Strips(loadStrips, () => this.#table.draw());
    #pages = new ListPages(
        (offset, limit, signal) => listTracks(parametersOf(this.#filter), offset, limit, signal),
        (error) => this.#arrived(error));
    #table = new TrackTable(this.#pages, this.#strips, this.#selection, {
        open: (row) => { if (row.id !== undefined) location.hash = `#track/${row.id}`; },
        sort: (order) => this.#sort(order),
        select: (from, to) => this.#select(Math.min(from, to), Math.max(from, to)),
        selected: () => this.#chosen(),
    });
    #filters = new FilterBar((filter) => this.#go(filter));
    #exports = new ExportBar((format) => this.#export(format), () => {
        this.#selection.clear();
        this.#chosen();
    });
    #scan = new ScanStatus(loadState, {
        changed: () => this.#renew(),
        reached: () => this.#tell(''),
        failed: (error) => this.#tell(error instanceof Unreachable ? error.message : ''),
    });
    #track = new TrackPage(document.getElementById('track'), {
        back: () => this.#go(this.#filter),
        step: (rows) => this.#step(rows),
        mixes: (id) => this.#go({ ...emptyFilter(), compatible: String(id) }),
        failed: (error) => this.#tell(error instanceof Unreachable ? error.message : ''),
    });

    start() {
        this.#list.append(make('header', { class: 'title' }, make('h1', {}, 'Beat Atlas'),
            this.#scan.element), this.#filters.element,
        make('div', { class: 'list' }, this.#table.element, this.#empty), this.#exports.element);
        addEventListener('hashchange', () => this.#follow());
        document.addEventListener('keydown', (event) => {
            const isTyping = document.activeElement?.matches('input, select');
            if (event.key !== '/' || isTyping || this.#list.hidden) return;
            event.preventDefault();
            this.#filters.focus();
        });
        this.#follow(true);
        this.#scan.look();
    }

    /** Shows what the address says. */
    #follow(isFirst = false) {
        const place = placeOf(location.hash);
        if (place.track !== undefined) {
            this.#list.hidden = true;
            this.#track.show(place.track);
            return;
        }
        const wasElsewhere = this.#list.hidden;
        this.#track.hide();
        this.#list.hidden = false;
        document.title = 'Beat Atlas';
        const isOther = hashOf(place.filter) !== hashOf(this.#filter);
        if (isFirst || isOther || this.#pages.total === null) this.#show(place.filter);
        else this.#table.draw();
        if (wasElsewhere) this.#table.focus();
    }

    #go(filter) {
        const hash = hashOf(filter);
        // While somebody types, each letter would be a step of the browser's way back.
        if (location.hash === hash || this.#list.hidden) location.hash = hash;
        else history.replaceState(null, '', hash);
        if (!this.#list.hidden) this.#follow();
    }

    #show(filter) {
        if (filter.compatible !== this.#filter.compatible) this.#nameCompanion(filter.compatible);
        this.#choosing.abort();
        this.#filter = filter;
        this.#filters.show(filter, this.#companion);
        this.#table.markOrder(filter.sort, filter.reverse);
        this.#empty.hidden = true;
        this.#pages.clear();
        this.#table.toStart();
    }

    async #nameCompanion(id) {
        this.#companion = null;
        if (!id) return;
        try {
            const data = await loadTrack(id);
            if (this.#filter.compatible !== id) return;
            this.#companion = data.title || data.file;
            this.#filters.show(this.#filter, this.#companion);
        } catch {
            // The list says why.
        }
    }

    #sort(order) {
        const isSame = this.#filter.sort === order;
        this.#go({ ...this.#filter, sort: order, reverse: isSame && !this.#filter.reverse });
    }

    #step(rows) {
        const row = this.#table.step(rows);
        if (row?.id !== undefined) location.hash = `#track/${row.id}`;
    }

    async #select(from, to) {
        const last = Math.min(to, from + kMostChosen - 1);
        this.#choosing.abort();
        this.#choosing = new AbortController();
        const { signal } = this.#choosing;
        let rows;
        try {
            rows = await this.#pages.between(from, last, signal);
        } catch (error) {
            if (!signal.aborted) this.#exports.tell(`They cannot be chosen: ${error.message}`);
            return;
        }
        if (signal.aborted) return;
        this.#selection.set(rows.filter((row) => row.id !== undefined).map((row) => row.id));
        this.#chosen();
        if (last < to)
            this.#exports.tell(`No more than ${grouped(kMostChosen)} tracks can be chosen`);
    }

    /** After a choice: one that is still being loaded would undo it. */
    #chosen() {
        this.#choosing.abort();
        this.#exports.tell('');
        this.#showCounts();
    }

    #export(format) {
        const ids = this.#selection.size > 0 ? this.#selection.ids : null;
        return exportList(format, parametersOf(this.#filter), ids);
    }

    #renew() {
        this.#pages.renew();
        this.#strips.renew();
        this.#table.draw();
    }

    #arrived(error) {
        if (error) {
            this.#empty.textContent = error.message;
            this.#empty.hidden = false;
            if (error instanceof Unreachable) this.#tell(error.message);
            return;
        }
        this.#empty.hidden = this.#pages.total > 0;
        this.#empty.textContent = this.#filter.failed
            ? 'No file has failed.' : 'No track is like that.';
        this.#showCounts();
    }

    #showCounts() {
        this.#exports.show(this.#pages.total, this.#selection.size);
        this.#table.draw();
    }

    #tell(text) {
        if (this.#notice.textContent === text) return;
        this.#notice.textContent = text;
        this.#notice.hidden = text === '';
    }
}

new Library().start();
