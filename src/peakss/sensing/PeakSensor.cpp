// SPDX-License-Identifier: MIT
#include "peakss/sensing/PeakSensor.h"

#include <algorithm>
#include <cstddef>

#include "dsp/truncation.h"
#include "peakss/sensing/PeakBuffer.h"
#include "peakss/sensing/levelLanes.h"

namespace peakss {

using beatatlas::truncToInt32;
using beatatlas::wrappingAdd;
using beatatlas::wrappingSubtract;

namespace {

// As short as the shortest interval that is read as part of a beat; longer, and fast off-beats
// would merge.
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

// A running sum waits for itself with every sample; two of them wait together.
void PeakSensor::getDiffs(const std::array<DiffBlock, 2>& blocks, int n) {
    for (const DiffBlock& block : blocks) block.sensor->changes(block.in, block.out, n);
    float* first = blocks[0].out;
    float* second = blocks[1].out;
    float firstSum = blocks[0].sensor->diffSum_;
    float secondSum = blocks[1].sensor->diffSum_;
    const auto add = [&](int i) {
        firstSum = firstSum + first[i];
        secondSum = secondSum + second[i];
        first[i] = firstSum;
        second[i] = secondSum;
    };
    int i = 0;
    for (; i + 4 <= n; i += 4)
        for (int k = 0; k < 4; ++k) add(i + k);
    for (; i < n; ++i) add(i);
    blocks[0].sensor->diffSum_ = firstSum;
    blocks[1].sensor->diffSum_ = secondSum;
    for (const DiffBlock& block : blocks) block.sensor->lessMean(block.in, block.out, n);
}

/** By how much each input changes the sum over the moving mean's length. */
void PeakSensor::changes(const float* in, float* out, int n) {
    float* ring = diffRing_.get();
    const int length = diffLen_;
    const int fromRing = std::min(n, length);
    int slot = diffIdx_;
    for (int i = 0; i < fromRing; ++i) {
        out[i] = in[i] - ring[slot];
        ring[slot] = in[i];
        slot = slot + 1 == length ? 0 : slot + 1;
    }
    if (n > fromRing)
        subtractLevels(in + fromRing, in + fromRing - length, out + fromRing, n - fromRing);
    diffIdx_ = n > fromRing ? keepLastInputs(in, n) : slot;
}

/** Turns the sums in `out` into what the inputs have above their means. */
void PeakSensor::lessMean(const float* in, float* out, int n) const {
    subtractMeans(in, out, n, diffLen_);
}

// The ring holds the last inputs wherever it begins: the oldest comes first.
int PeakSensor::keepLastInputs(const float* in, int n) {
    std::copy_n(in + (n - diffLen_), diffLen_, diffRing_.get());
    return 0;
}

// The end of a peak and the start of the next may fall on the same level: both are looked at in
// turn.
void PeakSensor::putLevel(float level, PeakBuffer& buffer) {
    pos_ = wrappingAdd(pos_, step_);
    line_ -= slopeStep_;
    if (state_ == kTracking) {
        if (level > peakLevel_) startPeak(level);
        if (isPeakOverAt(pos_)) {
            state_ = kFollowing;
            buffer.put(this);
        }
    }
    if (state_ == kFollowing) followLine(level);
}

int PeakSensor::putQuietLevels(const float* levels, int from, int to) {
    if (passesQuietly(levels, from, to)) return to;
    int i = from;
    while (i < to) {
        if (state_ == kFollowing) {
            i = followUntilPeak(levels, i, to);
        } else {
            const int moved = trackUntilMoved(levels, i, to);
            if (moved < 0) return ~moved;
            i = moved;
        }
    }
    return to;
}

// Most blocks hold no time at which anything is due, and no level that comes up to the lowest point
// of the line, or to the peak; what is not a number comes up to nothing. Nothing but the line and
// the time then changes.
bool PeakSensor::passesQuietly(const float* levels, int from, int to) {
    const std::int64_t duration = std::int64_t{step_} * (to - from);
    const bool tracking = state_ == kTracking;
    const std::int64_t since = wrappingSubtract(pos_, tracking ? peakPos2_ : lineStart_);
    const std::int64_t due = tracking ? confirmLen_ : std::int64_t{holdLen_} + 1;
    if (since < 0 || duration <= 0 || since + duration >= due) return false;
    const float loudest = loudestLevel(levels + from, to - from);
    if (tracking) {
        if (loudest > peakLevel_) return false;
    } else {
        const float line = lineAfter(to - from);
        if (!(slopeStep_ >= 0.0F && loudest < line)) return false;
        line_ = line;
    }
    pos_ = wrappingAdd(pos_, static_cast<std::int32_t>(duration));
    return true;
}

/** Where the line will have fallen to after so many levels, if no new fall is planned. */
float PeakSensor::lineAfter(int levels) const {
    float line = line_;
    if (slopeStep_ != 0.0F)
        for (int i = 0; i < levels; ++i) line = std::max(line - slopeStep_, floor_);
    return std::max(line, floor_);
}

// Most levels lie below the line and change nothing but the line and the time.
int PeakSensor::followUntilPeak(const float* levels, int from, int to) {
    for (int i = from; i < to; ++i) {
        std::int32_t pos = pos_;
        float line = line_;
        const float fall = slopeStep_;
        for (; i < to; ++i) {
            pos = wrappingAdd(pos, step_);
            line -= fall;
            if (line < floor_) line = floor_;
            if (levels[i] >= line || wrappingSubtract(pos, lineStart_) > holdLen_) break;
        }
        pos_ = pos;
        line_ = line;
        if (i == to) break;
        followLine(levels[i]);
        if (state_ == kTracking) return i + 1;
    }
    return to;
}

// While a peak is tracked the line stands still. Returns where to go on, or ~i when level i
// confirms the peak.
int PeakSensor::trackUntilMoved(const float* levels, int from, int to) {
    const float peakLevel = peakLevel_;
    std::int32_t before = pos_;
    for (int i = from; i < to; ++i) {
        const std::int32_t pos = wrappingAdd(before, step_);
        const bool higher = levels[i] > peakLevel;
        // A higher value starts the time anew: it confirms itself only where no time is needed.
        if (higher ? confirmLen_ == 0 : isPeakOverAt(pos)) {
            pos_ = before;
            return ~i;
        }
        before = pos;
        if (!higher) continue;
        pos_ = pos;
        startPeak(levels[i]);
        return i + 1;
    }
    pos_ = before;
    return to;
}

bool PeakSensor::isPeakOverAt(std::int32_t pos) const {
    const std::int32_t sinceMaximum = wrappingSubtract(pos, peakPos2_);
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
