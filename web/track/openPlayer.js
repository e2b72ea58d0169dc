// SPDX-License-Identifier: MIT
import { BufferPlayer } from './BufferPlayer.js';
import { ElementPlayer } from './ElementPlayer.js';

// Decoded sound takes 23 MB a minute.
const kLongestDecodedSeconds = 20 * 60;

/** The player for what there is to hear.
 *  @param audio  null: the clicks alone; `load`, where load(signal) yields the bytes of an audio
 *                file whose position 0 is that of the track, and `isHere`, whether that takes no
 *                network; `address`, from where the browser may play it. Where both are there,
 *                short tracks are loaded.
 *  @param rate   at which to play what is decoded, Hz */
export function openPlayer(audio, seconds, rate, clickVolume) {
    if (!audio) return new BufferPlayer(seconds, null, rate, clickVolume);
    if (audio.load && seconds <= kLongestDecodedSeconds) {
        const player = new BufferPlayer(seconds, audio.load, rate, clickVolume);
        // What is at hand is decoded while people look.
        if (audio.isHere) player.prepare();
        return player;
    }
    return new ElementPlayer(seconds, audio.address, clickVolume);
}
