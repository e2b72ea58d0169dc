// SPDX-License-Identifier: MIT
#pragma once

#include "beatatlas/track.hpp"
#include "output/picture/Canvas.h"
#include "output/picture/PictureLayout.h"
#include "output/picture/Theme.h"
#include "output/picture/TimeAxis.h"
#include "output/picture/ZoomStretch.h"

namespace output {

/** A section of the zoom wave, coloured by its share of bass, with the beat grid over it: beats as
 *  thin lines, downbeats as strong ones with the number of their bar. Even the loudest wave leaves
 *  room above and below, where the lines are visible. Above the panel are the section's times and
 *  the legend of the colours. */
class ZoomPanel {
public:
    ZoomPanel(const beatatlas::track::TrackResult& analysis, const ZoomStretch& stretch,
              const PictureLayout& layout, const Theme& theme);

    void draw(Canvas& canvas) const;

private:
    /** One point for all the wave's points in a column of the picture: the highest of them. */
    beatatlas::track::WavePoint columnAt(double left, double right) const;

    void drawLegend(Canvas& canvas) const;
    void drawWave(Canvas& canvas) const;
    void drawBeats(Canvas& canvas) const;
    void drawBars(Canvas& canvas) const;

    const beatatlas::track::TrackResult& analysis_;
    const Theme& theme_;
    Rect area_;
    Rect wave_;
    TimeAxis axis_;
    TextStyle words_;
};

}  // namespace output
