// SPDX-License-Identifier: MIT
#pragma once

#include "analysis/TrackAnalyzer.h"
#include "picture/Canvas.h"
#include "picture/PictureOptions.h"
#include "picture/ZoomStretch.h"

namespace app {

/** The picture of a track: its heading; the overview with the loudness wave; the dots strip; a stretch of the zoom wave
 *  with the beat grid. Drawn in a space of kWidth by kHeight units. */
class TrackPicture {
public:
    static constexpr double kWidth = 1600.0;
    static constexpr double kHeight = 860.0;

    TrackPicture(const TrackReport& report, const PictureOptions& options);

    void draw(Canvas& canvas) const;

private:
    void drawHeading(Canvas& canvas) const;
    void drawOverview(Canvas& canvas) const;
    void drawDots(Canvas& canvas) const;
    void drawZoom(Canvas& canvas) const;

    const TrackReport& report_;
    ZoomStretch stretch_;
};

}  // namespace app
