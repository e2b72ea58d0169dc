// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>

#include "dsp/lanes/vectorLanes.h"
#include "key/KeyBandFilter.h"

namespace beatatlas {

/** Equal sections in lanes, kVectors × kWidth of them. */
template <std::size_t kWidth, std::size_t kVectors>
struct KeyBandSections {
    using Vector = Lanes<double, kWidth>;

    template <class Section>
    BEATATLAS_LANES void load(const Section& section, const double* s1From, const double* s2From,
                              const double* reached) {
        fillLanes(b0, section.b0);
        fillLanes(b1, section.b1);
        fillLanes(a1, section.a1);
        fillLanes(a2, section.a2);
        for (std::size_t v = 0; v < kVectors; ++v) {
            loadLanes(s1[v], s1From + (v * kWidth));
            loadLanes(s2[v], s2From + (v * kWidth));
            loadLanes(y[v], reached + (v * kWidth));
        }
    }

    BEATATLAS_LANES void store(double* s1To, double* s2To, double* reached) const {
        for (std::size_t v = 0; v < kVectors; ++v) {
            storeLanes(s1[v], s1To + (v * kWidth));
            storeLanes(s2[v], s2To + (v * kWidth));
            storeLanes(y[v], reached + (v * kWidth));
        }
    }

    BEATATLAS_LANES void run(const Vector& x, std::size_t v) {
        y[v] = s1[v] + (b0 * x);
        s1[v] = ((b1 * x) - (a1 * y[v])) + s2[v];
        s2[v] = (b0 * x) - (a2 * y[v]);
    }

    Vector b0, b1, a1, a2;
    Vector s1[kVectors], s2[kVectors], y[kVectors];
};

/** The sections at work between begin() and end(), for kernels: stage s takes what stage s − 1 gave
 *  in the step before. Registers of four doubles at the most: they answer sooner than wider ones,
 *  and a section waits for its own last output. */
template <std::size_t kWidth>
struct KeyBandFilter::Wavefront {
    static constexpr std::size_t kLanes = std::min<std::size_t>(kWidth, 4);
    static constexpr std::size_t kHalf = kLowPasses / 2;
    static constexpr std::size_t kVectors = kHalf / kLanes;
    using LowPasses = KeyBandSections<kLanes, kVectors>;
    using HighPasses = KeyBandSections<kHighPasses, 1>;

    BEATATLAS_LANES void load(const KeyBandFilter& filter) {
        const double* reached = filter.reached_.data();
        const double* s1 = filter.s1_.data();
        const double* s2 = filter.s2_.data();
        even.load(filter.design_.lowPass, s1, s2, reached);
        odd.load(filter.design_.lowPass, s1 + kHalf, s2 + kHalf, reached + kHalf);
        high.load(filter.design_.highPass, s1 + kLowPasses, s2 + kLowPasses, reached + kLowPasses);
    }

    BEATATLAS_LANES void store(KeyBandFilter& filter) const {
        double* reached = filter.reached_.data();
        double* s1 = filter.s1_.data();
        double* s2 = filter.s2_.data();
        even.store(s1, s2, reached);
        odd.store(s1 + kHalf, s2 + kHalf, reached + kHalf);
        high.store(s1 + kLowPasses, s2 + kLowPasses, reached + kLowPasses);
    }

    /** Takes one sample; the last section gives the sample of kLag steps ago. */
    BEATATLAS_LANES double step(double x) {
        typename LowPasses::Vector newest;
        fillLanes(newest, x);
        typename LowPasses::Vector evenIn[kVectors];
        if constexpr (kVectors == 1) {
            evenIn[0] = __builtin_shufflevector(odd.y[0], newest, 3, 4, 1, 2);
        } else {
            evenIn[0] = __builtin_shufflevector(odd.y[1], newest, 1, 2);
            evenIn[1] = __builtin_shufflevector(odd.y[0], odd.y[1], 1, 2);
        }
        const typename HighPasses::Vector highIn{odd.y[0][0], high.y[0][0]};
        high.run(highIn, 0);
        for (std::size_t v = 0; v < kVectors; ++v) odd.run(even.y[v], v);
        for (std::size_t v = 0; v < kVectors; ++v) even.run(evenIn[v], v);
        return high.y[0][1];
    }

    LowPasses even;  // stages 6 0 2 4
    LowPasses odd;   // stages 7 1 3 5
    HighPasses high;
};

}  // namespace beatatlas
