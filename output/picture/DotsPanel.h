// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "beatatlas/track.hpp"
#include "output/picture/Canvas.h"

namespace output {

/** The strip of dots: one for each hundredth of the track, larger and brighter the stronger its
 *  bass. */
class DotsPanel {
public:
    DotsPanel(const std::vector<beatatlas::track::WavePoint>& dots, const Rect& area)
        : dots_(dots), area_(area) {}

    void draw(Canvas& canvas) const;

private:
    const std::vector<beatatlas::track::WavePoint>& dots_;
    Rect area_;
};

}  // namespace output
