// SPDX-License-Identifier: MIT

// Browsers draw nothing beyond some 16 to 33 million pixels.
const kTallest = 8000000;

/** Which rows of a long list stand where in its scroll area. Where the list would be taller than
 *  browsers allow, the scroll bar moves over more rows than pixels. */
export class RowWindow {
    #rows = 0;
    #rowHeight = 1;
    #viewHeight = 0;

    /** @param rowHeight  of one row, CSS pixels; @param viewHeight  of what can be seen */
    resize(rows, rowHeight, viewHeight) {
        this.#rows = rows;
        this.#rowHeight = Math.max(1, rowHeight);
        this.#viewHeight = Math.max(0, viewHeight);
    }

    /** Of the scroll area. */
    get height() {
        return Math.min(this.#rows * this.#rowHeight, kTallest);
    }

    /** Rows that fit whole. */
    get page() {
        return Math.max(1, Math.floor(this.#viewHeight / this.#rowHeight));
    }

    get #span() {
        return Math.max(0, this.#rows * this.#rowHeight - this.#viewHeight);
    }

    get #scrollSpan() {
        return Math.max(0, this.height - this.#viewHeight);
    }

    /** How far the whole list is moved up at a scroll position. */
    #offset(scrollTop) {
        if (this.#scrollSpan === 0) return 0;
        const share = Math.min(1, Math.max(0, scrollTop / this.#scrollSpan));
        return share * this.#span;
    }

    /** The rows to be seen, `last` not included, and where the first one lies in the area. */
    visible(scrollTop) {
        const offset = this.#offset(scrollTop);
        const first = Math.min(Math.floor(offset / this.#rowHeight), Math.max(0, this.#rows - 1));
        const last = Math.min(this.#rows, Math.ceil((offset + this.#viewHeight) / this.#rowHeight));
        return { first, last, top: scrollTop - (offset - first * this.#rowHeight) };
    }

    /** The nearest scroll position at which the row is seen whole. */
    scrollTo(row, scrollTop) {
        const offset = this.#offset(scrollTop);
        const top = row * this.#rowHeight;
        const lowest = top + this.#rowHeight - this.#viewHeight;
        const wanted = offset > top ? top : Math.max(offset, lowest);
        if (wanted === offset || this.#span === 0) return scrollTop;
        if (this.#span === this.#scrollSpan) return Math.min(this.#span, Math.max(0, wanted));
        return Math.min(1, Math.max(0, wanted / this.#span)) * this.#scrollSpan;
    }
}
