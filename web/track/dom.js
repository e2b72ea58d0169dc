// SPDX-License-Identifier: MIT
// Elements of a page, made without ever reading text as markup.

const kSvg = 'http://www.w3.org/2000/svg';

function fill(element, properties, children) {
    for (const [name, value] of Object.entries(properties)) {
        if (value === null || value === undefined || value === false) continue;
        if (name.startsWith('on')) element.addEventListener(name.slice(2), value);
        else element.setAttribute(name, value === true ? '' : value);
    }
    element.append(...children.filter((child) => child !== null));
    return element;
}

/** An element with attributes, listeners ("onclick": function) and children. Values that are null
 *  or false are left out. */
export function make(tag, properties = {}, ...children) {
    return fill(document.createElement(tag), properties, children);
}

/** The same for drawings. */
export function makeSvg(tag, properties = {}, ...children) {
    return fill(document.createElementNS(kSvg, tag), properties, children);
}

/** A symbol of 24 by 24 units that says nothing to screen readers. */
export function icon(path) {
    return makeSvg('svg', { viewBox: '0 0 24 24', class: 'icon', 'aria-hidden': 'true' },
        makeSvg('path', { d: path }));
}

/** A part of the view with a heading. */
export function panel(title, name, ...children) {
    const id = `heading-${name}`;
    return make('section', { class: `panel ${name}`, 'aria-labelledby': id },
        make('h2', { id }, title), ...children);
}

/** A table with a caption. @param rows  of texts, the first of each row its heading */
export function makeTable(caption, headings, rows) {
    const head = make('tr', {}, ...headings.map((text) => make('th', { scope: 'col' }, text)));
    const body = rows.map(([first, ...rest]) => make('tr', {},
        make('th', { scope: 'row' }, String(first)),
        ...rest.map((text) => make('td', {}, String(text)))));
    return make('div', { class: 'table', tabindex: 0, role: 'group', 'aria-label': caption },
        make('table', {}, make('caption', {}, caption), make('thead', {}, head),
            make('tbody', {}, ...body)));
}
