// SPDX-License-Identifier: MIT
// The clock and the clicks of playing, with a context whose time the test sets.
import assert from 'node:assert/strict';
import { beforeEach, test } from 'node:test';

import { BufferPlayer } from '../../../web/track/BufferPlayer.js';
import { audio, fakeAudio } from './fakeAudio.js';

const kStartDelay = 0.05;
const kGrid = Array.from({ length: 40 }, (_, i) =>
    ({ seconds: i * 0.5, number: (i % 4) + 1, bpm: 120 }));

/** The places of the clicks that will sound, in seconds of the track. */
function clicks(startedAt, offset = 0, from = 0) {
    return audio.sources.filter((each) => each.offset === undefined && !each.isStopped)
        .filter((each) => each.when > from)
        .map((each) => Number((each.when - startedAt + offset).toFixed(6)));
}

function makePlayer() {
    const player = new BufferPlayer(20, null, 48000, 0.5);
    player.grid = kGrid;
    return player;
}

beforeEach(() => {
    fakeAudio();
    globalThis.OfflineAudioContext = class {
        decodeAudioData = async () => ({});
    };
});

test('clicks are started ahead of the music, each once', async () => {
    const player = makePlayer();
    await player.play();
    const startedAt = 100 + kStartDelay;
    assert.deepEqual(clicks(startedAt), [0, 0.5, 1, 1.5, 2]);
    for (let step = 0; step < 20; ++step) {
        audio.context.currentTime += 0.2;
        audio.tick();
    }
    // Four seconds have passed, less the delay of the start; 2.5 seconds are started ahead.
    assert.deepEqual(clicks(startedAt), kGrid.map((beat) => beat.seconds).filter((at) => at < 6.45));
});

test('the position is what is heard: behind the clock by the output, and never before the start', async () => {
    const player = makePlayer();
    await player.play();
    assert.equal(player.position, 0);
    audio.context.currentTime = 100 + kStartDelay + 3;
    assert.ok(Math.abs(player.position - 2.98) < 1e-9);
    player.pause();
    audio.context.currentTime += 5;
    assert.ok(Math.abs(player.position - 2.98) < 1e-9);
});

test('after a jump only the clicks from there on sound', async () => {
    const player = makePlayer();
    await player.play();
    audio.context.currentTime = 101;
    player.seek(10);
    assert.deepEqual(clicks(101 + kStartDelay, 10, 101), [10, 10.5, 11, 11.5, 12]);
});

test('another grid takes the place of the one that was started', async () => {
    const player = makePlayer();
    await player.play();
    audio.context.currentTime = 100 + kStartDelay + 1.2;
    player.grid = kGrid.filter((_, i) => i % 2 === 1);
    assert.deepEqual(clicks(100 + kStartDelay, 0, audio.context.currentTime), [1.5, 2.5, 3.5]);
});

test('nothing clicks after a pause, and playing goes on where it was', async () => {
    const player = makePlayer();
    await player.play();
    audio.context.currentTime = 100 + kStartDelay + 1.02;
    player.pause();
    assert.deepEqual(clicks(100), []);
    audio.tick();
    assert.deepEqual(clicks(100), []);
    await player.play();
    const startedAt = audio.context.currentTime + kStartDelay;
    assert.deepEqual(clicks(startedAt, 1), [1, 1.5, 2, 2.5, 3]);
});

test('it ends at the end and begins anew', async () => {
    const player = makePlayer();
    let changes = 0;
    player.onChange = () => { ++changes; };
    await player.play();
    audio.context.currentTime = 100 + kStartDelay + 20;
    player.watchEnd();
    assert.equal(player.isPlaying, false);
    assert.equal(player.position, 20);
    assert.ok(changes >= 2);
    await player.play();
    assert.equal(player.position, 0);
});

test('it can be asked to play twice at once', async () => {
    const player = makePlayer();
    await Promise.all([player.play(), player.play()]);
    assert.deepEqual(clicks(100 + kStartDelay), [0, 0.5, 1, 1.5, 2]);
});

test('sound that could not be loaded is asked for again', async () => {
    let attempts = 0;
    const player = new BufferPlayer(20, async () => {
        ++attempts;
        if (attempts === 1) throw new Error('no answer');
        return new ArrayBuffer(8);
    }, 48000, 0.5);
    await assert.rejects(player.play(), { message: 'no answer' });
    assert.equal(player.isPlaying, false);
    await player.play();
    assert.equal(player.isPlaying, true);
    assert.equal(attempts, 2);
});

test('a player that was closed while it loads stays silent, and gives the loading up', async () => {
    let given = null;
    let arrive = null;
    const player = new BufferPlayer(20, (signal) => {
        given = signal;
        return new Promise((resolve) => { arrive = resolve; });
    }, 48000, 0.5);
    player.grid = kGrid;
    const playing = player.play();
    await new Promise((resolve) => { setTimeout(resolve, 0); });
    await player.close();
    assert.equal(given.aborted, true);
    arrive(new ArrayBuffer(8));
    await playing;
    await player.play();
    assert.equal(player.isPlaying, false);
    assert.deepEqual(audio.sources, []);
});

test('it ends in a page that is not seen', async () => {
    const player = makePlayer();
    await player.play();
    audio.context.currentTime = 100 + kStartDelay + 20;
    audio.tick();
    assert.equal(player.isPlaying, false);
});

test('places beyond the track are brought into it', () => {
    const player = makePlayer();
    player.seek(-3);
    assert.equal(player.position, 0);
    player.seek(99);
    assert.equal(player.position, 20);
});
