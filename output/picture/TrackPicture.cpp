// SPDX-License-Identifier: MIT
#include "output/picture/TrackPicture.h"

#include <filesystem>

#include <fmt/format.h>

#include "base/displayName.h"
#include "output/picture/DotsPanel.h"
#include "output/picture/OverviewPanel.h"
#include "output/picture/ZoomPanel.h"
#include "output/picture/palette.h"
#include "output/textFormat.h"
#include "output/textSummary.h"

namespace output {

namespace {

constexpr double kMargin = 40.0;
constexpr double kInnerWidth = TrackPicture::kWidth - 2.0 * kMargin;
constexpr double kTitleY = 66.0;
constexpr double kSubtitleY = 96.0;
constexpr Rect kOverview{kMargin, 128.0, kInnerWidth, 280.0};
constexpr Rect kDots{kMargin, 476.0, kInnerWidth, 44.0};
constexpr Rect kZoom{kMargin, 566.0, kInnerWidth, 246.0};

constexpr TextStyle kTitle{30.0, palette::kText, true};
constexpr TextStyle kSubtitle{15.0, palette::kMutedText};
constexpr TextStyle kAnswer{30.0, palette::kText, true, Align::right};
constexpr double kTitleGap = 40.0;

std::string titleOf(const TrackReport& report) {
    return base::displayName(std::filesystem::path(report.path).filename().string());
}

}  // namespace

TrackPicture::TrackPicture(const TrackReport& report, const PictureOptions& options)
    : report_(report), stretch_(chooseZoomStretch(report.analysis, options)) {}

void TrackPicture::draw(Canvas& canvas) const {
    canvas.fillRect({0.0, 0.0, kWidth, kHeight}, palette::kBackground);
    drawHeading(canvas);
    drawOverview(canvas);
    drawDots(canvas);
    drawZoom(canvas);
}

void TrackPicture::drawHeading(Canvas& canvas) const {
    std::string answers;
    if (report_.options.tempo != beatatlas::track::TempoMode::off) answers = tempoText(report_);
    if (report_.options.wantsKey) answers += (answers.empty() ? "" : "   ") + keyText(report_);
    canvas.text(kWidth - kMargin, kTitleY, answers, kAnswer);
    const double room = kInnerWidth - kTitleGap - canvas.textWidth(answers, kAnswer);
    canvas.text(kMargin, kTitleY, canvas.fitted(titleOf(report_), kTitle, room), kTitle);
    const beatatlas::track::TrackResult& analysis = report_.analysis;
    canvas.text(kMargin, kSubtitleY,
                fmt::format("{}   {}   {} Hz{}", clockTime(analysis.seconds()),
                            report_.format.codec, grouped(report_.format.trackRate),
                            report_.isCutOff ? "   cut off" : ""),
                kSubtitle);
}

void TrackPicture::drawOverview(Canvas& canvas) const {
    OverviewPanel(report_.analysis, stretch_, kOverview).draw(canvas);
}

void TrackPicture::drawDots(Canvas& canvas) const {
    DotsPanel(report_.analysis.dotsWave, kDots).draw(canvas);
}

void TrackPicture::drawZoom(Canvas& canvas) const {
    ZoomPanel(report_.analysis, stretch_, kZoom).draw(canvas);
}

}  // namespace output
