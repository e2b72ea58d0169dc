// SPDX-License-Identifier: MIT
#pragma once

#include "analysis/AnalysisResult.h"
#include "picture/Canvas.h"
#include "picture/TimeAxis.h"
#include "picture/ZoomStretch.h"

namespace app {

/** A stretch of the zoom wave, coloured by its share of bass, with the beat grid over it: beats as lines, downbeats
 *  brighter and with the number of their bar. Above it stand the stretch's times and the key to the colours. */
class ZoomPanel {
public:
    ZoomPanel(const AnalysisResult& analysis, const ZoomStretch& stretch, const Rect& area);

    void draw(Canvas& canvas) const;

private:
    /** The wave's points that fall into one column of the picture, as one: the highest of them. */
    WavePoint columnAt(double left, double right) const;

    void drawLegend(Canvas& canvas) const;
    void drawWave(Canvas& canvas) const;
    void drawGrid(Canvas& canvas) const;
    void drawBeat(Canvas& canvas, const Beat& beat, int bar, double& labelsEnd) const;

    const AnalysisResult& analysis_;
    Rect area_;
    TimeAxis axis_;
};

}  // namespace app
