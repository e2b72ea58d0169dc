// SPDX-License-Identifier: MIT
#pragma once

#include "output/TrackReport.h"
#include "output/picture/Canvas.h"
#include "output/picture/PictureLayout.h"
#include "output/picture/Theme.h"

namespace output {

/** The text of a picture: title of the track, its file, its tempo and key, and how reliable these
 *  are. */
class Heading {
public:
    Heading(const TrackReport& report, const PictureLayout& layout, const Theme& theme)
        : report_(report), layout_(layout), theme_(theme) {}

    void draw(Canvas& canvas) const;

private:
    void drawTitle(Canvas& canvas) const;
    void drawAnswers(Canvas& canvas) const;
    void drawRemarks(Canvas& canvas) const;
    bool wantsTempo() const;
    TextStyle muted() const { return {layout_.bodySize, theme_.mutedText}; }

    const TrackReport& report_;
    const PictureLayout& layout_;
    const Theme& theme_;
};

/** "Artist – title" as the file's tags have them, the title alone, or the file's name. */
std::string pictureTitle(const TrackReport& report);

}  // namespace output
