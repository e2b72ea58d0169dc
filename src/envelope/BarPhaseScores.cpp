// SPDX-License-Identifier: MIT
#include "envelope/BarPhaseScores.h"

#include <algorithm>
#include <cstddef>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr double kFigureVote = 983.04;     // one figure, on the scale of 16-bit levels
constexpr double kQuietBeats = 7.0;        // pulses further apart open a new section
constexpr double kLoudSectionRatio = 0.6;  // of the loudest pulse
constexpr int kBeatsPerBar = 4;

/** Whether a gap lies within a tenth of `length`, both in envelope values, bounds rounded and
 *  included. */
bool isAbout(double length, int gap) {
    return truncToInt32(length * 0.9 + 0.5) <= gap && gap <= truncToInt32(length * 1.1 + 0.5);
}

}  // namespace

BarPhaseScores::BarPhaseScores(const EnvelopeGrid& grid, const std::vector<int>& peaks,
                               const std::vector<std::int16_t>& peakLevels, int lead)
    : grid_(grid), peaks_(peaks), peakLevels_(peakLevels), lead_(lead) {}

double BarPhaseScores::beatLengthAt(int peak) const {
    return getBeatDiff(peak, grid_.beatIndex, grid_.beatLength);
}

void BarPhaseScores::setFirstPulse() {
    if (peaks_.empty()) return;
    const int first = peaks_[0];
    const double beat = beatLengthAt(first);
    const int toSecond = peaks_.size() > 1 ? peaks_[1] - first : 0;
    const int toThird = peaks_.size() > 2 ? peaks_[2] - first : 0;
    const bool opensARun =
        isAbout(beat, toSecond) || isAbout(2.0 * beat, toSecond) || isAbout(beat, toThird);
    // A pulse that comes sooner than the lead counts as one at the start of the track.
    const int nearest = getNearBeatIndex(first - std::min(lead_, first), grid_.beatIndex);
    if (!opensARun || nearest < 0) return;
    scores_[static_cast<std::size_t>(nearest % kBeatsPerBar)] = 2.0 * level(first);
}

void BarPhaseScores::addVote(int peak, double weight) {
    const int nearest = getNearBeatIndex(peak - lead_, grid_.beatIndex);
    if (nearest >= 0) scores_[static_cast<std::size_t>(nearest % kBeatsPerBar)] += weight;
}

bool BarPhaseScores::isLoudSectionStart(std::size_t i, int loudest) const {
    const double beat = beatLengthAt(peaks_[i]);
    if (!(peaks_[i] - peaks_[i - 1] > kQuietBeats * beat)) return false;
    return isAbout(2.0 * beat, peaks_[i + 1] - peaks_[i]) ||
           level(peaks_[i]) > kLoudSectionRatio * loudest;
}

void BarPhaseScores::addSectionStarts() {
    int loudest = 0;
    for (const int peak : peaks_) loudest = std::max(loudest, level(peak));
    for (std::size_t i = 1; i + 1 < peaks_.size(); ++i) {
        if (isLoudSectionStart(i, loudest)) addVote(peaks_[i], level(peaks_[i]));
    }
}

void BarPhaseScores::addFigures(const std::vector<int>& figures) {
    for (const int start : figures) addVote(start, kFigureVote);
}

int BarPhaseScores::firstOfBar() const {
    double largest = 0.0;
    int best = 0;
    for (int place = 0; place < kBeatsPerBar; ++place) {
        const double score = scores_[static_cast<std::size_t>(place)];
        if (score <= largest) continue;
        largest = score;
        best = place;
    }
    if (largest > 0.0 || peaks_.empty()) return best;
    // Without any vote the first pulse decides, taken where it is: no lead is subtracted here.
    const int nearest = getNearBeatIndex(peaks_[0], grid_.beatIndex);
    return nearest < 0 ? 0 : nearest % kBeatsPerBar;
}

}  // namespace beatatlas
