// SPDX-License-Identifier: MIT
// What every module of web/ keeps to: markup is never read from text, so that names and titles stay
// text, and the forms of import and export are those that can be joined into one script.
import assert from 'node:assert/strict';
import { readdirSync, readFileSync } from 'node:fs';
import { test } from 'node:test';

const kFolder = new URL('../../web/', import.meta.url);
const kModules = readdirSync(kFolder, { recursive: true })
    .filter((name) => name.endsWith('.js'));
const kForbidden = /\b(innerHTML|outerHTML|insertAdjacentHTML|document\.write|eval\(|new Function|console\.|debugger)|setAttribute\('(style|on)/;
const kImport = /^import \{ [\w$]+(, [\w$]+)* \} from '\.\.?\/[\w./-]+';$/;
const kExport = /^export ((async )?function|class|const) [\w$]+\b/;

function linesOf(name) {
    return readFileSync(new URL(name, kFolder), 'utf8').split('\n');
}

test('there are modules', () => {
    assert.ok(kModules.length > 15);
});

for (const name of kModules) {
    test(`${name} states its licence and keeps to the forms`, () => {
        const lines = linesOf(name);
        assert.equal(lines[0], '// SPDX-License-Identifier: MIT');
        assert.equal(lines.at(-1), '');
        lines.forEach((line, i) => {
            const place = `${name}:${i + 1}: ${line}`;
            assert.ok(!kForbidden.test(line), place);
            assert.ok(line.length <= 100, `${place} (${line.length} columns)`);
            assert.equal(line, line.trimEnd(), place);
            if (line.startsWith('import')) assert.match(line, kImport, place);
            if (line.startsWith('export')) assert.match(line, kExport, place);
        });
    });

    test(`${name} imports what is exported, and uses it`, () => {
        const lines = linesOf(name);
        const body = lines.filter((line) => !line.startsWith('import')).join('\n');
        for (const line of lines.filter((each) => each.startsWith('import'))) {
            const [, names, path] = line.match(/\{ (.+) \} from '(.+)'/);
            const target = readFileSync(new URL(path, new URL(name, kFolder)), 'utf8');
            for (const each of names.split(', ')) {
                assert.match(target, new RegExp(`^export .*\\b${each}\\b`, 'm'), `${path}: ${each}`);
                assert.match(body, new RegExp(`\\b${each.replace('$', '\\$')}\\b`), `${each} is unused`);
            }
        }
    });
}
