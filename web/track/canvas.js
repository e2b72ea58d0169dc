// SPDX-License-Identifier: MIT
// Drawing surfaces as large as they are shown, in the colours of the style.

/** The colours of the style that holds for an element. */
export function paletteOf(element) {
    const style = getComputedStyle(element);
    const color = (name) => style.getPropertyValue(name).trim();
    return {
        text: color('--text'),
        muted: color('--muted'),
        panel: color('--panel'),
        lane: color('--lane'),
        silence: color('--silence'),
        downbeat: color('--downbeat'),
        beat: color('--beat'),
        accent: color('--accent'),
        scale: Array.from({ length: 8 }, (_, i) => color(`--scale-${i}`)),
        fontSize: parseFloat(style.fontSize),
        font: style.fontFamily,
    };
}

/** Gives a canvas as many points as the screen has for it.
 *  @returns the context, in which a unit is a CSS pixel, and the size in those */
export function openCanvas(canvas) {
    const { width, height } = canvas.getBoundingClientRect();
    const ratio = window.devicePixelRatio || 1;
    const columns = Math.max(1, Math.round(width * ratio));
    const rows = Math.max(1, Math.round(height * ratio));
    if (canvas.width !== columns || canvas.height !== rows) {
        canvas.width = columns;
        canvas.height = rows;
    }
    const context = canvas.getContext('2d');
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    context.clearRect(0, 0, width, height);
    return { context, width, height, ratio };
}
