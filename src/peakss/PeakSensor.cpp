// SPDX-License-Identifier: MIT
#include "peakss/PeakSensor.h"

#include <algorithm>
#include <cstddef>

#include "dsp/truncation.h"
#include "peakss/PeakBuffer.h"

namespace peakss {

using beatatlas::truncToInt32;
using beatatlas::wrappingAdd;
using beatatlas::wrappingSubtract;

namespace {

// As short as the shortest interval that is read as part of a beat; longer, and fast off-beats would merge.
constexpr double kConfirmSeconds = 0.29;
// About a bar: so long a hit keeps its softer neighbours out.
constexpr double kHoldSeconds = 1.7;
constexpr double kFallSeconds = 1.3;
constexpr int kMinDiffLen = 2;  // the mean of one sample is the sample: nothing would be left

std::int32_t samplesOf(double seconds, std::int32_t rate) {
    return truncToInt32(static_cast<double>(rate) * seconds);
}

std::int32_t samplesOf(float seconds, std::int32_t rate) {
    return truncToInt32(seconds * static_cast<float>(rate));
}

}  // namespace

void PeakSensor::reset(int start) {
    state_ = kFollowing;
    peakLevel_ = 0.0F;
    peakPos_ = peakPos2_ = 0;
    line_ = floor_;
    linePhase_ = 0;
    holdLen_ = 0;
    slope_ = slopeStep_ = 0.0F;
    lineStart_ = 0;
    pos_ = start;
    diffIdx_ = 0;
    diffSum_ = 0.0F;
    if (diffRing_) std::fill_n(diffRing_.get(), diffLen_, 0.0F);
}

void PeakSensor::setSamplingRate(int rate) {
    rate_ = rate;
    confirmLen_ = samplesOf(kConfirmSeconds, rate);
    len0_ = samplesOf(kHoldSeconds, rate);
    len1_ = samplesOf(kFallSeconds, rate);
    len2_ = len1_;
    reset(0);
}

void PeakSensor::setLimitLine(float t0, float r0, float t1, float r1, float t2, float r2) {
    len0_ = samplesOf(t0, rate_);
    ratio0_ = r0;
    len1_ = samplesOf(t1, rate_);
    ratio1_ = r1;
    len2_ = samplesOf(t2, rate_);
    ratio2_ = r2;
}

void PeakSensor::setDiffAnalyze(float ms, int source) {
    const int samples = truncToInt32(((ms / 1000.0F) * static_cast<float>(rate_)) + 0.5F);
    const int length = std::max(samples, kMinDiffLen);
    diffRing_ = std::make_unique<float[]>(static_cast<std::size_t>(length));
    diffLen_ = length;
    diffIdx_ = 0;
    diffSum_ = 0.0F;
    diffSource_ = source;
    diffOn_ = true;
}

// The end of a peak and the start of the next may fall on the same level: both are looked at in turn.
void PeakSensor::putLevel(float level, PeakBuffer& buffer) {
    pos_ = wrappingAdd(pos_, step_);
    line_ -= slopeStep_;
    if (state_ == kTracking) {
        if (level > peakLevel_) startPeak(level);
        if (isPeakOver()) {
            state_ = kFollowing;
            buffer.put(this);
        }
    }
    if (state_ == kFollowing) followLine(level);
}

bool PeakSensor::isPeakOver() const {
    const std::int32_t sinceMaximum = wrappingSubtract(pos_, peakPos2_);
    // Unsigned: a peak that lies behind a wrapped position is over at once.
    return static_cast<std::uint32_t>(sinceMaximum) >= static_cast<std::uint32_t>(confirmLen_);
}

void PeakSensor::followLine(float level) {
    if (line_ < floor_) line_ = floor_;
    if (wrappingSubtract(pos_, lineStart_) > holdLen_) planFall();
    if (level >= line_) {
        startPeak(level);
        state_ = kTracking;
    }
}

void PeakSensor::planFall() {
    float target = 0.0F;
    if (linePhase_ == 0) {
        linePhase_ = 1;
        holdLen_ = len1_;
        target = peakLevel_ * ratio1_;
    } else {
        holdLen_ = len2_;
        target = line_ * ratio2_;
    }
    slope_ = (line_ - target) / static_cast<float>(holdLen_);
    slopeStep_ = slope_ * static_cast<float>(step_);
    lineStart_ = pos_;
}

void PeakSensor::startPeak(float level) {
    peakPos_ = peakPos2_ = pos_;
    peakLevel_ = level;
    line_ = level * ratio0_;
    holdLen_ = len0_;
    linePhase_ = 0;
    slope_ = slopeStep_ = 0.0F;
    lineStart_ = pos_;
}

}  // namespace peakss
