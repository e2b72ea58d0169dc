// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"
#include "media/StereoBlock.h"

namespace media {

inline constexpr int kMostChannels = 64;

/** A track in the memory of a host, folded to stereo and brought to a session's rate as the track
 *  of a file is. */
class SampleTrack {
public:
    /** @param samples   `frames` times `channels` floats, full scale ±1.0, frame by frame
     *  @param channels  1 to kMostChannels
     *  @param progress  unless empty called with 0 now and then: what it throws ends the work
     *  @throws TrackError when the rate cannot be converted, std::bad_alloc */
    SampleTrack(const float* samples, int rate, int channels, std::int64_t frames,
                const std::function<void(double)>& progress);

    const base::TrackSource& source() const { return source_; }

    /** @throws beatatlas::track::Error; whatever the options' progress throws */
    beatatlas::track::TrackHandle analyze(const beatatlas::track::Options& options) const;

private:
    base::TrackSource source_;
    StereoBlock stereo_;
};

}  // namespace media
