// SPDX-License-Identifier: MIT
#include "track/evidence/FrameSpectra.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "dsp/vectorLanes.h"

namespace beatatlas::track::inner {

namespace {

/** A Hann window that is zero at i = 0 and at i = period. */
std::vector<float> hannWindow(int length, int period) {
    std::vector<float> window(static_cast<std::size_t>(length));
    for (std::size_t i = 0; i < window.size(); ++i) {
        const double turn = static_cast<double>(i) / static_cast<double>(period);
        window[i] = static_cast<float>(0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * turn));
    }
    return window;
}

template <std::size_t kWidth>
struct WindowLanes {
    using Values = Lanes<float, 2 * kWidth>;

    BEATATLAS_LANES static void run(const float* samples, const float* window,
                                    std::ptrdiff_t length, float* windowed) {
        constexpr std::ptrdiff_t kLanes = 2 * kWidth;
        std::ptrdiff_t i = 0;
        for (; i + kLanes <= length; i += kLanes) {
            Values sample;
            Values weight;
            loadLanes(sample, samples + i);
            loadLanes(weight, window + i);
            storeLanes(Values(sample * weight), windowed + i);
        }
        for (; i < length; ++i) windowed[i] = samples[i] * window[i];
    }
};

template <class Values, std::size_t... kLane>
BEATATLAS_LANES void turnRound(Values& lanes, std::index_sequence<kLane...>) {
    lanes = __builtin_shufflevector(lanes, lanes, (sizeof...(kLane) - 1 - kLane)...);
}

/** With Z = A + iB of two real frames: 2A(k) = Z(k) + Z*(n − k) and 2iB(k) = Z(k) − Z*(n − k). */
template <std::size_t kWidth>
struct PowerLanes {
    static constexpr std::ptrdiff_t kLanes = 2 * kWidth;
    using Values = Lanes<float, 2 * kWidth>;

    BEATATLAS_LANES static void run(const float* re, const float* im, std::ptrdiff_t points,
                                    int bins, float* even, float* odd) {
        for (std::ptrdiff_t k = 0; k < bins; k += kLanes) {
            Values x;
            Values y;
            Values mirroredX;
            Values mirroredY;
            loadLanes(x, re + k);
            loadLanes(y, im + k);
            loadMirrored(mirroredX, re + points - k);
            loadMirrored(mirroredY, im + points - k);
            const Values evenRe = x + mirroredX;
            const Values evenIm = y - mirroredY;
            const Values oddRe = y + mirroredY;
            const Values oddIm = mirroredX - x;
            storeLanes(Values(0.25F * ((evenRe * evenRe) + (evenIm * evenIm))), even + k);
            storeLanes(Values(0.25F * ((oddRe * oddRe) + (oddIm * oddIm))), odd + k);
        }
    }

    /** Loads the values that end at `last`, in reverse order. */
    BEATATLAS_LANES static void loadMirrored(Values& lanes, const float* last) {
        loadLanes(lanes, last - (kLanes - 1));
        turnRound(lanes, std::make_index_sequence<2 * kWidth>{});
    }
};

}  // namespace

FrameSpectra::FrameSpectra(int points, std::vector<float> window)
    : points_(points), stride_(points + 16), transform_(points), window_(std::move(window)),
      re_(static_cast<std::size_t>(stride_) * FrameTransform::kFramesAtOnce), im_(re_.size()) {}

void FrameSpectra::transform(const float* samples, const std::ptrdiff_t* starts, int count) {
    const int pairs = (count + 1) / 2;
    const auto length = static_cast<std::ptrdiff_t>(window_.size());
    const auto putFrame = [&](int frame, float* row) {
        const std::ptrdiff_t heard = frame < count ? length : 0;
        if (heard > 0)
            runInLanes<WindowLanes>(samples + starts[frame],
                                    static_cast<const float*>(window_.data()), length, row);
        std::fill(row + heard, row + points_, 0.0F);
    };
    for (int pair = 0; pair < pairs; ++pair) {
        putFrame(2 * pair, re_.data() + pair * stride_);
        putFrame(2 * pair + 1, im_.data() + pair * stride_);
    }
    transform_.run(false, re_.data(), im_.data(), stride_, pairs);
    for (int pair = 0; pair < pairs; ++pair) {
        re_[static_cast<std::size_t>(pair * stride_ + points_)] = *re(pair);
        im_[static_cast<std::size_t>(pair * stride_ + points_)] = *im(pair);
    }
}

void FrameSpectra::powers(int pair, int bins, float* even, float* odd) const {
    runInLanes<PowerLanes>(re(pair), im(pair), static_cast<std::ptrdiff_t>(points_), bins, even,
                           odd);
}

std::complex<float> FrameSpectra::at(int frame, int bin) const {
    const float* x = re(frame / 2);
    const float* y = im(frame / 2);
    const int mirrored = points_ - bin;
    if (frame % 2 == 0) return {0.5F * (x[bin] + x[mirrored]), 0.5F * (y[bin] - y[mirrored])};
    return {0.5F * (y[bin] + y[mirrored]), 0.5F * (x[mirrored] - x[bin])};
}

std::vector<float> periodicHann(int length) {
    return hannWindow(length, length);
}

std::vector<float> symmetricHann(int length) {
    return hannWindow(length, length - 1);
}

}  // namespace beatatlas::track::inner
