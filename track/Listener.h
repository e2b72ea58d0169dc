// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas::track::inner {

/** Consecutive frames of the track in the scale of 16-bit integers, clipped to -32768 … 32767,
 *  without NaN: exactly the source's samples (full scale ±1.0) times 32768. */
struct Block {
    const float* left;
    const float* right;
    int frames;
};

/** Receives a track from its first frame to its last, block by block. All blocks but the last have
 *  the same length, however many frames the source returns at a time. */
class Listener {
public:
    virtual ~Listener() = default;

    /** Works in any rounding mode and leaves the caller's mode as it was. */
    virtual void hear(const Block& block) = 0;
};

}  // namespace beatatlas::track::inner
