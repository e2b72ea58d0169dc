// SPDX-License-Identifier: MIT
#pragma once

#include "output/picture/Canvas.h"

namespace output {

/** A section of time mapped to the width of a panel, and its labels. */
class TimeAxis {
public:
    TimeAxis(double fromSeconds, double toSeconds, const Rect& area);

    double xOf(double seconds) const;
    double secondsAt(double x) const;
    double from() const { return from_; }
    double to() const { return to_; }
    bool covers(double seconds) const { return seconds >= from_ && seconds <= to_; }

    /** Labels at round times below the area, none of which extends beyond its sides. */
    void drawLabels(Canvas& canvas, const TextStyle& style) const;

    /** Distance between labels: the smallest round one at which they do not touch. */
    double labelStep() const;

private:
    double from_;
    double to_;
    Rect area_;
};

}  // namespace output
