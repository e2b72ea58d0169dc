// SPDX-License-Identifier: MIT
// Bytes that came as text.

/** @param text  base64, with padding */
export function bytesOf(text) {
    const letters = atob(text);
    const bytes = new Uint8Array(letters.length);
    for (let i = 0; i < letters.length; ++i) bytes[i] = letters.charCodeAt(i);
    return bytes;
}
