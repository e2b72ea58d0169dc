// SPDX-License-Identifier: MIT
// The view of a track: what was found, to see and to hear.
import { bytesOf } from './bytes.js';
import { paletteOf } from './canvas.js';
import { makeConfidence } from './confidence.js';
import { Corrections } from './Corrections.js';
import { make } from './dom.js';
import { beatAt, firstBeatFrom, readingsOf, unpackBeats } from './grid.js';
import { makeAnswers, makeHeader } from './header.js';
import { makeKeyPanel } from './keyWheel.js';
import { makeNumbers } from './numbers.js';
import { openPlayer } from './openPlayer.js';
import { Overview } from './Overview.js';
import { Readings } from './Readings.js';
import { readingText } from './format.js';
import { listenToKeys, makeKeyHelp } from './shortcuts.js';
import { hasTempoCurve, TempoCurve } from './TempoCurve.js';
import { Transport } from './Transport.js';
import { unpackWave, unpackZoom } from './waves.js';
import { ZoomWave } from './ZoomWave.js';

const kClickVolume = 0.5;
const kVolume = 0.8;
// So far behind a beat a step back goes to the beat before it.
const kStepBackSeconds = 0.12;

class TrackView {
    #container;
    #options;
    #player;
    #palette = null;
    #track = null;
    #readings = [];
    #clicks = true;
    #listening = new AbortController();
    #frame = 0;
    #needsDrawing = true;
    #curve = null;
    #overview = new Overview((seconds) => this.#player.seek(seconds));
    #zoom = new ZoomWave((seconds) => this.#player.seek(seconds));
    #readingList = new Readings((i) => this.#choose(i));
    #status = make('p', { class: 'status', role: 'status' });
    #problem = make('p', { class: 'problem', role: 'alert' });
    #head = make('div', { class: 'head' });
    #panels = make('div', { class: 'panels' });
    #transport;
    #corrections = null;
    #help;

    constructor(container, data, options) {
        this.#container = container;
        this.#options = options;
        this.#player = openPlayer(options.audio ?? null, data.seconds,
            options.rate ?? data.sampleRate, kClickVolume);
        this.#player.volume = kVolume;
        this.#player.onChange = () => this.#wake();
        this.#zoom.onZoom = (steps) => this.#zoomBy(steps);
        this.#transport = this.#makeTransport();
        if (options.corrections) this.#corrections = this.#makeCorrections();
        this.#help = makeKeyHelp(this.#corrections !== null);
        this.#container.replaceChildren(this.#makeBody());
        this.#listen();
        this.update(data);
        this.#run();
    }

    #makeTransport() {
        return new Transport({
            toggle: () => this.#toggle(),
            toStart: () => this.#player.seek(0),
            setClicks: (on) => this.#setClicks(on),
            setClickVolume: (volume) => { this.#player.clickVolume = volume; },
            setVolume: (volume) => { this.#player.volume = volume; },
            zoom: (steps) => this.#zoomBy(steps),
        }, { clickVolume: kClickVolume, volume: kVolume, hasSound: this.#player.hasSound });
    }

    #makeCorrections() {
        return new Corrections(this.#options.corrections, {
            position: () => this.#player.position,
            changed: (data) => this.update(data),
        });
    }

    #makeBody() {
        return make('div', { class: 'track-view' }, this.#head,
            make('div', { class: 'waves' }, this.#overview.slider, this.#overview.legend,
                this.#zoom.canvas),
            this.#transport.element, this.#problem, this.#status, this.#panels);
    }

    #listen() {
        const { signal } = this.#listening;
        const redraw = () => {
            this.#palette = null;
            this.#wake();
        };
        const sizes = new ResizeObserver(redraw);
        sizes.observe(this.#container);
        signal.addEventListener('abort', () => sizes.disconnect());
        matchMedia('(prefers-color-scheme: dark)').addEventListener('change', redraw, { signal });
        listenToKeys({
            toggle: () => this.#toggle(),
            stepBeats: (n) => this.#step(n, false),
            stepBars: (n) => this.#step(n, true),
            seekTo: (share) => this.#player.seek(share * this.#track.seconds),
            zoom: (n) => this.#zoomBy(n),
            toggleClicks: () => this.#setClicks(!this.#clicks),
            choose: (i) => this.#choose(i),
            tap: this.#corrections ? () => this.#corrections.tap() : null,
        }, this.#help.isOn, signal);
    }

    /** Shows another result of the same track. */
    update(data) {
        const answer = unpackBeats(data.beats, data.sampleRate, bytesOf);
        this.#readings = readingsOf(answer, data.tempo);
        this.#track = {
            seconds: data.seconds,
            answer,
            grid: answer,
            loud: unpackWave(data.waves.loud, bytesOf),
            dots: unpackWave(data.waves.dots, bytesOf),
            zoom: unpackZoom(data.waves.zoom, bytesOf),
            key: data.key,
            keyNotation: data.keyNotation,
        };
        this.#head.replaceChildren(makeHeader(data), makeAnswers(data, answer));
        this.#showPanels(data, answer);
        this.#overview.show(this.#track);
        this.#zoom.show(this.#track);
        this.#corrections?.show(data);
        this.#choose(0, false);
    }

    #showPanels(data, answer) {
        this.#curve = hasTempoCurve(data, answer)
            ? new TempoCurve((seconds) => this.#player.seek(seconds)) : null;
        this.#curve?.show(this.#track, data.tempo.stretches ?? []);
        // What somebody works in stays in place, so that it keeps the focus.
        const kept = this.#corrections ? [this.#corrections.element] : [];
        const made = [answer.length > 1 ? this.#readingList.element : null, makeConfidence(data),
            makeKeyPanel(data), this.#curve?.element ?? null,
            makeNumbers(data, answer, this.#readings), this.#help.element].filter(Boolean);
        for (const old of [...this.#panels.children]) if (!kept.includes(old)) old.remove();
        if (kept.length > 0 && !kept[0].isConnected) this.#panels.append(kept[0]);
        this.#panels.append(...made);
    }

    #choose(i, tells = true) {
        if (i >= this.#readings.length) return;
        const reading = this.#readings[i];
        this.#track.grid = reading.grid;
        this.#player.grid = reading.grid;
        if (tells) {
            this.#readingList.mark(i);
            this.#say(`${readingText(reading)}: the click follows`);
        } else {
            this.#readingList.show(this.#readings, i);
        }
        this.#needsDrawing = true;
        this.#wake();
    }

    #say(text) {
        this.#status.textContent = text;
    }

    #setClicks(on) {
        this.#clicks = on;
        this.#player.clicks = on;
        this.#transport.clicks = on;
    }

    async #toggle() {
        if (this.#player.isPlaying) return this.#player.pause();
        this.#transport.isBusy = true;
        this.#problem.textContent = '';
        try {
            await this.#player.play();
            if (!this.#player.isExact)
                this.#say('Played as a file: the click may be off by some milliseconds');
        } catch (error) {
            this.#problem.textContent = `This cannot be played here: ${error.message}`;
        } finally {
            this.#transport.isBusy = false;
        }
    }

    /** To the beat or bar before or after the position. */
    #step(direction, byBars) {
        const grid = this.#track.grid.filter((beat) => !byBars || beat.number === 1);
        const { position } = this.#player;
        const after = firstBeatFrom(grid, position + 0.01);
        const before = beatAt(grid, position - (this.#player.isPlaying ? kStepBackSeconds : 0.01));
        const goal = direction > 0 ? grid[after]?.seconds : grid[before]?.seconds ?? 0;
        if (goal !== undefined) this.#player.seek(goal);
    }

    #zoomBy(steps) {
        if (this.#zoom.zoom(steps)) this.#say(`${this.#zoom.spanSeconds} seconds to be seen`);
        this.#wake();
    }

    /** Draws at the next opportunity; while the track plays, with every picture of the screen. */
    #wake() {
        if (this.#palette === null) this.#needsDrawing = true;
        if (this.#frame === 0) this.#frame = requestAnimationFrame(() => this.#run());
    }

    #run() {
        this.#frame = 0;
        if (!this.#container.isConnected) return;
        this.#palette ??= paletteOf(this.#container.firstElementChild);
        this.#player.watchEnd();
        const { position, isPlaying } = this.#player;
        if (this.#needsDrawing) this.#drawStill();
        this.#zoom.draw(position, isPlaying, this.#palette);
        const { from, to } = this.#zoom.stretch(position);
        this.#overview.move(position, from, to);
        this.#curve?.move(position);
        this.#transport.isPlaying = isPlaying;
        this.#transport.move(position, this.#track.seconds, this.#placeOf(position));
        this.#transport.setZoom(this.#zoom.canZoomIn, this.#zoom.canZoomOut);
        if (isPlaying) this.#wake();
    }

    #drawStill() {
        this.#needsDrawing = false;
        this.#overview.draw(this.#palette);
        this.#curve?.draw(this.#palette);
    }

    /** "12.3": the third beat of the twelfth bar. */
    #placeOf(position) {
        const at = beatAt(this.#track.grid, position);
        if (at < 0) return '–';
        const { grid } = this.#track;
        let bars = 0;
        for (let i = 0; i <= at; ++i) if (grid[i].number === 1) ++bars;
        return `${bars}.${grid[at].number}`;
    }

    async destroy() {
        this.#listening.abort();
        this.#player.onChange = () => {};
        cancelAnimationFrame(this.#frame);
        this.#container.replaceChildren();
        await this.#player.close();
    }
}

/** Shows a track in an element.
 *  @param data  of output/page/viewJson.h
 *  @param options  `audio`: see openPlayer(); `rate`: at which it is decoded; `corrections`: see
 *                  Corrections, absent where nothing can be corrected
 *  @returns {{update: function(data), destroy: function}} */
export function showTrack(container, data, options = {}) {
    const view = new TrackView(container, data, options);
    return { update: (changed) => view.update(changed), destroy: () => view.destroy() };
}
