// SPDX-License-Identifier: MIT
import { paletteOf } from '../track/canvas.js';
import { make } from '../track/dom.js';
import { RowContent, spokenRow } from './rowContent.js';
import { RowWindow } from './RowWindow.js';
import { drawStrip } from './Strips.js';

const kMore = 4;  // rows beyond both ends of what is seen

const kColumns = [['', null], ['Track', 'title'], ['', null], ['BPM', 'bpm'], ['Key', 'key'],
    ['Length', 'length'], ['Least sure', 'confidence'], ['', null]];

/** The list: of any length, with no more rows in the page than can be seen. It takes the keyboard
 *  as one element; its active row moves with the arrows. */
export class TrackTable {
    #pages;
    #strips;
    #selection;
    #actions;
    #window = new RowWindow();
    #palette = null;
    #rowHeight = 0;
    #stripSize = null;
    #active = 0;
    #anchor = 0;
    #frame = 0;
    #rows = [];
    #headings = [];
    #spacer = make('div', { class: 'spacer' });
    #area;

    /** @param actions  `open(row)`, `sort(order)`, `selected()` and `select(from, to)` */
    constructor(pages, strips, selection, actions) {
        this.#pages = pages;
        this.#strips = strips;
        this.#selection = selection;
        this.#actions = actions;
        this.#area = make('div', {
            class: 'rows', role: 'grid', tabindex: 0, 'aria-label': 'Tracks',
            'aria-multiselectable': 'true', onscroll: () => this.draw(),
            onkeydown: (event) => this.#type(event), onclick: (event) => this.#click(event),
            ondblclick: (event) => this.#openAt(event),
        }, this.#spacer);
        this.element = make('div', { class: 'table-view' }, this.#makeHeadings(), this.#area);
        new ResizeObserver(() => this.#resize()).observe(this.#area);
        matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => this.#resize());
    }

    #makeHeadings() {
        this.#headings = kColumns.map(([text, order]) => {
            if (!order) return make('span', {});
            return make('button', { type: 'button', 'data-order': order,
                'aria-label': `Sort by ${text.toLowerCase()}`,
                onclick: () => this.#actions.sort(order) }, text);
        });
        return make('div', { class: 'headings', role: 'group', 'aria-label': 'Order' },
            ...this.#headings);
    }

    /** Marks by which column the list is sorted. */
    markOrder(sort, isReversed) {
        for (const heading of this.#headings) {
            const isIt = heading.dataset.order === sort;
            heading.classList.toggle('up', isIt && !isReversed);
            heading.classList.toggle('down', isIt && isReversed);
            if (heading.dataset.order) heading.setAttribute('aria-pressed', isIt);
        }
    }

    /** The first rows again, for another list. */
    toStart() {
        this.#active = 0;
        this.#anchor = 0;
        this.#area.scrollTop = 0;
        this.draw();
    }

    focus() {
        this.#area.focus({ preventScroll: true });
    }

    get activeRow() {
        return this.#pages.row(this.#active);
    }

    /** Goes to a row beside the active one. @returns the track there; undefined if none is known */
    step(rows) {
        this.#move(this.#active + rows, false);
        return this.activeRow;
    }

    #resize() {
        this.#palette = null;
        this.#stripSize = null;
        for (const { content } of this.#rows) content.canvas.drawn = undefined;
        this.draw();
    }

    /** With the next picture of the screen. */
    draw() {
        if (this.#frame === 0) this.#frame = requestAnimationFrame(() => this.#drawNow());
    }

    #readStyle() {
        this.#palette = paletteOf(this.#area);
        // Beside the rows stands a scroll bar, as wide as the system has it.
        this.#headings[0].parentElement.style.marginRight =
            `${this.#area.offsetWidth - this.#area.clientWidth}px`;
        this.#rowHeight = parseFloat(getComputedStyle(this.#area).getPropertyValue('--row-rem')) *
            parseFloat(getComputedStyle(document.documentElement).fontSize);
    }

    #drawNow() {
        this.#frame = 0;
        if (!this.#area.isConnected || this.#area.clientHeight === 0) return;
        if (!this.#palette) this.#readStyle();
        const total = this.#pages.total ?? 0;
        this.#window.resize(total, this.#rowHeight, this.#area.clientHeight);
        this.#spacer.style.height = `${this.#window.height}px`;
        this.#area.setAttribute('aria-rowcount', this.#pages.total ?? -1);
        this.#active = Math.max(0, Math.min(this.#active, total - 1));
        const { first, last, top } = this.#window.visible(this.#area.scrollTop);
        this.#pages.want(first, Math.max(last, 1));
        this.#drawRows(first, last, top, total);
        this.#wantStrips(first, last);
    }

    #drawRows(first, last, top, total) {
        const from = Math.max(0, first - kMore);
        const to = Math.min(total, last + kMore);
        while (this.#rows.length < to - from) this.#addRow();
        const size = this.#rows.length;
        const shown = new Set();
        for (let index = from; index < to; ++index) {
            // A row keeps its element while it is in sight: only those that come in are filled.
            const place = index % size;
            shown.add(place);
            this.#fill(this.#rows[place], index, top + (index - first) * this.#rowHeight);
        }
        for (const [place, row] of this.#rows.entries()) row.element.hidden = !shown.has(place);
        const activePlace = this.#rows[this.#active % size];
        const isSeen = activePlace?.index === this.#active && !activePlace.element.hidden;
        if (isSeen) this.#area.setAttribute('aria-activedescendant', activePlace.element.id);
        else this.#area.removeAttribute('aria-activedescendant');
    }

    #addRow() {
        const content = new RowContent();
        const cell = make('div', { class: 'cell', role: 'gridcell' }, ...content.elements);
        const id = `row-${this.#rows.length}`;
        const element = make('div', { class: 'row', role: 'row', id }, cell);
        this.#rows.push({ element, cell, content, index: -1, data: null });
        this.#area.append(element);
    }

    #fill(row, index, top) {
        const data = this.#pages.row(index);
        row.element.hidden = false;
        row.element.style.transform = `translateY(${top}px)`;
        if (row.index !== index || row.data !== data) {
            row.index = index;
            row.data = data;
            row.element.setAttribute('aria-rowindex', index + 1);
            row.cell.setAttribute('aria-label', spokenRow(data));
            row.content.show(data);
        }
        const isSelected = data?.id !== undefined && this.#selection.has(data.id);
        row.element.setAttribute('aria-selected', isSelected);
        row.element.classList.toggle('active', index === this.#active);
        row.element.classList.toggle('odd', index % 2 === 1);
        this.#drawStrip(row.content.canvas, data);
    }

    #drawStrip(canvas, data) {
        const strip = data?.id === undefined ? undefined : this.#strips.of(data.id);
        if (canvas.drawn === (strip ?? null)) return;
        canvas.drawn = strip ?? null;
        // Measured once: each measurement makes the browser lay the page out.
        this.#stripSize ??= canvas.getBoundingClientRect();
        drawStrip(canvas, strip, this.#palette, this.#stripSize);
    }

    #wantStrips(first, last) {
        const ids = [];
        for (let index = first; index < last; ++index) {
            const id = this.#pages.row(index)?.id;
            if (id !== undefined) ids.push(id);
        }
        this.#strips.want(ids);
    }

    #move(index, extends_) {
        const total = this.#pages.total ?? 0;
        if (total === 0) return;
        this.#active = Math.max(0, Math.min(index, total - 1));
        if (extends_) this.#actions.select(this.#anchor, this.#active);
        else this.#anchor = this.#active;
        this.#area.scrollTop = this.#window.scrollTo(this.#active, this.#area.scrollTop);
        this.draw();
    }

    #toggle() {
        const id = this.activeRow?.id;
        if (id === undefined) return;
        this.#anchor = this.#active;
        this.#selection.toggle(id);
        this.#actions.selected();
    }

    #type(event) {
        if (event.altKey) return;
        const total = this.#pages.total ?? 0;
        const goals = { ArrowDown: this.#active + 1, ArrowUp: this.#active - 1,
            PageDown: this.#active + this.#window.page, PageUp: this.#active - this.#window.page,
            Home: 0, End: total - 1 };
        if (goals[event.key] !== undefined) this.#move(goals[event.key], event.shiftKey);
        else if (event.key === 'Enter' && this.activeRow) this.#actions.open(this.activeRow);
        else if (event.key === ' ') this.#toggle();
        else if (event.key === 'a' && (event.ctrlKey || event.metaKey))
            this.#actions.select(0, total - 1);
        else if (event.key === 'Escape') this.#clearSelection();
        else return;
        event.preventDefault();
    }

    #clearSelection() {
        this.#selection.clear();
        this.#actions.selected();
    }

    #rowAt(event) {
        const element = event.target.closest('.row');
        return this.#rows.find((row) => row.element === element);
    }

    #click(event) {
        const row = this.#rowAt(event);
        if (!row) return;
        const isCheck = event.target.closest('.check') !== null;
        if (event.shiftKey) return this.#move(row.index, true);
        this.#move(row.index, false);
        if (isCheck || event.ctrlKey || event.metaKey) return this.#toggle();
        // One touch opens; a mouse may first point to a row.
        if (event.pointerType === 'touch' || event.target.closest('.first')) this.#openAt(event);
        return undefined;
    }

    #openAt(event) {
        const data = this.#rowAt(event)?.data;
        if (data && !event.target.closest('.check')) this.#actions.open(data);
    }
}
