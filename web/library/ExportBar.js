// SPDX-License-Identifier: MIT
import { make } from '../track/dom.js';
import { grouped } from '../track/format.js';

const kFormats = [['m3u8', 'M3U8'], ['csv', 'CSV'], ['json', 'JSON']];

/** How many tracks there are and are chosen, and files of them. */
export class ExportBar {
    #count = make('p', { class: 'count', role: 'status' });
    #what = make('span', { class: 'unit' });
    #problem = make('p', { class: 'problem', role: 'alert' });
    #buttons;
    #clear;

    /** @param save   save(format) yields the file's bytes as a Blob
     *  @param clear  gives the choice up */
    constructor(save, clear) {
        this.#buttons = kFormats.map(([format, text]) => make('button', { type: 'button',
            onclick: (event) => this.#run(event.target, () => this.#save(save, format)) }, text));
        this.#clear = make('button', { type: 'button', onclick: clear }, 'Choose none');
        this.element = make('footer', { class: 'exports' }, this.#count, this.#clear,
            make('span', { class: 'group', role: 'group', 'aria-label': 'Export' }, this.#what,
                ...this.#buttons), this.#problem);
    }

    show(total, selected) {
        const noun = total === 1 ? 'track' : 'tracks';
        const all = total === null ? '' : `${grouped(total)} ${noun}`;
        this.#count.textContent = selected > 0 ? `${grouped(selected)} chosen of ${all}` : all;
        this.#what.textContent = selected > 0 ? 'Export those' : 'Export all';
        this.#clear.hidden = selected === 0;
        for (const button of this.#buttons) button.disabled = !total;
    }

    /** Says why a choice is not what was asked for; nothing with ''. */
    tell(text) {
        this.#problem.textContent = text;
    }

    async #save(save, format) {
        const address = URL.createObjectURL(await save(format));
        make('a', { href: address, download: `tracks.${format}` }).click();
        setTimeout(() => URL.revokeObjectURL(address), 60000);
    }

    async #run(button, work) {
        button.setAttribute('aria-busy', 'true');
        this.#problem.textContent = '';
        try {
            await work();
        } catch (error) {
            this.#problem.textContent = error.message;
        } finally {
            button.removeAttribute('aria-busy');
        }
    }
}
