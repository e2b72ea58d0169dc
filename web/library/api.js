// SPDX-License-Identifier: MIT
// What the program answers. Addresses name tracks by their numbers alone.

/** An answer that is none: the program has ended, or knows this page no longer. */
export class Unreachable extends Error {}

async function checked(response) {
    if (response.ok) return response;
    if (response.status === 403)
        throw new Unreachable(
            'The program knows this page no longer. Open the address that it printed.');
    let reason = `the program answered ${response.status}`;
    try {
        reason = (await response.json()).error ?? reason;
    } catch {
        // An answer without a reason.
    }
    throw new Error(reason);
}

async function ask(address, options) {
    let response;
    try {
        response = await fetch(address, options);
    } catch (error) {
        if (error.name === 'AbortError') throw error;
        throw new Unreachable('The program does not answer; it may have ended.');
    }
    return checked(response);
}

function post(address, body) {
    return ask(address, {
        method: 'POST',
        headers: { 'Content-Type': 'application/json' },
        body: JSON.stringify(body),
    });
}

/** @param parameters  of URLSearchParams */
export async function listTracks(parameters, offset, limit, signal) {
    const asked = new URLSearchParams(parameters);
    asked.set('offset', offset);
    asked.set('limit', limit);
    return (await ask(`/api/tracks?${asked}`, { signal })).json();
}

/** @returns strips in base64, by the numbers of their tracks */
export async function loadStrips(ids) {
    return (await ask(`/api/strips?ids=${ids.join(',')}`)).json();
}

export async function loadTrack(id) {
    return (await ask(`/api/tracks/${id}`)).json();
}

export async function loadSound(id, signal) {
    return (await ask(`/api/tracks/${id}/sound`, { signal })).arrayBuffer();
}

export function fileAddress(id) {
    return `/api/tracks/${id}/audio`;
}

export async function correct(id, kind, value) {
    return (await post(`/api/tracks/${id}/corrections`, { kind, value })).json();
}

export async function undo(id) {
    return (await post(`/api/tracks/${id}/undo`, {})).json();
}

export async function loadState() {
    return (await ask('/api/scan')).json();
}

/** A list as a file. @param ids  null: everything that the parameters show */
export async function exportList(format, parameters, ids) {
    const asked = new URLSearchParams(ids ? {} : parameters);
    asked.set('format', format);
    const address = `/api/export?${asked}`;
    return (await (ids ? post(address, { ids }) : ask(address))).blob();
}
