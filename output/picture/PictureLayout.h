// SPDX-License-Identifier: MIT
#pragma once

#include "output/picture/Rect.h"

namespace output {

/** Where the parts of a picture stand and how large its words are, in units.
 *
 *  Up to 1600 pixels a unit is a pixel: a narrow picture has the same words in less room, never
 *  smaller than can be read. Wider ones are enlarged as a whole. */
struct PictureLayout {
    static constexpr double kWidestUnits = 1600.0;

    explicit PictureLayout(int widthPixels);

    double scale;  ///< pixels for a unit
    double width;
    double height;

    double titleSize;
    double answerSize;
    double bodySize;
    double smallSize;

    Rect title;    ///< the name above facts of the file
    Rect answers;  ///< tempo and key
    Rect remarks;  ///< what there is to add to them
    int remarkLines;
    Rect overview;
    Rect legend;  ///< of the overview's colours
    int legendRows;
    Rect dots;
    Rect zoom;

private:
    void placeHeading(double margin);
    void placePanels(double margin);
};

constexpr double kLegendRowHeight = 20.0;
constexpr double kCaptionRise = 11.0;  ///< base line of a panel's caption above the panel

}  // namespace output
