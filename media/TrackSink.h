// SPDX-License-Identifier: MIT
#pragma once

#include "media/StereoBlock.h"

namespace media {

/** Receives a decoded track block by block. */
class TrackSink {
public:
    virtual ~TrackSink() = default;

    /** The next block, at the session's rate, full scale ±1.0. Louder samples and NaN are passed on
     *  as the track has them. */
    virtual void put(const StereoBlock& block) = 0;
};

}  // namespace media
