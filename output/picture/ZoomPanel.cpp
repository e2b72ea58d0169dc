// SPDX-License-Identifier: MIT
#include "output/picture/ZoomPanel.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "output/picture/palette.h"
#include "output/textFormat.h"

namespace output {

namespace {

constexpr double kCornerRadius = 6.0;
constexpr double kGridHead = 22.0;  ///< above the wave, for the bars' numbers
constexpr double kPadding = 12.0;
constexpr double kFullLevel = 31.0;
constexpr double kLeastHeight = 1.5;
constexpr double kColumnWidth = 1.0;
constexpr double kBeatWidth = 1.0;
constexpr double kDownbeatWidth = 2.0;
constexpr double kHaloWidth = 2.0;  ///< dark, so that the lines stand out from the wave
constexpr double kLegendRise = 11.0;
constexpr double kLegendGap = 9.0;
constexpr double kSwatchWidth = 16.0;
constexpr double kSwatchHeight = 11.0;
constexpr double kLabelGap = 10.0;
constexpr double kLeastBeatDistance = 4.0;

std::size_t colorIndex(int color) {
    return static_cast<std::size_t>(
        std::clamp(color, 0, static_cast<int>(palette::kZoom.size()) - 1));
}

}  // namespace

ZoomPanel::ZoomPanel(const beatatlas::track::TrackResult& analysis, const ZoomStretch& stretch,
                     const Rect& area)
    : analysis_(analysis), area_(area), axis_(stretch.from, stretch.to, area) {}

void ZoomPanel::draw(Canvas& canvas) const {
    canvas.fillRoundedRect(area_, kCornerRadius, palette::kPanel);
    drawLegend(canvas);
    drawWave(canvas);
    drawGrid(canvas);
    axis_.drawLabels(canvas);
}

void ZoomPanel::drawLegend(Canvas& canvas) const {
    const double y = area_.y - kLegendRise;
    const TextStyle style{12.5, palette::kMutedText};
    canvas.text(area_.x, y, clockTime(axis_.from()) + " to " + clockTime(axis_.to()), style);
    double x = area_.right();
    const auto place = [&](const std::string& text) {
        x -= canvas.textWidth(text, style);
        canvas.text(x, y, text, style);
        x -= kLegendGap;
    };
    place("no bass");
    const auto placeSwatch = [&](const Color& color) {
        x -= kSwatchWidth;
        canvas.fillColumn({x, y - kSwatchHeight + 1.0, kSwatchWidth, kSwatchHeight}, color);
    };
    std::for_each(palette::kZoom.rbegin(), palette::kZoom.rend(), placeSwatch);
    x -= kLegendGap;
    place("all bass");
}

beatatlas::track::WavePoint ZoomPanel::columnAt(double left, double right) const {
    const auto& wave = analysis_.zoomWave;
    const auto first = static_cast<std::size_t>(axis_.secondsAt(left) * kZoomPointsPerSecond);
    const auto last = static_cast<std::size_t>(axis_.secondsAt(right) * kZoomPointsPerSecond);
    beatatlas::track::WavePoint highest{0.0F, 0};
    for (std::size_t i = first; i < std::min(wave.size(), std::max(last, first + 1)); ++i) {
        if (i == first || wave[i].level > highest.level) highest = wave[i];
    }
    return highest;
}

void ZoomPanel::drawWave(Canvas& canvas) const {
    const double room = area_.height - kGridHead - kPadding;
    const double centerY = area_.y + kGridHead + room / 2.0;
    const auto columns = static_cast<int>(std::ceil(area_.width / kColumnWidth));
    for (int column = 0; column < columns; ++column) {
        const double x = area_.x + column * kColumnWidth;
        const beatatlas::track::WavePoint point = columnAt(x, x + kColumnWidth);
        const double height =
            std::max(kLeastHeight, static_cast<double>(point.level) / kFullLevel * room);
        canvas.fillColumn({x, centerY - height / 2.0, kColumnWidth, height},
                          palette::kZoom[colorIndex(point.color)]);
    }
}

void ZoomPanel::drawGrid(Canvas& canvas) const {
    int bar = 0;
    double labelsEnd = area_.x;
    double last = area_.x - kLeastBeatDistance;
    for (const beatatlas::track::Beat& beat : analysis_.beats) {
        if (beat.isDownbeat()) ++bar;
        const double seconds = analysis_.secondsAt(beat.frame);
        if (seconds < axis_.from() || seconds > axis_.to()) continue;
        const double x = axis_.xOf(seconds);
        if (!beat.isDownbeat() && x < last + kLeastBeatDistance) continue;
        last = x;
        drawBeat(canvas, beat, bar, labelsEnd);
    }
}

void ZoomPanel::drawBeat(Canvas& canvas, const beatatlas::track::Beat& beat, int bar,
                         double& labelsEnd) const {
    const double x = axis_.xOf(analysis_.secondsAt(beat.frame));
    if (!beat.isDownbeat()) {
        canvas.verticalLine(x, area_.y + kGridHead, area_.bottom(), kBeatWidth + kHaloWidth,
                            palette::kHalo);
        canvas.verticalLine(x, area_.y + kGridHead, area_.bottom(), kBeatWidth, palette::kBeat);
        return;
    }
    canvas.verticalLine(x, area_.y, area_.bottom(), kDownbeatWidth + kHaloWidth, palette::kHalo);
    canvas.verticalLine(x, area_.y, area_.bottom(), kDownbeatWidth, palette::kDownbeat);
    const TextStyle style{12.0, palette::kText, true};
    const std::string label = fmt::format("{}", bar);
    const double width = canvas.textWidth(label, style);
    const double start = x + kLabelGap / 2.0;
    if (start < labelsEnd || start + width > area_.right()) return;
    canvas.text(start, area_.y + kGridHead - 7.0, label, style);
    labelsEnd = start + width + kLabelGap;
}

}  // namespace output
