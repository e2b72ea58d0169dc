// SPDX-License-Identifier: MIT
#include "output/picture/ZoomStretch.h"

#include <algorithm>

namespace output {

namespace {

// Shown before the downbeat, so that its line and the onset of its sound are inside the picture.
constexpr double kLeadSeconds = 0.1;

double loudestStart(const std::vector<beatatlas::track::WavePoint>& wave, double spanSeconds) {
    const auto span =
        std::min(static_cast<std::size_t>(spanSeconds * kZoomPointsPerSecond), wave.size());
    double sum = 0.0;
    double loudest = -1.0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < wave.size(); ++i) {
        sum += static_cast<double>(wave[i].level);
        if (i >= span) sum -= static_cast<double>(wave[i - span].level);
        if (i + 1 >= span && sum > loudest) {
            loudest = sum;
            start = i + 1 - span;
        }
    }
    return static_cast<double>(start) / kZoomPointsPerSecond;
}

/** The last downbeat at or before the time; the time itself if there is none. */
double atDownbeat(const beatatlas::track::TrackResult& analysis, double seconds) {
    double start = seconds;
    for (const beatatlas::track::Beat& beat : analysis.beats) {
        const double at = analysis.secondsAt(beat.frame);
        if (at > seconds) break;
        if (beat.isDownbeat()) start = at - kLeadSeconds;
    }
    return start;
}

}  // namespace

ZoomStretch chooseZoomStretch(const beatatlas::track::TrackResult& analysis,
                              const PictureOptions& options) {
    const double length = analysis.seconds();
    const double span = std::min(options.zoomSpanSeconds, length);
    double from = 0.0;
    if (options.zoomFromSeconds)
        from = *options.zoomFromSeconds;
    else if (span < length)
        from = atDownbeat(analysis, loudestStart(analysis.zoomWave, span));
    from = std::clamp(from, 0.0, length - span);
    return {from, from + span};
}

}  // namespace output
