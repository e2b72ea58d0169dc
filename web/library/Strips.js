// SPDX-License-Identifier: MIT
import { bytesOf } from '../track/bytes.js';
import { kLoudSteps } from '../track/waves.js';

const kMostKept = 2000;
const kMostAtOnce = 100;
const kWaitMs = 60;
const kHighestLevel = 31;
const kColors = 8;
const kPitch = 3;
// As loud as it sounds, like the overview of a track.
const kLoudnessExponent = 0.6;

/** The loudest level and its colour for each of the bars that a strip is drawn with.
 *  @param bytes  of a strip: level times 8 plus colour */
export function stripBars(bytes, count) {
    const bars = [];
    for (let bar = 0; bar < count; ++bar) {
        const from = Math.floor((bar * bytes.length) / count);
        const to = Math.max(from + 1, Math.floor(((bar + 1) * bytes.length) / count));
        let loudest = 0;
        for (let i = from; i < to && i < bytes.length; ++i)
            if (bytes[i] >> 3 >= loudest >> 3) loudest = bytes[i];
        bars.push({ level: ((loudest >> 3) / kHighestLevel) ** kLoudnessExponent,
            color: loudest % kColors });
    }
    return bars;
}

/** The little pictures of the rows: asked for together, once the list stands still. */
export class Strips {
    #load;
    #arrived;
    #known = new Map();
    #wanted = new Set();
    #timer = null;
    #generation = 0;

    /** @param load     yields strips in base64 by number
     *  @param arrived  is called when some have come */
    constructor(load, arrived) {
        this.#load = load;
        this.#arrived = arrived;
    }

    /** Tracks may have been analysed anew: all are asked for again, and seen as they were until the
     *  new ones come. */
    renew() {
        ++this.#generation;
    }

    /** Nothing while it is not known; an empty one for a track without a picture. */
    of(id) {
        return this.#known.get(id)?.bytes;
    }

    /** @param ids  of the rows that are to be seen */
    want(ids) {
        this.#wanted = new Set(ids.filter(
            (id) => this.#known.get(id)?.generation !== this.#generation));
        clearTimeout(this.#timer);
        if (this.#wanted.size > 0) this.#timer = setTimeout(() => this.#fetch(), kWaitMs);
    }

    async #fetch() {
        const ids = [...this.#wanted].slice(0, kMostAtOnce);
        const generation = this.#generation;
        try {
            const strips = await this.#load(ids);
            if (generation !== this.#generation) return;
            if (this.#known.size > kMostKept) this.#known.clear();
            for (const [id, text] of Object.entries(strips))
                this.#known.set(Number(id), { generation, bytes: bytesOf(text) });
            this.#arrived();
        } catch {
            // The list says when the program does not answer; a row without a picture is one.
        }
    }
}

/** Draws a strip, or nothing where there is none yet, on a canvas of `width` and `height` in CSS
 *  pixels.
 *  @param palette  of paletteOf() */
export function drawStrip(canvas, bytes, palette, { width, height }) {
    const ratio = window.devicePixelRatio || 1;
    const [columns, rows] = [Math.round(width * ratio), Math.round(height * ratio)];
    // Setting a size clears, even to the same one.
    canvas.width = columns;
    canvas.height = rows;
    if (!bytes || bytes.length === 0 || columns === 0) return;
    const context = canvas.getContext('2d');
    const bars = stripBars(bytes, Math.max(1, Math.floor(width / kPitch)));
    const pitch = columns / bars.length;
    for (const [i, { level, color }] of bars.entries()) {
        const bar = Math.max(1, level * rows);
        context.fillStyle = palette.scale[kLoudSteps[color] ?? 0];
        context.fillRect(i * pitch, (rows - bar) / 2, pitch - ratio, bar);
    }
}
