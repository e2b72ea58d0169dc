// SPDX-License-Identifier: MIT
#pragma once

#include "media/StereoBlock.h"

namespace media {

/** Takes a decoded track piece by piece. */
class TrackSink {
public:
    virtual ~TrackSink() = default;

    /** The next stretch, at the session's rate, full scale ±1.0: louder samples and what is no
     *  number are the track's. */
    virtual void put(const StereoBlock& block) = 0;
};

}  // namespace media
