// SPDX-License-Identifier: MIT
import { make } from '../track/dom.js';
import { grouped } from '../track/format.js';

const kPollMs = 2000;

/** What a scan that fills the catalogue meanwhile has done, in words; null while there is none. */
export function scanText(scan) {
    if (!scan) return null;
    const done = `${grouped(scan.done)} of ${grouped(scan.planned)}`;
    const failed = scan.failed > 0 ? `, ${grouped(scan.failed)} failed` : '';
    return `Scanning: ${done}${failed}`;
}

/** Looks every two seconds, while the page is to be seen, whether the catalogue has changed. */
export class ScanStatus {
    #load;
    #actions;
    #revision = null;
    #text = make('span', {});
    #bar = make('progress', { 'aria-label': 'Scan' });

    /** @param load  yields the program's state
     *  @param actions  `changed()`, `reached()` and `failed(error)` */
    constructor(load, actions) {
        this.#load = load;
        this.#actions = actions;
        this.element = make('div', { class: 'scan', hidden: true }, this.#bar, this.#text);
        document.addEventListener('visibilitychange', () => this.look());
        setInterval(() => this.look(), kPollMs);
    }

    async look() {
        if (document.hidden) return;
        try {
            const state = await this.#load();
            this.#show(state.scan);
            this.#actions.reached();
            const hasChanged = this.#revision !== null && state.revision !== this.#revision;
            this.#revision = state.revision;
            if (hasChanged) this.#actions.changed();
        } catch (error) {
            this.#actions.failed(error);
        }
    }

    #show(scan) {
        this.element.hidden = !scan;
        if (!scan) return;
        this.#text.textContent = scanText(scan);
        this.#bar.max = Math.max(1, scan.planned);
        this.#bar.value = scan.done;
    }
}
