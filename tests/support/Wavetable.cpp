// SPDX-License-Identifier: MIT
#include "support/Wavetable.h"

#include <algorithm>

#include "support/NearestScope.h"

namespace beatatlas::test {

namespace {

double sumOfPartials(std::initializer_list<double> partials, Phase phase) {
    double sum = 0.0;
    Phase harmonicPhase = 0;
    for (const double amplitude : partials) {
        harmonicPhase += phase;
        sum += amplitude * sineOf(harmonicPhase);
    }
    return sum;
}

}  // namespace

Wavetable::Wavetable(std::initializer_list<double> partials)
    : points_((std::size_t{1} << kIndexBits) + 1) {
    const NearestScope nearest;
    double peak = 0.0;
    for (std::size_t i = 0; i < points_.size(); ++i) {
        points_[i] = sumOfPartials(partials, static_cast<Phase>(i) << (64 - kIndexBits));
        peak = std::max({peak, points_[i], -points_[i]});
    }
    for (double& point : points_) point /= peak;
}

}  // namespace beatatlas::test
