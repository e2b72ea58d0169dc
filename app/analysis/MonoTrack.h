// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "media/StereoBlock.h"

namespace app {

/** A whole track as mono, in 16-bit scale: what the finders of a buffer's pitch and key look at. */
struct MonoTrack {
    std::vector<float> samples;
    int rate;  ///< Hz: the session's, or a tenth of it, which is enough up to 1,800 Hz

    /** Below one step of 16 bits throughout: at most the dither of silence. */
    bool isSilent() const;

    /** Whether the library takes it for a long one, 30 s and more. */
    bool isLong() const;
};

/** Gathers a track's stereo blocks as mono, to be thinned out in one go.
 *
 *  The library's resampler begins from silence in every call and is so ill-conditioned in single
 *  precision that a track thinned out in pieces comes out several per cent different: so the whole
 *  track it is. Memory: 4 bytes a frame while gathering, 8 while thinning out. */
class MonoGatherer {
public:
    static constexpr double kBytesPerFrame = 8.0;

    /** Makes room for a track that is expected to be so long. */
    void reserve(double frames);

    void put(const media::StereoBlock& block);
    std::int64_t frames() const { return std::ssize(mono_); }

    /** Ends the gathering. @param sessionRate  44,100 or 48,000 */
    MonoTrack whole(int sessionRate);
    MonoTrack thinOut(int sessionRate);  ///< at a tenth of the rate

private:
    std::vector<float> mono_;
};

}  // namespace app
