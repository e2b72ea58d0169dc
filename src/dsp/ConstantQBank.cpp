// SPDX-License-Identifier: MIT
#include "dsp/ConstantQBank.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>

#include "beatatlas/dsp.h"
#include "dsp/constantQLanes.h"
#include "dsp/constants.h"
#include "dsp/narrowedCosine.h"
#include "dsp/truncation.h"

namespace beatatlas {

namespace {

/** The kernel of one bin, cosine and sine in turn: height of the window times the tone at hz. */
void fillKernel(float hz, float rate, int length, const float* window, float* point) {
    const double turns = (2.0 * kPi) * static_cast<double>(hz);
    std::array<double, 256> angles{};
    std::array<float, 256> cosines{};
    std::array<float, 256> sines{};
    constexpr int kAtOnce = static_cast<int>(angles.size());
    for (int from = 0; from < length; from += kAtOnce) {
        const int count = std::min(kAtOnce, length - from);
        for (int i = 0; i < count; ++i) {
            const float seconds = static_cast<float>(from + i + 1) / rate;
            angles[static_cast<std::size_t>(i)] = turns * static_cast<double>(seconds);
        }
        narrowedTone(angles.data(), cosines.data(), sines.data(), count);
        for (int i = 0; i < count; ++i) {
            const float height = window[from + i];
            *point++ = height * cosines[static_cast<std::size_t>(i)];
            *point++ = height * sines[static_cast<std::size_t>(i)];
        }
    }
}

}  // namespace

ConstantQBank::ConstantQBank(int bins, float lowestHz, float rate) : rate_(rate) {
    for (int k = 0; k <= bins; ++k) {
        const double ratio = std::pow(2.0, static_cast<double>(k) / 12.0);
        frequencies_.push_back(static_cast<float>(static_cast<double>(lowestHz) * ratio));
    }
    for (std::size_t k = 0; k + 1 < frequencies_.size(); ++k)
        lengths_.push_back(truncToInt32((2.0F * rate) / (frequencies_[k + 1] - frequencies_[k])));
    // The windows shrink upward, unless the arithmetic has run out of range.
    usable_ = std::is_sorted(lengths_.rbegin(), lengths_.rend()) && !lengths_.empty() &&
              lengths_.front() >= 1 && lengths_.back() >= 0;
}

int ConstantQBank::frameCount(long n, int hop) const {
    if (!usable_ || hop < 1 || n < frameLength()) return 0;
    const long count = (n - frameLength()) / hop;
    return static_cast<int>(std::min<long>(count, std::numeric_limits<int>::max()));
}

std::vector<float> ConstantQBank::kernels() const {
    const auto points = std::accumulate(lengths_.begin(), lengths_.end(), std::size_t{0});
    std::vector<float> all(2 * points);
    std::vector<float> window(static_cast<std::size_t>(frameLength()));
    float* kernel = all.data();
    for (std::size_t k = 0; k < lengths_.size(); ++k) {
        hanning(lengths_[k], window.data());
        fillKernel(frequencies_[k], rate_, lengths_[k], window.data(), kernel);
        kernel += 2 * static_cast<std::ptrdiff_t>(lengths_[k]);
    }
    return all;
}

float ConstantQBank::weightOf(std::size_t k) const {
    if (k == 0) return 1.0F;
    return static_cast<float>(frameLength()) / static_cast<float>(lengths_[k]);
}

void ConstantQBank::magnitudes(const float* samples, int hop, int frames, Place place,
                               float* rows) const {
    if (frames <= 0) return;
    const std::vector<float> points = kernels();
    std::vector<ConstantQBin> bins;
    const float* kernel = points.data();
    for (const int length : lengths_) {
        const int start = place == Place::start ? 0 : (frameLength() / 2) - (length / 2);
        bins.push_back({kernel, start, length});
        kernel += 2 * static_cast<std::ptrdiff_t>(length);
    }
    std::vector<ConstantQSums> sums(bins.size() * static_cast<std::size_t>(frames));
    correlateFrames(bins, frameLength(), samples, hop, frames, sums.data());
    const ConstantQSums* s = sums.data();
    for (std::size_t k = 0; k < bins.size(); ++k) {
        const float weight = weightOf(k);
        for (int j = 0; j < frames; ++j, ++s)
            *rows++ = std::sqrt((s->re * s->re) + (s->im * s->im)) * weight;
    }
}

}  // namespace beatatlas
