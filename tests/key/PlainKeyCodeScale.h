// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "beatatlas/dsp.h"

namespace beatatlas::test {

/** The strengths of the twelve pitch classes in the plainest form, every frame and bin by itself:
 *  the oracle of the faster one. Hop and octave weights (lowest, middle, top) are the caller's. */
class PlainStrengths {
public:
    PlainStrengths(const std::vector<float>& samples, float rate, float ref, int hop)
        : samples_(samples), rate_(rate), hop_(hop) {
        for (int k = 0; k <= 72; ++k) {
            const double ratio = std::pow(2.0, k / 12.0);
            f_.push_back(static_cast<float>(static_cast<double>(ref * 0.0625F) * ratio));
        }
        for (std::size_t k = 0; k < 72; ++k)
            len_.push_back(static_cast<int>(2.0F * rate / (f_[k + 1] - f_[k])));
        frames_ = std::max(0, (static_cast<int>(samples.size()) - len_[0]) / hop);
        for (std::size_t k = 0; k < 72; ++k) bins_.push_back(measure(k));
        divideByLargest();
        smooth();
    }

    std::vector<float> fold(const std::vector<float>& octaveWeights) const {
        std::vector<float> strengths;
        for (std::size_t c = 0; c < 12; ++c) {
            std::array<float, 6> o{};
            for (std::size_t m = 0; m < 6; ++m)
                for (float value : bins_[c + 12 * m]) o[m] += value;
            const float s = octaveWeights[0] * o[0] + 0.5F * o[1] +
                            octaveWeights[1] * (o[2] + o[3] + o[4]) + octaveWeights[2] * o[5];
            strengths.push_back(s * s);
        }
        return strengths;
    }

private:
    using Row = std::vector<float>;

    Row measure(std::size_t k) const {
        Row re(static_cast<std::size_t>(len_[k]));
        Row im(re.size());
        Row window(re.size());
        hanning(len_[k], window.data());
        for (std::size_t i = 0; i < re.size(); ++i) {
            const float t = static_cast<float>(i + 1) / rate_;
            const double angle =
                2.0 * 3.141592653589793 * static_cast<double>(f_[k]) * static_cast<double>(t);
            re[i] = window[i] * static_cast<float>(std::cos(angle));
            im[i] = window[i] * static_cast<float>(std::sin(angle));
        }
        Row row;
        for (int j = 0; j < frames_; ++j) {
            const int centre = static_cast<int>(len_[0] * 0.5) + j * hop_;
            const int start = centre - static_cast<int>(len_[k] * 0.5);
            const float sumRe = correlate(re, start);
            const float sumIm = correlate(im, start);
            const float weight = static_cast<float>(len_[0]) / static_cast<float>(len_[k]);
            row.push_back(std::sqrt(sumRe * sumRe + sumIm * sumIm) * weight);
        }
        return row;
    }

    float correlate(const Row& kernel, int start) const {
        float sum = 0.0F;
        for (std::size_t i = 0; i < kernel.size(); ++i)
            sum += samples_[static_cast<std::size_t>(start) + i] * kernel[i];
        return sum;
    }

    void divideByLargest() {
        float largest = 0.0F;
        for (const Row& row : bins_)
            for (float value : row) largest = std::max(largest, value);
        for (Row& row : bins_)
            for (float& value : row) value /= largest;
    }

    void smooth() {
        float a[2];
        float b[2];
        make_lpf1(1.0F, rate_ / static_cast<float>(hop_), a, b);
        for (Row& row : bins_) {
            Row rough = row;
            filter1_hat_mono(rough.data(), row.data(), frames_, a, b);
        }
    }

    const std::vector<float>& samples_;
    float rate_;
    int hop_;
    int frames_ = 0;
    std::vector<float> f_;
    std::vector<int> len_;
    std::vector<Row> bins_;
};

}  // namespace beatatlas::test
