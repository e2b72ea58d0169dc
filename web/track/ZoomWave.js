// SPDX-License-Identifier: MIT
import { openCanvas } from './canvas.js';
import { make } from './dom.js';
import { beatAt, firstBeatFrom } from './grid.js';
import { highestPoint } from './waves.js';

const kSpans = [1, 2, 4, 8, 16, 32, 64];
const kFirstSpan = 3;

// Where the music is in the picture: more is to be seen of what comes.
const kHeadShare = 0.36;
const kHeadEms = 1.7;  // above the wave, for the numbers of the bars
const kLeastBeatDistance = 5;
const kLeastDrag = 4;
const kFlashSeconds = 0.12;

/** The magnified stretch around the position, with beats and bars, to be dragged and clicked. */
export class ZoomWave {
    #seek;
    #track = null;
    #span = kFirstSpan;
    #position = 0;
    #drag = null;
    #calm = matchMedia('(prefers-reduced-motion: reduce)');
    #from = 0;

    /** Called when somebody wants to see less, 1, or more, -1.
     *  @type {function(number): void} */
    onZoom = () => {};

    /** @param seek  is given the seconds that somebody chose */
    constructor(seek) {
        this.#seek = seek;
        this.canvas = make('canvas', {
            class: 'zoom', role: 'img',
            onpointerdown: (event) => this.#press(event),
            onpointermove: (event) => this.#move(event),
            onpointerup: (event) => this.#release(event),
            onpointercancel: () => { this.#drag = null; },
            onwheel: (event) => this.#wheel(event),
        });
    }

    /** @param track  with `seconds`, `zoom` and `grid` */
    show(track) {
        this.#track = track;
    }

    get spanSeconds() {
        return kSpans[this.#span];
    }

    /** @param steps  1: see less, larger; -1: see more. @returns whether that was possible */
    zoom(steps) {
        const span = Math.min(Math.max(0, this.#span - steps), kSpans.length - 1);
        const changes = span !== this.#span;
        this.#span = span;
        return changes;
    }

    get canZoomIn() {
        return this.#span > 0;
    }

    get canZoomOut() {
        return this.#span < kSpans.length - 1;
    }

    /** The stretch that is shown around a position. Who wants little motion sees one page
     *  after the other. */
    stretch(position) {
        const span = this.spanSeconds;
        if (!this.#calm.matches) {
            this.#from = position - kHeadShare * span;
        } else if (position < this.#from || position >= this.#from + 0.95 * span) {
            this.#from = position - 0.05 * span;
        }
        return { from: this.#from, to: this.#from + span };
    }

    /** @param palette  of paletteOf() */
    draw(position, isPlaying, palette) {
        this.#position = position;
        const { context, width, height, ratio } = openCanvas(this.canvas);
        const { from, to } = this.stretch(position);
        const xOf = (seconds) => ((seconds - from) / (to - from)) * width;
        const top = kHeadEms * palette.fontSize;
        this.#drawWave(context, width, top, height, ratio, palette);
        this.#drawBeats(context, xOf, width, top, height, isPlaying, palette);
        context.fillStyle = palette.accent;
        context.fillRect(xOf(position) - 1, 0, 2, height);
        this.#describe();
    }

    #drawWave(context, width, top, height, ratio, palette) {
        const { zoom } = this.#track;
        const columns = Math.round(width * ratio);
        const perColumn = this.spanSeconds / columns;
        // Columns stand on a raster of time, so that the wave does not flicker when it moves.
        const first = Math.floor(this.#from / perColumn);
        const middle = (top + height) / 2;
        const paths = palette.scale.map(() => new Path2D());
        for (let i = 0; i <= columns; ++i) {
            const time = (first + i) * perColumn;
            const at = highestPoint(zoom, time, time + perColumn);
            if (at < 0) continue;
            const tall = Math.max(1.5, zoom.levels[at] * (height - top) * 0.84);
            const x = (time - this.#from) / perColumn / ratio;
            paths[zoom.colors[at]].rect(x, middle - tall / 2, 1 / ratio, tall);
        }
        paths.forEach((path, i) => {
            context.fillStyle = palette.scale[i];
            context.fill(path);
        });
    }

    #drawBeats(context, xOf, width, top, height, isPlaying, palette) {
        const { grid } = this.#track;
        const first = firstBeatFrom(grid, this.#from);
        const end = firstBeatFrom(grid, this.#from + this.spanSeconds);
        if (first === end) return;
        const showsBeats = width / (end - first) >= kLeastBeatDistance;
        const sounding = isPlaying ? beatAt(grid, this.#position) : -1;
        let bar = this.#barBefore(first);
        let labelsEnd = 0;
        context.font = `600 ${0.85 * palette.fontSize}px ${palette.font}`;
        context.textBaseline = 'middle';
        for (let i = first; i < end; ++i) {
            const isDownbeat = grid[i].number === 1;
            if (isDownbeat) ++bar;
            if (!isDownbeat && !showsBeats) continue;
            const x = xOf(grid[i].seconds);
            const isFresh = i === sounding && this.#position - grid[i].seconds < kFlashSeconds;
            this.#drawLine(context, x, isDownbeat ? 0 : top, height, isDownbeat, isFresh, palette);
            if (!isDownbeat || x < labelsEnd) continue;
            context.fillStyle = palette.text;
            context.fillText(String(bar), x + 6, top / 2);
            labelsEnd = x + 14 + context.measureText(String(bar)).width;
        }
    }

    #drawLine(context, x, top, bottom, isDownbeat, isFresh, palette) {
        const wide = isDownbeat ? 2 : 1;
        context.fillStyle = palette.panel;
        context.fillRect(x - wide / 2 - 1, top, wide + 2, bottom - top);
        context.fillStyle = isFresh ? palette.accent : isDownbeat ? palette.downbeat : palette.beat;
        const bold = isFresh ? wide + 2 : wide;
        context.fillRect(x - bold / 2, top, bold, bottom - top);
    }

    /** How many bars have begun before a beat. */
    #barBefore(index) {
        let bars = 0;
        for (let i = 0; i < index; ++i) if (this.#track.grid[i].number === 1) ++bars;
        return bars;
    }

    #describe() {
        const at = beatAt(this.#track.grid, this.#position);
        const bars = at < 0 ? 0 : this.#barBefore(at + 1);
        const place = at < 0 ? 'before the first beat'
            : `bar ${bars}, beat ${this.#track.grid[at].number}`;
        const text = `Waveform, ${this.spanSeconds} seconds of it; ${place}`;
        if (this.canvas.getAttribute('aria-label') !== text)
            this.canvas.setAttribute('aria-label', text);
    }

    #secondsPerPixel() {
        return this.spanSeconds / this.canvas.getBoundingClientRect().width;
    }

    #press(event) {
        if (event.button !== 0) return;
        this.canvas.setPointerCapture(event.pointerId);
        this.#drag = { x: event.clientX, position: this.#position, moves: false };
    }

    #move(event) {
        if (!this.#drag) return;
        const distance = event.clientX - this.#drag.x;
        if (Math.abs(distance) >= kLeastDrag) this.#drag.moves = true;
        if (this.#drag.moves)
            this.#seek(this.#drag.position - distance * this.#secondsPerPixel());
    }

    #release(event) {
        if (this.#drag && !this.#drag.moves) {
            const { left } = this.canvas.getBoundingClientRect();
            this.#seek(this.#from + (event.clientX - left) * this.#secondsPerPixel());
        }
        this.#drag = null;
    }

    /** Sideways through the track; with Ctrl, as for whole pages, larger and smaller. */
    #wheel(event) {
        if (event.ctrlKey) {
            event.preventDefault();
            this.onZoom(event.deltaY < 0 ? 1 : -1);
        } else if (Math.abs(event.deltaX) > Math.abs(event.deltaY)) {
            event.preventDefault();
            this.#seek(this.#position + event.deltaX * this.#secondsPerPixel());
        }
    }
}
