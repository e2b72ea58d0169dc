// SPDX-License-Identifier: MIT
// Keys that work all over the view.
import { make } from './dom.js';

const kHelp = [
    ['Space', 'play or pause'],
    ['← →', 'to the beat before or after; with Shift by bars'],
    ['Home, End', 'to the beginning or the end'],
    ['+ −', 'magnify, or see more'],
    ['M', 'click on or off'],
    ['1 … 6', 'the reading to hear'],
];
const kHelpOfCorrections = ['T', 'tap the beat'];

// Elements in which a letter is a letter, or the arrows do something of their own.
const kOwnKeys = 'input, select, textarea, [contenteditable], [role=slider]';
const kOwnSpace = 'button, summary, a, input, select, textarea';

/** @param actions  functions: `toggle`, `stepBeats(n)`, `stepBars(n)`, `seekTo(0 or 1)`, `zoom(n)`,
 *                  `toggleClicks`, `choose(n)`; `tap` may be absent
 *  @returns the function to call for a key, or null */
export function actionOf({ key, shiftKey }, actions) {
    const step = shiftKey ? actions.stepBars : actions.stepBeats;
    const named = {
        ' ': actions.toggle,
        ArrowLeft: () => step(-1),
        ArrowRight: () => step(1),
        Home: () => actions.seekTo(0),
        End: () => actions.seekTo(1),
        '+': () => actions.zoom(1),
        '=': () => actions.zoom(1),
        '-': () => actions.zoom(-1),
        m: actions.toggleClicks,
        t: actions.tap,
    };
    if (/^[1-9]$/.test(key)) return () => actions.choose(Number(key) - 1);
    return named[key.length === 1 ? key.toLowerCase() : key] ?? null;
}

/** Listens until `signal` ends it; not while somebody writes, or uses a control that knows the key.
 *  @param isOn  whether single keys are wanted */
export function listenToKeys(actions, isOn, signal) {
    document.addEventListener('keydown', (event) => {
        if (event.defaultPrevented || event.altKey || event.ctrlKey || event.metaKey) return;
        const target = /** @type {Element} */ (event.target);
        if (!isOn() || target.closest('dialog')) return;
        const own = event.key === ' ' ? kOwnSpace : kOwnKeys;
        // Volumes are inputs too, but letters mean nothing to them.
        const isRange = target.matches('input[type=range]') && event.key.length === 1;
        if (target.closest(own) && !isRange) return;
        const act = actionOf(event, actions);
        if (!act) return;
        event.preventDefault();
        act();
    }, { signal });
}

/** The list of keys, with a switch: single letters can get in the way of speech input. */
export function makeKeyHelp(withCorrections) {
    const rows = withCorrections ? [...kHelp, kHelpOfCorrections] : kHelp;
    const on = make('input', { type: 'checkbox', checked: true });
    const element = make('details', { class: 'panel keys-help' }, make('summary', {}, 'Keys'),
        make('dl', {}, ...rows.flatMap(([keys, what]) =>
            [make('dt', {}, make('kbd', {}, keys)), make('dd', {}, what)])),
        make('label', {}, on, ' Use these keys'));
    return { element, isOn: () => on.checked };
}
