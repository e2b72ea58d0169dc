// SPDX-License-Identifier: MIT
#pragma once

#include "output/picture/Rect.h"

namespace output {

/** The positions of a picture's parts and the sizes of its text, in units.
 *
 *  Up to 1600 pixels a unit is a pixel: a narrow picture has the same text in less room, in sizes
 *  that stay readable. Wider pictures are enlarged as a whole. */
struct PictureLayout {
    static constexpr double kWidestUnits = 1600.0;
    static constexpr double kPanelRadius = 6.0;

    explicit PictureLayout(int widthPixels);

    /** Pixels per unit. */
    double scale;
    double width;
    double height;

    double titleSize;
    double answerSize;
    double bodySize;
    double smallSize;

    /** The title, above the facts about the file. */
    Rect title;
    /** Tempo and key. */
    Rect answers;
    /** Remarks on tempo and key. */
    Rect remarks;
    int remarkLines;
    Rect overview;
    /** The legend of the overview's colours. */
    Rect legend;
    int legendRows;
    Rect dots;
    Rect zoom;

private:
    void placeHeading(double margin);
    void placePanels(double margin);
};

constexpr double kLegendRowHeight = 20.0;
constexpr double kCaptionRise = 11.0;  // base line of a panel's caption above the panel

}  // namespace output
