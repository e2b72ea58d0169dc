// SPDX-License-Identifier: MIT
#include "view/ZoomViewMaker.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "dsp/constants.h"
#include "dsp/isConstant.h"
#include "dsp/sampleBlocks.h"
#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr double kBassCornerHz = 150.0;
constexpr double kButterworthQ = 0.7071067811865475;
constexpr int kFullScale = 32767;
constexpr int kColorWithoutBass = 7;

/** The two values of the frame before that a second-order section looks back to. */
constexpr std::size_t kHistory = 2;

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
    const std::size_t frameSize = index(frameLen) + kHistory;
    auto points = std::make_unique_for_overwrite<ZoomPoint[]>(static_cast<std::size_t>(capacity));
    auto mono = std::make_unique<std::int16_t[]>(frameSize);
    low_ = std::make_unique<double[]>(frameSize);
    mono_ = std::move(mono);
    points_ = std::move(points);
    capacity_ = capacity;
    total_ = total;
    rate_ = rate;
    frameLen_ = frameLen;
    designLowPass();
    reset();
    deferred_ = deferred;
    return true;
}

// Bilinear transform with the corner pre-warped. The corner is 150 Hz whatever the number of points per second.
void ZoomViewMaker::designLowPass() {
    const double k = std::tan((kBassCornerHz * kPi) / static_cast<double>(rate_));
    const double kk = k * k;
    const double damping = k / kButterworthQ;
    const double d = (1.0 + damping) + kk;
    a1_ = ((2.0 * kk) - 2.0) / d;
    a2_ = ((1.0 - damping) + kk) / d;
    b0_ = kk / d;
    b1_ = (2.0 * kk) / d;
    b2_ = kk / d;
}

void ZoomViewMaker::reset() {
    fed_ = 0;
    fill_ = 0;
    trackPeak_ = 0;
    count_ = 0;
    if (!points_) return;
    std::fill_n(mono_.get(), kHistory, std::int16_t{0});
    std::fill_n(low_.get(), kHistory, 0.0);
    std::fill_n(points_.get(), capacity_, ZoomPoint{0, 0});
}

void ZoomViewMaker::release() {
    mono_.reset();
    low_.reset();
    points_.reset();
    capacity_ = 0;
    total_ = 0;
    reset();
}

void ZoomViewMaker::putSample(const std::int16_t* stereo, int n) {
    if (stereo == nullptr) return;
    int taken = 0;
    while (taken < n && fed_ < total_) {
        const int part = std::min(frameLen_ - fill_, n - taken);
        takeFrames(stereo + (2 * index(taken)), part);
        taken += part;
        if (fill_ == frameLen_ || fed_ >= total_) finishFrame();
    }
}

void ZoomViewMaker::takeFrames(const std::int16_t* stereo, int n) {
    std::int16_t* mono = mono_.get() + kHistory + fill_;
    for (int i = 0; i < n; ++i) {
        const int sum = stereo[2 * i] + stereo[(2 * i) + 1];
        mono[i] = static_cast<std::int16_t>(sum / 2);  // toward zero, as the halved sum truncated
    }
    fill_ += n;
    fed_ += n;
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
    const int peak = framePeak();
    trackPeak_ = std::max(trackPeak_, peak);
    filterFrame();
    points_[index(count_)] = {static_cast<std::int16_t>(peak), colorOf(lowPeak(), peak)};
    keepHistory();
    ++count_;
}

int ZoomViewMaker::framePeak() const {
    const std::int16_t* mono = mono_.get() + kHistory;
    int peak = 0;
    for (int i = 0; i < fill_; ++i) peak = std::max(peak, std::abs(static_cast<int>(mono[i])));
    return std::min(peak, kFullScale);
}

// One pass: the feed-forward terms of the next values are ready while the feedback waits for the last one.
void ZoomViewMaker::filterFrame() {
    const std::int16_t* in = mono_.get() + kHistory;
    double* out = low_.get() + kHistory;
    const double b0 = b0_;
    const double b1 = b1_;
    const double b2 = b2_;
    const double a1 = a1_;
    const double a2 = a2_;
    double x1 = in[-1];
    double x2 = in[-2];
    double y1 = out[-1];
    double y2 = out[-2];
    // In silence the output comes to rest at a number that is very slow to compute.
    const double next = ((((b0 * x1) + (b1 * x1)) + (b2 * x2)) - (a1 * y1)) - (a2 * y2);
    if (isConstant(mono_.get(), fill_ + 2) && sameBits(y1, y2) && sameBits(next, y1)) {
        std::fill_n(out, fill_, y1);
        return;
    }
    for (int i = 0; i < fill_; ++i) {
        const double x = in[i];
        const double y = ((((b0 * x) + (b1 * x1)) + (b2 * x2)) - (a1 * y1)) - (a2 * y2);
        out[i] = y;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
    }
}

int ZoomViewMaker::lowPeak() const {
    const double peak = largestMagnitude(low_.get() + kHistory, fill_);
    return std::min(truncToInt32(peak), kFullScale);
}

void ZoomViewMaker::keepHistory() {
    for (std::size_t i = 0; i < kHistory; ++i) {
        mono_[i] = mono_[index(fill_) + i];
        low_[i] = low_[index(fill_) + i];
    }
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
