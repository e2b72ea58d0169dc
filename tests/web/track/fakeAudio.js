// SPDX-License-Identifier: MIT
// An audio context whose time the test sets, and a timer that it drives.

/** Anew before each test: the context made last, the sources that were started, and the timer's next
 *  call. */
export const audio = { context: null, sources: [], tick: () => {} };

class FakeNode {
    gain = { setTargetAtTime() {} };

    constructor(_, options = {}) {
        Object.assign(this, options);
    }

    connect() {}

    disconnect() {}
}

class FakeSource extends FakeNode {
    start(when, offset) {
        audio.sources.push(Object.assign(this, { when, offset }));
    }

    stop() {
        this.isStopped = true;
    }
}

class FakeContext {
    currentTime = 100;
    outputLatency = 0.02;
    sampleRate = 48000;
    destination = new FakeNode();

    constructor() {
        audio.context = this;
    }

    createBuffer(_, length) {
        return { length, getChannelData: () => new Float32Array(length) };
    }

    async resume() {}

    async close() {}
}

export function fakeAudio() {
    Object.assign(audio, { context: null, sources: [], tick: () => {} });
    globalThis.GainNode = FakeNode;
    globalThis.AudioBufferSourceNode = FakeSource;
    globalThis.AudioContext = FakeContext;
    globalThis.setInterval = (call) => {
        audio.tick = call;
        return 1;
    };
    globalThis.clearInterval = () => {
        audio.tick = () => {};
    };
}
