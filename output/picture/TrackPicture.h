// SPDX-License-Identifier: MIT
#pragma once

#include "output/TrackReport.h"
#include "output/picture/Canvas.h"
#include "output/picture/PictureOptions.h"
#include "output/picture/ZoomStretch.h"

namespace output {

/** The picture of a track: its heading; the overview with the loudness wave; the dots strip; a
 *  stretch of the zoom wave with the beat grid. Drawn in a space of kWidth by kHeight units. */
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

}  // namespace output
