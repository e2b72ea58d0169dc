// SPDX-License-Identifier: MIT
import { make, panel } from './dom.js';
import { bpmText, keyText, sentence } from './format.js';
import { TapTempo } from './TapTempo.js';

const kNudgesMs = [-10, -1, 1, 10];

/** What a person knows better: controls that hand each correction on and show what comes back.
 *
 *  Kinds are those of the catalogue: double, halve, three-to-two, shift-half, shift-ms
 *  (milliseconds), downbeat (seconds), bpm, key (its number). */
export class Corrections {
    #options;
    #actions;
    #taps = new TapTempo();
    #tapped = null;
    #key = make('select', { 'aria-label': 'Key' });
    #keep;
    #undo;
    #made = make('ol', { class: 'made', 'aria-label': 'Corrections so far' });
    #problem = make('p', { class: 'problem', role: 'alert' });
    #controls;

    /** @param options  `apply(kind, value)` and `undo()`, which yield the new data of the view
     *  @param actions  functions: `position()`, where the music is, in seconds; `changed(data)` */
    constructor(options, actions) {
        this.#options = options;
        this.#actions = actions;
        this.#keep = this.#button('Keep it', () => this.#keepTapped());
        this.#undo = this.#button('Undo', () => this.#run(() => this.#options.undo()));
        this.#controls = make('div', { class: 'controls' }, ...this.#rows());
        this.element = panel('Correct it', 'corrections', this.#controls, this.#problem,
            this.#made);
    }

    #rows() {
        const apply = (kind, value = 0) => () => this.apply(kind, value);
        const tap = this.#button('Tap the beat', () => this.tap());
        tap.setAttribute('aria-keyshortcuts', 'T');
        this.#showTapped('four taps or more');
        return [
            row('Tempo', this.#button('× 2', apply('double'), 'Double the tempo'),
                this.#button('÷ 2', apply('halve'), 'Halve the tempo'),
                this.#button('3 : 2', apply('three-to-two'), 'Three beats for two')),
            row('Tap', tap, this.#tapped, this.#keep),
            row('Beats', this.#button('Half a beat later', apply('shift-half'))),
            row('Nudge', ...kNudgesMs.map((ms) => this.#button(nudgeText(ms),
                apply('shift-ms', ms), ms > 0 ? 'Beats later' : 'Beats earlier'))),
            row('Bars', this.#button('A bar begins here', () =>
                this.apply('downbeat', this.#actions.position()),
            'At the beat nearest to the position')),
            row('Key', this.#key, this.#button('Set the key', () =>
                this.apply('key', Number(this.#key.value)))),
            row('', this.#undo),
        ];
    }

    /** @param explanation  shown when somebody points at it, and read after its name */
    #button(text, act, explanation = null) {
        return make('button', { type: 'button', title: explanation, onclick: act }, text);
    }

    #showTapped(text) {
        this.#tapped ??= make('output', { class: 'tapped' });
        this.#tapped.textContent = text;
    }

    show(data) {
        this.#key.replaceChildren(...data.keys.map((entry) =>
            make('option', { value: entry.number, selected: entry.number === data.key?.number },
                keyText(entry, data.keyNotation))));
        this.#made.replaceChildren(...data.corrections.map(({ text }) => make('li', {}, text)));
        this.#undo.disabled = data.corrections.length === 0;
        this.#keep.disabled = true;
    }

    /** One tap of somebody who taps along with the music. */
    tap() {
        const bpm = this.#taps.tap(performance.now());
        this.#keep.disabled = bpm === null;
        this.#showTapped(bpm === null ? `${this.#taps.count} of 4 taps` : `${bpmText(bpm)} BPM`);
        this.#keep.value = bpm ?? '';
    }

    #keepTapped() {
        this.apply('bpm', Number(Number(this.#keep.value).toFixed(2)));
    }

    apply(kind, value) {
        return this.#run(() => this.#options.apply(kind, value));
    }

    async #run(work) {
        if (this.#controls.getAttribute('aria-busy') === 'true') return;
        this.#controls.setAttribute('aria-busy', 'true');
        this.#problem.textContent = '';
        try {
            this.#actions.changed(await work());
        } catch (error) {
            this.#problem.textContent = sentence(error.message);
        } finally {
            this.#controls.removeAttribute('aria-busy');
        }
    }
}

function nudgeText(ms) {
    return `${ms > 0 ? '+' : '−'}${Math.abs(ms)} ms`;
}

function row(name, ...controls) {
    return make('div', { class: 'row', role: 'group', 'aria-label': name || null },
        make('span', { class: 'what' }, name), make('div', { class: 'ways' }, ...controls));
}
