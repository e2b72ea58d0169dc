// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas::track::inner {

/** A stretch of the track in the scale of 16-bit integers, clipped to -32768 … 32767, no NaN. Full
 *  scale ±1.0 is 1/32768 of it, exactly. */
struct Block {
    const float* left;
    const float* right;
    int frames;
};

/** Hears a track from its first frame to its last, block by block. All blocks but the last have one
 *  length, however the source hands out its frames. */
class Listener {
public:
    virtual ~Listener() = default;

    /** Runs in the caller's rounding mode and leaves it so. */
    virtual void hear(const Block& block) = 0;
};

}  // namespace beatatlas::track::inner
