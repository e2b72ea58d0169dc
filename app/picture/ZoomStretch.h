// SPDX-License-Identifier: MIT
#pragma once

#include "analysis/AnalysisResult.h"
#include "picture/PictureOptions.h"

namespace app {

constexpr double kZoomPointsPerSecond = 150.0;

/** The part of a track that the zoomed panel shows, in seconds. */
struct ZoomStretch {
    double from;
    double to;
};

/** As asked for, and moved into the track; by itself the loudest stretch of that length, begun on a downbeat where
 *  there is one. A track shorter than the stretch is shown whole. */
ZoomStretch chooseZoomStretch(const AnalysisResult& analysis, const PictureOptions& options);

}  // namespace app
