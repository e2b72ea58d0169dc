// SPDX-License-Identifier: MIT
// Life, feeding and the stages of the closing refinement:
//   1. how many beats lie within the stored level
//   2. the best of the tempo trials, and its grid (UnitBeatAdjustTrials.cpp)
//   3. the offset that brings the piled-up level peak onto the beats
//   4. beats taken or added at both ends
#include "envelope/UnitBeatAdjust.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "dsp/lanes/sampleLanes.h"
#include "dsp/processorYield.h"
#include "dsp/truncation.h"
#include "envelope/GridOffset.h"
#include "envelope/designFilter.h"

namespace beatatlas {

namespace {

constexpr double kAttackCornerHz = 2000.0;  // attacks live above it, sustained sound below
constexpr double kLevelCornerHz = 1000.0;   // keeps the peak of an attack within a millisecond
constexpr int kMostSeconds = 900;
constexpr int kDecimation = 4;

// Without branches: in quiet passages the low-pass swings about zero, and nobody could predict
// them. What is not a number counts for nothing.
std::int16_t storedLevel(double level) {
    const double sounding = level > 0.0 ? level : 0.0;
    return static_cast<std::int16_t>(sounding < 32767.0 ? sounding : 32767.0);
}

}  // namespace

bool UnitBeatAdjust::create(int sampleRate, int length) {
    release();
    length_ = length;
    quarterRate_ = sampleRate / kDecimation;
    capacity_ = static_cast<int>(std::min<std::int64_t>(length_ / kDecimation, mostLevels()));
    halfWindow_ = std::max(truncToInt32(quarterRate_ * 0.05), 0);
    // A last block that is no multiple of four frames can bring one sample more.
    level_.reserve(static_cast<std::size_t>(std::max(capacity_, 0)) + 1);
    windowSum_.create(2 * halfWindow_);
    highPass_ = designFilter<HighPathFilter2D>(kAttackCornerHz, quarterRate_);
    lowPass_ = designFilter<LowPathFilter2D>(kLevelCornerHz, quarterRate_);
    return true;
}

void UnitBeatAdjust::reset() {
    taken_ = 0;
    trialCount_ = 0;
}

std::int64_t UnitBeatAdjust::mostLevels() const {
    return std::int64_t{kMostSeconds} * quarterRate_;
}

void UnitBeatAdjust::putSample(const std::int16_t* samples, int frames) {
    if (samples == nullptr || frames <= 0 || highPass_ == nullptr) return;
    appendLevels(samples, framesToTake(frames));
}

std::int64_t UnitBeatAdjust::framesToTake(int frames) const {
    const std::int64_t untilEnd = length_ - std::int64_t{kDecimation} * taken_;
    const std::int64_t usable = std::min<std::int64_t>(frames, untilEnd);
    const std::int64_t untilFull = mostLevels() - static_cast<std::int64_t>(level_.size());
    return usable / kDecimation > untilFull ? untilFull * kDecimation : usable;
}

void UnitBeatAdjust::appendLevels(const std::int16_t* samples, std::int64_t frames) {
    if (frames <= 0) return;
    const auto count = static_cast<int>((frames + kDecimation - 1) / kDecimation);
    const std::size_t before = level_.size();
    level_.resize(before + static_cast<std::size_t>(count));
    std::int16_t* levels = level_.data() + before;
    operateInTurn(
        highPass_->section(), [](double x) { return std::fabs(x); }, lowPass_->section(),
        [samples](int i) { return monoOfFrame(samples + 2 * std::ptrdiff_t{kDecimation} * i); },
        [levels](int i, double y) { levels[i] = storedLevel(y); }, count);
    taken_ += count;
}

void UnitBeatAdjust::analyze(float& bpm, peakss::BeatList& beats) {
    if (!(bpm > 0.0F) || beats.empty()) return;
    beatCount_ = static_cast<int>(beats.size());
    bpmAdjust(bpm, beats, beatsWithinLevel(bpm, beats));
    beatPositionAdjust(beats);
}

int UnitBeatAdjust::beatsWithinLevel(float bpm, const peakss::BeatList& beats) const {
    if (static_cast<std::int64_t>(level_.size()) < mostLevels()) return beatCount_;
    const auto rate = static_cast<float>(quarterRate_);
    const auto first = static_cast<float>(beats.front().pos);
    const float seconds = (first * -0.25F + static_cast<float>(mostLevels())) / rate;
    return truncToInt32((bpm / 60.0F) * seconds);
}

void UnitBeatAdjust::sumPeakData(std::int64_t from, std::int64_t to) {
    if (from < 0 || to > capacity_ || to > static_cast<std::int64_t>(level_.size())) return;
    windowSum_.add(level_.data() + from);
}

void UnitBeatAdjust::beatPositionAdjust(peakss::BeatList& beats) {
    windowSum_.clear();
    for (std::size_t i = 1; i + 1 < beats.size(); ++i) {
        const std::int64_t beat = beats[i].pos / kDecimation;
        sumPeakData(beat - halfWindow_, beat + halfWindow_);
    }
    yieldProcessor();
    const WindowSum::Peak peak = windowSum_.findBeatPosition(2 * halfWindow_);
    offsetBeatPosition(halfWindow_, peak.offset, beats);
}

void UnitBeatAdjust::offsetBeatPosition(int halfWindow, int peakIndex, peakss::BeatList& beats) {
    // Without any level the peak's offset is 0 and the grid moves back by the whole half window.
    const int aboutOneMs = truncToInt32(quarterRate_ * -0.001);
    const int shift = (peakIndex - halfWindow) * kDecimation + aboutOneMs * kDecimation;
    const float interval = beats.front().interval;
    shiftBeats(beats, shift, length_);
    const float scaled = static_cast<float>(quarterRate_) * interval;
    fillEnds(beats, truncToInt32(static_cast<double>(scaled) * 0.001 * 4.0), length_);
    beatCount_ = static_cast<int>(beats.size());
}

void UnitBeatAdjust::release() {
    length_ = 0;
    quarterRate_ = 0;
    capacity_ = 0;
    beatCount_ = 0;
    halfWindow_ = 0;
    reset();
    windowSum_.create(0);
    std::vector<std::vector<int>>().swap(grids_);
    std::vector<std::int16_t>().swap(level_);
    highPass_.reset();
    lowPass_.reset();
}

}  // namespace beatatlas
