// SPDX-License-Identifier: MIT
#include "output/picture/OverviewPanel.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "output/KeyName.h"
#include "output/picture/barLines.h"
#include "output/textParts.h"

namespace output {

namespace {

constexpr double kPadding = 14.0;
constexpr double kLeastPitch = 2.6;  // closer together, bars would blur into each other
constexpr double kBarShare = 0.74;   // of a bar's pitch; the rest is a gap
// Perceived loudness grows with sound pressure to the power of 0.6 (Stevens). Drawn in proportion
// to the level, a single crash would flatten the rest of the track.
constexpr double kLoudnessExponent = 0.6;
constexpr double kLeastBarHeight = 2.0;  // silence is drawn as a thin line
constexpr double kBarTickHeight = 6.0;
constexpr double kLeastBarTickDistance = 4.0;
constexpr double kKeysHeight = 20.0;
constexpr double kKeyInset = 5.0;
constexpr double kLegendSwatch = 11.0;
constexpr double kLegendInset = kLegendSwatch + 7.0;
constexpr double kLegendPitch = 172.0;

using beatatlas::track::WavePoint;

bool isQuieter(const WavePoint& a, const WavePoint& b) {
    return a.level < b.level;
}

/** As many points as there is room for bars: each is the loudest of its neighbours. */
std::vector<WavePoint> thinned(const std::vector<WavePoint>& wave, double width) {
    const double most = std::max(1.0, width / kLeastPitch);
    const auto together =
        static_cast<std::size_t>(std::ceil(static_cast<double>(wave.size()) / most));
    std::vector<WavePoint> points;
    for (std::size_t i = 0; i < wave.size(); i += together) {
        const auto first = wave.begin() + static_cast<std::ptrdiff_t>(i);
        const auto count = std::min(together, wave.size() - i);
        points.push_back(
            *std::max_element(first, first + static_cast<std::ptrdiff_t>(count), isQuieter));
    }
    return points;
}

/** The ways to name a key, the longest first. */
std::vector<std::string> keyNamesByLength(int key, const std::optional<KeyNotation>& notation) {
    if (notation) return {shortKeyName(key, notation)};
    return {shortKeyName(key, notation), KeyName(key).musical(), KeyName(key).camelot()};
}

}  // namespace

OverviewPanel::OverviewPanel(const TrackReport& report, const ZoomStretch& stretch,
                             const PictureLayout& layout, const Theme& theme)
    : report_(report), stretch_(stretch), layout_(layout), theme_(theme),
      axis_(0.0, report.analysis.seconds(), layout.overview),
      area_(layout.overview), keys_{area_.x, area_.y, area_.width,
                                    hasKeyChanges() ? kKeysHeight : 0.0},
      wave_{area_.x, keys_.bottom() + kPadding, area_.width,
            area_.height - keys_.height - 2.0 * kPadding} {}

bool OverviewPanel::hasKeyChanges() const {
    return report_.analysis.key && report_.analysis.key->segments.size() > 1;
}

void OverviewPanel::draw(Canvas& canvas) const {
    canvas.fillRoundedRect(area_, PictureLayout::kPanelRadius, theme_.panel);
    drawStretchMark(canvas);
    drawWave(canvas);
    drawBars(canvas);
    drawKeys(canvas);
    axis_.drawLabels(canvas, {layout_.smallSize, theme_.mutedText});
    drawLegend(canvas);
}

void OverviewPanel::drawWave(Canvas& canvas) const {
    const std::vector<WavePoint> points = thinned(report_.analysis.loudWave, wave_.width);
    if (points.empty()) return;
    const double highest = std::max(
        1.0, static_cast<double>(std::max_element(points.begin(), points.end(), isQuieter)->level));
    const double pitch = wave_.width / static_cast<double>(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double share =
            std::pow(static_cast<double>(points[i].level) / highest, kLoudnessExponent);
        const double height = std::max(kLeastBarHeight, share * wave_.height);
        const double x = wave_.x + (static_cast<double>(i) + (1.0 - kBarShare) / 2.0) * pitch;
        const Rect bar{x, wave_.centerY() - height / 2.0, pitch * kBarShare, height};
        canvas.fillRoundedRect(bar, pitch * kBarShare / 2.0, theme_.ofLoudness(points[i].color));
    }
}

void OverviewPanel::drawBars(Canvas& canvas) const {
    const auto& analysis = report_.analysis;
    for (const BarLine& bar :
         barLines(analysis.beats, analysis.rate, axis_, kLeastBarTickDistance)) {
        canvas.verticalLine(bar.x, area_.bottom() - kBarTickHeight, area_.bottom(),
                            {1.0, theme_.mutedText});
    }
}

void OverviewPanel::drawStretchMark(Canvas& canvas) const {
    if (stretch_.from <= axis_.from() && stretch_.to >= axis_.to()) return;
    const double left = axis_.xOf(stretch_.from);
    const Rect mark{left, keys_.bottom(), std::max(2.0, axis_.xOf(stretch_.to) - left),
                    area_.bottom() - keys_.bottom()};
    canvas.fillRect(mark, theme_.mark.withAlpha(0.1));
    canvas.strokeRect(mark, 1.0, theme_.mark.withAlpha(0.6));
}

void OverviewPanel::drawKeys(Canvas& canvas) const {
    if (!hasKeyChanges()) return;
    canvas.fillRoundedRect(keys_, PictureLayout::kPanelRadius, theme_.lane);
    for (const beatatlas::track::KeySegment& segment : report_.analysis.key->segments)
        drawKey(canvas, segment);
}

void OverviewPanel::drawKey(Canvas& canvas, const beatatlas::track::KeySegment& segment) const {
    const double left = axis_.xOf(segment.fromSeconds);
    const double room = axis_.xOf(segment.toSeconds) - left - 2.0 * kKeyInset;
    if (segment.fromSeconds > 0.0)
        canvas.verticalLine(left, keys_.y, keys_.bottom(), {2.0, theme_.mutedText});
    const TextStyle style{layout_.smallSize, theme_.text};
    for (const std::string& name : keyNamesByLength(segment.key, report_.keyNotation)) {
        if (canvas.textWidth(name, style) > room) continue;
        canvas.text(left + kKeyInset, keys_.bottom() - 5.5, name, style, room);
        return;
    }
}

void OverviewPanel::drawLegend(Canvas& canvas) const {
    const TextStyle style{layout_.smallSize, theme_.mutedText};
    const Rect& area = layout_.legend;
    const std::size_t perRow = kLoudClasses.size() / static_cast<std::size_t>(layout_.legendRows);
    const double pitch = std::min(kLegendPitch, area.width / static_cast<double>(perRow));
    for (std::size_t i = 0; i < kLoudClasses.size(); ++i) {
        const std::size_t row = i / perRow;
        const double x = area.x + static_cast<double>(i % perRow) * pitch;
        const double y = area.y + static_cast<double>(row) * kLegendRowHeight +
                         (kLegendRowHeight + kLegendSwatch) / 2.0 - 1.0;
        canvas.fillRoundedRect({x, y - kLegendSwatch + 1.0, kLegendSwatch, kLegendSwatch}, 3.0,
                               theme_.scale[kLoudClasses[i].step]);
        canvas.text(x + kLegendInset, y, kLoudClasses[i].meaning, style, pitch - kLegendInset);
    }
}

}  // namespace output
