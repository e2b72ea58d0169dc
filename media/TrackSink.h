// SPDX-License-Identifier: MIT
#pragma once

#include "media/StereoBlock.h"

namespace media {

/** Takes a decoded track piece by piece. */
class TrackSink {
public:
    virtual ~TrackSink() = default;

    /** The next stretch, at the session's rate, in the scale of 16-bit integers: -32768 to 32767. May be changed. */
    virtual void put(StereoBlock& block) = 0;
};

}  // namespace media
