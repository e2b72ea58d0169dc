// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "beatatlas/track.hpp"
#include "output/picture/Canvas.h"
#include "output/picture/PictureLayout.h"
#include "output/picture/Theme.h"

namespace output {

/** The strip of dots: one for each hundredth of the track, larger and brighter the stronger its
 *  bass, in the colour of bass. The caption above explains the dots. */
class DotsPanel {
public:
    DotsPanel(const std::vector<beatatlas::track::WavePoint>& dots, const PictureLayout& layout,
              const Theme& theme);

    void draw(Canvas& canvas) const;

private:
    double radius(double share) const;
    void drawDot(Canvas& canvas, double x, double y, double share) const;
    void drawLegend(Canvas& canvas) const;

    const std::vector<beatatlas::track::WavePoint>& dots_;
    const Theme& theme_;
    Rect area_;
    TextStyle words_;
    double pitch_;
    double largestRadius_;
};

}  // namespace output
