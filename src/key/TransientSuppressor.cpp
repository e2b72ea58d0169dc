// SPDX-License-Identifier: MIT
#include "key/TransientSuppressor.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "dsp/lanes/vectorLanes.h"
#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr int kPreWindowMs = 10;
constexpr int kPostWindowMs = 40;
constexpr double kThresholdShare = 0.75;  // of the way from the average level to the peak
constexpr double kFloorGain = 0.125;
constexpr double kGainRange = 1.0 - kFloorGain;
constexpr int kMostMagnitude = 32768;

int framesOf(int rate, int milliseconds) {
    const std::int64_t frames = static_cast<std::int64_t>(rate) * milliseconds / 1000;
    return static_cast<int>(std::max<std::int64_t>(frames, 0));
}

// In int, so that −32768 has its true magnitude.
int magnitude(const std::int16_t* frame) {
    return std::max(std::abs(static_cast<int>(frame[0])), std::abs(static_cast<int>(frame[1])));
}

/** The largest whole level that is not above the threshold; a magnitude is above both or
 *  neither. */
int wholeLevel(double threshold) {
    // A threshold that is not a number is never exceeded.
    if (!(threshold < kMostMagnitude)) return kMostMagnitude;
    return truncToInt32(std::floor(std::max(threshold, -1.0)));
}

void scaleFrame(std::int16_t* frame, double gain) {
    frame[0] = truncToInt16(static_cast<double>(frame[0]) * gain);
    frame[1] = truncToInt16(static_cast<double>(frame[1]) * gain);
}

}  // namespace

void TransientSuppressor::create(int rate) {
    preWindow_ = framesOf(rate, kPreWindowMs);
    postWindow_ = framesOf(rate, kPostWindowMs);
    threshold_ = 0.0;
    makeGains();
}

void TransientSuppressor::makeGains() {
    const double fall = kGainRange / static_cast<double>(preWindow_);
    const double rise = kGainRange / static_cast<double>(postWindow_);
    double gain = 1.0;
    bool falling = true;
    gains_.resize(static_cast<std::size_t>(preWindow_) + static_cast<std::size_t>(postWindow_));
    for (double& now : gains_) {
        now = gain;
        if (falling) {
            gain -= fall;
            // The steps do not add up exactly: the floor is met when it is reached, not at the loud
            // frame.
            falling = gain > kFloorGain;
            if (!falling) gain = kFloorGain;
        } else {
            gain = std::min(gain + rise, 1.0);
        }
    }
}

void TransientSuppressor::setLevels(double average, double peak) {
    threshold_ = ((peak - average) * kThresholdShare) + average;
}

/** Finds the first frame from `first` to `end` that is louder than level, or end: no frame of a
 *  block is examined by itself unless one of them is loud. */
template <std::size_t kWidth>
struct TransientSuppressor::Search {
    // Registers of 256 bits at the most: the compiler takes comparisons in wider ones apart.
    static constexpr std::size_t kWords = std::min<std::size_t>(kWidth, 4);
    using Samples = Lanes<std::int16_t, 4 * kWords>;
    static constexpr std::ptrdiff_t kBlock = 64;

    BEATATLAS_LANES static void run(const std::int16_t* frames, std::ptrdiff_t first,
                                    std::ptrdiff_t end, int level, std::ptrdiff_t* found) {
        Samples above;
        Samples below;
        fillLanes(above, static_cast<std::int16_t>(level));
        fillLanes(below, static_cast<std::int16_t>(-level));
        std::ptrdiff_t p = first;
        while (p + kBlock <= end && !exceeds(frames + (2 * p), above, below)) p += kBlock;
        while (p < end && magnitude(frames + (2 * p)) <= level) ++p;
        *found = p;
    }

    BEATATLAS_LANES static bool exceeds(const std::int16_t* frames, const Samples& above,
                                        const Samples& below) {
        Samples loud{};
        for (std::size_t i = 0; i < 2 * kBlock; i += 4 * kWords) {
            Samples samples;
            loadLanes(samples, frames + i);
            loud |= (samples > above) | (samples < below);
        }
        Lanes<std::int64_t, kWords> words;
        std::memcpy(&words, &loud, sizeof words);
        std::int64_t any = 0;
        for (std::size_t i = 0; i < kWords; ++i) any |= words[i];
        return any != 0;
    }
};

/** Multiplies frames by gains; a frame is one 32-bit lane, whichever channel lies in its upper
 *  half. */
template <std::size_t kWidth>
struct TransientSuppressor::Duck {
    using Frames = Lanes<std::int32_t, kWidth>;
    using Values = Lanes<double, kWidth>;

    BEATATLAS_LANES static void run(std::int16_t* frames, const double* gains,
                                    std::ptrdiff_t count) {
        constexpr auto kStep = static_cast<std::ptrdiff_t>(kWidth);
        std::ptrdiff_t i = 0;
        for (; i + kStep <= count; i += kStep) {
            Frames pairs;
            Values gain;
            loadLanes(pairs, frames + (2 * i));
            loadLanes(gain, gains + i);
            Frames lower = (pairs << 16) >> 16;
            Frames upper = pairs >> 16;
            scale(lower, gain);
            scale(upper, gain);
            storeLanes((upper << 16) | (lower & 0xffff), frames + (2 * i));
        }
        for (; i < count; ++i) scaleFrame(frames + (2 * i), gains[i]);
    }

    /** No gain is above 1: every product fits. */
    BEATATLAS_LANES static void scale(Frames& samples, const Values& gain) {
        Values values;
        convertLanes<kWidth>(samples, values);
        samples = __builtin_convertvector(values * gain, Frames);
    }
};

void TransientSuppressor::suppress(std::int16_t* frames, int count) const {
    const int level = wholeLevel(threshold_);
    if (level >= kMostMagnitude) return;
    const std::ptrdiff_t end = count - postWindow_;
    for (std::ptrdiff_t p = preWindow_; p < end; ++p) {
        runInLanes<Search>(static_cast<const std::int16_t*>(frames), p, end, level, &p);
        if (p < end)
            runInLanes<Duck>(frames + (2 * (p - preWindow_)), gains_.data(),
                             std::ptrdiff_t{preWindow_} + postWindow_);
    }
}

}  // namespace beatatlas
