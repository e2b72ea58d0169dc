// SPDX-License-Identifier: MIT

const kPageRows = 200;
const kMostPages = 60;
// What the program answers at most at once.
const kStretchRows = 1000;

/** The rows of a list, loaded a page at a time when they are to be seen. What is known of an older
 *  state stays until the new one arrives, so that nothing flickers while a scan fills the list. */
export class ListPages {
    #load;
    #changed;
    #pages = new Map();
    #loading = new Map();
    #generation = 0;
    total = null;
    isFailures = false;

    /** @param load     load(offset, limit, signal) yields what the program answers
     *  @param changed  is called when rows have come; with an error when they have not */
    constructor(load, changed) {
        this.#load = load;
        this.#changed = changed;
    }

    /** Another list: nothing is known of it. */
    clear() {
        this.#pages.clear();
        this.total = null;
        this.renew();
    }

    /** The same list, perhaps with other rows. */
    renew() {
        ++this.#generation;
        for (const controller of this.#loading.values()) controller.abort();
        this.#loading.clear();
    }

    /** A track or a failure; undefined while it is not known. */
    row(index) {
        const page = this.#pages.get(Math.floor(index / kPageRows));
        return page?.rows[index % kPageRows];
    }

    /** Loads what is missing of these rows, and drops pages that are far from them. */
    want(first, last) {
        const from = Math.floor(first / kPageRows);
        const to = Math.floor(Math.max(first, last - 1) / kPageRows);
        for (const [number, controller] of this.#loading) {
            if (number >= from && number <= to) continue;
            controller.abort();
            this.#loading.delete(number);
        }
        for (let number = from; number <= to; ++number) this.#wantPage(number);
        if (this.#pages.size <= kMostPages) return;
        for (const number of [...this.#pages.keys()])
            if (Math.abs(number - from) > kMostPages / 4) this.#pages.delete(number);
    }

    #wantPage(number) {
        const known = this.#pages.get(number)?.generation === this.#generation;
        if (known || this.#loading.has(number)) return;
        const controller = new AbortController();
        this.#loading.set(number, controller);
        this.#fetch(number, controller);
    }

    async #fetch(number, controller) {
        const generation = this.#generation;
        try {
            const answer = await this.#load(number * kPageRows, kPageRows, controller.signal);
            if (generation !== this.#generation) return;
            this.#loading.delete(number);
            this.total = answer.total;
            this.isFailures = answer.failures !== undefined;
            this.#pages.set(number, { generation, rows: answer.failures ?? answer.tracks });
            this.#changed(null);
        } catch (error) {
            if (error.name === 'AbortError' || generation !== this.#generation) return;
            this.#loading.delete(number);
            this.#changed(error);
        }
    }

    /** All rows from one to another, whatever of them is to be seen meanwhile. */
    async between(first, last, signal) {
        const rows = [];
        for (let at = first; at <= last; at += kStretchRows) {
            const count = Math.min(kStretchRows, last + 1 - at);
            const answer = await this.#load(at, count, signal);
            rows.push(...(answer.failures ?? answer.tracks));
        }
        return rows;
    }
}
