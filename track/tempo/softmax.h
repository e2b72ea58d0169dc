// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <vector>

namespace beatatlas::track::inner {

/** The weight of a feature of a reading. */
struct FeatureWeight {
    const char* name;  // for programs that fit weights
    double weight;
};

/** Scores readings by the weights of their features, sorts them with the best first, and sets the
 *  share of each: its probability in a logistic model with these weights. Readings with equal
 *  scores keep their order. */
template <class Reading, class Weights>
void rankByScore(std::vector<Reading>& readings, const Weights& weights) {
    for (Reading& reading : readings) {
        reading.score = 0.0;
        for (std::size_t i = 0; i < weights.size(); ++i)
            reading.score += weights[i].weight * reading.features[i];
    }
    // There are a few dozen at most. Unlike std::stable_sort, this allocates no memory.
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
