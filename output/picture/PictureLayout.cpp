// SPDX-License-Identifier: MIT
#include "output/picture/PictureLayout.h"

#include <algorithm>
#include <cmath>

#include "output/picture/Canvas.h"
#include "output/picture/PictureOptions.h"

namespace output {

namespace {

constexpr double kLeastForRemarksInOneRow = 1100.0;
constexpr double kLeastForLegendInOneRow = 1000.0;
constexpr double kGapAboveAnswers = 12.0;
constexpr double kAxisHeight = 30.0;     // times below a panel
constexpr double kCaptionHeight = 38.0;  // the caption above a panel

/** Text sizes, from the narrowest picture to the widest that is not enlarged. */
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
constexpr Sizes kOverviewHeight{150.0, 254.0};
constexpr Sizes kDotsHeight{26.0, 44.0};
constexpr Sizes kZoomHeight{150.0, 244.0};

}  // namespace

PictureLayout::PictureLayout(int widthPixels)
    : scale(std::max(1.0, widthPixels / kWidestUnits)), width(widthPixels / scale), height(0.0),
      titleSize(kTitleSize.at(width)), answerSize(kAnswerSize.at(width)),
      bodySize(kBodySize.at(width)), smallSize(kSmallSize.at(width)), title{}, answers{}, remarks{},
      remarkLines(width < kLeastForRemarksInOneRow ? 2 : 1), overview{}, legend{},
      legendRows(width < kLeastForLegendInOneRow ? 2 : 1), dots{}, zoom{} {
    const double margin = kMargin.at(width);
    placeHeading(margin);
    placePanels(margin);
}

void PictureLayout::placeHeading(double margin) {
    const double inner = width - 2.0 * margin;
    const double line = TextStyle::kLineHeight * bodySize;
    title = {margin, 0.8 * margin, inner, TextStyle::kLineHeight * titleSize + line};
    answers = {margin, title.bottom() + kGapAboveAnswers, inner,
               TextStyle::kLineHeight * answerSize};
    remarks = {margin, answers.bottom(), inner, remarkLines * line};
}

void PictureLayout::placePanels(double margin) {
    const double inner = width - 2.0 * margin;
    overview = {margin, remarks.bottom() + 12.0, inner, kOverviewHeight.at(width)};
    legend = {margin, overview.bottom() + kAxisHeight, inner, legendRows * kLegendRowHeight};
    dots = {margin, legend.bottom() + kCaptionHeight, inner, kDotsHeight.at(width)};
    zoom = {margin, dots.bottom() + kCaptionHeight, inner, kZoomHeight.at(width)};
    height = std::ceil(zoom.bottom() + kAxisHeight + margin / 2.0);
}

}  // namespace output
