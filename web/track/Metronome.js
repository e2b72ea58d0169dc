// SPDX-License-Identifier: MIT
import { firstBeatFrom } from './grid.js';

const kClickSeconds = 0.05;
const kFallSeconds = 0.012;
const kDownbeatHertz = 1500;
const kBeatHertz = 1000;
const kBeatHeight = 0.6;

/** A click that begins at full height, so that its onset is its first sample. */
function clickBuffer(context, hertz, height) {
    const rate = context.sampleRate;
    const buffer = context.createBuffer(1, Math.ceil(kClickSeconds * rate), rate);
    const samples = buffer.getChannelData(0);
    for (let i = 0; i < samples.length; ++i) {
        const time = i / rate;
        const fall = Math.exp(-time / kFallSeconds) * (1 - time / kClickSeconds);
        samples[i] = height * fall * Math.cos(2 * Math.PI * hertz * time);
    }
    return buffer;
}

/** Clicks on the beats of a grid, each started by the audio clock at its sample. Downbeats are
 *  higher and louder. */
export class Metronome {
    #context;
    #gain;
    #downbeat;
    #beat;
    #sources = new Set();

    /** @param context  a BaseAudioContext @param destination  an AudioNode */
    constructor(context, destination) {
        this.#context = context;
        this.#gain = new GainNode(context);
        this.#gain.connect(destination);
        this.#downbeat = clickBuffer(context, kDownbeatHertz, 1);
        this.#beat = clickBuffer(context, kBeatHertz, kBeatHeight);
    }

    /** 1: a downbeat reaches full scale. */
    set volume(volume) {
        this.#gain.gain.setTargetAtTime(volume, this.#context.currentTime, 0.01);
    }

    /** Starts the clicks of the beats from one time of the track up to another.
     *  @param contextTimeOf  from seconds of the track to seconds of the context */
    schedule(grid, from, to, contextTimeOf) {
        for (let i = firstBeatFrom(grid, from); i < grid.length && grid[i].seconds < to; ++i)
            this.#start(grid[i].number === 1 ? this.#downbeat : this.#beat,
                contextTimeOf(grid[i].seconds));
    }

    #start(buffer, when) {
        // One that is late would sound at once, beside its beat.
        if (when < this.#context.currentTime) return;
        const source = new AudioBufferSourceNode(this.#context, { buffer });
        source.connect(this.#gain);
        source.onended = () => this.#sources.delete(source);
        this.#sources.add(source);
        source.start(when);
    }

    /** Takes back what has not sounded yet. */
    cancel() {
        for (const source of this.#sources) source.stop();
        this.#sources.clear();
    }
}
