// SPDX-License-Identifier: MIT
import { Player } from './Player.js';

// The element's clock and that of the clicks drift apart: clicks are started shortly before.
const kScheduleAhead = 1.5;

// The clicks are started anew when the music is this far from where they expect it.
const kLargestDrift = 0.012;

// HTMLMediaElement.HAVE_FUTURE_DATA: with less it stands still.
const kFutureData = 3;

/** Plays a file that cannot be had as bytes, or that is too long to be held decoded, by an audio
 *  element. Where it is exactly is known to a few milliseconds only. */
export class ElementPlayer extends Player {
    #element = new Audio();
    #offset = 0;

    isExact = false;
    hasSound = true;

    /** @param address  of the file; a page from disk may refer to one beside it */
    constructor(seconds, address, clickVolume) {
        super(seconds, clickVolume);
        this.#element.preload = 'metadata';
        this.#element.src = address;
        for (const event of ['play', 'pause', 'ended', 'seeking', 'seeked', 'waiting', 'playing'])
            this.#element.addEventListener(event, () => this.#changed());
    }

    get scheduleAhead() {
        return kScheduleAhead;
    }

    get isPlaying() {
        return !this.#element.paused && !this.#element.ended;
    }

    get isSounding() {
        return this.isPlaying && !this.#element.seeking && this.#element.readyState >= kFutureData;
    }

    set volume(volume) {
        this.#element.volume = Math.min(1, volume);
    }

    async play() {
        if (this.isClosed) return;
        if (!this.context) this.openContext({ latencyHint: 'interactive' });
        await this.context.resume();
        if (this.isClosed) return;
        await this.#element.play();
        this.#changed();
    }

    pause() {
        this.#element.pause();
        this.stopClicks();
    }

    seek(seconds) {
        this.#element.currentTime = Math.min(Math.max(0, seconds), this.seconds);
        this.onChange();
    }

    /** The element is started and stopped by keys and buttons of the system, too. */
    #changed() {
        if (this.isClosed) return;
        this.#anchor();
        if (this.isPlaying) this.startClicks();
        else this.stopClicks();
        this.onChange();
    }

    /** Notes where both clocks are. */
    #anchor() {
        if (this.context) this.#offset = this.context.currentTime - this.#element.currentTime;
    }

    /** Keeps clicks and music together. */
    watchEnd() {
        if (!this.isSounding || !this.context) return;
        const drift = this.context.currentTime - this.#element.currentTime - this.#offset;
        if (Math.abs(drift) < kLargestDrift) return;
        this.#anchor();
        this.reschedule();
    }

    scheduleFrom() {
        return this.#element.currentTime;
    }

    contextTimeOf(seconds) {
        return seconds + this.#offset;
    }

    positionNow() {
        return this.#element.currentTime;
    }

    async close() {
        this.#element.pause();
        this.#element.removeAttribute('src');
        this.#element.load();
        await super.close();
    }
}
