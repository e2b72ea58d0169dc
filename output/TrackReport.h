// SPDX-License-Identifier: MIT
#pragma once

#include "base/TrackSource.h"
#include "beatatlas/track.hpp"

namespace output {

/** Everything that is known about one track in the end. */
struct TrackReport : base::TrackSource {
    beatatlas::track::Options options;  ///< what was asked for
    beatatlas::track::TrackResult analysis;
};

}  // namespace output
