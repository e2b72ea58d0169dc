// SPDX-License-Identifier: MIT
// All numbers of a track as tables, for screen readers and for whoever wants to copy them.
import { make, makeTable } from './dom.js';
import { bpmText, clockTime, grouped, keyText, percentText, readingText } from './format.js';

function trackTable(data) {
    const rows = [['File', data.file], ['Artist', data.artist], ['Title', data.title],
        ['Length', clockTime(data.seconds, true)], ['Frames', grouped(data.frames)],
        ['Rate of the analysis', `${grouped(data.sampleRate)} Hz`],
        ['Container', data.audio.container], ['Codec', data.audio.codec],
        ['Channels', data.audio.channels],
        ['Rate of the file', `${grouped(data.audio.sampleRate)} Hz`],
        ['Damaged packets', data.damagedPackets],
        ['Samples beyond full scale, clipped', grouped(data.overload?.clipped ?? 0)],
        ['Samples that are no number', grouped(data.overload?.notNumbers ?? 0)],
        ['Missing, replaced by silence', data.gaps.map(({ start, length }) =>
            `${clockTime(start, true)} (${length.toFixed(2)} s)`).join(', ')]];
    return makeTable('Track', ['What', 'Value'],
        rows.filter(([, value]) => !['', 0, '0'].includes(value)));
}

function tempoTables(data, readings) {
    const { tempo } = data;
    if (!tempo || tempo.bpm === null) return [];
    const tables = [makeTable('Tempo', ['What', 'Value'], [['BPM', bpmText(tempo.bpm)],
        ['Mode', tempo.mode],
        ...(tempo.rawBpm ? [['BPM before the range', bpmText(tempo.rawBpm)]] : []),
        ...Object.entries(tempo.confidence ?? {}).map(([name, share]) =>
            [`Confidence: ${name}`, percentText(share)])])];
    if (readings.length > 1)
        tables.push(makeTable('Other readings', ['Reading', 'BPM', 'Shift in beats', 'Share'],
            readings.slice(1).map((each) => [readingText(each), bpmText(each.bpm),
                each.shiftBeats.toFixed(2), percentText(each.share)])));
    if (tempo.stretches?.length)
        tables.push(makeTable('Stretches of one tempo', ['From', 'To', 'BPM'],
            tempo.stretches.map(({ from, to, bpm }) =>
                [clockTime(from, true), clockTime(to, true), bpmText(bpm)])));
    return tables;
}

function keyTables({ key, keyNotation }) {
    if (!key) return [];
    const name = (entry) => keyText(entry, keyNotation);
    return [
        makeTable('Keys, the likeliest first', ['Key', 'Open Key', 'Probability', 'Score'],
            key.ranking.map((entry) => [name(entry), entry.openKey,
                percentText(entry.probability), entry.score.toFixed(3)])),
        makeTable('Keys along the track', ['Key', 'From', 'To', 'Confidence'],
            key.segments.map((each) => [name(each), clockTime(each.from, true),
                clockTime(each.to, true), percentText(each.confidence)])),
        makeTable('Notes', ['Note', 'Share'],
            key.chroma.map(({ note, share }) => [note, `${(100 * share).toFixed(1)} %`])),
    ];
}

function beatsTable(grid) {
    let bar = 0;
    return makeTable('Beats', ['Beat', 'Bar', 'Number in the bar', 'Seconds', 'BPM'],
        grid.map(({ seconds, number, bpm }, i) => {
            if (number === 1) ++bar;
            return [i + 1, bar || '', number, seconds.toFixed(3), bpmText(bpm)];
        }));
}

/** Tables that are made when somebody opens them. */
export function makeNumbers(data, grid, readings) {
    const tables = make('div', { class: 'tables' });
    const details = make('details', { class: 'panel numbers', ontoggle: () => {
        if (!details.open || tables.firstChild) return;
        tables.append(trackTable(data), ...tempoTables(data, readings), ...keyTables(data),
            ...(grid.length > 0 ? [beatsTable(grid)] : []));
    } }, make('summary', {}, 'All numbers'), tables);
    return details;
}
