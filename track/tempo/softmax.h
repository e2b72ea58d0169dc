// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <vector>

namespace beatatlas::track::inner {

/** What a feature of a reading counts. */
struct FeatureWeight {
    const char* name;  // for programs that fit weights
    double weight;
};

/** Scores readings by the weights of their features, puts the best first, and gives each its share:
 *  its probability in a logistic model of these weights. Of equal ones the earlier stays first. */
template <class Reading, class Weights>
void rankByScore(std::vector<Reading>& readings, const Weights& weights) {
    for (Reading& reading : readings) {
        reading.score = 0.0;
        for (std::size_t i = 0; i < weights.size(); ++i)
            reading.score += weights[i].weight * reading.features[i];
    }
    // A few dozen at the most; and unlike a stable sort of the standard library it asks for no
    // memory.
    const auto isBetter = [](const Reading& a, const Reading& b) { return a.score > b.score; };
    for (auto next = readings.begin(); next != readings.end(); ++next)
        std::rotate(std::upper_bound(readings.begin(), next, *next, isBetter), next,
                    std::next(next));
    double sum = 0.0;
    for (Reading& reading : readings) {
        reading.share = std::exp(reading.score - readings.front().score);
        sum += reading.share;
    }
    for (Reading& reading : readings) reading.share /= sum;
}

}  // namespace beatatlas::track::inner
