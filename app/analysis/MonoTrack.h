// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "media/StereoBlock.h"

namespace app {

/** A whole track as mono, in 16-bit scale: the input for finding a buffer's pitch and key. */
struct MonoTrack {
    std::vector<float> samples;
    /** Hz: the session's, or a tenth of it, which is enough up to 1,800 Hz. */
    int rate;

    /** Whether all of it is below one step of 16 bits: at most the dither of silence. */
    bool isSilent() const;

    /** Whether the library treats it as a long one, 30 s and more. */
    bool isLong() const;
};

/** Gathers a track's stereo blocks as mono, to decimate them in a single call.
 *
 *  The library's resampler begins from silence in every call and is so ill-conditioned in single
 *  precision that decimating a track in parts changes the result by several per cent; hence the
 *  whole track at once. Memory: 4 bytes per frame while gathering, 8 while decimating. */
class MonoGatherer {
public:
    static constexpr double kBytesPerFrame = 8.0;

    /** Reserves memory for a track of that expected length. */
    void reserve(double frames);

    void put(const media::StereoBlock& block);
    std::int64_t frames() const { return std::ssize(mono_); }

    /** Ends the gathering. @param sessionRate  44,100 or 48,000 */
    MonoTrack whole(int sessionRate);
    /** At a tenth of the rate. */
    MonoTrack thinOut(int sessionRate);

private:
    std::vector<float> mono_;
};

}  // namespace app
