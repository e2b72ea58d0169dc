// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "support/Wavetable.h"

namespace beatatlas::test {

/** Kick, snare and hi-hat, each hit a pure function of the frames since its onset, in -1 … 1.
 *
 *  Decays are powers of a falling line, so every hit ends in exact silence and needs no
 *  exponential. `frame` is the position in the track: it selects the noise, so no two hits are the
 *  same. */
class DrumKit {
public:
    DrumKit(int sampleRate, std::uint64_t seed);

    std::int64_t kickFrames() const { return kickFrames_; }
    std::int64_t snareFrames() const { return snareFrames_; }
    std::int64_t hatFrames() const { return hatFrames_; }

    /** A sine that falls from 150 to 60 Hz; it already sounds in the onset frame. */
    double kick(std::int64_t sinceOnset) const;
    /** Noise over a 190 Hz skin tone. */
    double snare(std::int64_t sinceOnset, std::int64_t frame) const;
    /** Noise whose second difference leaves only the treble. */
    double hat(std::int64_t sinceOnset, std::int64_t frame) const;

private:
    double secondsPerFrame_;
    std::uint64_t seed_;
    std::int64_t kickFrames_;
    std::int64_t snareFrames_;
    std::int64_t hatFrames_;
    Wavetable sine_;
};

}  // namespace beatatlas::test
