// SPDX-License-Identifier: MIT
// Numbers as people read them.

const kSecondsPerHour = 3600;
const kSecondsPerMinute = 60;

function twoDigits(number) {
    return String(number).padStart(2, '0');
}

/** The nearest whole second; negative values count as 0. */
export function roundedSeconds(seconds) {
    return Math.round(Math.max(0, seconds));
}

/** "3:07", "1:03:07"; with hundredths "3:07.25". Rounded: 59.996 s are "1:00.00". Negative values
 *  count as 0. */
export function clockTime(seconds, withHundredths = false) {
    const hundredths = Math.round(Math.max(0, seconds) * 100);
    const whole = withHundredths ? Math.floor(hundredths / 100) : roundedSeconds(seconds);
    const hours = Math.floor(whole / kSecondsPerHour);
    const minutes = Math.floor((whole % kSecondsPerHour) / kSecondsPerMinute);
    const rest = twoDigits(whole % kSecondsPerMinute);
    const begin = hours > 0 ? `${hours}:${twoDigits(minutes)}:${rest}` : `${minutes}:${rest}`;
    return withHundredths ? `${begin}.${twoDigits(hundredths % 100)}` : begin;
}

/** A time as a screen reader says it, rounded: "1 minute 5 seconds". */
export function spokenTime(seconds) {
    const whole = roundedSeconds(seconds);
    const parts = [
        [Math.floor(whole / kSecondsPerHour), 'hour'],
        [Math.floor((whole % kSecondsPerHour) / kSecondsPerMinute), 'minute'],
        [whole % kSecondsPerMinute, 'second'],
    ];
    const said = parts.filter(([number]) => number > 0)
        .map(([number, noun]) => `${number} ${noun}${number === 1 ? '' : 's'}`);
    return said.join(' ') || '0 seconds';
}

/** "128.50" */
export function bpmText(bpm) {
    return bpm.toFixed(2);
}

/** A share of 1 in percent: "88 %". What is not 0 is not shown as 0. */
export function percentText(share) {
    if (share > 0 && share < 0.005) return '< 1 %';
    return `${Math.round(share * 100)} %`;
}

/** "44,100" */
export function grouped(number) {
    return String(number).replace(/\B(?=(\d{3})+$)/g, ',');
}

/** A key in the notation that was asked for, else as musicians write it and on the wheel. */
export function keyText(entry, notation) {
    return notation ? entry[notation] : `${entry.name} (${entry.camelot})`;
}

/** A remark without the punctuation that joined it to a text before it, begun with a capital. */
export function sentence(remark) {
    const text = remark.replace(/^[\s,;]+/, '');
    return text.charAt(0).toUpperCase() + text.slice(1);
}

/** What a reading is called, and what its beats are beside those of the answer. */
export function readingText({ kind, shiftBeats, turn }) {
    const names = {
        found: 'As found',
        double: 'Double',
        half: 'Half',
        shifted: 'Shifted',
        '3:2': 'Three for two',
        '2:3': 'Two for three',
        other: 'Another tempo',
    };
    const remarks = [];
    if (shiftBeats > 0.001) remarks.push(`${shiftText(shiftBeats)} later`);
    if (turn > 0) remarks.push('on other beats');
    return [names[kind] ?? names.other, ...remarks].join(', ');
}

const kShares = [
    { beats: 1 / 2, text: 'half a beat' },
    { beats: 1 / 3, text: 'a third of a beat' },
    { beats: 2 / 3, text: 'two thirds of a beat' },
    { beats: 1 / 4, text: 'a quarter of a beat' },
    { beats: 3 / 4, text: 'three quarters of a beat' },
];

function shiftText(beats) {
    const known = kShares.find((each) => Math.abs(each.beats - beats) < 0.005);
    return known ? known.text : `${beats.toFixed(2)} beats`;
}
