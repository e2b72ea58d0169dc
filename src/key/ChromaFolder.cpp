// SPDX-License-Identifier: MIT
#include "key/ChromaFolder.h"

#include <algorithm>
#include <cstddef>

namespace beatatlas {

namespace {

constexpr int kFoldedBands = 60;  // A2 to G♯7: above it there are overtones only
constexpr int kTaps = 6;          // this row and five to either side

/** The rows that enter one row's sum, and what each pair ahead and back is worth. */
class Neighbourhood {
public:
    Neighbourhood(const BandSpectrogram& spectrogram, int frame, int lastFrame) {
        for (int tap = 0; tap < kTaps; ++tap) {
            const auto i = static_cast<std::size_t>(tap);
            weights_[i] = 1.0 - (static_cast<double>(2 * tap) / 12.0);
            ahead_[i] = spectrogram.row(std::min(frame + tap, lastFrame));
            back_[i] = spectrogram.row(std::max(frame - tap, 0));
        }
    }

    double sumOf(int band) const {
        double sum = weights_[0] * ahead_[0][band];
        // Looking back stops one row short of looking ahead.
        for (std::size_t i = 1; i + 1 < kTaps; ++i)
            sum += weights_[i] * (ahead_[i][band] + back_[i][band]);
        return sum + (weights_[kTaps - 1] * ahead_[kTaps - 1][band]);
    }

private:
    std::array<double, kTaps> weights_;
    std::array<const double*, kTaps> ahead_;
    std::array<const double*, kTaps> back_;
};

}  // namespace

Chroma foldChroma(const BandSpectrogram& spectrogram, int frames) {
    Chroma chroma{};
    const int bands = std::min(spectrogram.bands(), kFoldedBands);
    for (int f = 0; f < frames; ++f) {
        const Neighbourhood neighbours(spectrogram, f, frames - 1);
        for (int b = 0; b < bands; ++b)
            chroma[static_cast<std::size_t>(b % kPitchClasses)] += neighbours.sumOf(b);
    }
    return chroma;
}

}  // namespace beatatlas
