// SPDX-License-Identifier: MIT
import { openCanvas } from './canvas.js';
import { make, panel } from './dom.js';
import { bpmText } from './format.js';

const kLeastRange = 4;  // BPM from the lowest to the highest, so that a steady tempo looks steady
const kMargin = 0.12;
const kWantedLines = 4;

/** Whether there is a curve to show: the tempo differs from beat to beat or between stretches. */
export function hasTempoCurve(data, grid) {
    if (grid.length < 2) return false;
    return data.tempo?.steady === false || grid.some((beat) => beat.bpm !== grid[0].bpm);
}

/** The tempo along the track: of each beat, and of each stretch. It can be clicked. */
export class TempoCurve {
    #track = null;
    #canvas = make('canvas', { class: 'curve', role: 'img' });
    #head = make('div', { class: 'playhead', 'aria-hidden': 'true' });

    /** @param seek  is given the seconds that somebody chose */
    constructor(seek) {
        const frame = make('div', { class: 'curve-frame', onclick: (event) => {
            const { left, width } = frame.getBoundingClientRect();
            seek(((event.clientX - left) / width) * this.#track.seconds);
        } }, this.#canvas, this.#head);
        this.element = panel('Tempo along the track', 'tempo-curve', frame);
    }

    /** @param track      with `seconds` and `answer`, the beats as found
     *  @param stretches  with `from`, `to` and `bpm` */
    show(track, stretches) {
        this.#track = { seconds: track.seconds, grid: track.answer, stretches };
        const { low, high } = this.#found();
        this.#canvas.setAttribute('aria-label',
            `Tempo along the track, from ${bpmText(low)} to ${bpmText(high)} BPM; `
            + 'the table of stretches below has the numbers');
    }

    #found() {
        const { grid, stretches } = this.#track;
        const tempos = [...grid, ...stretches].map((each) => each.bpm);
        return tempos.reduce(({ low, high }, bpm) =>
            ({ low: Math.min(low, bpm), high: Math.max(high, bpm) }),
        { low: Infinity, high: -Infinity });
    }

    #range() {
        const { low, high } = this.#found();
        const margin = Math.max(kMargin * (high - low), (kLeastRange - (high - low)) / 2);
        return { low: low - margin, high: high + margin };
    }

    draw(palette) {
        const { context, width, height } = openCanvas(this.#canvas);
        const { low, high } = this.#range();
        const xOf = (seconds) => (seconds / this.#track.seconds) * width;
        const yOf = (bpm) => height - ((bpm - low) / (high - low)) * height;
        this.#drawRaster(context, width, yOf, low, high, palette);
        this.#drawBeats(context, xOf, yOf, palette);
        this.#drawStretches(context, xOf, yOf, palette);
    }

    #drawRaster(context, width, yOf, low, high, palette) {
        const steps = [1, 2, 5, 10, 20, 25, 50, 100];
        const step = steps.find((each) => (high - low) / each <= kWantedLines + 1) ?? 200;
        context.font = `${0.75 * palette.fontSize}px ${palette.font}`;
        context.textBaseline = 'bottom';
        for (let bpm = Math.ceil(low / step) * step; bpm < high; bpm += step) {
            context.fillStyle = palette.lane;
            context.fillRect(0, yOf(bpm), width, 1);
            context.fillStyle = palette.muted;
            context.fillText(String(bpm), 2, yOf(bpm));
        }
    }

    #drawBeats(context, xOf, yOf, palette) {
        context.strokeStyle = palette.muted;
        context.lineWidth = 1;
        context.beginPath();
        for (const { seconds, bpm } of this.#track.grid) context.lineTo(xOf(seconds), yOf(bpm));
        context.stroke();
    }

    #drawStretches(context, xOf, yOf, palette) {
        context.strokeStyle = palette.accent;
        context.lineWidth = 3;
        context.lineCap = 'round';
        context.beginPath();
        for (const { from, to, bpm } of this.#track.stretches) {
            context.moveTo(xOf(from), yOf(bpm));
            context.lineTo(xOf(to), yOf(bpm));
        }
        context.stroke();
    }

    move(position) {
        this.#head.style.left = `${(100 * position) / this.#track.seconds}%`;
    }
}
