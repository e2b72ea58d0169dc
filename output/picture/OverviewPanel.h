// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "output/TrackReport.h"
#include "output/picture/Canvas.h"
#include "output/picture/PictureLayout.h"
#include "output/picture/Theme.h"
#include "output/picture/TimeAxis.h"
#include "output/picture/ZoomStretch.h"

namespace output {

/** The whole track: the loudness wave in its six colours with their legend, a frame around the
 *  zoomed section unless that is the whole track, a tick for every bar, and, if the musical key
 *  changes, each key where it begins. Heights follow perceived loudness; the loudest point fills
 *  the panel. */
class OverviewPanel {
public:
    OverviewPanel(const TrackReport& report, const ZoomStretch& stretch,
                  const PictureLayout& layout, const Theme& theme);

    void draw(Canvas& canvas) const;

private:
    bool hasKeyChanges() const;
    void drawWave(Canvas& canvas) const;
    void drawBars(Canvas& canvas) const;
    void drawStretchMark(Canvas& canvas) const;
    void drawKeys(Canvas& canvas) const;
    void drawKey(Canvas& canvas, const beatatlas::track::KeySegment& segment) const;
    void drawLegend(Canvas& canvas) const;

    const TrackReport& report_;
    ZoomStretch stretch_;
    const PictureLayout& layout_;
    const Theme& theme_;
    TimeAxis axis_;
    Rect area_;
    Rect keys_;
    Rect wave_;
};

}  // namespace output
