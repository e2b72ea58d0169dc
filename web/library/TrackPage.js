// SPDX-License-Identifier: MIT
import { make } from '../track/dom.js';
import { showTrack } from '../track/trackView.js';
import { correct, fileAddress, loadSound, loadTrack, undo } from './api.js';

/** The page of one track, with what a person knows better about it. */
export class TrackPage {
    #container;
    #actions;
    #view = null;
    #id = null;
    /** Counts what was asked to be shown: only the last of it is. */
    #turn = 0;
    #bar;
    #body = null;
    #problem = make('p', { class: 'problem', role: 'alert' });
    #back;

    /** @param actions  `back()`, `step(rows)`, `mixes(id, name)` and `failed(error)` */
    constructor(container, actions) {
        this.#container = container;
        this.#actions = actions;
        const button = (text, act, name) =>
            make('button', { type: 'button', onclick: act, 'aria-label': name ?? null }, text);
        this.#back = button('‹ Tracks', actions.back, 'Back to the tracks');
        this.#bar = make('nav', { class: 'track-bar', 'aria-label': 'Tracks' }, this.#back,
            button('‹', () => actions.step(-1), 'The track before in the list'),
            button('›', () => actions.step(1), 'The next track in the list'),
            button('What mixes with it', () => actions.mixes(this.#id)));
        container.append(this.#bar, this.#problem);
    }

    async show(id) {
        const turn = ++this.#turn;
        await this.#close();
        if (turn !== this.#turn) return;
        this.#id = id;
        this.#container.hidden = false;
        this.#problem.textContent = '';
        try {
            const data = await loadTrack(id);
            if (turn !== this.#turn) return;
            document.title = `${data.title || data.file} – Beat Atlas`;
            this.#body = make('div', {
                class: 'track-body', tabindex: -1, role: 'group',
                'aria-label': data.title || data.file,
            });
            this.#container.append(this.#body);
            this.#view = showTrack(this.#body, data, {
                audio: data.gone ? null : { load: (signal) => loadSound(id, signal),
                    address: fileAddress(id) },
                rate: data.sampleRate,
                corrections: {
                    apply: (kind, value) => correct(id, kind, value),
                    undo: () => undo(id),
                },
            });
            // Not a button: Space plays.
            this.#body.focus({ preventScroll: true });
        } catch (error) {
            if (turn !== this.#turn) return;
            this.#problem.textContent = `This track cannot be shown: ${error.message}`;
            this.#actions.failed(error);
        }
    }

    async hide() {
        ++this.#turn;
        await this.#close();
    }

    async #close() {
        this.#id = null;
        this.#container.hidden = true;
        const view = this.#view;
        this.#view = null;
        this.#body?.remove();
        await view?.destroy();
    }
}
