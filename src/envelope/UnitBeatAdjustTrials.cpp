// SPDX-License-Identifier: MIT
// The tempo trials: 0.002 BPM apart within ±0.016 of the given tempo, further out only while the
// best lies at an edge, then 0.001 to either side of the best.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "dsp/processorYield.h"
#include "dsp/truncation.h"
#include "envelope/GridOffset.h"
#include "envelope/UnitBeatAdjust.h"

namespace beatatlas {

namespace {

constexpr double kStepBpm = 0.002;
constexpr double kSlowestBpm = 70.0;
constexpr double kFastestBpm = 180.0;
constexpr int kMostTrials = 36;  // 17 + 9 + 8 + 2
constexpr int kTrialsPerYield = 4;

/** Thousandths of a BPM, cut: two tempos with the same are one. */
std::int64_t milliBpm(double bpm) {
    return truncToInt32(bpm * 1000.0);
}

std::int64_t milliBpm(float bpm) {
    return milliBpm(static_cast<double>(bpm));
}

}  // namespace

void UnitBeatAdjust::bpmAdjust(float& bpm, peakss::BeatList& beats, int limit) {
    if (bpm <= 0.05F || limit < 1 || beats.empty()) return;
    const int startPos = beats.front().pos / 4;
    grids_.reserve(kMostTrials);
    BestTrial best;
    tryCoarse(static_cast<double>(bpm), startPos, limit, best);
    tryFine(bpm, startPos, limit, best);
    reflectBeatData(best, bpm, beats);
}

void UnitBeatAdjust::tryCoarse(double bpm, int startPos, int limit, BestTrial& best) {
    getPeakBpm(bpm - 0.016, 17, startPos, limit, best);
    // The lower edge is three trials wide, the upper one two.
    if (best.index < 3) {
        getPeakBpm(bpm - 0.034, 9, startPos, limit, best);
        if (best.index < 17 || best.index > 19) return;
        getPeakBpm(bpm - 0.05, 8, startPos, limit, best);
    } else if (best.index == 15 || best.index == 16) {
        // 0.016 + 0.002 and 0.034 + 0.002 as sums of doubles: one step above the last trial so far.
        getPeakBpm(bpm + 0.018000000000000002, 9, startPos, limit, best);
        if (best.index != 24 && best.index != 25) return;
        getPeakBpm(bpm + 0.036000000000000004, 8, startPos, limit, best);
    }
}

void UnitBeatAdjust::tryFine(float bpm, int startPos, int limit, BestTrial& best) {
    const std::int64_t given = milliBpm(bpm);
    const std::int64_t coarse = milliBpm(best.bpm);
    // Both sides of the coarse best, also when the first of them has become the best.
    const double below = best.bpm - 0.001;
    const double above = below + 0.002;
    if (coarse > given - 50) getPeakBpm(below, 1, startPos, limit, best);
    if (coarse < given + 50) getPeakBpm(above, 1, startPos, limit, best);
}

void UnitBeatAdjust::getPeakBpm(double start, int count, int startPos, int limit, BestTrial& best) {
    if (!(start > 0.0) || startPos < 0 || startPos >= capacity_) return;
    for (int k = 0; k < count; ++k) {
        const double trial = std::clamp(start + k * kStepBpm, kSlowestBpm, kFastestBpm);
        createBeatData(trial, startPos);
        const double score = manageWave(limit, trialCount_);
        if (score > best.score) best = {trial, score, trialCount_};
        ++trialCount_;
        if (trialCount_ % kTrialsPerYield == 0) yieldProcessor();
    }
}

void UnitBeatAdjust::createBeatData(double bpm, int startPos) {
    const double step = quarterRate_ * (60.0 / bpm);
    const int end = length_ / 4;
    std::vector<int> grid;
    double position = 0.0;
    for (int i = 0; i < beatCount_; ++i) {
        position = i * step + startPos;
        if (position < end) grid.push_back(truncToInt32(position + 0.5));
    }
    for (position += step; position < end; position += step) {
        grid.push_back(truncToInt32(position + 0.5));
    }
    grids_.push_back(std::move(grid));
}

double UnitBeatAdjust::manageWave(int limit, int gridIndex) {
    const std::vector<int>& grid = grids_[static_cast<std::size_t>(gridIndex)];
    const std::size_t count = std::min(grid.size(), static_cast<std::size_t>(limit));
    windowSum_.clear();
    for (std::size_t i = 1; i + 1 < count; ++i) {
        sumPeakData(std::int64_t{grid[i]} - halfWindow_, std::int64_t{grid[i]} + halfWindow_);
    }
    return windowSum_.findBeatPosition(2 * halfWindow_).value;
}

void UnitBeatAdjust::reflectBeatData(const BestTrial& best, float& bpm, peakss::BeatList& beats) {
    if (!(best.bpm > 0.0) || milliBpm(bpm) == milliBpm(best.bpm)) return;
    const std::vector<int>& grid = grids_[static_cast<std::size_t>(best.index)];
    resizeBeats(beats, static_cast<int>(grid.size()));
    const auto interval = static_cast<float>((60.0 / best.bpm) * 1000.0);
    for (std::size_t i = 0; i < grid.size(); ++i) {
        beats[i].pos = grid[i] * 4;
        beats[i].interval = interval;
    }
    bpm = static_cast<float>(best.bpm);
}

void UnitBeatAdjust::resizeBeats(peakss::BeatList& beats, int count) {
    while (beatCount_ > count) {
        beats.pop_back();
        --beatCount_;
    }
    while (beatCount_ < count) {
        peakss::BeatInfo next = beats.back();
        next.group = nextBeatNumber(next.group);
        next.segHead = false;
        beats.push_back(next);
        ++beatCount_;
    }
}

}  // namespace beatatlas
