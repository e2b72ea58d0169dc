// SPDX-License-Identifier: MIT
import { openCanvas } from './canvas.js';
import { make } from './dom.js';
import { clockTime, keyText, roundedSeconds, spokenTime } from './format.js';
import { barsOf } from './grid.js';
import { dotStrength, kLoudClasses, overviewBars } from './waves.js';

const kLeastPitch = 2.6;
const kBarShare = 0.74;
const kLeastTickDistance = 4;
const kDotsHeight = 1.4;  // in ems, as the next two
const kLaneHeight = 1.6;
const kLabelsHeight = 1.5;
const kStepSeconds = 5;
const kPageSeconds = 30;

/** All of the track: loudness in six colours, bars, keys and the strip of dots. It is the slider
 *  of the position. */
export class Overview {
    #seek;
    #track = null;
    #canvas = make('canvas', { 'aria-hidden': 'true' });
    #frame = make('div', { class: 'frame', 'aria-hidden': 'true' });
    #head = make('div', { class: 'playhead', 'aria-hidden': 'true' });

    /** @param seek  is given the seconds that somebody chose */
    constructor(seek) {
        this.#seek = seek;
        this.slider = make('div', {
            class: 'overview', role: 'slider', tabindex: 0, 'aria-label': 'Position in the track',
            'aria-orientation': 'horizontal', 'aria-valuemin': 0, 'aria-valuenow': 0,
            onpointerdown: (event) => this.#press(event),
            onpointermove: (event) => this.#drag(event),
            onkeydown: (event) => this.#type(event),
        }, this.#canvas, this.#frame, this.#head);
        this.legend = makeLegend();
    }

    /** @param track  with `seconds`, `loud`, `dots`, `grid`, `key` and `keyNotation` */
    show(track) {
        this.#track = track;
        this.slider.setAttribute('aria-valuemax', roundedSeconds(track.seconds));
    }

    /** @param palette  of paletteOf() */
    draw(palette) {
        const { context, width, height } = openCanvas(this.#canvas);
        const em = palette.fontSize;
        const laneEnd = this.#hasKeyChanges() ? kLaneHeight * em : 0;
        const labels = height - kLabelsHeight * em;
        const dots = labels - kDotsHeight * em;
        this.#drawKeys(context, width, laneEnd, palette);
        this.#drawWave(context, width, laneEnd + 6, dots - 10, palette);
        this.#drawBars(context, width, dots, palette);
        this.#drawDots(context, width, (dots + labels) / 2, palette);
        this.#drawTimes(context, width, height, palette);
    }

    /** Where the music is, and which part is magnified. */
    move(position, from, to) {
        if (!this.#track) return;
        const share = (seconds) => Math.min(1, Math.max(0, seconds / this.#track.seconds));
        this.#head.style.left = `${100 * share(position)}%`;
        this.#frame.style.left = `${100 * share(from)}%`;
        this.#frame.style.right = `${100 * (1 - share(to))}%`;
        const whole = roundedSeconds(position);
        if (this.slider.getAttribute('aria-valuenow') === String(whole)) return;
        this.slider.setAttribute('aria-valuenow', whole);
        this.slider.setAttribute('aria-valuetext',
            `${spokenTime(position)} of ${spokenTime(this.#track.seconds)}`);
    }

    #hasKeyChanges() {
        return (this.#track.key?.segments.length ?? 0) > 1;
    }

    #drawWave(context, width, top, bottom, palette) {
        const bars = overviewBars(this.#track.loud, width / kLeastPitch);
        if (bars.length === 0) return;
        const pitch = width / bars.length;
        const middle = (top + bottom) / 2;
        bars.forEach(({ height, step }, i) => {
            const tall = Math.max(2, height * (bottom - top));
            context.fillStyle = palette.scale[step];
            context.beginPath();
            context.roundRect((i + (1 - kBarShare) / 2) * pitch, middle - tall / 2,
                pitch * kBarShare, tall, Math.min(3, pitch * kBarShare / 2));
            context.fill();
        });
    }

    #drawBars(context, width, y, palette) {
        const bars = barsOf(this.#track.grid);
        if (bars.length < 2) return;
        const all = bars.at(-1).seconds - bars[0].seconds;
        const distance = (width * all) / this.#track.seconds / (bars.length - 1);
        let stride = 1;
        while (distance * stride < kLeastTickDistance && stride < bars.length) stride *= 2;
        context.fillStyle = palette.muted;
        for (let i = 0; i < bars.length; i += stride)
            context.fillRect((bars[i].seconds / this.#track.seconds) * width, y - 5, 1, 5);
    }

    #drawDots(context, width, y, palette) {
        const { levels } = this.#track.dots;
        const pitch = width / Math.max(1, levels.length);
        const largest = Math.min(0.55 * palette.fontSize, 0.46 * pitch);
        const least = Math.max(1, 0.28 * largest);
        levels.forEach((level, i) => {
            const strength = dotStrength(level);
            context.globalAlpha = strength === null ? 1 : 0.35 + 0.65 * strength;
            context.fillStyle = strength === null ? palette.silence : palette.scale[0];
            context.beginPath();
            context.arc((i + 0.5) * pitch, y, least + (strength ?? 0) * (largest - least), 0, 7);
            context.fill();
        });
        context.globalAlpha = 1;
    }

    #drawKeys(context, width, bottom, palette) {
        if (bottom === 0) return;
        context.font = `600 ${0.8 * palette.fontSize}px ${palette.font}`;
        context.textBaseline = 'middle';
        this.#track.key.segments.forEach((segment, i) => {
            const left = (segment.from / this.#track.seconds) * width;
            const right = (segment.to / this.#track.seconds) * width;
            context.fillStyle = palette.lane;
            context.fillRect(left + (i > 0 ? 1 : 0), 0, right - left - 1, bottom - 2);
            const names = [keyText(segment, this.#track.keyNotation), segment.camelot];
            const room = right - left - 10;
            const fitting = names.find((name) => context.measureText(name).width < room);
            context.fillStyle = palette.text;
            if (fitting) context.fillText(fitting, left + 6, bottom / 2 - 1);
        });
    }

    #drawTimes(context, width, height, palette) {
        context.font = `${0.75 * palette.fontSize}px ${palette.font}`;
        context.textBaseline = 'alphabetic';
        context.fillStyle = palette.muted;
        const steps = [1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200];
        const room = 5 * palette.fontSize;
        const step = steps.find((each) => (each / this.#track.seconds) * width > room) ?? 14400;
        for (let time = 0; time < this.#track.seconds; time += step) {
            const x = (time / this.#track.seconds) * width;
            const text = clockTime(time);
            if (x + context.measureText(text).width < width) context.fillText(text, x, height - 3);
        }
    }

    #press(event) {
        if (event.button !== 0) return;
        this.slider.setPointerCapture(event.pointerId);
        this.#seekTo(event);
    }

    #drag(event) {
        if (this.slider.hasPointerCapture(event.pointerId)) this.#seekTo(event);
    }

    #seekTo(event) {
        const { left, width } = this.slider.getBoundingClientRect();
        this.#seek(((event.clientX - left) / width) * this.#track.seconds);
    }

    /** The keys of a slider. */
    #type(event) {
        if (event.altKey || event.ctrlKey || event.metaKey || event.shiftKey) return;
        const now = Number(this.slider.getAttribute('aria-valuenow'));
        const goals = {
            ArrowLeft: now - kStepSeconds, ArrowDown: now - kStepSeconds,
            ArrowRight: now + kStepSeconds, ArrowUp: now + kStepSeconds,
            PageDown: now - kPageSeconds, PageUp: now + kPageSeconds,
            Home: 0, End: this.#track.seconds,
        };
        if (!(event.key in goals)) return;
        event.preventDefault();
        event.stopPropagation();
        this.#seek(goals[event.key]);
    }
}

function makeLegend() {
    const entries = kLoudClasses.map(({ step, meaning }) => make('li', {},
        make('span', { class: `swatch scale-${step}` }), meaning));
    return make('ul', { class: 'legend', 'aria-label': 'Colours of the overview' }, ...entries,
        make('li', { class: 'dots-legend' }, make('span', { class: 'swatch dot scale-0' }),
            'bass, by its strength'));
}
