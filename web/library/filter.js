// SPDX-License-Identifier: MIT
// What the list shows, as it stands in the address of the page and in requests.

const kTexts = ['text', 'lowest', 'highest', 'key', 'compatible', 'sort'];
const kFlags = ['low', 'corrected', 'gone', 'failed', 'reverse'];

export const kOrders = [['path', 'Folder'], ['artist', 'Artist'], ['title', 'Title'],
    ['bpm', 'Tempo'], ['key', 'Key'], ['length', 'Length'], ['confidence', 'Confidence'],
    ['added', 'Date added']];

/** A filter that shows everything. */
export function emptyFilter() {
    return { text: '', lowest: '', highest: '', key: '', compatible: '', sort: 'path',
        low: false, corrected: false, gone: false, failed: false, reverse: false };
}

/** @param text  as of parametersOf(); whatever it does not say is as in an empty filter */
export function filterOf(text) {
    const parameters = new URLSearchParams(text);
    const filter = emptyFilter();
    for (const name of kTexts) filter[name] = parameters.get(name) ?? filter[name];
    for (const name of kFlags) filter[name] = parameters.get(name) === '1';
    if (!kOrders.some(([name]) => name === filter.sort)) filter.sort = 'path';
    return filter;
}

/** The filter as parameters of an address, without what says nothing. */
export function parametersOf(filter) {
    const parameters = new URLSearchParams();
    if (filter.failed) {
        parameters.set('failed', '1');
        if (filter.reverse) parameters.set('reverse', '1');
        return parameters;
    }
    const usual = emptyFilter();
    for (const name of kTexts) {
        const value = filter[name].trim();
        if (value !== '' && value !== usual[name]) parameters.set(name, value);
    }
    for (const name of kFlags) if (filter[name]) parameters.set(name, '1');
    return parameters;
}

/** Whether less than everything is shown. */
export function isNarrowed(filter) {
    const { sort, reverse, ...conditions } = filter;
    return [...parametersOf({ ...emptyFilter(), ...conditions }).keys()].length > 0;
}

/** Where the address of the page leads: { track } or { filter }. */
export function placeOf(hash) {
    const track = /^#track\/(\d{1,15})$/.exec(hash);
    if (track) return { track: Number(track[1]) };
    return { filter: filterOf(hash.startsWith('#tracks?') ? hash.slice('#tracks?'.length) : '') };
}

export function hashOf(filter) {
    const parameters = String(parametersOf(filter));
    return parameters ? `#tracks?${parameters}` : '#tracks';
}
