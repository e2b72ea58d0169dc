// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "analysis/AnalysisResult.h"
#include "picture/Canvas.h"

namespace app {

/** The strip of dots: one for each hundredth of the track, larger and brighter the stronger its bass. */
class DotsPanel {
public:
    DotsPanel(const std::vector<WavePoint>& dots, const Rect& area) : dots_(dots), area_(area) {}

    void draw(Canvas& canvas) const;

private:
    const std::vector<WavePoint>& dots_;
    Rect area_;
};

}  // namespace app
