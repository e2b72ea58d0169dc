// SPDX-License-Identifier: MIT
// Words reach a contrast of 4.5 to 1 with what they stand on, and everything else that must be seen
// 3 to 1 (WCAG 2.2, level AA), in both schemes.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';

const kStyle = readFileSync(new URL('../../web/track/track.css', import.meta.url), 'utf8');

const kWords = [['text', 'background'], ['text', 'panel'], ['text', 'lane'], ['muted', 'background'],
    ['muted', 'panel'], ['on-accent', 'accent'], ['problem', 'background'], ['problem', 'panel']];
const kShapes = [['accent', 'panel'], ['accent', 'background'], ['control', 'panel'],
    ['beat', 'panel'], ['downbeat', 'panel'], ['muted', 'panel'], ['accent', 'lane'],
    ...Array.from({ length: 8 }, (_, i) => [`scale-${i}`, 'panel'])];

// The sectors of the wheel of keys carry words on at most this share of the accent.
const kStrongestSector = 0.55;

/** The colours of a rule, as [red, green, blue] from 0 to 1. */
function colorsIn(rule) {
    const found = [...rule.matchAll(/--([\w-]+): #([0-9a-f]{6});/g)];
    return Object.fromEntries(found.map(([, name, digits]) =>
        [name, [0, 2, 4].map((at) => parseInt(digits.slice(at, at + 2), 16) / 255)]));
}

function schemes() {
    const rules = [...kStyle.matchAll(/:root \{[^}]*\}/g)].map(([rule]) => colorsIn(rule));
    assert.equal(rules.length, 2);
    return { light: rules[0], dark: rules[1] };
}

function luminance(color) {
    const [red, green, blue] = color.map((value) =>
        value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4);
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
}

function contrast(one, other) {
    const [bright, dark] = [luminance(one), luminance(other)].sort((a, b) => b - a);
    return (bright + 0.05) / (dark + 0.05);
}

test('black and white have the largest contrast', () => {
    assert.ok(Math.abs(contrast([0, 0, 0], [1, 1, 1]) - 21) < 1e-9);
});

for (const [scheme, colors] of Object.entries(schemes())) {
    for (const [pairs, least] of [[kWords, 4.5], [kShapes, 3]]) {
        for (const [front, back] of pairs) {
            test(`${scheme}: ${front} is seen on ${back}`, () => {
                const reached = contrast(colors[front], colors[back]);
                assert.ok(reached >= least, `${reached.toFixed(2)} to 1`);
            });
        }
    }

    test(`${scheme}: the names of keys are read on their sectors`, () => {
        const sector = colors.panel.map((value, i) =>
            value + kStrongestSector * (colors.accent[i] - value));
        assert.ok(contrast(colors.text, sector) >= 4.5, contrast(colors.text, sector).toFixed(2));
    });

    test(`${scheme}: everything has a colour in both`, () => {
        assert.deepEqual(Object.keys(colors).sort(), Object.keys(schemes().light).sort());
    });
}
