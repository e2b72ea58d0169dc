// SPDX-License-Identifier: MIT
#pragma once

#include "output/TrackReport.h"
#include "output/picture/Canvas.h"
#include "output/picture/PictureLayout.h"
#include "output/picture/PictureOptions.h"
#include "output/picture/Theme.h"
#include "output/picture/ZoomStretch.h"

namespace output {

/** The picture of a track: its heading; the overview with the loudness wave; the dots strip; a
 *  section of the zoom wave with the beat grid. */
class TrackPicture {
public:
    TrackPicture(const TrackReport& report, const PictureOptions& options);

    const PictureLayout& layout() const { return layout_; }

    void draw(Canvas& canvas) const;

private:
    const TrackReport& report_;
    const Theme& theme_;
    PictureLayout layout_;
    ZoomStretch stretch_;
};

}  // namespace output
