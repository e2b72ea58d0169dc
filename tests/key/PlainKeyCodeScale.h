// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "beatatlas/dsp.h"

namespace beatatlas::test {

/** The strengths of the twelve pitch classes in the plainest form: every frame and bin by itself. The oracle of the
 *  faster one; hop and octave weights (lowest, middle, top) are the caller's. */
inline std::vector<float> plainStrengths(const std::vector<float>& samples, float rate, float ref,
                                         int hop, const std::vector<float>& octaveWeights) {
    constexpr double kPi = 3.141592653589793;
    std::vector<float> f;
    for (int k = 0; k <= 72; ++k)
        f.push_back(
            static_cast<float>(static_cast<double>(ref * 0.0625F) * std::pow(2.0, k / 12.0)));
    std::vector<int> len;
    for (std::size_t k = 0; k < 72; ++k)
        len.push_back(static_cast<int>(2.0F * rate / (f[k + 1] - f[k])));
    const int n = static_cast<int>(samples.size());
    const int frames = std::max(0, (n - len[0]) / hop);
    std::vector<std::vector<float>> x(72, std::vector<float>(static_cast<std::size_t>(frames)));
    for (std::size_t k = 0; k < 72; ++k) {
        std::vector<float> re(static_cast<std::size_t>(len[k]));
        std::vector<float> im(re.size());
        std::vector<float> window(re.size());
        hanning(len[k], window.data());
        for (std::size_t i = 0; i < re.size(); ++i) {
            const float t = static_cast<float>(i + 1) / rate;
            const double angle = 2.0 * kPi * static_cast<double>(f[k]) * static_cast<double>(t);
            re[i] = window[i] * static_cast<float>(std::cos(angle));
            im[i] = window[i] * static_cast<float>(std::sin(angle));
        }
        for (int j = 0; j < frames; ++j) {
            const int centre = static_cast<int>(len[0] * 0.5) + j * hop;
            const int start = centre - static_cast<int>(len[k] * 0.5);
            float sumRe = 0.0F;
            float sumIm = 0.0F;
            for (std::size_t i = 0; i < re.size(); ++i) {
                const float sample = samples[static_cast<std::size_t>(start) + i];
                sumRe += sample * re[i];
                sumIm += sample * im[i];
            }
            x[k][static_cast<std::size_t>(j)] =
                std::sqrt(sumRe * sumRe + sumIm * sumIm) *
                (static_cast<float>(len[0]) / static_cast<float>(len[k]));
        }
    }
    float largest = 0.0F;
    for (const auto& bin : x)
        for (float value : bin) largest = std::max(largest, value);
    float a[2];
    float b[2];
    make_lpf1(1.0F, rate / static_cast<float>(hop), a, b);
    for (auto& bin : x) {
        for (float& value : bin) value /= largest;
        std::vector<float> smooth(bin.size());
        filter1_hat_mono(bin.data(), smooth.data(), frames, a, b);
        bin = smooth;
    }
    std::vector<float> strengths;
    for (std::size_t c = 0; c < 12; ++c) {
        float o[6] = {};
        for (std::size_t m = 0; m < 6; ++m)
            for (float value : x[c + 12 * m]) o[m] += value;
        const float s = octaveWeights[0] * o[0] + 0.5F * o[1] +
                        octaveWeights[1] * (o[2] + o[3] + o[4]) + octaveWeights[2] * o[5];
        strengths.push_back(s * s);
    }
    return strengths;
}

}  // namespace beatatlas::test
