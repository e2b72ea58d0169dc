// SPDX-License-Identifier: MIT
import { firstBeatFrom } from './grid.js';

const kClickSeconds = 0.05;
// Two clicks this near are of the same beat.
const kClosestClicks = 0.025;
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
    /** When each of the clicks starts that have not ended. */
    #starts = new Map();

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
        const now = this.#context.currentTime;
        if (when < now) return;
        // After a small correction of the time, a beat that sounds already may lie ahead again.
        for (const begun of this.#starts.values())
            if (begun <= now && when - begun < kClosestClicks) return;
        const source = new AudioBufferSourceNode(this.#context, { buffer });
        source.connect(this.#gain);
        source.onended = () => this.#starts.delete(source);
        this.#starts.set(source, when);
        source.start(when);
    }

    /** Takes back what has not begun yet. A click that sounds is heard to its end. */
    cancel() {
        this.#stop((when) => when > this.#context.currentTime);
    }

    /** Ends all of them at once. */
    silence() {
        this.#stop(() => true);
    }

    #stop(isMeant) {
        for (const [source, when] of this.#starts) {
            if (!isMeant(when)) continue;
            source.stop();
            this.#starts.delete(source);
        }
    }
}
