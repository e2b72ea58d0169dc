// SPDX-License-Identifier: MIT

const kMostTaps = 24;
const kLongestPauseMs = 2500;
const kFewestTaps = 4;

/** The tempo of somebody who taps along. */
export class TapTempo {
    #times = [];

    /** @param ms  the time of a tap; after a pause counting begins anew
     *  @returns the tempo in BPM, or null before there are enough taps */
    tap(ms) {
        const last = this.#times.at(-1);
        if (last !== undefined && (ms - last > kLongestPauseMs || ms <= last)) this.#times = [];
        this.#times.push(ms);
        if (this.#times.length > kMostTaps) this.#times.shift();
        return this.#times.length < kFewestTaps ? null : 60000 / this.#interval();
    }

    get count() {
        return this.#times.length;
    }

    /** The slope of a line through all taps (least squares): single late taps hardly move it. */
    #interval() {
        const times = this.#times;
        const middle = (times.length - 1) / 2;
        const mean = times.reduce((a, b) => a + b, 0) / times.length;
        let above = 0;
        let below = 0;
        times.forEach((time, i) => {
            above += (i - middle) * (time - mean);
            below += (i - middle) * (i - middle);
        });
        return above / below;
    }
}
