// SPDX-License-Identifier: MIT
#include "output/picture/ZoomPanel.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "output/picture/barLines.h"
#include "output/textFormat.h"

namespace output {

namespace {

constexpr double kGridHead = 22.0;  // above the wave, for the bars' numbers
constexpr double kHeadroom = 0.09;  // of the panel, above and below the loudest wave
constexpr double kFullLevel = 31.0;
constexpr double kLeastHeight = 1.5;
constexpr double kBeatWidth = 1.0;
constexpr double kBeatHalo = 1.0;
constexpr double kDownbeatWidth = 2.0;
constexpr double kDownbeatHalo = 1.5;
// Lines closer together than this would hide too much of the wave.
constexpr double kLeastBeatDistance = 14.0;
constexpr double kLeastBarDistance = 24.0;
constexpr double kLegendGap = 9.0;
constexpr double kSwatchHeight = 11.0;
constexpr double kLabelGap = 10.0;

/** The area of the wave at its full height. */
Rect waveArea(const Rect& area) {
    const double headroom = kHeadroom * (area.height - kGridHead);
    return {area.x, area.y + kGridHead + headroom, area.width,
            area.height - kGridHead - 2.0 * headroom};
}

}  // namespace

ZoomPanel::ZoomPanel(const beatatlas::track::TrackResult& analysis, const ZoomStretch& stretch,
                     const PictureLayout& layout, const Theme& theme)
    : analysis_(analysis), theme_(theme), area_(layout.zoom), wave_(waveArea(area_)),
      axis_(stretch.from, stretch.to, area_), words_{layout.smallSize, theme.mutedText} {}

void ZoomPanel::draw(Canvas& canvas) const {
    canvas.fillRoundedRect(area_, PictureLayout::kPanelRadius, theme_.panel);
    drawLegend(canvas);
    drawWave(canvas);
    drawBeats(canvas);
    drawBars(canvas);
    axis_.drawLabels(canvas, words_);
}

void ZoomPanel::drawLegend(Canvas& canvas) const {
    const double y = area_.y - kCaptionRise;
    canvas.text(area_.x, y, clockTime(axis_.from()) + " to " + clockTime(axis_.to()), words_,
                area_.width);
    const double swatch = std::round(words_.size);
    double x = area_.right() - canvas.textWidth("no bass", words_);
    canvas.text(x, y, "no bass", words_, area_.width);
    x -= kLegendGap;
    for (std::size_t step = theme_.scale.size(); step > 0; --step) {
        x -= swatch;
        canvas.fillColumn({x, y - kSwatchHeight + 1.0, swatch, kSwatchHeight},
                          theme_.scale[step - 1]);
    }
    x -= kLegendGap + canvas.textWidth("all bass", words_);
    canvas.text(x, y, "all bass", words_, area_.width);
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
    const double column = canvas.pixel();
    const auto columns = static_cast<int>(std::lround(wave_.width / column));
    for (int i = 0; i < columns; ++i) {
        const double x = wave_.x + i * column;
        const beatatlas::track::WavePoint point = columnAt(x, x + column);
        const double share = std::min(1.0, static_cast<double>(point.level) / kFullLevel);
        const double height = std::max(kLeastHeight, share * wave_.height);
        canvas.fillColumn({x, wave_.centerY() - height / 2.0, column, height},
                          theme_.ofZoom(point.color));
    }
}

void ZoomPanel::drawBeats(Canvas& canvas) const {
    std::vector<double> lines;
    for (const beatatlas::track::Beat& beat : analysis_.beats) {
        const double seconds = analysis_.secondsAt(beat.frame);
        if (axis_.covers(seconds)) lines.push_back(axis_.xOf(seconds));
    }
    if (lines.empty() || area_.width / static_cast<double>(lines.size()) < kLeastBeatDistance)
        return;
    for (const double x : lines) {
        canvas.verticalLine(x, area_.y + kGridHead, area_.bottom(),
                            {kBeatWidth, theme_.beat, kBeatHalo, theme_.halo});
    }
}

void ZoomPanel::drawBars(Canvas& canvas) const {
    const TextStyle style{words_.size, theme_.text, true};
    double labelsEnd = area_.x;
    for (const BarLine& bar : barLines(analysis_.beats, analysis_.rate, axis_, kLeastBarDistance)) {
        canvas.verticalLine(bar.x, area_.y, area_.bottom(),
                            {kDownbeatWidth, theme_.downbeat, kDownbeatHalo, theme_.halo});
        const std::string label = fmt::format("{}", bar.number);
        const double width = canvas.textWidth(label, style);
        const double start = bar.x + kLabelGap / 2.0;
        if (start < labelsEnd || start + width > area_.right()) continue;
        canvas.text(start, area_.y + kGridHead - 7.0, label, style, area_.width);
        labelsEnd = start + width + kLabelGap;
    }
}

}  // namespace output
