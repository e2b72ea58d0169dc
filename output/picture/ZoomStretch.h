// SPDX-License-Identifier: MIT
#pragma once

#include "beatatlas/track.hpp"
#include "output/picture/PictureOptions.h"

namespace output {

constexpr double kZoomPointsPerSecond = 150.0;

/** The part of a track that the zoomed panel shows, in seconds. */
struct ZoomStretch {
    double from;
    double to;
};

/** As asked for, and moved into the track; by itself the loudest stretch of that length, begun on a
 *  downbeat where there is one. A track shorter than the stretch is shown whole. */
ZoomStretch chooseZoomStretch(const beatatlas::track::TrackResult& analysis,
                              const PictureOptions& options);

}  // namespace output
