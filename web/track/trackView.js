// SPDX-License-Identifier: MIT
// The view of a track.

/** Shows a track in an element. @returns {{update: function, destroy: function}} */
export function showTrack(container, data) {
    const show = (track) => container.replaceChildren(track.title || track.file);
    show(data);
    return { update: show, destroy: () => container.replaceChildren() };
}
