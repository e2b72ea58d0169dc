// SPDX-License-Identifier: MIT
import { make } from '../track/dom.js';
import { emptyFilter, isNarrowed, kOrders } from './filter.js';

const kWaitMs = 150;
// As lists name keys, from A upward.
const kMinors = ['A', 'Bb', 'B', 'C', 'C#', 'D', 'Eb', 'E', 'F', 'F#', 'G', 'G#'];
const kMajors = ['A', 'Bb', 'B', 'C', 'Db', 'D', 'Eb', 'E', 'F', 'F#', 'G', 'Ab'];
const kFlags = [['low', 'Uncertain'], ['corrected', 'Corrected'], ['gone', 'Gone'],
    ['failed', 'Failed']];

/** The keys in the order of the wheel, each with the text that the program reads. */
export function keyChoices() {
    const choices = [];
    for (let number = 1; number <= 12; ++number) {
        // A minor is 8A; each step of the wheel is a fifth, seven semitones.
        const minor = ((number - 8) * 7 + 12 * 7) % 12;
        choices.push([`${number}A`, `${number}A · ${kMinors[minor]} minor`]);
        choices.push([`${number}B`, `${number}B · ${kMajors[(minor + 3) % 12]} major`]);
    }
    return choices;
}

/** The conditions of the list. */
export class FilterBar {
    #changed;
    #filter = emptyFilter();
    #timer = null;
    #fields = {};
    #flags = {};
    #reverse;
    #companion = make('button', { type: 'button', class: 'companion' });
    #reset;

    /** @param changed  is given another filter */
    constructor(changed) {
        this.#changed = changed;
        this.#fields.text = this.#field('search', 'Search', 'Path, artist or title');
        this.#fields.lowest = this.#field('number', 'Slowest tempo, BPM', 'from');
        this.#fields.highest = this.#field('number', 'Fastest tempo, BPM', 'to');
        this.#fields.key = this.#choice('Key', [['', 'Any key'], ...keyChoices()]);
        this.#fields.sort = this.#choice('Sort by', kOrders);
        for (const [name, text] of kFlags) this.#flags[name] = this.#toggle(name, text);
        this.#reverse = this.#toggle('reverse', '↓');
        this.#reverse.setAttribute('aria-label', 'The other way round');
        this.#companion.addEventListener('click', () => this.#change({ compatible: '' }));
        this.#reset = make('button', { type: 'button', onclick: () => this.#change({
            ...emptyFilter(), sort: this.#filter.sort, reverse: this.#filter.reverse }) },
        'Show all');
        this.element = this.#makeElement();
    }

    #makeElement() {
        const { text, lowest, highest, key, sort } = this.#fields;
        return make('form', { class: 'filters', role: 'search', 'aria-label': 'Tracks',
            onsubmit: (event) => event.preventDefault() },
        text, make('span', { class: 'group', role: 'group', 'aria-label': 'Tempo' }, lowest, '–',
            highest, make('span', { class: 'unit' }, 'BPM')), key,
        make('span', { class: 'group', role: 'group', 'aria-label': 'Only' },
            ...Object.values(this.#flags)),
        make('label', { class: 'group' }, make('span', { class: 'unit' }, 'Sort by'), sort,
            this.#reverse), this.#companion, this.#reset);
    }

    #field(type, name, hint) {
        const numbers = type === 'number' ? { min: 1, max: 10000, step: 'any', class: 'bpm' } : {};
        return make('input', { type, 'aria-label': name, placeholder: hint, autocomplete: 'off',
            spellcheck: 'false', maxlength: 300, ...numbers, oninput: () => this.#wait() });
    }

    #choice(name, choices) {
        return make('select', { 'aria-label': name, onchange: () => this.#take() },
            ...choices.map(([value, text]) => make('option', { value }, text)));
    }

    #toggle(name, text) {
        return make('button', { type: 'button', 'aria-pressed': 'false',
            onclick: () => this.#change({ [name]: !this.#filter[name] }) }, text);
    }

    /** Not with every letter. */
    #wait() {
        clearTimeout(this.#timer);
        this.#timer = setTimeout(() => this.#take(), kWaitMs);
    }

    #take() {
        const values = Object.entries(this.#fields).map(([name, field]) => [name, field.value]);
        this.#change(Object.fromEntries(values));
    }

    #change(part) {
        clearTimeout(this.#timer);
        this.#changed({ ...this.#filter, ...part });
    }

    focus() {
        this.#fields.text.focus();
    }

    /** @param companion  the name of the track to mix with; null while it is not known */
    show(filter, companion) {
        this.#filter = filter;
        for (const [name, field] of Object.entries(this.#fields)) {
            if (field.value !== filter[name]) field.value = filter[name];
            field.disabled = filter.failed;
        }
        for (const [name, button] of Object.entries(this.#flags)) {
            button.setAttribute('aria-pressed', filter[name]);
            button.disabled = filter.failed && name !== 'failed';
        }
        this.#reverse.setAttribute('aria-pressed', filter.reverse);
        this.#companion.hidden = !filter.compatible || filter.failed;
        const mixes = `Mixes with ${companion ?? 'the track'}`;
        this.#companion.textContent = `${mixes} ✕`;
        this.#companion.setAttribute('aria-label', `${mixes}: show all`);
        this.#reset.hidden = !isNarrowed(filter);
    }
}
