// SPDX-License-Identifier: MIT
#include "output/TrackReport.h"

#include <cmath>

namespace output {

std::string correctionsText(const TrackReport& report) {
    std::string text;
    for (const CorrectionNote& correction : report.corrections) {
        if (!text.empty()) text += ", ";
        text += correction.text;
    }
    return text;
}

void countFrom(TrackReport& report, const TimeOrigin& origin) {
    report.origin = origin;
    const double shift = report.startSeconds();
    if (shift == 0.0) return;
    beatatlas::track::TrackResult& analysis = report.analysis;
    const std::int64_t shiftFrames = std::llround(shift * analysis.rate);
    for (beatatlas::track::Beat& beat : analysis.beats) {
        beat.seconds += shift;
        beat.frame += shiftFrames;
    }
    if (analysis.judgement) {
        for (beatatlas::track::TempoStretch& stretch : analysis.judgement->stretches) {
            stretch.fromSeconds += shift;
            stretch.toSeconds += shift;
        }
    }
    if (analysis.key) {
        for (beatatlas::track::KeySegment& segment : analysis.key->segments) {
            segment.fromSeconds += shift;
            segment.toSeconds += shift;
        }
    }
    for (base::Gap& gap : report.gaps) gap.start += shift;
}

}  // namespace output
