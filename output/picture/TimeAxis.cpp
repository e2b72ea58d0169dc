// SPDX-License-Identifier: MIT
#include "output/picture/TimeAxis.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "output/textFormat.h"

namespace output {

namespace {

constexpr double kLeastLabelDistance = 84.0;
constexpr double kTickLength = 5.0;
constexpr double kLabelDrop = 20.0;
constexpr std::array<double, 19> kRoundSteps = {0.01,  0.02,  0.05,   0.1,    0.2,   0.5,  1.0,
                                                2.0,   5.0,   10.0,   15.0,   30.0,  60.0, 120,
                                                300.0, 600.0, 1200.0, 1800.0, 3600.0};

}  // namespace

TimeAxis::TimeAxis(double fromSeconds, double toSeconds, const Rect& area)
    : from_(fromSeconds), to_(toSeconds), area_(area) {}

double TimeAxis::xOf(double seconds) const {
    return area_.x + (seconds - from_) / (to_ - from_) * area_.width;
}

double TimeAxis::secondsAt(double x) const {
    return from_ + (x - area_.x) / area_.width * (to_ - from_);
}

double TimeAxis::labelStep() const {
    const double least = (to_ - from_) * kLeastLabelDistance / area_.width;
    for (const double step : kRoundSteps) {
        if (step >= least) return step;
    }
    return kRoundSteps.back() * std::ceil(least / kRoundSteps.back());
}

void TimeAxis::drawLabels(Canvas& canvas, const TextStyle& style) const {
    const double step = labelStep();
    const auto last = static_cast<long>(std::floor(to_ / step + 1e-9));
    for (auto i = static_cast<long>(std::ceil(from_ / step - 1e-9)); i <= last; ++i) {
        const double seconds = static_cast<double>(i) * step;
        const double x = xOf(seconds);
        canvas.verticalLine(x, area_.bottom(), area_.bottom() + kTickLength, {1.0, style.color});
        const std::string label = step < 1.0 ? clockTime(seconds) : clockTimeInSeconds(seconds);
        const double width = canvas.textWidth(label, style);
        const double start = std::max(area_.x, std::min(x - width / 2.0, area_.right() - width));
        canvas.text(start, area_.bottom() + kLabelDrop, label, style, area_.width);
    }
}

}  // namespace output
