// SPDX-License-Identifier: MIT
// What the rows of the list say.
import { make } from '../track/dom.js';
import { bpmText, clockTime, percentText } from '../track/format.js';

const kSure = 0.8;

/** The last part of a path, and the folder that it is in. */
export function partsOf(path) {
    const slash = path.lastIndexOf('/');
    return { name: path.slice(slash + 1), folder: slash > 0 ? path.slice(0, slash) : '/' };
}

/** The two lines by which a track is known: by its tags, else by its file. */
export function namesOf({ file, artist, title }) {
    const { name, folder } = partsOf(file);
    return { first: title || name, second: artist || folder };
}

/** How sure the less certain of tempo and key is: "key 88 %". */
function sureText({ leastSure, confidence }) {
    const percent = percentText(confidence);
    return leastSure === null ? percent : `${leastSure} ${percent}`;
}

/** What a screen reader says of a row. */
export function spokenRow(row) {
    if (row === undefined) return 'loading';
    if (row.reason !== undefined) return `${row.file}: ${row.reason}`;
    const { first, second } = namesOf(row);
    const parts = [first, second, row.bpm === null ? 'no tempo' : `${bpmText(row.bpm)} BPM`,
        row.key === null ? 'no key' : `${row.key.name}, ${row.key.camelot}`,
        clockTime(row.seconds)];
    if (row.confidence !== null) parts.push(`${sureText(row)} sure`);
    if (row.corrected) parts.push('corrected');
    if (row.gone) parts.push('gone');
    return parts.join(', ');
}

/** The cells of one row, filled anew for each track that comes into its place. */
export class RowContent {
    #first = make('span', { class: 'first' });
    #second = make('span', { class: 'second' });
    #bpm = make('span', { class: 'bpm' });
    #key = make('span', { class: 'key' });
    #length = make('span', { class: 'length' });
    #sure = make('span', { class: 'sure' });
    #mark = make('span', { class: 'mark' });
    canvas = make('canvas', { class: 'strip' });
    check = make('span', { class: 'check' });

    constructor() {
        this.elements = [this.check, make('span', { class: 'names' }, this.#first, this.#second),
            this.canvas, this.#bpm, this.#key, this.#length, this.#sure, this.#mark];
    }

    show(row) {
        if (row === undefined) return this.#set('', '', '', '', '', '', '');
        if (row.reason !== undefined) {
            const { name, folder } = partsOf(row.file);
            return this.#set(name, `${row.reason} · ${folder}`, '', '', '', '', row.kind);
        }
        const { first, second } = namesOf(row);
        const isDoubtful = row.confidence !== null && row.confidence < kSure;
        this.#sure.classList.toggle('doubtful', isDoubtful);
        return this.#set(first, second, row.bpm === null ? '–' : bpmText(row.bpm),
            row.key === null ? '–' : `${row.key.camelot} · ${row.key.name}`, clockTime(row.seconds),
            row.confidence === null ? '–' : sureText(row),
            row.gone ? 'gone' : row.corrected ? 'corrected' : '');
    }

    #set(first, second, bpm, key, length, sure, mark) {
        this.#first.textContent = first;
        this.#second.textContent = second;
        this.#bpm.textContent = bpm;
        this.#key.textContent = key;
        this.#length.textContent = length;
        this.#sure.textContent = sure;
        this.#mark.textContent = mark;
    }
}
