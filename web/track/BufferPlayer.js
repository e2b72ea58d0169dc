// SPDX-License-Identifier: MIT
import { Player } from './Player.js';

// So much passes between play() and the first sample, so that clicks at the very beginning are not
// late.
const kStartDelay = 0.05;
const kScheduleAhead = 2.5;

/** Plays decoded sound by the clock that starts the clicks: both meet to the sample. Without sound
 *  the clicks play alone. */
export class BufferPlayer extends Player {
    #load;
    #loading = new AbortController();
    #decoding = null;
    #buffer = null;
    #source = null;
    #gain = null;
    #volume = 1;
    #startedAt = 0;
    #offset = 0;

    #plays = false;

    isExact = true;

    /** @param load  load(signal) yields an ArrayBuffer of a whole audio file, whose position 0 is
     *               that of the track; null when there is none
     *  @param rate  at which it is decoded and played, Hz */
    constructor(seconds, load, rate, clickVolume) {
        super(seconds, clickVolume);
        this.#load = load;
        this.rate = rate;
    }

    get isPlaying() {
        return this.#plays;
    }

    get scheduleAhead() {
        return kScheduleAhead;
    }

    get hasSound() {
        return this.#load !== null;
    }

    set volume(volume) {
        this.#volume = volume;
        if (this.#gain) this.#gain.gain.setTargetAtTime(volume, this.context.currentTime, 0.01);
    }

    async play() {
        if (this.isPlaying) return;
        try {
            await this.#open();
        } catch (error) {
            if (this.isClosed) return;
            throw error;
        }
        if (this.isPlaying || this.isClosed) return;
        if (this.#offset >= this.seconds) this.#offset = 0;
        this.#plays = true;
        this.#start();
        this.startClicks();
        this.onChange();
    }

    async #open() {
        if (this.isClosed) return;
        if (!this.context) {
            this.openContext({ sampleRate: this.rate, latencyHint: 'interactive' });
            this.#gain = new GainNode(this.context, { gain: this.#volume });
            this.#gain.connect(this.context.destination);
        }
        await this.context.resume();
        if (this.isClosed) return;
        this.#buffer = await this.#decoded();
    }

    /** Decodes beforehand, which may take a second or two. */
    prepare() {
        // Whoever plays will be told why it failed.
        this.#decoded().catch(() => {});
    }

    #decoded() {
        this.#decoding ??= this.#decode().catch((error) => {
            // The next attempt may succeed: perhaps the file is there again.
            this.#decoding = null;
            throw error;
        });
        return this.#decoding;
    }

    async #decode() {
        if (!this.#load) return null;
        const bytes = await this.#load(this.#loading.signal);
        // Unlike a context that sounds, this one may be made before anybody has asked for sound.
        return new OfflineAudioContext(2, 1, this.rate).decodeAudioData(bytes);
    }

    #start() {
        this.#startedAt = this.context.currentTime + kStartDelay;
        if (!this.#buffer) return;
        this.#source = new AudioBufferSourceNode(this.context, { buffer: this.#buffer });
        this.#source.connect(this.#gain);
        this.#source.start(this.#startedAt, this.#offset);
    }

    #stop() {
        this.#source?.stop();
        this.#source?.disconnect();
        this.#source = null;
    }

    pause() {
        if (!this.isPlaying) return;
        this.#offset = this.position;
        this.#plays = false;
        this.#stop();
        this.stopClicks();
        this.onChange();
    }

    seek(seconds) {
        const wasPlaying = this.isPlaying;
        this.#stop();
        this.#offset = Math.min(Math.max(0, seconds), this.seconds);
        if (wasPlaying) this.#start();
        this.reschedule();
        this.onChange();
    }

    /** Ends at the end of the track. To be called now and then. */
    watchEnd() {
        if (this.isPlaying && this.scheduleFrom() >= this.seconds) {
            this.pause();
            this.#offset = this.seconds;
            this.onChange();
        }
    }

    scheduleFrom() {
        if (!this.isPlaying) return this.#offset;
        return this.#offset + Math.max(0, this.context.currentTime - this.#startedAt);
    }

    contextTimeOf(seconds) {
        return this.#startedAt + (seconds - this.#offset);
    }

    positionNow() {
        if (!this.isPlaying) return this.#offset;
        // What was started now is heard when it has passed the system's buffers.
        const heard = this.context.currentTime - (this.context.outputLatency || 0);
        return this.#offset + Math.max(0, heard - this.#startedAt);
    }

    async close() {
        this.#plays = false;
        this.#stop();
        this.#loading.abort();
        await super.close();
    }
}
