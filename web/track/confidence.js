// SPDX-License-Identifier: MIT
// How far the answers can be trusted.
import { make, panel } from './dom.js';
import { percentText } from './format.js';

const kMeanings = [
    ['tempo', 'Pulse', 'up to its multiples'],
    ['level', 'Tempo', 'the multiple people tap'],
    ['phase', 'Beats', 'on the beat, not between'],
    ['bars', 'Bars', 'begin where they should'],
];

function meter([name, remark, share]) {
    const percent = Math.round(share * 100);
    const bar = make('span', { class: 'bar' });
    bar.style.width = `${percent}%`;
    return make('li', {},
        make('span', { class: 'what' }, name, make('small', {}, remark)),
        make('span', { class: 'meter', role: 'meter', 'aria-label': `${name}: ${remark}`,
            'aria-valuemin': 0, 'aria-valuemax': 100, 'aria-valuenow': percent,
            'aria-valuetext': percentText(share) }, bar),
        make('span', { class: 'share', 'aria-hidden': 'true' }, percentText(share)));
}

/** @returns a panel, or null where nothing is known */
export function makeConfidence(data) {
    const known = data.tempo?.confidence;
    const rows = known ? kMeanings.map(([key, name, remark]) => [name, remark, known[key]]) : [];
    if (data.key) rows.push(['Key', 'of the whole track', data.key.confidence]);
    if (rows.length === 0) return null;
    return panel('How sure it is', 'confidence',
        make('ul', { class: 'meters' }, ...rows.map(meter)),
        make('p', { class: 'note' }, 'Of tracks like this one, so many were right.'));
}
