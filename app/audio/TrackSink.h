// SPDX-License-Identifier: MIT
#pragma once

#include "audio/StereoBlock.h"

namespace app {

/** Takes a decoded track piece by piece. */
class TrackSink {
public:
    virtual ~TrackSink() = default;

    /** The next stretch, at the session's rate, in the scale of 16-bit integers: -32768 to 32767. May be changed. */
    virtual void put(StereoBlock& block) = 0;
};

}  // namespace app
