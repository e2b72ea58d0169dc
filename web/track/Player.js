// SPDX-License-Identifier: MIT
import { Metronome } from './Metronome.js';

// Timers of hidden pages may run once a second only.
const kScheduleEveryMs = 200;

/** Plays a track with clicks on its beats: what both ways to play have in common. They differ in
 *  where the music comes from and in how exactly its clock is known. */
export class Player {
    #grid = [];
    #metronome = null;
    #timer = 0;
    #scheduledTo = 0;
    #clicks = true;
    #clickVolume;

    /** Called when it starts, stops or jumps. */
    onChange = () => {};

    /** Set by close(): what was begun before has no effect any more. */
    isClosed = false;

    /** Made by the first play(): browsers let no page sound before somebody asks for it. */
    context = null;

    constructor(seconds, clickVolume) {
        this.seconds = seconds;
        this.#clickVolume = clickVolume;
    }

    // What each way to play defines.

    get isPlaying() {
        return false;
    }

    /** Whether music sounds now, so that the place of a beat is known. */
    get isSounding() {
        return this.isPlaying;
    }

    /** Keeps up with the music. Called now and then while it plays. */
    watchEnd() {}

    /** How far ahead clicks are started, in seconds. */
    get scheduleAhead() {
        return 0;
    }

    /** What is heard now, in seconds of the track. */
    positionNow() {
        return 0;
    }

    /** What is played now: a little ahead of what is heard. */
    scheduleFrom() {
        return 0;
    }

    /** When the context plays a time of the track. */
    contextTimeOf(seconds) {
        return seconds;
    }

    /** Where the music is, as it is heard now, in seconds of the track. */
    get position() {
        return Math.min(Math.max(0, this.positionNow()), this.seconds);
    }

    set grid(grid) {
        this.#grid = grid;
        this.reschedule();
    }

    set clicks(on) {
        this.#clicks = on;
        this.#setClickGain();
    }

    set clickVolume(volume) {
        this.#clickVolume = volume;
        this.#setClickGain();
    }

    #setClickGain() {
        if (this.#metronome) this.#metronome.volume = this.#clicks ? this.#clickVolume : 0;
    }

    /** @param options  of the AudioContext */
    openContext(options) {
        this.context = new AudioContext(options);
        this.#metronome = new Metronome(this.context, this.context.destination);
        this.#setClickGain();
    }

    startClicks() {
        clearInterval(this.#timer);
        this.reschedule();
        this.#timer = setInterval(() => this.#tick(), kScheduleEveryMs);
    }

    stopClicks() {
        clearInterval(this.#timer);
        this.#timer = 0;
        this.#metronome?.silence();
    }

    /** After a jump or another grid. */
    reschedule() {
        this.#metronome?.cancel();
        this.#scheduledTo = this.scheduleFrom();
        this.#schedule();
    }

    /** Pages that are not seen draw nothing, and yet play. */
    #tick() {
        this.watchEnd();
        this.#schedule();
    }

    #schedule() {
        if (!this.isSounding || !this.#metronome) return;
        const to = this.scheduleFrom() + this.scheduleAhead;
        if (to <= this.#scheduledTo) return;
        this.#metronome.schedule(this.#grid, this.#scheduledTo, to,
            (seconds) => this.contextTimeOf(seconds));
        this.#scheduledTo = to;
    }

    async close() {
        this.isClosed = true;
        this.stopClicks();
        await this.context?.close();
        this.context = null;
    }
}
