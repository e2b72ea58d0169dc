// SPDX-License-Identifier: MIT
#include "output/picture/TrackPicture.h"

#include "output/picture/DotsPanel.h"
#include "output/picture/Heading.h"
#include "output/picture/OverviewPanel.h"
#include "output/picture/ZoomPanel.h"

namespace output {

TrackPicture::TrackPicture(const TrackReport& report, const PictureOptions& options)
    : report_(report), theme_(theme(options.theme)), layout_(options.widthPixels),
      stretch_(chooseZoomStretch(report.analysis, options)) {}

void TrackPicture::draw(Canvas& canvas) const {
    // One unit beyond the edge, since the enlarged height may end within a pixel.
    canvas.fillRect({0.0, 0.0, layout_.width, layout_.height + 1.0}, theme_.background);
    Heading(report_, layout_, theme_).draw(canvas);
    OverviewPanel(report_, stretch_, layout_, theme_).draw(canvas);
    DotsPanel(report_.analysis.dotsWave, layout_, theme_).draw(canvas);
    ZoomPanel(report_.analysis, stretch_, layout_, theme_).draw(canvas);
}

}  // namespace output
