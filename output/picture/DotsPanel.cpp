// SPDX-License-Identifier: MIT
#include "output/picture/DotsPanel.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace output {

namespace {

constexpr double kLargestRadius = 7.0;
constexpr double kWidestShareOfPitch = 0.46;  // of the largest radius: dots do not touch
constexpr double kLeastRadius = 1.0;          // so that the weakest dot is visible
constexpr double kLeastShareOfRadius = 0.28;
constexpr double kLeastAlpha = 0.35;
constexpr double kDotsLegendGap = 8.0;
constexpr std::array<double, 4> kLegendShares = {0.0, 0.33, 0.67, 1.0};

// The library's own classes of dots reach from the first level to the second, in steps of 2 dB.
constexpr double kWeakLevel = 1304.0;
constexpr double kStrongLevel = 20674.0;

/** From 0 for a weak dot to 1 for a strong one; linear in decibels, as hearing is. */
double strength(double level) {
    if (level <= kWeakLevel) return 0.0;
    return std::min(1.0, std::log(level / kWeakLevel) / std::log(kStrongLevel / kWeakLevel));
}

}  // namespace

DotsPanel::DotsPanel(const std::vector<beatatlas::track::WavePoint>& dots,
                     const PictureLayout& layout, const Theme& theme)
    : dots_(dots), theme_(theme), area_(layout.dots), words_{layout.smallSize, theme.mutedText},
      pitch_(area_.width / static_cast<double>(std::max<std::size_t>(1, dots.size()))),
      largestRadius_(std::min(kLargestRadius, kWidestShareOfPitch * pitch_)) {}

void DotsPanel::draw(Canvas& canvas) const {
    drawLegend(canvas);
    canvas.fillRoundedRect(area_, PictureLayout::kPanelRadius, theme_.panel);
    for (std::size_t i = 0; i < dots_.size(); ++i) {
        const double x = area_.x + (static_cast<double>(i) + 0.5) * pitch_;
        const auto level = static_cast<double>(dots_[i].level);
        if (level > 0.0) {
            drawDot(canvas, x, area_.centerY(), strength(level));
        } else {
            canvas.fillCircle(x, area_.centerY(), radius(0.0), theme_.silence);
        }
    }
}

double DotsPanel::radius(double share) const {
    const double least = std::max(kLeastRadius, kLeastShareOfRadius * largestRadius_);
    return least + share * std::max(0.0, largestRadius_ - least);
}

void DotsPanel::drawDot(Canvas& canvas, double x, double y, double share) const {
    canvas.fillCircle(x, y, radius(share),
                      theme_.bass().withAlpha(kLeastAlpha + share * (1.0 - kLeastAlpha)));
}

void DotsPanel::drawLegend(Canvas& canvas) const {
    const double y = area_.y - kCaptionRise;
    canvas.text(area_.x, y, "bass along the track", words_, area_.width);
    const double dotY = y - words_.size * 0.36;
    const double dotPitch = 2.0 * largestRadius_ + 3.0;
    double x = area_.right() - canvas.textWidth("strong", words_);
    canvas.text(x, y, "strong", words_, area_.width);
    x -= kDotsLegendGap;
    for (std::size_t i = kLegendShares.size(); i > 0; --i, x -= dotPitch)
        drawDot(canvas, x - dotPitch / 2.0, dotY, kLegendShares[i - 1]);
    x -= kDotsLegendGap + canvas.textWidth("weak", words_);
    canvas.text(x, y, "weak", words_, area_.width);
}

}  // namespace output
