// SPDX-License-Identifier: MIT
import { make, panel } from './dom.js';
import { bpmText, percentText, readingText } from './format.js';

/** The readings of the beats, each one click to hear against the music. */
export class Readings {
    #choose;
    #list = make('div', { class: 'choices' });
    #note = make('p', { class: 'note' });

    /** @param choose  is given the number of the reading */
    constructor(choose) {
        this.#choose = choose;
        this.element = panel('Which beats do you hear?', 'readings', this.#list, this.#note);
    }

    /** @param readings  of readingsOf() @param chosen  the number of one */
    show(readings, chosen) {
        const name = `reading-${Math.random().toString(36).slice(2)}`;
        this.#list.setAttribute('role', 'radiogroup');
        this.#list.setAttribute('aria-label', 'Readings of the beats');
        this.#list.replaceChildren(...readings.map((reading, i) =>
            this.#choice(reading, i, chosen, name)));
        this.#note.textContent = readings.length > 1
            ? 'Choose one while the music plays: the click and the picture follow at once.'
            : 'No other reading is named.';
    }

    #choice(reading, i, chosen, name) {
        const input = make('input', { type: 'radio', name, value: i, checked: i === chosen,
            onchange: () => this.#choose(i) });
        const tempo = reading.bpm === null ? '' : bpmText(reading.bpm);
        const share = reading.share === null ? '' : percentText(reading.share);
        return make('label', { class: 'choice' }, input,
            make('span', { class: 'what' }, readingText(reading)),
            make('span', { class: 'tempo' }, tempo),
            make('span', { class: 'share' }, share));
    }

    /** Shows what was chosen by a key. */
    mark(chosen) {
        const inputs = this.#list.querySelectorAll('input');
        if (inputs[chosen]) inputs[chosen].checked = true;
    }
}
