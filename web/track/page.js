// SPDX-License-Identifier: MIT
// The page of one track: everything that it shows stands in it.
import { bytesOf } from './bytes.js';
import { showTrack } from './trackView.js';

// The rate of the sound that pages hold.
const kSoundRate = 48000;

function textOf(id) {
    return document.getElementById(id).textContent;
}

/** What there is to hear: sound within the page, or a file beside it. */
function soundOf(address) {
    if (textOf('sound').length === 0) return address ? { address } : null;
    const bytes = () => bytesOf(textOf('sound')).buffer;
    return {
        load: async () => bytes(),
        isHere: true,
        get address() {
            return URL.createObjectURL(new Blob([bytes()], { type: 'audio/ogg' }));
        },
    };
}

const { track, audio } = JSON.parse(textOf('data'));
const sound = soundOf(audio);
showTrack(document.getElementById('view'), track, {
    audio: sound,
    rate: sound?.load ? kSoundRate : track.sampleRate,
});
