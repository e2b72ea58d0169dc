// SPDX-License-Identifier: MIT
// The keys and how likely each is: a wheel of fifths, and the first few in words.
import { make, makeSvg, panel } from './dom.js';
import { keyText, percentText } from './format.js';

const kSectors = 12;
const kOuter = { inside: 66, outside: 98 };  // major
const kInner = { inside: 34, outside: 64 };  // minor
const kListed = 5;
const kFaintest = 0.06;
const kStrongest = 0.55;

function point(radius, turns) {
    const angle = 2 * Math.PI * (turns - 0.25);
    return `${(radius * Math.cos(angle)).toFixed(2)} ${(radius * Math.sin(angle)).toFixed(2)}`;
}

/** A sector around an hour of the wheel, 12 at the top. */
function sectorPath(hour, { inside, outside }) {
    const from = (hour - 0.47) / kSectors;
    const to = (hour + 0.47) / kSectors;
    return `M${point(outside, from)}A${outside} ${outside} 0 0 1 ${point(outside, to)}`
        + `L${point(inside, to)}A${inside} ${inside} 0 0 0 ${point(inside, from)}Z`;
}

function sector(entry, highest, isBest) {
    const hour = parseInt(entry.camelot, 10);
    const ring = entry.camelot.endsWith('B') ? kOuter : kInner;
    const fill = makeSvg('path', { d: sectorPath(hour, ring), class: isBest ? 'best' : 'key' });
    const share = highest > 0 ? entry.probability / highest : 0;
    if (!isBest) fill.style.fillOpacity = kFaintest + share * (kStrongest - kFaintest);
    const [x, y] = point((ring.inside + ring.outside) / 2, hour / kSectors).split(' ');
    return makeSvg('g', {}, fill,
        makeSvg('text', { x, y, class: isBest ? 'best' : 'key' }, entry.camelot));
}

function makeWheel(key) {
    const highest = key.ranking[0].probability;
    return makeSvg('svg', { viewBox: '-100 -100 200 200', class: 'wheel', role: 'img',
        'aria-label': `Wheel of keys; the likeliest is ${key.name}, ${key.camelot}` },
    ...key.ranking.map((entry, i) => sector(entry, highest, i === 0)));
}

function listed(entry, highest, notation) {
    const bar = make('span', { class: 'bar' });
    bar.style.width = `${highest > 0 ? (100 * entry.probability) / highest : 0}%`;
    return make('li', {}, make('span', { class: 'what' }, keyText(entry, notation)),
        make('span', { class: 'meter', 'aria-hidden': 'true' }, bar),
        make('span', { class: 'share' }, percentText(entry.probability)));
}

/** @returns a panel, or null where no key was found */
export function makeKeyPanel({ key, keyNotation }) {
    if (!key) return null;
    const highest = key.ranking[0].probability;
    return panel('Key', 'keys', make('div', { class: 'beside' }, makeWheel(key),
        make('ol', { class: 'meters' },
            ...key.ranking.slice(0, kListed).map((entry) => listed(entry, highest, keyNotation)))));
}
