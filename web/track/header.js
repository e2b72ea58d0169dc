// SPDX-License-Identifier: MIT
// What the view begins with: the track's name, and the answers in large letters.
import { make } from './dom.js';
import { bpmText, clockTime, grouped, keyText, percentText, sentence } from './format.js';
import { barLength, barsOf } from './grid.js';

/** @param data  of the view */
export function makeHeader(data) {
    const { audio } = data;
    const channels = { 1: 'mono', 2: 'stereo' }[audio.channels] ?? `${audio.channels} channels`;
    const parts = [data.title ? data.file : null, clockTime(data.seconds, true), audio.codec,
        `${grouped(audio.sampleRate)} Hz`, channels, data.partial ? 'cut off' : null];
    return make('header', {},
        make('h1', {}, data.title || data.file),
        data.title && data.artist ? make('p', { class: 'artist' }, data.artist) : null,
        make('p', { class: 'file' }, parts.filter(Boolean).join('  ·  ')));
}

function answer(name, value, unit, remarks) {
    return make('div', { class: 'answer' }, make('dt', {}, name),
        make('dd', {}, make('strong', {}, value), unit ? ` ${unit}` : '',
            ...remarks.filter(Boolean).map((text) => make('span', { class: 'remark' }, text))));
}

function tempoAnswer(data) {
    const { tempo } = data;
    if (!tempo) return answer('Tempo', 'not asked for', '', []);
    if (tempo.bpm === null) return answer('Tempo', 'none found', '', []);
    const steady = tempo.steady === undefined ? null : tempo.steady ? 'steady' : null;
    return answer('Tempo', bpmText(tempo.bpm), 'BPM', [sentence(data.remarks.tempo) || steady]);
}

function keyAnswer(data) {
    if (data.key === undefined) return answer('Key', 'not asked for', '', []);
    if (data.key === null) return answer('Key', 'none found', '', []);
    const shown = data.keyNotation ? keyText(data.key, data.keyNotation) : data.key.name;
    return answer('Key', shown, data.keyNotation ? '' : data.key.camelot,
        [sentence(data.remarks.key) || `${percentText(data.key.confidence)} sure`]);
}

function beatsAnswer(grid) {
    if (grid.length === 0) return answer('Beats', 'none found', '', []);
    const bars = barsOf(grid);
    const first = bars.length > 0 ? `first bar at ${clockTime(bars[0].seconds, true)}` : null;
    return answer('Beats', grouped(grid.length), '',
        [`${grouped(bars.length)} bars of ${barLength(grid)}`, first]);
}

/** @param grid  the beats as found */
export function makeAnswers(data, grid) {
    const tuning = data.key?.tuning;
    return make('dl', { class: 'answers' }, tempoAnswer(data), keyAnswer(data),
        data.tempo ? beatsAnswer(grid) : null,
        tuning ? answer('Tuning', tuning.hz.toFixed(1), 'Hz', [centsText(tuning.cents)]) : null);
}

function centsText(cents) {
    const rounded = Math.round(cents);
    if (rounded === 0) return 'concert pitch';
    const distance = Math.abs(rounded) === 1 ? '1 cent' : `${Math.abs(rounded)} cents`;
    return `${distance} ${rounded > 0 ? 'above' : 'below'} 440`;
}
