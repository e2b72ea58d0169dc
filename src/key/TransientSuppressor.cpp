// SPDX-License-Identifier: MIT
#include "key/TransientSuppressor.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr int kPreWindowMs = 10;
constexpr int kPostWindowMs = 40;
constexpr double kThresholdShare = 0.75;  // of the way from the average level to the peak
constexpr double kFloorGain = 0.125;
constexpr double kGainRange = 1.0 - kFloorGain;
constexpr int kMostMagnitude = 32768;
constexpr int kStretchFrames = 32;

int framesOf(int rate, int milliseconds) {
    const std::int64_t frames = static_cast<std::int64_t>(rate) * milliseconds / 1000;
    return static_cast<int>(std::max<std::int64_t>(frames, 0));
}

// In int, so that −32768 has its true magnitude.
int magnitude(const std::int16_t* frame) {
    return std::max(std::abs(static_cast<int>(frame[0])), std::abs(static_cast<int>(frame[1])));
}

/** Whether one of the next kStretchFrames frames may be loud: no frame is examined by itself until one is. */
bool exceeds(const std::int16_t* frames, int level) {
    std::int16_t highest = 0;
    std::int16_t lowest = 0;
    for (int i = 0; i < 2 * kStretchFrames; ++i) {
        highest = std::max(highest, frames[i]);
        lowest = std::min(lowest, frames[i]);
    }
    return highest > level || lowest < -level;
}

/** The largest whole level that is not above the threshold; a magnitude is above both or neither. */
int wholeLevel(double threshold) {
    // A threshold that is not a number is never exceeded.
    if (!(threshold < kMostMagnitude)) return kMostMagnitude;
    return truncToInt32(std::floor(std::max(threshold, -1.0)));
}

void scale(std::int16_t* frame, double gain) {
    frame[0] = truncToInt16(static_cast<double>(frame[0]) * gain);
    frame[1] = truncToInt16(static_cast<double>(frame[1]) * gain);
}

}  // namespace

void TransientSuppressor::create(int rate) {
    preWindow_ = framesOf(rate, kPreWindowMs);
    postWindow_ = framesOf(rate, kPostWindowMs);
    threshold_ = 0.0;
}

void TransientSuppressor::setLevels(double average, double peak) {
    threshold_ = ((peak - average) * kThresholdShare) + average;
}

void TransientSuppressor::suppress(std::int16_t* frames, int count) const {
    const int level = wholeLevel(threshold_);
    const std::ptrdiff_t end = count - postWindow_;
    std::ptrdiff_t p = preWindow_;
    while (p < end) {
        if (p + kStretchFrames <= end && !exceeds(frames + (2 * p), level)) {
            p += kStretchFrames;
            continue;
        }
        for (const std::ptrdiff_t next = std::min(p + kStretchFrames, end); p < next; ++p)
            if (magnitude(frames + (2 * p)) > level) duck(frames + (2 * (p - preWindow_)));
    }
}

void TransientSuppressor::duck(std::int16_t* frames) const {
    const double fall = kGainRange / static_cast<double>(preWindow_);
    const double rise = kGainRange / static_cast<double>(postWindow_);
    double gain = 1.0;
    bool falling = true;
    const std::ptrdiff_t count = preWindow_ + postWindow_;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        scale(frames + (2 * i), gain);
        if (falling) {
            gain -= fall;
            // The steps do not add up exactly: the floor is met when it is reached, not at the loud frame.
            falling = gain > kFloorGain;
            if (!falling) gain = kFloorGain;
        } else {
            gain = std::min(gain + rise, 1.0);
        }
    }
}

}  // namespace beatatlas
