// SPDX-License-Identifier: MIT
#pragma once

#include "beatatlas/track.hpp"
#include "output/picture/Canvas.h"
#include "output/picture/TimeAxis.h"
#include "output/picture/ZoomStretch.h"

namespace output {

/** A stretch of the zoom wave, coloured by its share of bass, with the beat grid over it: beats as
 *  lines, downbeats brighter and with the number of their bar. Above it stand the stretch's times
 *  and the key to the colours. */
class ZoomPanel {
public:
    ZoomPanel(const beatatlas::track::TrackResult& analysis, const ZoomStretch& stretch,
              const Rect& area);

    void draw(Canvas& canvas) const;

private:
    /** The wave's points that fall into one column of the picture, as one: the highest of them. */
    beatatlas::track::WavePoint columnAt(double left, double right) const;

    void drawLegend(Canvas& canvas) const;
    void drawWave(Canvas& canvas) const;
    void drawGrid(Canvas& canvas) const;
    void drawBeat(Canvas& canvas, const beatatlas::track::Beat& beat, int bar,
                  double& labelsEnd) const;

    const beatatlas::track::TrackResult& analysis_;
    Rect area_;
    TimeAxis axis_;
};

}  // namespace output
