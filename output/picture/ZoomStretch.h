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

/** The section asked for, moved into the track; by default the loudest section of that length,
 *  starting at a downbeat if there is one. A track shorter than the section is shown whole. */
ZoomStretch chooseZoomStretch(const beatatlas::track::TrackResult& analysis,
                              const PictureOptions& options);

}  // namespace output
