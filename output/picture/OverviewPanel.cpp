// SPDX-License-Identifier: MIT
#include "output/picture/OverviewPanel.h"

#include <algorithm>
#include <cmath>

#include "output/picture/TimeAxis.h"
#include "output/picture/palette.h"

namespace output {

namespace {

constexpr double kCornerRadius = 6.0;
constexpr double kPadding = 14.0;
constexpr double kBarShare = 0.74;  ///< of a point's width; the rest is a gap
// Perceived loudness grows with sound pressure to the power of 0.6 (Stevens); drawn by the bare
// level, a single crash would flatten the rest of the track.
constexpr double kLoudnessExponent = 0.6;
constexpr double kLeastBarHeight = 2.0;  ///< silence is a thin line, not nothing
constexpr double kBarTickHeight = 6.0;
constexpr double kLeastBarTickDistance = 3.0;
constexpr double kLegendDrop = 46.0;
constexpr double kLegendSwatch = 11.0;
constexpr double kLegendGap = 26.0;

double highestLevel(const std::vector<beatatlas::track::WavePoint>& wave) {
    double highest = 1.0;
    for (const beatatlas::track::WavePoint& point : wave)
        highest = std::max(highest, static_cast<double>(point.level));
    return highest;
}

std::size_t colorIndex(int color) {
    return static_cast<std::size_t>(
        std::clamp(color, 0, static_cast<int>(palette::kLoud.size()) - 1));
}

}  // namespace

OverviewPanel::OverviewPanel(const beatatlas::track::TrackResult& analysis,
                             const ZoomStretch& stretch, const Rect& area)
    : analysis_(analysis), stretch_(stretch),
      area_(area), wave_{area.x, area.y + kPadding, area.width, area.height - 2.0 * kPadding} {}

void OverviewPanel::draw(Canvas& canvas) const {
    canvas.fillRoundedRect(area_, kCornerRadius, palette::kPanel);
    drawStretchMark(canvas);
    drawWave(canvas);
    drawBars(canvas);
    TimeAxis(0.0, analysis_.seconds(), area_).drawLabels(canvas);
    drawLegend(canvas);
}

void OverviewPanel::drawWave(Canvas& canvas) const {
    const auto& wave = analysis_.loudWave;
    if (wave.empty()) return;
    const double highest = highestLevel(wave);
    const double pitch = wave_.width / static_cast<double>(wave.size());
    for (std::size_t i = 0; i < wave.size(); ++i) {
        const double share =
            std::pow(static_cast<double>(wave[i].level) / highest, kLoudnessExponent);
        const double height = std::max(kLeastBarHeight, share * wave_.height);
        const double x = wave_.x + (static_cast<double>(i) + (1.0 - kBarShare) / 2.0) * pitch;
        const Rect bar{x, wave_.centerY() - height / 2.0, pitch * kBarShare, height};
        canvas.fillRoundedRect(bar, pitch * kBarShare / 2.0,
                               palette::kLoud[colorIndex(wave[i].color)].color);
    }
}

void OverviewPanel::drawBars(Canvas& canvas) const {
    const TimeAxis axis(0.0, analysis_.seconds(), area_);
    double last = area_.x - kLeastBarTickDistance;
    for (const beatatlas::track::Beat& beat : analysis_.beats) {
        const double x = axis.xOf(analysis_.secondsAt(beat.frame));
        if (!beat.isDownbeat() || x < last + kLeastBarTickDistance || x > area_.right()) continue;
        canvas.verticalLine(x, area_.bottom() - kBarTickHeight, area_.bottom(), 1.0,
                            palette::kBeat.withAlpha(0.6));
        last = x;
    }
}

void OverviewPanel::drawStretchMark(Canvas& canvas) const {
    const TimeAxis axis(0.0, analysis_.seconds(), area_);
    const double left = axis.xOf(stretch_.from);
    const Rect mark{left, area_.y, std::max(2.0, axis.xOf(stretch_.to) - left), area_.height};
    canvas.fillRect(mark, palette::kText.withAlpha(0.09));
    canvas.strokeRect(mark, 1.0, palette::kText.withAlpha(0.45));
}

void OverviewPanel::drawLegend(Canvas& canvas) const {
    const TextStyle style{12.5, palette::kMutedText};
    const double y = area_.bottom() + kLegendDrop;
    double x = area_.x;
    for (const auto& [color, meaning] : palette::kLoud) {
        canvas.fillRoundedRect({x, y - kLegendSwatch + 1.0, kLegendSwatch, kLegendSwatch}, 3.0,
                               color);
        canvas.text(x + kLegendSwatch + 7.0, y, meaning, style);
        x += kLegendSwatch + 7.0 + canvas.textWidth(meaning, style) + kLegendGap;
    }
}

}  // namespace output
