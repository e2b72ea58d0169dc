// SPDX-License-Identifier: MIT
#include "output/picture/DotsPanel.h"

#include <algorithm>
#include <cmath>

#include "output/picture/palette.h"

namespace output {

namespace {

constexpr double kCornerRadius = 6.0;
constexpr double kLeastRadius = 2.0;
constexpr double kLargestRadius = 7.0;
constexpr double kLeastAlpha = 0.25;

// The library's own classes of dots reach from the first level to the second, in steps of 2 dB.
constexpr double kWeakLevel = 1304.0;
constexpr double kStrongLevel = 20674.0;

/** 0 for a weak dot to 1 for a strong one, in decibels as the ear takes it. */
double strength(double level) {
    if (level <= kWeakLevel) return 0.0;
    return std::min(1.0, std::log(level / kWeakLevel) / std::log(kStrongLevel / kWeakLevel));
}

}  // namespace

void DotsPanel::draw(Canvas& canvas) const {
    canvas.fillRoundedRect(area_, kCornerRadius, palette::kPanel);
    const double pitch = area_.width / static_cast<double>(std::max<std::size_t>(1, dots_.size()));
    for (std::size_t i = 0; i < dots_.size(); ++i) {
        const double x = area_.x + (static_cast<double>(i) + 0.5) * pitch;
        const auto level = static_cast<double>(dots_[i].level);
        if (level <= 0.0) {
            canvas.fillCircle(x, area_.centerY(), kLeastRadius, palette::kBaseLine);
            continue;
        }
        const double share = strength(level);
        canvas.fillCircle(x, area_.centerY(),
                          kLeastRadius + share * (kLargestRadius - kLeastRadius),
                          palette::kDot.withAlpha(kLeastAlpha + share * (1.0 - kLeastAlpha)));
    }
}

}  // namespace output
