// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas {

/** Ducks the signal around its loudest frames: a drum hit fills the whole spectrum and would count
 *  for every key.
 *
 *  Around each frame above the threshold the gain falls from 1 to an eighth within 10 ms and is
 *  back after 40 ms. Life: create → setLevels once the track's levels are known → suppress per
 *  block of the signal.
 *
 *  Memory: the gains of one window, made in create(). */
class TransientSuppressor {
public:
    /** @param rate  frames per second */
    void create(int rate);
    void release() { gains_ = {}; }

    /** No threshold is known before: with both levels 0 every sounding frame is ducked.
     *  @param average,peak  of the track, in the scale of 16-bit samples */
    void setLevels(double average, double peak);

    /** Frames ducked before a loud one. */
    int preWindow() const { return preWindow_; }
    /** Frames ducked from the loud one on. */
    int postWindow() const { return postWindow_; }

    /** Works in place on count interleaved stereo frames. The first preWindow() and the last
     *  postWindow() frames are ducked but not examined: the caller hands them in again with their
     *  neighbours. Windows that overlap multiply. */
    void suppress(std::int16_t* frames, int count) const;

private:
    template <std::size_t kWidth>
    struct Search;
    template <std::size_t kWidth>
    struct Duck;

    void makeGains();

    int preWindow_ = 0;
    int postWindow_ = 0;
    double threshold_ = 0.0;
    std::vector<double> gains_;  // from preWindow() before a loud frame on
};

}  // namespace beatatlas
