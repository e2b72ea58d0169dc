// SPDX-License-Identifier: MIT
import { icon, make } from './dom.js';
import { clockTime } from './format.js';

const kPlay = 'M8 5v14l11-7z';
const kPause = 'M6 5h4v14H6zM14 5h4v14h-4z';
const kToStart = 'M6 6h2v12H6zM9.5 12l8.5 6V6z';
const kClick = 'M12 2a1.5 1.5 0 0 1 1.4 1l4.6 17a1.6 1.6 0 0 1-1.6 2H7.6A1.6 1.6 0 0 1 6 20L10.6 3'
    + 'A1.5 1.5 0 0 1 12 2zm-.9 5.5L8.6 17h3.1l5.6-9.3 1.7 1L14 17h1.4L12.9 7.5z';
const kSound = 'M4 9v6h4l5 5V4L8 9zM15.5 8.5a5 5 0 0 1 0 7M18 6a8.5 8.5 0 0 1 0 12';
const kMinus = 'M5 11h14v2H5z';
const kPlus = 'M11 5h2v6h6v2h-6v6h-2v-6H5v-2h6z';

/** Play, pause, time, click, volumes, zoom. */
export class Transport {
    #time = make('span', { class: 'now' });
    #place = make('span', { class: 'place' });
    #play;
    #click;
    #zoomIn;
    #zoomOut;

    /** @param actions  functions: `toggle`, `toStart`, `setClicks(on)`, `setClickVolume(0 to 1)`,
     *                  `setVolume(0 to 1)`, `zoom(steps)`
     *  @param settings  `clickVolume`, `volume`, `hasSound` */
    constructor(actions, settings) {
        this.#play = make('button', { class: 'play', 'aria-label': 'Play',
            'aria-keyshortcuts': 'Space', onclick: actions.toggle }, icon(kPlay));
        this.#click = make('button', { 'aria-pressed': 'true', 'aria-keyshortcuts': 'M',
            onclick: () => actions.setClicks(this.#click.getAttribute('aria-pressed') !== 'true') },
        icon(kClick), make('span', {}, 'Click'));
        this.#zoomOut = zoomButton('See more', kMinus, () => actions.zoom(-1));
        this.#zoomIn = zoomButton('See less, larger', kPlus, () => actions.zoom(1));
        this.element = make('div', { class: 'transport', role: 'toolbar', 'aria-label': 'Playing' },
            make('button', { 'aria-label': 'To the beginning', 'aria-keyshortcuts': 'Home',
                onclick: actions.toStart }, icon(kToStart)),
            this.#play,
            make('div', { class: 'clock', role: 'timer', 'aria-label': 'Position' },
                this.#time, this.#place),
            make('div', { class: 'group zooms' }, this.#zoomOut, this.#zoomIn),
            make('div', { class: 'group' }, this.#click,
                volume('Volume of the click', settings.clickVolume, actions.setClickVolume)),
            settings.hasSound
                ? make('div', { class: 'group' }, icon(kSound),
                    volume('Volume of the music', settings.volume, actions.setVolume))
                : null);
    }

    set isPlaying(playing) {
        const name = playing ? 'Pause' : 'Play';
        if (this.#play.getAttribute('aria-label') === name) return;
        this.#play.setAttribute('aria-label', name);
        this.#play.replaceChildren(icon(playing ? kPause : kPlay));
    }

    set isBusy(busy) {
        this.#play.classList.toggle('busy', busy);
        this.#play.setAttribute('aria-busy', busy);
    }

    set clicks(on) {
        this.#click.setAttribute('aria-pressed', on);
    }

    setZoom(canZoomIn, canZoomOut) {
        this.#zoomIn.disabled = !canZoomIn;
        this.#zoomOut.disabled = !canZoomOut;
    }

    /** @param place  "12.3": bar and beat */
    move(position, seconds, place) {
        const time = `${clockTime(position, true)} / ${clockTime(seconds)}`;
        if (this.#time.textContent !== time) this.#time.textContent = time;
        if (this.#place.textContent !== place) this.#place.textContent = place;
    }
}

function zoomButton(name, path, act) {
    return make('button', { 'aria-label': name, title: name, onclick: act }, icon(path));
}

/** A slider whose loudness grows as hearing does: half the way is a quarter of the amplitude. */
function volume(name, value, set) {
    const input = make('input', { type: 'range', min: 0, max: 100, 'aria-label': name,
        value: Math.round(100 * Math.sqrt(value)),
        oninput: () => set((input.value / 100) ** 2) });
    return input;
}
