// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { actionOf } from '../../../web/track/shortcuts.js';

function spies() {
    const calls = [];
    const names = ['toggle', 'stepBeats', 'stepBars', 'seekTo', 'zoom', 'toggleClicks', 'choose', 'tap'];
    const actions = Object.fromEntries(names.map((name) =>
        [name, (value) => calls.push(value === undefined ? name : `${name} ${value}`)]));
    return { actions, calls };
}

test('each key does one thing', () => {
    const { actions, calls } = spies();
    const keys = [' ', 'ArrowLeft', 'ArrowRight', 'Home', 'End', '+', '-', 'm', 'M', '3', 't'];
    for (const key of keys) actionOf({ key, shiftKey: false }, actions)();
    assert.deepEqual(calls, ['toggle', 'stepBeats -1', 'stepBeats 1', 'seekTo 0', 'seekTo 1',
        'zoom 1', 'zoom -1', 'toggleClicks', 'toggleClicks', 'choose 2', 'tap']);
});

test('with Shift the arrows go by bars', () => {
    const { actions, calls } = spies();
    actionOf({ key: 'ArrowRight', shiftKey: true }, actions)();
    assert.deepEqual(calls, ['stepBars 1']);
});

test('other keys are left to the browser', () => {
    const { actions } = spies();
    for (const key of ['Tab', 'Enter', 'F5', 'q', '0', 'Escape'])
        assert.equal(actionOf({ key, shiftKey: false }, actions), null);
    assert.equal(actionOf({ key: 't', shiftKey: false }, { ...actions, tap: null }), null);
});
