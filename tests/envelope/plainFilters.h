// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "envelope/kickTrack.h"

namespace beatatlas::test {

/** The envelope filters in their plainest form: a difference equation over a whole signal with
 *  zeros before its start. An oracle that shares no code with the library. */
struct PlainFilter {
    /** b0, b1, … */
    std::vector<double> forward;
    /** a1, a2, … */
    std::vector<double> feedback;

    static PlainFilter secondOrder(double freq, double rate, bool isLowPass) {
        const double w = freq * 6.28318530717958 / rate;
        const double c = std::cos(w);
        const double alpha = std::sin(w) / 1.414213562373095;
        const double n = 1.0 + alpha;
        const double side = isLowPass ? 0.5 * (1.0 - c) / n : 0.5 * (c + 1.0) / n;
        const double middle = isLowPass ? (1.0 - c) / n : -(c + 1.0) / n;
        return {{side, middle, side}, {-2.0 * c / n, (1.0 - alpha) / n}};
    }

    static PlainFilter firstOrderHighPass(double freq, double rate) {
        const double w = freq * 6.28318530717958 / rate;
        return {{2.0 / (w + 2.0), -(2.0 / (w + 2.0))}, {(w - 2.0) / (w + 2.0)}};
    }

    std::vector<double> run(const std::vector<double>& x) const {
        std::vector<double> y(x.size());
        for (std::size_t n = 0; n < x.size(); ++n) {
            double sum = forward[0] * x[n];
            for (std::size_t k = 1; k < forward.size(); ++k) {
                sum = sum + forward[k] * (n >= k ? x[n - k] : 0.0);
            }
            for (std::size_t k = 1; k <= feedback.size(); ++k) {
                sum = sum - feedback[k - 1] * (n >= k ? y[n - k] : 0.0);
            }
            y[n] = sum;
        }
        return y;
    }
};

inline std::vector<double> plainMono(const Stereo& audio) {
    std::vector<double> mono;
    for (std::size_t i = 0; i < audio.size(); i += 2) {
        mono.push_back((static_cast<double>(audio[i]) + audio[i + 1]) / 2.0);
    }
    return mono;
}

/** The magnitude of every `step`-th value from the first on. */
inline std::vector<double> plainMagnitudes(const std::vector<double>& x, std::size_t step) {
    std::vector<double> levels;
    for (std::size_t n = 0; n < x.size(); n += step) levels.push_back(std::fabs(x[n]));
    return levels;
}

inline std::vector<std::int16_t> cutTo16Bits(const std::vector<double>& x) {
    std::vector<std::int16_t> cut;
    for (const double value : x) cut.push_back(static_cast<std::int16_t>(value));
    return cut;
}

}  // namespace beatatlas::test
