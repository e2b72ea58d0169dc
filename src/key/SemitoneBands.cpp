// SPDX-License-Identifier: MIT
#include "key/SemitoneBands.h"

#include <algorithm>
#include <cmath>

#include "dsp/lanes/vectorLanes.h"
#include "key/pitchClasses.h"

namespace beatatlas {

namespace {

constexpr double kLowestHz = 110.0;  // A2: below it bins are wider than semitones
constexpr double kHighestHz = 20000.0;
constexpr double kOctavesEndHz = 28160.0;

/** The frequency so many semitones above another. */
double transposed(double hz, double semitones) {
    return hz * std::pow(2.0, semitones / 12.0);
}

struct BandEdges {
    double lowerHz;
    double upperHz;
};

std::vector<BandEdges> layBands() {
    std::vector<BandEdges> bands;
    for (double octave = kLowestHz; octave < kOctavesEndHz; octave *= 2.0) {
        for (int s = 0; s < kPitchClasses; ++s) {
            const double lower = transposed(octave, static_cast<double>(s) - 0.5);
            if (lower > kHighestHz) return bands;
            bands.push_back({lower, transposed(octave, static_cast<double>(s) + 0.5)});
        }
    }
    return bands;
}

}  // namespace

// The walk never goes back: a bin belongs to one band.
void SemitoneBands::create(int bins, double binHz) {
    release();
    int bin = 0;
    for (const BandEdges& band : layBands()) {
        while (bin < bins && static_cast<double>(bin) * binHz < band.lowerHz) ++bin;
        const int first = bin;
        while (bin < bins && static_cast<double>(bin) * binHz < band.upperHz) ++bin;
        bins_.push_back({first, bin});
    }
}

void SemitoneBands::release() {
    bins_.clear();
}

/** The largest power of each band; that of numbers is the same in any order. */
template <std::size_t kWidth>
struct SemitoneBands::Largest {
    BEATATLAS_LANES static void run(const Bins* bands, std::size_t count, const double* power,
                                    double* out) {
        constexpr int kStep = static_cast<int>(kWidth);
        for (std::size_t b = 0; b < count; ++b) {
            int i = bands[b].first;
            Lanes<double, kWidth> largest{};
            for (; i + kStep <= bands[b].end; i += kStep) {
                Lanes<double, kWidth> values;
                loadLanes(values, power + i);
                largest = largest < values ? values : largest;
            }
            out[b] = 0.0;
            for (std::size_t lane = 0; lane < kWidth; ++lane)
                out[b] = std::max(out[b], largest[lane]);
            for (; i < bands[b].end; ++i) out[b] = std::max(out[b], power[i]);
        }
    }
};

void SemitoneBands::measure(const double* power, double* out) const {
    runInLanes<Largest>(bins_.data(), bins_.size(), power, out);
    // The square root rises with its argument, rounded or not: one root per band gives the same
    // bits.
    for (std::size_t b = 0; b < bins_.size(); ++b) out[b] = std::sqrt(out[b]);
}

}  // namespace beatatlas
