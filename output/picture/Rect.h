// SPDX-License-Identifier: MIT
#pragma once

namespace output {

/** A rectangle in the picture; y grows downward. */
struct Rect {
    double x;
    double y;
    double width;
    double height;

    double right() const { return x + width; }
    double bottom() const { return y + height; }
    double centerY() const { return y + height / 2.0; }

    Rect inset(double by) const { return {x + by, y + by, width - 2.0 * by, height - 2.0 * by}; }
};

}  // namespace output
