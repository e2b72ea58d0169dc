// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

#include "output/picture/Color.h"
#include "output/picture/PictureOptions.h"

namespace output {

/** A class of the loudness wave: which band leads, and what comes with it. */
struct LoudClass {
    int color;         ///< the wave's number for it
    std::size_t step;  ///< its place on the scale from bass to treble
    const char* meaning;
};

// From the most bass to the least, and of the same share of bass the darker sound first.
constexpr std::array<LoudClass, 6> kLoudClasses = {{{0, 0, "bass over mids"},
                                                    {2, 2, "bass over highs"},
                                                    {1, 3, "mids over bass"},
                                                    {3, 4, "highs over bass"},
                                                    {4, 6, "mids, little bass"},
                                                    {5, 7, "highs, little bass"}}};

/** The colours of a picture. All of its waves share one scale from bass to treble, warm to cool. */
struct Theme {
    Color background;
    Color panel;
    Color lane;  ///< a band of words inside a panel
    Color text;
    Color mutedText;
    Color silence;  ///< what stands where there is nothing to hear
    Color mark;     ///< the frame about the zoomed stretch
    Color downbeat;
    Color beat;
    Color halo;                  ///< beside the grid's lines, so that they stand out from any wave
    std::array<Color, 8> scale;  ///< from all bass to none, as the zoom wave numbers it

    const Color& bass() const { return scale.front(); }

    /** Of a colour number of the zoom wave; numbers outside 0 to 7 count as the nearest. */
    const Color& ofZoom(int color) const;

    /** Of a colour number of the loudness wave; numbers outside 0 to 5 count as the nearest. */
    const Color& ofLoudness(int color) const;
};

const Theme& theme(ThemeName name);

}  // namespace output
