// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <initializer_list>
#include <vector>

#include "support/oscillator.h"

namespace beatatlas::test {

/** One cycle of a tone with the given partials and a peak of 1, read by phase.
 *
 *  Linear interpolation between 4096 points leaves errors below -120 dB for a handful of
 *  partials. */
class Wavetable {
public:
    /** @param partials amplitude of the fundamental, the second harmonic and so on. */
    explicit Wavetable(std::initializer_list<double> partials);

    double at(Phase phase) const {
        const auto index = static_cast<std::size_t>(phase >> (64 - kIndexBits));
        const double part = static_cast<double>((phase >> 20) & 0xFFFFFFFFU) * (1.0 / 4294967296.0);
        return points_[index] + ((points_[index + 1] - points_[index]) * part);
    }

private:
    static constexpr int kIndexBits = 12;

    std::vector<double> points_;
};

}  // namespace beatatlas::test
