// SPDX-License-Identifier: MIT
#pragma once

#include "output/picture/Canvas.h"

namespace output {

/** A stretch of time laid out over the width of a panel, and its labels. */
class TimeAxis {
public:
    TimeAxis(double fromSeconds, double toSeconds, const Rect& area);

    double xOf(double seconds) const;
    double secondsAt(double x) const;
    double from() const { return from_; }
    double to() const { return to_; }

    /** Round times below the area. */
    void drawLabels(Canvas& canvas) const;

    /** Distance between labels: the least round one at which they do not touch. */
    double labelStep() const;

private:
    double from_;
    double to_;
    Rect area_;
};

}  // namespace output
