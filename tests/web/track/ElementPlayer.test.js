// SPDX-License-Identifier: MIT
// The clicks beside an audio element whose state the test sets.
import assert from 'node:assert/strict';
import { beforeEach, test } from 'node:test';

import { ElementPlayer } from '../../../web/track/ElementPlayer.js';
import { audio, fakeAudio } from './fakeAudio.js';

const kGrid = Array.from({ length: 80 }, (_, i) =>
    ({ seconds: i * 0.5, number: (i % 4) + 1, bpm: 120 }));

let element;

class FakeElement extends EventTarget {
    currentTime = 0;
    paused = true;
    ended = false;
    seeking = false;
    readyState = 4;

    constructor() {
        super();
        element = this;
    }

    tell(event) {
        this.dispatchEvent(new Event(event));
    }

    async play() {
        this.paused = false;
        this.tell('play');
        this.tell('playing');
    }

    pause() {
        this.paused = true;
        this.tell('pause');
    }

    removeAttribute() {}

    load() {}
}

beforeEach(() => {
    fakeAudio();
    globalThis.Audio = FakeElement;
});

async function startPlayer() {
    const player = new ElementPlayer(40, 'track.mp3', 0.5);
    player.grid = kGrid;
    await player.play();
    return player;
}

/** Both clocks go on; the timer runs as often as it does. */
function pass(seconds) {
    for (let step = 0; step < seconds * 5; ++step) {
        audio.context.currentTime += 0.2;
        if (!element.paused && element.readyState >= 3 && !element.seeking)
            element.currentTime += 0.2;
        audio.tick();
    }
}

/** Where the coming clicks are, in seconds of the context from now. */
function coming() {
    return audio.sources.filter((each) => !each.isStopped && each.when > audio.context.currentTime)
        .map((each) => Number((each.when - audio.context.currentTime).toFixed(3)));
}

test('clicks go on for as long as it plays', async () => {
    await startPlayer();
    pass(10.1);
    // It is at 10.2 s; 1.5 s are started ahead.
    assert.deepEqual(coming(), [0.3, 0.8, 1.3]);
});

test('they go on after a pause by a key of the system', async () => {
    await startPlayer();
    pass(2);
    element.pause();
    assert.deepEqual(coming(), []);
    pass(3);
    await element.play();
    pass(5);
    assert.equal(element.currentTime.toFixed(3), '7.000');
    assert.deepEqual(coming(), [0.5, 1, 1.5]);
});

test('nothing clicks while it waits for data, and then in time again', async () => {
    await startPlayer();
    pass(2.2);
    element.readyState = 2;
    element.tell('waiting');
    assert.deepEqual(coming(), []);
    pass(3);
    assert.deepEqual(coming(), []);
    element.readyState = 4;
    element.tell('playing');
    assert.deepEqual(coming(), [0.3, 0.8, 1.3]);
});

test('nothing clicks while it seeks, and then where it arrived', async () => {
    await startPlayer();
    pass(2);
    element.seeking = true;
    element.currentTime = 20.1;
    element.tell('seeking');
    pass(1);
    assert.deepEqual(coming(), []);
    element.seeking = false;
    element.tell('seeked');
    assert.deepEqual(coming(), [0.4, 0.9, 1.4]);
});

test('clocks that drift apart are brought together in a page that is not seen', async () => {
    await startPlayer();
    pass(2.2);
    audio.context.currentTime += 0.1;
    audio.tick();
    assert.deepEqual(coming(), [0.3, 0.8, 1.3]);
});

test('one that was closed does not begin to play', async () => {
    const player = new ElementPlayer(40, 'track.mp3', 0.5);
    player.grid = kGrid;
    const playing = player.play();
    await player.close();
    await playing;
    assert.equal(player.isPlaying, false);
    assert.deepEqual(audio.sources, []);
    await player.play();
    assert.equal(player.isPlaying, false);
});
