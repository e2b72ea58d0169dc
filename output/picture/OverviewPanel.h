// SPDX-License-Identifier: MIT
#pragma once

#include "beatatlas/track.hpp"
#include "output/picture/Canvas.h"
#include "output/picture/ZoomStretch.h"

namespace output {

/** The whole track: the loudness wave in its six colours with their key, the zoomed stretch marked,
 *  a tick for every bar. Heights follow perceived loudness; the loudest point fills the panel. */
class OverviewPanel {
public:
    OverviewPanel(const beatatlas::track::TrackResult& analysis, const ZoomStretch& stretch,
                  const Rect& area);

    void draw(Canvas& canvas) const;

private:
    void drawWave(Canvas& canvas) const;
    void drawBars(Canvas& canvas) const;
    void drawStretchMark(Canvas& canvas) const;
    void drawLegend(Canvas& canvas) const;

    const beatatlas::track::TrackResult& analysis_;
    ZoomStretch stretch_;
    Rect area_;
    Rect wave_;
};

}  // namespace output
