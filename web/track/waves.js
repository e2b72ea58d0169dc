// SPDX-License-Identifier: MIT
// The three overviews of a track, and what is drawn of them.

const kZoomColors = 8;
const kZoomFullLevel = 31;

// Perceived loudness grows with sound pressure to the power of 0.6 (Stevens). Drawn in proportion
// to the level, a single crash would flatten the rest of the track.
const kLoudnessExponent = 0.6;

// The library's own classes of dots reach from the first level to the second, in steps of 2 dB.
const kWeakDot = 1304;
const kStrongDot = 20674;

/** Which of the eight colours of the scale each of the six of the loudness wave is. */
export const kLoudSteps = [0, 3, 2, 4, 6, 7];

/** The six in the order of the scale, with what they mean. */
export const kLoudClasses = [
    { step: 0, meaning: 'bass over mids' },
    { step: 2, meaning: 'bass over highs' },
    { step: 3, meaning: 'mids over bass' },
    { step: 4, meaning: 'highs over bass' },
    { step: 6, meaning: 'mids, little bass' },
    { step: 7, meaning: 'highs, little bass' },
];

/** A wave of floats. @returns {{levels: Float32Array, colors: Uint8Array}} */
export function unpackWave(packed, bytesOf) {
    const view = new DataView(bytesOf(packed.levels).buffer);
    const levels = new Float32Array(view.byteLength / 4);
    for (let i = 0; i < levels.length; ++i) levels[i] = view.getFloat32(4 * i, true);
    return { levels, colors: bytesOf(packed.colors) };
}

/** The zoom wave: peaks from 0 to 1, colours from 0 to 7. The library squares the peaks, which
 *  hides all that is quiet; here they are drawn as they were. */
export function unpackZoom(packed, bytesOf) {
    const points = bytesOf(packed.points);
    return {
        perSecond: packed.pointsPerSecond,
        levels: Float32Array.from(points, (point) =>
            Math.sqrt(Math.floor(point / kZoomColors) / kZoomFullLevel)),
        colors: points.map((point) => point % kZoomColors),
    };
}

function loudestOf(levels, first, end) {
    let best = first;
    for (let i = first + 1; i < end; ++i) if (levels[i] > levels[best]) best = i;
    return best;
}

/** The bars of the overview: as many as fit, each the loudest of its neighbours, with heights from
 *  0 to 1 and steps of the scale. */
export function overviewBars({ levels, colors }, most) {
    const together = Math.max(1, Math.ceil(levels.length / Math.max(1, most)));
    const highest = levels.reduce((a, b) => Math.max(a, b), 1);
    const bars = [];
    for (let first = 0; first < levels.length; first += together) {
        const at = loudestOf(levels, first, Math.min(first + together, levels.length));
        const height = Math.pow(Math.max(0, levels[at]) / highest, kLoudnessExponent);
        bars.push({ height, step: kLoudSteps[Math.min(colors[at], 5)] });
    }
    return bars;
}

/** How strong a dot is shown: 0 for a weak one to 1; linear in decibels, as hearing is. Null where
 *  there is no bass. */
export function dotStrength(level) {
    if (!(level > 0)) return null;
    if (level <= kWeakDot) return 0;
    return Math.min(1, Math.log(level / kWeakDot) / Math.log(kStrongDot / kWeakDot));
}

/** The highest point of the zoom wave in a stretch of time. @returns its index, -1 outside */
export function highestPoint(zoom, fromSeconds, toSeconds) {
    const first = Math.max(0, Math.floor(fromSeconds * zoom.perSecond));
    const end = Math.max(first + 1, Math.floor(toSeconds * zoom.perSecond));
    if (toSeconds <= 0 || first >= zoom.levels.length) return -1;
    return loudestOf(zoom.levels, first, Math.min(end, zoom.levels.length));
}
