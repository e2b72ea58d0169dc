// SPDX-License-Identifier: MIT
#include "output/picture/PictureLayout.h"

#include <algorithm>
#include <cmath>

#include "output/picture/PictureOptions.h"

namespace output {

namespace {

constexpr double kLeastForAnswersBesideTitle = 1250.0;
constexpr double kLeastForLegendInOneRow = 1000.0;
constexpr double kLineHeight = 1.35;
constexpr double kColumnGap = 28.0;
constexpr double kAxisHeight = 30.0;     ///< times below a panel
constexpr double kCaptionHeight = 38.0;  ///< words above a panel

/** From the narrowest picture to the widest that is not enlarged. */
struct Sizes {
    double narrowest;
    double widest;

    double at(double width) const {
        const double share =
            (width - kNarrowestPicture) / (PictureLayout::kWidestUnits - kNarrowestPicture);
        return std::round(narrowest + std::clamp(share, 0.0, 1.0) * (widest - narrowest));
    }
};

constexpr Sizes kMargin{14.0, 40.0};
constexpr Sizes kTitleSize{20.0, 30.0};
constexpr Sizes kAnswerSize{18.0, 28.0};
constexpr Sizes kBodySize{12.0, 15.0};
constexpr Sizes kSmallSize{12.0, 13.0};
constexpr Sizes kOverviewHeight{150.0, 280.0};
constexpr Sizes kDotsHeight{26.0, 44.0};
constexpr Sizes kZoomHeight{150.0, 256.0};

}  // namespace

PictureLayout::PictureLayout(int widthPixels)
    : scale(std::max(1.0, widthPixels / kWidestUnits)), width(widthPixels / scale), height(0.0),
      isCompact(width < kLeastForAnswersBesideTitle), titleSize(kTitleSize.at(width)),
      answerSize(kAnswerSize.at(width)), bodySize(kBodySize.at(width)),
      smallSize(kSmallSize.at(width)), title{}, tempo{}, key{}, remarks{}, overview{}, legend{},
      legendRows(width < kLeastForLegendInOneRow ? 2 : 1), dots{}, zoom{} {
    const double margin = kMargin.at(width);
    placeHeading(margin);
    placePanels(margin);
}

void PictureLayout::placeHeading(double margin) {
    const double inner = width - 2.0 * margin;
    const double line = kLineHeight * bodySize;
    const double titleHeight = kLineHeight * titleSize;
    const double answerHeight = kLineHeight * answerSize;
    title = {margin, margin, inner, titleHeight + line};
    if (!isCompact) {
        const double column = (inner - 2.0 * kColumnGap) / 10.0;
        const double answersHeight = titleHeight + kRemarkLines * line;
        title.width = 4.0 * column;
        tempo = {title.right() + kColumnGap, margin, 3.0 * column, answersHeight};
        key = {tempo.right() + kColumnGap, margin, 3.0 * column, answersHeight};
        return;
    }
    const double column = (inner - kColumnGap) / 2.0;
    tempo = {margin, title.bottom() + 8.0, column, answerHeight};
    key = {tempo.right() + kColumnGap, tempo.y, column, answerHeight};
    remarks = {margin, tempo.bottom(), inner, kRemarkLines * line};
}

void PictureLayout::placePanels(double margin) {
    const double inner = width - 2.0 * margin;
    const double headingEnd = isCompact ? remarks.bottom() : tempo.bottom();
    overview = {margin, headingEnd + 12.0, inner, kOverviewHeight.at(width)};
    legend = {margin, overview.bottom() + kAxisHeight, inner, legendRows * kLegendRowHeight};
    dots = {margin, legend.bottom() + kCaptionHeight, inner, kDotsHeight.at(width)};
    zoom = {margin, dots.bottom() + kCaptionHeight, inner, kZoomHeight.at(width)};
    height = std::ceil(zoom.bottom() + kAxisHeight + margin / 2.0);
}

}  // namespace output
