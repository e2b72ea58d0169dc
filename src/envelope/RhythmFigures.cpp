// SPDX-License-Identifier: MIT
#include "envelope/RhythmFigures.h"

#include <cstddef>
#include <cstdint>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr std::size_t kTrustedCountA = 11;
constexpr int kTrustedCountB = 81;

/** Whether a gap lies within a tenth of `length`, both in envelope values. */
bool isGapOf(double length, int gap) {
    return truncToInt32(length * 0.9) < gap && gap < std::int64_t{truncToInt32(length * 1.1)} + 1;
}

}  // namespace

const std::vector<int>* RhythmFigures::trusted() const {
    if (figureA.size() >= kTrustedCountA) return &figureA;
    if (countB >= kTrustedCountB) return &figureB;
    return nullptr;
}

RhythmFigures findRhythmFigures(const std::vector<int>& peaks, const EnvelopeGrid& grid) {
    RhythmFigures figures;
    for (std::size_t i = 0; i + 2 < peaks.size(); ++i) {
        const int start = peaks[i];
        const int gap = peaks[i + 1] - start;
        const int nextGap = peaks[i + 2] - peaks[i + 1];
        const double beat = getBeatDiff(start, grid.beatIndex, grid.beatLength);
        if (isGapOf(2.5 * beat, gap) &&
            (isGapOf(1.5 * beat, nextGap) || isGapOf(2.0 * beat, nextGap))) {
            figures.figureA.push_back(start);
        }
        if (isGapOf(1.5 * beat, gap)) {
            figures.figureB.push_back(start);
            ++figures.countB;
        } else if (isGapOf(beat, gap) && isGapOf(beat, nextGap)) {
            --figures.countB;
        }
    }
    return figures;
}

}  // namespace beatatlas
