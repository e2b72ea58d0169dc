// SPDX-License-Identifier: MIT
#include "track/evidence/FrameSpectra.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "dsp/vectorLanes.h"

namespace beatatlas::track::inner {

namespace {

/** The periodic Hann window. */
std::vector<float> hannWindow(int length) {
    std::vector<float> window(static_cast<std::size_t>(length));
    for (std::size_t i = 0; i < window.size(); ++i) {
        const double turn = static_cast<double>(i) / static_cast<double>(length);
        window[i] = static_cast<float>(0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * turn));
    }
    return window;
}

template <std::size_t kWidth>
struct WindowLanes {
    using Values = Lanes<float, 2 * kWidth>;

    BEATATLAS_LANES static void run(const float* samples, const float* window, float* windowed) {
        constexpr std::ptrdiff_t kLanes = 2 * kWidth;
        for (std::ptrdiff_t i = 0; i < FrameSpectra::kLength; i += kLanes) {
            Values sample;
            Values weight;
            loadLanes(sample, samples + i);
            loadLanes(weight, window + i);
            storeLanes(Values(sample * weight), windowed + i);
        }
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

    BEATATLAS_LANES static void run(const float* re, const float* im, int bins, float* even,
                                    float* odd) {
        for (std::ptrdiff_t k = 0; k < bins; k += kLanes) {
            Values x;
            Values y;
            Values mirroredX;
            Values mirroredY;
            loadLanes(x, re + k);
            loadLanes(y, im + k);
            loadMirrored(mirroredX, re, k);
            loadMirrored(mirroredY, im, k);
            const Values evenRe = x + mirroredX;
            const Values evenIm = y - mirroredY;
            const Values oddRe = y + mirroredY;
            const Values oddIm = mirroredX - x;
            storeLanes(Values(0.25F * ((evenRe * evenRe) + (evenIm * evenIm))), even + k);
            storeLanes(Values(0.25F * ((oddRe * oddRe) + (oddIm * oddIm))), odd + k);
        }
    }

    BEATATLAS_LANES static void loadMirrored(Values& lanes, const float* row, std::ptrdiff_t k) {
        loadLanes(lanes, row + FrameSpectra::kLength - k - (kLanes - 1));
        turnRound(lanes, std::make_index_sequence<2 * kWidth>{});
    }
};

}  // namespace

FrameSpectra::FrameSpectra()
    : transform_(kLength), window_(hannWindow(kLength)),
      re_(static_cast<std::size_t>(kStride) * FrameTransform::kFramesAtOnce), im_(re_.size()) {}

void FrameSpectra::transform(const float* samples, const std::ptrdiff_t* starts, int count) {
    const int pairs = (count + 1) / 2;
    const auto windowed = [&](int frame, float* row) {
        if (frame < count)
            runInLanes<WindowLanes>(samples + starts[frame],
                                    static_cast<const float*>(window_.data()), row);
        else
            std::fill_n(row, kLength, 0.0F);
    };
    for (int pair = 0; pair < pairs; ++pair) {
        windowed(2 * pair, re_.data() + pair * kStride);
        windowed(2 * pair + 1, im_.data() + pair * kStride);
    }
    transform_.run(false, re_.data(), im_.data(), kStride, pairs);
    for (int pair = 0; pair < pairs; ++pair) {
        re_[static_cast<std::size_t>(pair * kStride + kLength)] = *re(pair);
        im_[static_cast<std::size_t>(pair * kStride + kLength)] = *im(pair);
    }
}

void FrameSpectra::powers(int pair, int bins, float* even, float* odd) const {
    runInLanes<PowerLanes>(re(pair), im(pair), bins, even, odd);
}

std::complex<float> FrameSpectra::at(int frame, int bin) const {
    const std::complex<float> z(re(frame / 2)[bin], im(frame / 2)[bin]);
    const std::complex<float> mirrored(re(frame / 2)[kLength - bin], -im(frame / 2)[kLength - bin]);
    const std::complex<float> twice = frame % 2 == 0 ? z + mirrored : z - mirrored;
    if (frame % 2 == 0) return {0.5F * twice.real(), 0.5F * twice.imag()};
    return {0.5F * twice.imag(), -0.5F * twice.real()};
}

}  // namespace beatatlas::track::inner
