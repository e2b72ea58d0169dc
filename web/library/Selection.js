// SPDX-License-Identifier: MIT

/** The tracks that were chosen, in the order in which they were. */
export class Selection {
    #ids = new Set();

    get size() {
        return this.#ids.size;
    }

    get ids() {
        return [...this.#ids];
    }

    has(id) {
        return this.#ids.has(id);
    }

    toggle(id) {
        if (!this.#ids.delete(id)) this.#ids.add(id);
    }

    /** These and no others. */
    set(ids) {
        this.#ids = new Set(ids);
    }

    clear() {
        this.#ids.clear();
    }
}
