// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { beforeEach, test } from 'node:test';

import { Metronome } from '../../../web/track/Metronome.js';

let sources;

class FakeNode {
    gain = { setTargetAtTime: (value) => { this.level = value; } };

    constructor(context, options = {}) {
        Object.assign(this, options);
    }

    connect() {}
}

class FakeSource extends FakeNode {
    start(when) {
        this.when = when;
        sources.push(this);
    }

    stop() {
        this.isStopped = true;
    }
}

function fakeContext(currentTime) {
    return {
        currentTime,
        sampleRate: 48000,
        createBuffer: (channels, length) => {
            const samples = new Float32Array(length);
            return { length, getChannelData: () => samples };
        },
    };
}

beforeEach(() => {
    sources = [];
    globalThis.GainNode = FakeNode;
    globalThis.AudioBufferSourceNode = FakeSource;
});

const kGrid = [0, 0.5, 1, 1.5].map((seconds, i) => ({ seconds, number: i + 1, bpm: 120 }));

test('clicks start at the times of the beats, each once', () => {
    const metronome = new Metronome(fakeContext(10), null);
    const later = (seconds) => 10 + seconds;
    metronome.schedule(kGrid, 0, 1, later);
    metronome.schedule(kGrid, 1, 9, later);
    assert.deepEqual(sources.map((source) => source.when), [10, 10.5, 11, 11.5]);
});

test('clicks begin at full height, and downbeats are louder', () => {
    new Metronome(fakeContext(0), null).schedule(kGrid, 0, 1, (seconds) => seconds);
    const first = sources.map((source) => source.buffer.getChannelData(0)[0]);
    assert.equal(first[0], 1);
    assert.ok(first[1] < 0.7 && first[1] > 0.4);
});

test('a beat that is past already does not click late', () => {
    new Metronome(fakeContext(10.2), null).schedule(kGrid, 0, 1, (seconds) => 10 + seconds);
    assert.deepEqual(sources.map((source) => source.when), [10.5]);
});

test('a click that has begun is heard to its end, and once, when the rest is taken back', () => {
    const context = fakeContext(0);
    const metronome = new Metronome(context, null);
    metronome.schedule(kGrid, 0, 9, (seconds) => seconds);
    context.currentTime = 0.51;
    metronome.cancel();
    assert.deepEqual(sources.map((source) => Boolean(source.isStopped)), [false, false, true, true]);
    // The clock of the music was 12 ms off: the beat that sounds lies ahead by 2 ms.
    metronome.schedule(kGrid, 0.498, 9, (seconds) => seconds + 0.012);
    assert.deepEqual(sources.slice(4).map((source) => source.when), [1.012, 1.512]);
    metronome.silence();
    assert.ok(sources.slice(1).every((source) => source.isStopped));
});

test('all that has not ended can be ended', () => {
    const metronome = new Metronome(fakeContext(0), null);
    metronome.schedule(kGrid, 0, 9, (seconds) => seconds);
    sources[0].onended();
    metronome.silence();
    assert.deepEqual(sources.map((source) => Boolean(source.isStopped)), [false, true, true, true]);
});
