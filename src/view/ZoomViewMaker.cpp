// SPDX-License-Identifier: MIT
#include "view/ZoomViewMaker.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "dsp/constants.h"
#include "dsp/sampleBlocks.h"
#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr double kBassCornerHz = 150.0;
constexpr double kButterworthQ = 0.7071067811865475;
constexpr int kFullScale = 32767;
constexpr int kColorWithoutBass = 7;

std::size_t index(int i) {
    return static_cast<std::size_t>(i);
}

/** 0..32767 to 0..31 on a square law: quiet passages stay low, so that the loud ones stand out. */
std::int16_t squareLawLevel(int level) {
    const int v = level / 256;
    return static_cast<std::int16_t>((v * v * 31) / (127 * 127));
}

/** Eight classes by the bass's share of the peak: 0 from 7/8 upwards … 7 below 1/8. */
std::int16_t colorOf(int lowPeak, int framePeak) {
    if (framePeak == 0) return kColorWithoutBass;
    const int eighths = (8 * lowPeak) / framePeak;
    return static_cast<std::int16_t>(kColorWithoutBass - std::min(eighths, kColorWithoutBass));
}

}  // namespace

bool ZoomViewMaker::create(int rate, int total, int divisor, bool deferred) {
    release();
    if (total < 1 || divisor < 1 || rate < divisor) return false;
    const std::int32_t frameLen = rate / divisor;
    const std::int64_t capacity = (static_cast<std::int64_t>(total) + frameLen - 1) / frameLen;
    points_ = std::make_unique_for_overwrite<ZoomPoint[]>(static_cast<std::size_t>(capacity));
    capacity_ = capacity;
    total_ = total;
    rate_ = rate;
    frameLen_ = frameLen;
    designLowPass();
    reset();
    deferred_ = deferred;
    return true;
}

// Bilinear transform with the corner pre-warped. The corner is 150 Hz whatever the number of points
// per second.
void ZoomViewMaker::designLowPass() {
    const double k = std::tan((kBassCornerHz * kPi) / static_cast<double>(rate_));
    const double kk = k * k;
    const double damping = k / kButterworthQ;
    const double d = (1.0 + damping) + kk;
    bassFilter_.a1 = ((2.0 * kk) - 2.0) / d;
    bassFilter_.a2 = ((1.0 - damping) + kk) / d;
    bassFilter_.b0 = kk / d;
    bassFilter_.b1 = (2.0 * kk) / d;
    bassFilter_.b2 = kk / d;
}

void ZoomViewMaker::reset() {
    fed_ = 0;
    fill_ = 0;
    trackPeak_ = 0;
    count_ = 0;
    framePeak_ = 0;
    bassPeak_ = 0.0;
    if (!points_) return;
    std::fill_n(points_.get(), capacity_, ZoomPoint{0, 0});
}

void ZoomViewMaker::release() {
    points_.reset();
    capacity_ = 0;
    total_ = 0;
    reset();
}

void ZoomViewMaker::putSample(const std::int16_t* stereo, const double* bass, int n) {
    if (stereo == nullptr || bass == nullptr) return;
    for (int taken = 0; taken < n && fed_ < total_;) {
        const int part = framesToTake(n - taken);
        takeFrames(stereo + 2 * index(taken), bass + taken, part);
        taken += part;
    }
}

int ZoomViewMaker::framesToTake(int left) const {
    return std::min(frameLen_ - fill_, left);
}

// The halved magnitudes of the sums are those of the mono signal.
void ZoomViewMaker::takeFrames(const std::int16_t* stereo, const double* bass, int n) {
    framePeak_ = std::max(framePeak_, largestSum(stereo, n) / 2);
    bassPeak_ = std::max(bassPeak_, largestMagnitude(bass, n));
    fill_ += n;
    fed_ += n;
    if (fill_ == frameLen_ || fed_ >= total_) finishFrame();
}

void ZoomViewMaker::finishFrame() {
    analyzeZV();
    fill_ = 0;
    if (!deferred_) {
        std::int16_t& newest = points_[index(count_ - 1)].level;
        newest = squareLawLevel(newest);
    } else if (fed_ >= total_) {
        analyzeLV();
    }
}

void ZoomViewMaker::analyzeZV() {
    const int peak = std::min(framePeak_, kFullScale);
    const int bassPeak = std::min(truncToInt32(bassPeak_), kFullScale);
    trackPeak_ = std::max(trackPeak_, peak);
    points_[index(count_)] = {static_cast<std::int16_t>(peak), colorOf(bassPeak, peak)};
    framePeak_ = 0;
    bassPeak_ = 0.0;
    ++count_;
}

int ZoomViewMaker::analyzeLV() {
    for (int i = 0; i < count_; ++i) {
        std::int16_t& level = points_[index(i)].level;
        const double share = trackPeak_ == 0 ? 0.0 : static_cast<double>(level) / trackPeak_;
        level = squareLawLevel(truncToInt16(share * kFullScale));
    }
    return count_;
}

}  // namespace beatatlas
