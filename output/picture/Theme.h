// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

#include "output/picture/Color.h"
#include "output/picture/PictureOptions.h"

namespace output {

/** A class of the loudness wave: which band is the strongest, and which accompanies it. */
struct LoudClass {
    /** Its colour number in the wave. */
    int color;
    /** Its index on the scale from bass to treble. */
    std::size_t step;
    const char* meaning;
};

// From the most bass to the least; for equal shares of bass the darker sound first.
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
    /** The strip for text inside a panel. */
    Color lane;
    Color text;
    Color mutedText;
    /** Shown where there is silence. */
    Color silence;
    /** The frame around the zoomed section. */
    Color mark;
    Color downbeat;
    Color beat;
    /** The edges of the grid's lines, which set them off from any wave. */
    Color halo;
    /** From all bass to none, as the zoom wave numbers it. */
    std::array<Color, 8> scale;

    const Color& bass() const { return scale.front(); }

    /** The colour for a colour number of the zoom wave; numbers outside 0 to 7 count as the
     *  nearest. */
    const Color& ofZoom(int color) const;

    /** The colour for a colour number of the loudness wave; numbers outside 0 to 5 count as the
     *  nearest. */
    const Color& ofLoudness(int color) const;
};

const Theme& theme(ThemeName name);

}  // namespace output
